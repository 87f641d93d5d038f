#pragma once
// One document's main window: it owns the document and its parameter table (the table is
// destroyed first), carries the menus, the title with the file name and the modified
// marker, the status bar, the unsaved-changes prompt on close, and the drop target for
// .stk and .wav files. Main thread only.
//
// Split by concern: DocumentWindow.cpp (window, title, close, drop, status),
// DocumentWindowMenus.cpp (menus, actions and their enabling), DocumentWindowFile.cpp (save,
// save as, revert, save audio, configurations), DocumentWindowAutosave.cpp (the copy kept
// for crash recovery while there are unsaved changes).
#include <QMainWindow>

#include <memory>

class MyDocument;
class mainTable;
class QAction;
class QLabel;
class QMenu;
class QTimer;
class WorkbenchApplication;

class DocumentWindow : public QMainWindow
{
    Q_OBJECT
public:
    DocumentWindow(WorkbenchApplication* app, std::unique_ptr<MyDocument> doc, int untitledNumber);
    ~DocumentWindow() override;

    MyDocument* document() const { return m_pDoc.get(); }
    mainTable* table() const { return m_pTable; }
    // The file the document is saved in, or empty for a new one.
    QString filePath() const;
    // A new document nobody has touched (replaced when the user opens a file).
    bool isPristine() const;

    // A document made from a WAVE file x.wav carries the name x.stk without the user having
    // chosen it: its first save never replaces an x.stk that exists (Save As is asked).
    void setFileNameProposed(bool proposed) { m_bFileNameProposed = proposed; }
    bool isFileNameProposed() const { return m_bFileNameProposed; }
    // The WAVE file the model recording was read from (kept with the crash-recovery copy).
    void setModelPath(const QString& path) { m_strModelPath = path; }
    // The name of a window without a file ("Untitled 2"); a recovered one keeps its old name.
    QString displayName() const;
    void setUntitledName(const QString& name);

    // --- crash recovery (DocumentWindowAutosave.cpp) ---
    // With unsaved changes, writes the document's copy to the autosave folder; without,
    // removes it. False when a copy was due and could not be written.
    bool autosaveNow();
    // Removes the copy (the document was saved, or closed without saving).
    void removeAutosave();
    QString autosavePath() const { return m_strAutosavePath; }

    // --- document life cycle (no panels; the menu commands ask where, then call these) ---
    // To its file, or as a new one; through Save As when there is no file or when the file
    // name was only proposed and such a file exists.
    bool saveDocument();
    bool saveDocumentTo(const QString& path); // atomic; the document takes the name
    bool loadConfigurationFrom(const QString& path);
    bool saveConfigurationTo(const QString& path);
    // Reads a WAVE file into the model channel as opening it does, leaving the grid, the table
    // and the undo history as they are; false (with an alert) when the file is refused.
    bool loadModelRecordingFrom(const QString& path);
    // Asks whether to save unsaved changes: true when the window may close.
    bool maySave();

public slots:
    void updateTitle();
    void updateActions();
    void saveDocumentAs();
    void revertDocument();
    void loadConfiguration();
    void saveConfiguration();
    void loadModelRecording();
    // File > Record Model...: records from the default input; the recording becomes the model.
    void recordModel();
    // File > Save Model Audio...: the model channel as a WAVE file.
    void saveModelAudio();
    bool saveModelAudioTo(const QString& path);
    // File > Make Continuum...: this document as the first step; opens the folder when done.
    void makeContinuum();
    void newFromText();

    // --- labels and interchange (DocumentWindowLabels.cpp) ---
    // File > Load Labels...: a TextGrid of the recording's segments for this document.
    void loadLabels();
    // False (with an alert naming the file and the line) when the TextGrid is refused.
    bool loadLabelsFrom(const QString& path);
    // The TextGrid x.TextGrid beside a recording x.wav, when there is one.
    void loadLabelsBeside(const QString& recordingPath);
    // File > Import...: a .klp or .tsv file as a new document; File > Export...: this one.
    void importFile();
    bool exportTo(const QString& path);
    void exportFile();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // The configuration file the user picks to read or to write (config.cfg in the documents
    // folder proposed); empty when cancelled.
    QString chooseConfigurationFile(bool forSaving);
    void createMenus();
    // One menu each (DocumentWindowMenus.cpp); the data-entry menu only with a data-entry window.
    QMenu* createFileMenu();
    QMenu* createEditMenu();
    QMenu* createFramesMenu();
    QMenu* createPlayMenu();
    void createDataEntryMenu();
    QMenu* createAnalysisMenu();
    QMenu* createOptionsMenu();
    void createLabelMenus(QMenu* file);
    void createViewMenu();
    void createStatusBar();
    void setUpAutosave();
    // After a change: a copy within the autosave interval (not postponed by later changes).
    void scheduleAutosave();
    void updateStatus();
    void alert(const QString& title, const QString& message);

    WorkbenchApplication* m_pApp;
    std::unique_ptr<MyDocument> m_pDoc;
    mainTable* m_pTable = nullptr;
    int m_nUntitled;
    bool m_bFileNameProposed = false;
    QString m_strUntitledName;
    QString m_strModelPath;
    QString m_strAutosavePath; // empty until the first copy
    // The window closed (saved, or its changes let go): no copy is written for it any more,
    // not even by the copies made as the application quits.
    bool m_bClosed = false;
    QTimer* m_pAutosaveTimer = nullptr;
    QLabel* m_pStatusGrid = nullptr;
    QLabel* m_pStatusPlay = nullptr;
    QLabel* m_pStatusClipping = nullptr; // "N samples clipped (peak x dB)" in a warning colour

    QAction* m_pSave = nullptr;
    QAction* m_pRevert = nullptr;
    QAction* m_pUndo = nullptr;
    QAction* m_pRedo = nullptr;
    QAction* m_pPlayModel = nullptr;
    QAction* m_pSaveModel = nullptr;
    QAction* m_pTrace = nullptr;
    QAction* m_pCopySynthesis = nullptr;
    QAction* m_pSpectrogramModel = nullptr;
    QAction* m_pFFTLPC = nullptr;
    QAction* m_pInterpolateSelection = nullptr;
    QAction* m_pAnchorRemoveSelection = nullptr;
    QMenu* m_pRecent = nullptr;
};
