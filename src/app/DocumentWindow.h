#pragma once
// One document's main window: it owns the document and its parameter table (the table is
// destroyed first), carries the menus, the title with the file name and the modified
// marker, the status bar, the unsaved-changes prompt on close, and the drop target for
// .stk and .wav files. Main thread only.
//
// Split by concern: DocumentWindow.cpp (window, title, close, drop, status),
// DocumentWindowMenus.cpp (menus, actions and their enabling), DocumentWindowFile.cpp (save,
// save as, revert, save audio, configurations).
#include <QMainWindow>

#include <memory>

class MyDocument;
class mainTable;
class QAction;
class QLabel;
class QMenu;
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

    // --- document life cycle (no panels; the menu commands ask where, then call these) ---
    bool saveDocument();                      // to its file, or as a new one
    bool saveDocumentTo(const QString& path); // atomic; the document takes the name
    bool loadConfigurationFrom(const QString& path);
    bool saveConfigurationTo(const QString& path);
    // Asks whether to save unsaved changes: true when the window may close.
    bool maySave();

public slots:
    void updateTitle();
    void updateActions();
    void saveDocumentAs();
    void revertDocument();
    void loadConfiguration();
    void saveConfiguration();
    // File > Record Model...: records from the default input; the recording becomes the model.
    void recordModel();
    // File > Save Model Audio...: the model channel as a WAVE file.
    void saveModelAudio();
    bool saveModelAudioTo(const QString& path);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void createMenus();
    void createStatusBar();
    void updateStatus();
    void alert(const QString& title, const QString& message);

    WorkbenchApplication* m_pApp;
    std::unique_ptr<MyDocument> m_pDoc;
    mainTable* m_pTable = nullptr;
    int m_nUntitled;
    QLabel* m_pStatusGrid = nullptr;
    QLabel* m_pStatusPlay = nullptr;

    QAction* m_pSave = nullptr;
    QAction* m_pRevert = nullptr;
    QAction* m_pUndo = nullptr;
    QAction* m_pRedo = nullptr;
    QAction* m_pPlayModel = nullptr;
    QAction* m_pSaveModel = nullptr;
    QAction* m_pTrace = nullptr;
    QAction* m_pSpectrogramModel = nullptr;
    QAction* m_pFFTLPC = nullptr;
    QAction* m_pInterpolateSelection = nullptr;
    QAction* m_pAnchorRemoveSelection = nullptr;
    QMenu* m_pRecent = nullptr;
};
