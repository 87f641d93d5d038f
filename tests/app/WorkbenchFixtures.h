#pragma once
// What the workbench tests share: a workbench with quiet alerts and a folder of its own, the
// crash-recovery folder pointed at a folder of the test's own, typing into a window's table,
// answering the modal windows a command brings up, and recordings written as WAVE files.
#include "app/DocumentWindow.h"
#include "app/RecoveryDialog.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestFiles.h"
#include "support/WorkbenchFixture.h"
#include "table/gui/DataEntryController.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

inline QAction* action(QWidget* window, const QString& text)
{
    for (QAction* a : window->findChildren<QAction*>())
        if (a->text() == text)
            return a;
    return nullptr;
}

inline int value(DocumentWindow* w, int row, int column)
{
    return w->document()->_dataTableDictionary.cellAt(static_cast<long long>(column) * 10, row)->_nValue();
}

inline void typeInto(DocumentWindow* w, int row, int column, int number)
{
    QAbstractItemModel* model = w->table()->model();
    ASSERT_TRUE(model->setData(model->index(row, column), QString::number(number), Qt::EditRole));
}

// While an answered dialog is still open (for a few seconds at most), any other modal window
// that the answer brings up (a question the dialog asks inside its accept) is reported and
// rejected, so that a test never hangs on it.
inline void rejectStrayModals(QWidget* answered)
{
    auto* poll = new QTimer(qApp); // owned by the application, so a poll still running at exit goes with it
    auto tries = std::make_shared<int>(0);
    QPointer<QWidget> expected(answered);
    QObject::connect(poll, &QTimer::timeout, [poll, tries, expected] {
        QWidget* modal = QApplication::activeModalWidget();
        auto* dialog = qobject_cast<QDialog*>(modal);
        // Only a window that comes up while the answered one is still open is its question.
        const bool answeredOpen = expected && expected->isVisible();
        const bool stray = answeredOpen && dialog && modal != expected.data();
        if (!stray && answeredOpen && ++*tries < 100)
            return;
        poll->stop();
        poll->deleteLater();
        if (stray) {
            const auto* box = qobject_cast<QMessageBox*>(modal);
            ADD_FAILURE() << "unexpected dialog " << modal->windowTitle().toStdString() << ": "
                          << (box ? box->text().toStdString() : std::string());
            dialog->reject();
        }
    });
    poll->start(50);
}

// Runs `answer` on the next modal window of type T once it is up (within a few seconds);
// anything else that comes up modally is rejected so that a test never hangs on it.
template <typename T> void whenModal(std::function<void(T*)> answer)
{
    auto* poll = new QTimer(qApp); // owned by the application, so a poll still running at exit goes with it
    auto tries = std::make_shared<int>(0);
    QObject::connect(poll, &QTimer::timeout, [poll, tries, answer] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal && ++*tries < 250)
            return;
        poll->stop();
        poll->deleteLater();
        if (auto* wanted = qobject_cast<T*>(modal)) {
            rejectStrayModals(wanted);
            answer(wanted);
        } else if (auto* dialog = qobject_cast<QDialog*>(modal)) {
            ADD_FAILURE() << "unexpected dialog " << modal->windowTitle().toStdString();
            dialog->reject();
        } else
            ADD_FAILURE() << "no dialog came up";
    });
    poll->start(20);
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
