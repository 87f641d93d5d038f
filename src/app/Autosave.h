#pragma once
// The crash-recovery copies of documents with unsaved changes. Each copy is a parameter
// document in the autosave folder ($XDG_STATE_HOME/tessaphon/autosave, by default
// ~/.local/state/tessaphon/autosave), written atomically, with a description beside it
// (<copy>.ini: the document's own file, its window name, the WAVE file of its model, whether
// its file name was only proposed). A copy is named after the workbench that wrote it
// (<instance>-<n>.stk); each running workbench holds the lock <instance>.lock in the folder.
// Copies whose workbench no longer holds its lock were left behind by a crash: the next
// workbench offers them for recovery.
//
// Owned by the application; main thread only. Without a usable folder nothing is written
// and nothing is offered (isUsable() false).
#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>
#include <vector>

class MyDocument;
class QLockFile;

class Autosave
{
public:
    // What a copy stands for.
    struct Entry {
        QString copyPath;     // the copy itself, .../<instance>-<n>.stk
        QString originalPath; // the file the document was saved in; empty for a new one
        QString name;         // the window's name ("vowel.stk", "Untitled 2")
        QString modelPath;    // the WAVE file its model recording was read from, or empty
        bool nameProposed = false;
        QDateTime savedAt; // when the copy was last written
    };

    // Takes the folder (made when missing) and this workbench's lock in it.
    Autosave();
    ~Autosave();
    Autosave(const Autosave&) = delete;
    Autosave& operator=(const Autosave&) = delete;

    // The folder from the environment ($XDG_STATE_HOME, else ~/.local/state).
    static QString defaultFolder();
    // Seconds between an edit and its copy: TESSAPHON_AUTOSAVE_SECONDS when it is a whole
    // number of at least 1, else 30.
    static int intervalSeconds();

    bool isUsable() const { return m_bUsable; }
    QString folder() const { return m_strFolder; }

    // A copy path of this workbench that no window uses yet.
    QString newCopyPath();
    // Writes the document's copy to entry.copyPath (description first, then the document,
    // each atomically). The document is not marked. False with `error` set on failure.
    bool write(const Entry& entry, MyDocument& doc, QString* error = nullptr) const;
    // Removes a copy and its description; a missing copy is fine.
    static void remove(const QString& copyPath);

    // The copies left behind by workbenches that have ended, oldest first. This workbench
    // takes over their locks for its own life, so that a copy is offered by one workbench
    // at a time.
    QList<Entry> leftBehind();

private:
    QString m_strFolder;
    QString m_strInstance;
    std::unique_ptr<QLockFile> m_pLock;
    std::vector<std::unique_ptr<QLockFile>> m_claimed; // locks of ended workbenches
    int m_nCopies = 0;
    bool m_bUsable = false;
};
