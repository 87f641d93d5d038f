#pragma once
// The dialog "Recover Unsaved Documents" shown at start when documents with unsaved changes
// were left behind by a workbench that ended without saving them: it lists each with its name,
// the time of its last copy and its file. Recover reopens them all, Discard deletes the
// copies; closing the dialog keeps them for the next start. Main thread only.
#include "app/Autosave.h"

#include <QDialog>

class QListWidget;
class QPushButton;

class RecoveryDialog : public QDialog
{
    Q_OBJECT
public:
    enum Choice { Later = 0, Recover = 1, Discard = 2 };

    explicit RecoveryDialog(const QList<Autosave::Entry>& entries, QWidget* parent = nullptr);

    QListWidget* list() const { return m_pList; }
    QPushButton* recoverButton() const { return m_pRecover; }
    QPushButton* discardButton() const { return m_pDiscard; }

private:
    QListWidget* m_pList;
    QPushButton* m_pRecover;
    QPushButton* m_pDiscard;
};
