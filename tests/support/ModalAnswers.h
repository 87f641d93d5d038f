#pragma once
// Answering the modal windows a command brings up, as a user does, without a test ever hanging on
// one it did not expect; and finding a window's command by its menu title.
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

inline QAction* action(QWidget* window, const QString& text)
{
    for (QAction* a : window->findChildren<QAction*>())
        if (a->text() == text)
            return a;
    return nullptr;
}

// While an answered dialog is still open (for a few seconds at most), any other modal window
// that the answer brings up (a question the dialog asks inside its accept) is reported and
// rejected.
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
// anything else that comes up modally is rejected.
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

// A click on the panel's button `which`.
inline void press(QDialog* panel, QDialogButtonBox::StandardButton which)
{
    QTest::mouseClick(panel->findChild<QDialogButtonBox*>()->button(which), Qt::LeftButton);
}

// Once the panel's own modal loop runs: what the user does in it (`change`), then a click on its
// button `which`.
inline void pressLater(QDialog* panel, QDialogButtonBox::StandardButton which,
                       std::function<void()> change = {})
{
    QTimer::singleShot(0, panel, [panel, which, change] {
        if (change)
            change();
        press(panel, which);
    });
}
