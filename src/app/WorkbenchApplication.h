#pragma once
// The application: its document windows, the commands that make or open documents (New,
// Open, Open Recent), the recent-files list, Quit with the unsaved-changes prompts, and the
// crash-recovery copies of documents with unsaved changes (Autosave; the recovery offer at
// start is in WorkbenchRecovery.cpp). Installs the configuration file hooks when made.
// Main thread only.
#include "app/Autosave.h"

#include <QObject>
#include <QStringList>

#include <memory>
#include <vector>

class DocumentWindow;
class MyDocument;
class QWidget;

class WorkbenchApplication : public QObject
{
    Q_OBJECT
public:
    explicit WorkbenchApplication(QObject* parent = nullptr);
    ~WorkbenchApplication() override;

    // nullptr when the window could not be made (its table said why in an alert).
    DocumentWindow* newDocument();
    // Shows a document made elsewhere (File > New from Text..., File > Import...) as a new untitled one.
    DocumentWindow* newDocument(std::unique_ptr<MyDocument> doc);
    // Opens a parameter document or a WAVE file (which becomes a new document x.stk with
    // the recording as its model); an already open file is brought to front. nullptr and
    // an alert naming the file and the reason when it cannot be read.
    DocumentWindow* openFile(const QString& path);
    void openFiles(const QStringList& paths);
    // What reading changed in a document that opened (values clamped, ...), one line each;
    // shown in one alert after the window opens.
    static QStringList readChanges(const MyDocument& doc);

    // Where File > Open starts: the folder of the window's document, else the last folder
    // opened from (empty the first time: the dialog's own choice).
    QString openFolder(QWidget* parent) const;

    QStringList recentFiles() const;
    void noteRecentFile(const QString& path);
    void clearRecentFiles();

    const std::vector<DocumentWindow*>& windows() const { return m_windows; }

    // --- crash recovery ---
    Autosave* autosave() const { return m_pAutosave.get(); }
    // Writes the copy of every document with unsaved changes (at quit, before the prompts).
    void autosaveAll();
    // When copies were left behind by a workbench that ended without saving them, shows
    // "Recover Unsaved Documents"; answers how many documents were reopened.
    int offerRecovery();
    // Reopens the documents of the copies as modified documents with their old names; each
    // old copy is removed once its new window has written its own. Unreadable ones are
    // reported and kept.
    int recover(const QList<Autosave::Entry>& entries);
    void windowClosed(DocumentWindow* window);

    // When set, failures are reported through it instead of a message box (tests).
    void setQuietAlerts(bool quiet) { m_bQuiet = quiet; }
    QString lastAlert() const { return m_strLastAlert; }
    void alert(QWidget* parent, const QString& title, const QString& message);

public slots:
    void openDialog(QWidget* parent);
    // Closes every window, asking about unsaved changes; stops at the first Cancel.
    bool quit();

signals:
    void recentFilesChanged();

private:
    DocumentWindow* show(std::unique_ptr<MyDocument> doc, int untitledNumber);

    std::unique_ptr<Autosave> m_pAutosave;
    std::vector<DocumentWindow*> m_windows;
    int m_nUntitledCount = 0;
    bool m_bQuiet = false;
    QString m_strLastAlert;
};
