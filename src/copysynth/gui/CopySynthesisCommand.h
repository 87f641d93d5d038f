#pragma once
// CopySynthesisCommand: Data Entry > Automatic Copy Synthesis, and the button beside Enter All
// Data in the trace window. Copies the samples of the document's model channel, estimates every
// synthesis parameter from them on a worker thread (copySynthesize, as tessaphon-cli copysynth
// with its default options) behind an application-modal progress dialog with Cancel, and
// applies the result on the GUI thread as one undo step: saveUndo, applyCopySynthesis,
// saveRedo, then the table rebuilds its columns and will synthesize on the next play. The model
// channel stays, so Play Model and the analysis windows compare at once. A cancelled or failed
// run leaves the document untouched; a failure is shown as an alert.
//
// Made and used on the GUI thread; it deletes itself after `finished`. The worker reads only its
// own copy of the samples and writes only its own result; while it runs the dialog keeps the
// user from starting a synthesis (the synthesizer runs one synthesis at a time).
#include <QObject>
#include <QPointer>
#include <QProgressDialog>
#include <QString>

#include <memory>

class mainTable;
class MyDocument;
class QWidget;

class CopySynthesisCommand : public QObject
{
    Q_OBJECT
public:
    // Starts the command on the document `table` shows, the dialog over `parent`. Answers the
    // running command, or nullptr when there is nothing to copy (an alert said why).
    static CopySynthesisCommand* start(mainTable& table, QWidget* parent);

    QProgressDialog* progressDialog() const { return m_pProgress; }

signals:
    // The result was applied (true), or the run was cancelled or failed (false).
    void finished(bool applied);

private:
    struct Work;
    CopySynthesisCommand(mainTable& table, QWidget* parent);
    void run();
    void progressed(int permille);
    void done(const QString& failure);
    bool apply();

    QPointer<mainTable> m_pTable;
    QPointer<QWidget> m_pParent;
    QPointer<QProgressDialog> m_pProgress;
    std::shared_ptr<Work> m_work;
};
