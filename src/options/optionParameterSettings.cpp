#include "options/optionParameterSettings.h"

#include "document/Log.h"
#include "document/MyDocument.h"
#include "options/parametersTableView.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

optionParameterSettings::optionParameterSettings(QWidget* parent) : OptionPanel(parent)
{
    setWindowTitle(tr("Parameter Settings"));
    mTableView = new parametersTableView;
    layOut(nullptr, {mTableView}, true);
    connect(defaultButton(), &QPushButton::clicked, this, [this] { mTableView->resettoDefault(_pDoc); });
    resize(700, 560);
}

void optionParameterSettings::setup(MyDocument* doc)
{
    _pDoc = doc;
    try {
        mTableView->setup(doc);
    } catch (const std::exception& e) {
        QMessageBox::warning(this, QStringLiteral("Error in starting the window"),
                             QString::fromUtf8(e.what()));
    }
}

void optionParameterSettings::save(MyDocument* doc)
{
    Channels& c = *doc->getChannel(0);
    for (int row = 0; row < kParameterCount && row < mTableView->rowCountOfNames(); ++row) {
        Log::printf("vanue = %d\n", mTableView->valueAt(3, row));
        c.m_Parameters[row].nMinValue = mTableView->valueAt(1, row);
        c.m_Parameters[row].nMaxValue = mTableView->valueAt(2, row);
        c.m_Parameters[row].nDefaultValue = mTableView->valueAt(3, row);
    }
}
