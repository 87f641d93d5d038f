#include "options/AnalysisPanel.h"

#include "document/MyDocument.h"
#include "options/AnalysisPanelControls.h"

void AnalysisPanel::setup(MyDocument* doc)
{
    if (_popupWindowLength) {
        m_dAnalysisSampleRate = doc->getChannel(0)->m_dSampleRate;
        AnalysisPanelControls::titleLengthMenu(_popupWindowLength, m_dAnalysisSampleRate);
    }
    fill(*doc);
}

void AnalysisPanel::actionDefault()
{
    MyDocument defaults;
    defaults.setAnalysisDefaults(m_dAnalysisSampleRate);
    fill(defaults);
}
