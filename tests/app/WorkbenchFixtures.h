#pragma once
// What the workbench tests share: a workbench with quiet alerts and a folder of its own, the
// crash-recovery folder pointed at a folder of the test's own, typing into a window's table,
// answering the modal windows a command brings up, and recordings written as WAVE files.
#include "app/DocumentWindow.h"
#include "app/RecoveryDialog.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "support/ModalAnswers.h"
#include "support/TestChannels.h"
#include "support/TestFiles.h"
#include "support/WorkbenchFixture.h"
#include "table/gui/DataEntryController.h"
#include "table/gui/mainTable.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>

inline int value(DocumentWindow* w, int row, int column)
{
    return w->document()->_dataTableDictionary.cellAt(static_cast<long long>(column) * 10, row)->_nValue();
}

inline void typeInto(DocumentWindow* w, int row, int column, int number)
{
    QAbstractItemModel* model = w->table()->model();
    ASSERT_TRUE(model->setData(model->index(row, column), QString::number(number), Qt::EditRole));
}

// Answers the next question about unsaved changes with Don't Save.
inline void dontSaveWhenAsked()
{
    whenModal<QMessageBox>([](QMessageBox* box) {
        for (QAbstractButton* b : box->buttons())
            if (box->buttonRole(b) == QMessageBox::DestructiveRole)
                b->click();
    });
}

inline std::string fileText(const QString& path)
{
    return slurp(path.toStdString());
}

// A 0.4 s recording written by the document's own wave writer.
inline void writeRecording(const QString& path, int period = 100)
{
    std::vector<float> ramps(4410);
    for (int i = 0; i < 4410; ++i)
        ramps[i] = static_cast<float>(i % period) / (4.0f * period);
    std::ofstream(path.toStdString(), std::ios::binary) << waveFileBytes(ramps, 11025);
}

struct StateFolder {
    QTemporaryDir dir;
    QByteArray saved = qgetenv("XDG_STATE_HOME");
    StateFolder()
    {
        qputenv("XDG_STATE_HOME", dir.path().toUtf8());
        qputenv("TESSAPHON_AUTOSAVE_SECONDS", "1");
    }
    ~StateFolder()
    {
        qputenv("XDG_STATE_HOME", saved);
        qunsetenv("TESSAPHON_AUTOSAVE_SECONDS");
    }
    QString folder() const { return dir.path() + "/tessaphon/autosave"; }
    QStringList copies() const { return QDir(folder()).entryList({"*.stk"}, QDir::Files, QDir::Name); }
};

inline DocumentWindow* windowNamed(WorkbenchApplication& app, const QString& prefix)
{
    for (DocumentWindow* w : app.windows())
        if (w->windowTitle().startsWith(prefix))
            return w;
    return nullptr;
}
