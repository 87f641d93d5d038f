#pragma once
// The trace window (a DataEntryWindow): three views on the grid's time axis over the analysis of the model
// utterance (viewPitch: the pitch track and f0; viewSpectrogram: the spectrogram with formant
// tracks and f1 .. f5; viewAmplitudes: a1f .. a5f, av, apv in dB), thirteen track buttons that
// act as one radio group (choosing a formant also chooses its amplitude), six colour wells,
// Enter All Data (the whole automatic analysis into the grid at once) and View Old Data.
// Undo, redo and play go to the table that opened it; Ctrl+S saves the document. The views share
// one time axis: Ctrl++, Ctrl+-, Ctrl+0 (fit all) and Ctrl+wheel zoom it, the scroll bar in the
// bottom strip scrolls it.
//
// The window has no menu bar: its content is its whole frame, so the views' sizes in the
// default 800 x 400 frame are fixed (the spectrogram view is 695 x 187, which the headless
// entry uses as its default). The controller owns its window; the table owns the controller.
// Main thread only.
#include "dataentry/gui/DataEntryWindow.h"

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
class QWidget;

class dataentryTraceContoller : public DataEntryWindow
{
    Q_OBJECT
public:
    dataentryTraceContoller(MyDocument* doc, mainTable* table, QObject* parent = nullptr);
    ~dataentryTraceContoller() override;

    // DataEntryController: after undo, redo and revert.
    void setupViews() override;
    QWidget* window() override;

    // What Ctrl+S runs (the document window's save); none: Ctrl+S does nothing.
    void setSaveCommand(std::function<void()> save) { m_save = std::move(save); }

    void actionTrace(Button button);
    void actionColor(int well, const QColor& color);
    void actionEnterAllData();
    void actionViewOldData(bool show);
    QColor getControlColor(const std::string& key) const;

    viewPitch* _viewPitch() const { return m_viewPitch; }
    viewSpectrogram* _viewSpectrogram() const { return m_viewSpectrogram; }
    viewAmplitudes* _viewAmplitudes() const { return m_viewAmplitudes; }
    QPushButton* _EnterAllData() const { return m_enterAllData; }
    QCheckBox* _ViewOldData() const { return m_viewOldData; }
    QLabel* statusLabel() const { return m_status; }
    // The last sheet shown (nullptr when none is open).
    QMessageBox* sheet() const { return m_sheet; }
    // Enter All Data was asked for while the spectrogram was computing: it runs on arrival.
    bool enterAllDataPending() const { return m_bEnterPending; }

    void specialWindowDidResize(int w, int h);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void windowDidLoad();
    void makeControls();
    void makeShortcuts();
    void showSheet(const QString& title, const QString& message, const QString& buttonText);
    void spectrogramComputing(bool computing);
    void enterAllDataNow();
    std::array<TraceView*, 3> views() const;
    std::array<DataEntryPlot*, 3> plots() const override;

    std::unique_ptr<QWidget> m_window;
    viewPitch* m_viewPitch = nullptr;
    viewSpectrogram* m_viewSpectrogram = nullptr;
    viewAmplitudes* m_viewAmplitudes = nullptr;
    QPushButton* m_enterAllData = nullptr;
    QCheckBox* m_viewOldData = nullptr;
    QLabel* m_status = nullptr;
    QPointer<QMessageBox> m_sheet;
    std::function<void()> m_save;
    bool m_bEnterPending = false;
};
