#pragma once
// The trace window (a DataEntryWindow): three views on the grid's time axis over the analysis of the model
// utterance (viewPitch: the pitch track and f0; viewSpectrogram: the spectrogram with formant
// tracks and f1 .. f5; viewAmplitudes: a1f .. a5f, av, apv in dB), thirteen track buttons that
// act as one radio group (choosing a formant also chooses its amplitude), six colour wells,
// Enter All Data (the whole automatic analysis into the grid at once) and View Old Data.
// Undo, redo and play go to the table that opened it (its Edit and Play menus show the keys);
// Ctrl+S saves the document. The views share one time axis: View's Ctrl++, Ctrl+-, Ctrl+0 (fit
// all) and Ctrl+wheel zoom it, the scroll bar in the bottom strip scrolls it. View > Play After
// Each Stroke plays the document after each drag (PlayAfterStroke).
//
// The window opens at 800 x 400 with its menu bar; the views share its content. Enter All Data
// reads an analysis of its own, not the picture on screen, so the views' sizes never change
// what is entered. The controller owns its window; the table owns the controller. Main thread
// only. The menus are made in dataentryTraceMenus.cpp.
#include "dataentry/gui/DataEntryWindow.h"
#include "display/gui/SpectrogramWorker.h"

#include <QColor>
#include <QMessageBox>
#include <QPointer>

#include <array>
#include <functional>
#include <memory>

class mainTable;
class viewPitch;
class viewSpectrogram;
class viewAmplitudes;
class TraceView;
class QCheckBox;
class QLabel;
class QAction;
class QMainWindow;
class QWidget;

class dataentryTraceContoller : public DataEntryWindow
{
    Q_OBJECT
public:
    dataentryTraceContoller(MyDocument* doc, mainTable* table, QObject* parent = nullptr);

    // DataEntryController: after undo, redo and revert.
    void setupViews() override;
    // The analysis settings or the model changed: the views' analyses are computed again.
    void analysisSettingsChanged() override;

    // What Ctrl+S runs (the document window's save); none: Ctrl+S does nothing.
    void setSaveCommand(std::function<void()> save) { m_save = std::move(save); }

    void actionTrace(Button button);
    void actionEnterAllData();
    // Every parameter estimated from the model, as one undo step (see CopySynthesisCommand).
    void actionCopySynthesis();
    void actionViewOldData(bool show);
    QColor getControlColor(const std::string& key) const;

    viewPitch* _viewPitch() const { return m_viewPitch; }
    viewSpectrogram* _viewSpectrogram() const { return m_viewSpectrogram; }
    viewAmplitudes* _viewAmplitudes() const { return m_viewAmplitudes; }
    QPushButton* _EnterAllData() const { return m_enterAllData; }
    QPushButton* _AutomaticCopySynthesis() const { return m_copySynthesis; }
    QCheckBox* _ViewOldData() const { return m_viewOldData; }
    QLabel* statusLabel() const { return m_status; }
    // The status line's whole text (the label shows it elided when it is too long).
    QString statusText() const { return m_statusText; }
    // The last sheet shown (nullptr when none is open).
    QMessageBox* sheet() const { return m_sheet; }
    // Enter All Data was asked for and waits for its analysis (computed in the background with
    // at least one frame per document frame, whatever the window's size): it runs on arrival.
    bool enterAllDataPending() const { return m_bEnterPending; }

    void specialWindowDidResize(int w, int h) override;
    void relayout() override;

protected:
    void colorPlots(int well, const QColor& color) override;

private:
    void windowDidLoad();
    void makeControls();
    void makeMenus();
    void strokeCommitted(const TraceView* view);
    void showSheet(const QString& title, const QString& message, const QString& buttonText);
    void spectrogramComputing(bool computing);
    void showStatus(const QString& text);
    void enterAllDataNow(const SpectrogramComputation& analysis);
    std::array<TraceView*, 3> views() const;

    viewPitch* m_viewPitch = nullptr;
    viewSpectrogram* m_viewSpectrogram = nullptr;
    viewAmplitudes* m_viewAmplitudes = nullptr;
    QPushButton* m_enterAllData = nullptr;
    QPushButton* m_copySynthesis = nullptr; // Automatic Copy Synthesis, through the table
    QCheckBox* m_viewOldData = nullptr;
    QLabel* m_status = nullptr;
    QString m_statusText;
    QPointer<QMessageBox> m_sheet;
    std::function<void()> m_save;
    bool m_bEnterPending = false;
    SpectrogramWorker m_entryAnalysis;
};
