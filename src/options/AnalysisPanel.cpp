#include "options/AnalysisPanel.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

AnalysisPanel::AnalysisPanel(QWidget* parent, const QString& title, const QString& name) : OptionPanel(parent)
{
    setWindowTitle(title);
    setObjectName(name);
}

void AnalysisPanel::setup(MyDocument* doc)
{
    if (_popupWindowLength) {
        m_dAnalysisSampleRate = doc->getChannel(0)->m_dSampleRate;
        AnalysisPanelControls::titleLengthMenu(_popupWindowLength, m_dAnalysisSampleRate);
    }
    fill(*doc);
}

void AnalysisPanel::save(MyDocument* doc)
{
    m_form.save(*doc);
}

void AnalysisPanel::fill(const MyDocument& doc)
{
    m_form.fill(doc);
}

void AnalysisPanel::actionDefault()
{
    MyDocument defaults;
    defaults.setAnalysisDefaults(m_dAnalysisSampleRate);
    fill(defaults);
}

void AnalysisPanel::finishLayout(QWidget* note)
{
    layOut(m_form.layout(), {note}, true);
    connect(defaultButton(), &QPushButton::clicked, this, &AnalysisPanel::actionDefault);
}
