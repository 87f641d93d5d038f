#pragma once
// The document window's central view: the spreadsheet of the Klatt parameters, one row per
// parameter and one column per frame after the name column, over the document's table data
// (ParameterTableModel). It carries the commands behind the application's main menus (play,
// undo, redo, revert, options, data entry) and the needs-synthesis flag _bSynthesize that
// makes the next play of the current synthesis re-run the synthesizer.
//
// Every command runs on the main thread inside an exception guard that shows a failure as an
// alert (title = its name, message = its reason). The table does not own the document; the
// window that owns both destroys the table first. One AudioPlayer serves the whole
// application; the table that started a playback stops it before its samples can go away.
//
// The parameter names stay at the left edge while the frame columns scroll (FrozenColumnView,
// laid over column 0); while one of this table's channels plays, the frame column being
// heard is tinted (PlayCursor).
#include "table/gui/DataEntryController.h"
#include "table/gui/ParameterTableModel.h"

#include <QPointer>
#include <QTableView>

#include <functional>
#include <memory>
#include <vector>

class AudioPlayer;
class FrozenColumnView;
class MyDocument;
class OptionPanel;
class PlayCursor;
struct StimulusOutput;
class TablePlayback;
class TableSelection;

class mainTable : public QTableView
{
    Q_OBJECT
public:
    explicit mainTable(MyDocument* doc, QWidget* parent = nullptr);
    ~mainTable() override;

    MyDocument* document() const { return m_pDoc; }
    ParameterTableModel* tableModel() const { return m_pModel; }

    // The graphical and tracing data-entry windows live above the table: the application
    // installs their factories; their commands exist only while a factory is installed.
    using DataEntryFactory = std::function<DataEntryController*(mainTable*)>;
    static void setGraphicalDataEntryFactory(DataEntryFactory factory);
    static void setTraceDataEntryFactory(DataEntryFactory factory);
    static bool hasGraphicalDataEntry();
    static bool hasTraceDataEntry();

    // The analysis windows live above the table too: the application installs their factories
    // (the FFT/LPC window at a start sample of channel 0, the spectrogram and pitch window of
    // a channel); their commands exist only while the factories are installed.
    using FFTLPCFactory = std::function<QWidget*(mainTable*, double startSample)>;
    using SpectrogramPitchFactory = std::function<QWidget*(mainTable*, int channel)>;
    static void setAnalysisWindowFactories(FFTLPCFactory fftlpc, SpectrogramPitchFactory spectrogram);
    static bool hasAnalysisWindows();
    // The open FFT/LPC window of this table's document, or nullptr.
    QWidget* fftlpcWindow() const { return m_pFFTLPC; }
    // Start sample of the FFT/LPC command at the selected frame column: trunc((column - 1) x
    // channel 0's samples / frames); -1 when the column index is not greater than 1.
    double FFTLPCStartSample() const;
    // Runs the synthesis when _bSynthesize is set or channel 0 holds no samples yet (stopping a
    // playback of its samples first), then emits synthesized().
    void synthesizeIfNeeded();

    // The application's one player (made on first use), and the table whose samples it plays
    // (nullptr when none).
    static AudioPlayer* sharedPlayer();
    static mainTable* playingTable();

    // The view of the parameter names laid over column 0.
    FrozenColumnView* frozenColumn() const { return m_pFrozen; }
    // The frame column being heard, tinted and kept in view unless the user scrolled away
    // from it; -1 when none.
    PlayCursor* playCursor() const { return m_pPlayCursor; }
    int playColumn() const { return m_nPlayColumn; }
    void showPlayColumn(int tableColumn);
    // Whether a table column shows at least partly right of the frozen names.
    bool isColumnOnScreen(int tableColumn) const;

    // Scrolls so that a frame column is not hidden under the frozen names; column 0 only
    // scrolls vertically.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

    // --- used by the data-entry windows ---
    // Selects exactly that column and scrolls it into view.
    void selectaColumn(int tableColumn);
    // Reloads and redraws, sets _bSynthesize and marks the document changed.
    void refreshTable();
    void checkDataRange(int row);

    // Two selections kept apart (TableSelection): parameter rows, selected by clicking their
    // names, and frame columns, selected by their headers or by selectaColumn. The frame commands
    // read only the columns, the row commands only the rows; a click on a cell selects neither.
    // Spans are (first, last) in table rows / table columns, or (-1, -1) when none.
    std::pair<int, int> selectedColumnSpan() const;
    std::pair<int, int> selectedRowSpan() const;
    // The table's select-all selects every parameter row (and no frame).
    void selectAll() override;

    // False when the table data or its columns could not be made (an alert said why): the
    // table shows nothing and the window that holds it should not stay open.
    bool isSetUp() const { return m_bSetUp; }

    // Rebuilds the columns after the table data was replaced (frame count or interval may
    // have changed), then reloads: what awakeFromNib does once. A failure is shown as an
    // alert ("Error in creating columns") and leaves the table empty; false then.
    bool rebuildColumns();
    // Reloads the cells without marking anything.
    void reloadData();

    // Rows too low to take an anchor from the context menu: hidden parameters.
    bool rowTakesAnchor(int row) const;

    // The name of the document as its window shows it; the open data-entry windows carry it
    // in their titles, with the document's modified marker. Called again after every change.
    void setDocumentTitle(const QString& name);

    // After the grid was replaced outside the table's own commands (the undo step saved by the
    // caller): the columns rebuilt, a synthesis due, the data-entry windows set up again.
    void afterGridReplaced() { afterSnapshotRestored(); }

    DataEntryController* graphicalDataEntry() const { return m_pDataentryGraphical.get(); }
    DataEntryController* traceDataEntry() const { return m_pDataentryTrace.get(); }

    bool _bSynthesize = false;

public slots:
    // --- commands (each guarded) ---
    void undo();
    void redo();
    void revertDocumentToSaved();
    void _PlayCurrent();
    void _PlayPrevious();
    void _PlayAudio();
    // Plays the part of the synthesis under the selected frame columns (synthesizing first
    // when the table changed or was never synthesized).
    void _PlaySelection();
    void _InterpolateAll();
    void _editRows();
    void _optionsParameters();
    void _optionsFile();
    // The analysis option panels; OK saves the configuration and rebuilds an open trace window.
    void _optionsFFTLPC();
    void _optionsSpectrogram();
    void _optionsPitch();
    void _dataentryGraphical();
    void _dataentryTrace();
    // The analysis windows (mainTableAnalysis.cpp).
    void _analysisFFTLPC();
    void _analysisSpectrogramPitch();
    void _analysisSpectrogramPitchModel();
    // Writes channel 0 as a WAVE file, asking where (save panel "Save Audio as").
    void _fileSaveAudio();
    // The same without the panel; the outcome is only logged ("yes" / "no"). With audio output
    // settings (Options > Audio Output...) the file is shaped by them, and a refusal (a level
    // that would clip) is shown as an alert.
    bool saveAudioTo(const QString& path);

    // Applies the parameter records to the cells (see TableEditing), after stopping a
    // playback of this document whose samples the synthesis replaces.
    void saveParameters();
    void saveoptionsFile();
    void AdjustSampleRate(bool synthesize);
    // Stops the shared player when it plays this document's samples.
    void stopPlayback();

    // The deferred half of the play commands; public for the benchmarks and tests. Channel 0
    // is synthesized first when the table changed since the last synthesis or when it was
    // never synthesized.
    void PlayDocument(int channel);
    void PlaySelection();
    // Plays the frames of table columns first..last of the current synthesis at once (no
    // delay: nothing is waiting to close), synthesizing first when needed.
    void playFrames(int first, int last);

    void addAnchor(int row, int column);
    void removeAnchor(int row, int column);

    // --- frames, anchors and interpolation of the selection (mainTableEditCommands.cpp) ---
    // Asks where and how long (the addColumns dialog), then modifyColumns() on OK.
    void _editAddColumns();
    // Inserts the frames the document's remembered settings ask for at the selection.
    void modifyColumns();
    // Removes the span of the selected frames; an empty selection gets an alert.
    void _editRemoveColumns();
    void _anchorRemoveSelection();
    void _anchorRemoveAll();
    void _InterpolateSelection();

    // --- copy and paste (mainTableEditCommands.cpp) ---
    // Puts the selected cells (the selected frames with all rows, the selected rows with all
    // frames, or the cells selected in the view) on the clipboard as tab-separated text with a
    // header line of parameter names.
    void copySelection();
    // Writes the clipboard's tab-separated values from the first cell of that selection on,
    // as one undo step; a paste that does not fit is refused with an alert.
    void pasteAtSelection();

signals:
    // The document changed (edit, undo, redo, revert, options): the window updates its title
    // and menus.
    void documentChanged();
    // A playback of this table's document started (sample rate, length in samples, and the
    // sample of the synthesis it starts at).
    void playbackStarted(double sampleRate, double samples, double startSample);
    // Channel 0 was synthesized again (clipping, sample rate and length may have changed):
    // views of it recompute.
    void synthesized();
    // An analysis option panel closed with OK: the analysis windows recompute.
    void analysisSettingsChanged();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void updateGeometries() override;

private:
    // Save Audio under the audio output settings.
    bool saveShapedAudio(const QString& path, const StimulusOutput& output);
    // Runs `body`, showing a failure as an alert with `button`; false when it failed.
    bool guarded(const QString& button, const std::function<void()>& body);
    void typedValue(int row, int column, const QString& text);
    void updateRowHeights();
    void showAnchorMenu(const QModelIndex& index, const QPoint& globalPos);
    QRect columnStrip(int tableColumn) const;
    void setAnchorFlag(int row, int column, bool anchor);
    void schedulePlay(int channel);
    void afterSnapshotRestored();
    // The cells Copy and Paste work on, as table columns (x) and rows (y); empty for none.
    QRect selectedCellBlock() const;
    // Asks before Options > File... removes frames that hold entered values; true to go on.
    bool mayShorten();
    // Runs an analysis option panel; on OK the settings go to the configuration file and the
    // open analyses are told, the trace window too when `traceAnalyses` (it analyses the model
    // with the spectrogram and pitch settings).
    void runAnalysisPanel(OptionPanel& panel, bool traceAnalyses);
    void openDataEntry(std::unique_ptr<DataEntryController>& slot, const DataEntryFactory& factory,
                       const QString& titlePrefix);
    // Titles a data-entry window: the prefix, the document's name and its modified marker.
    void titleDataEntry(DataEntryController* controller, const QString& titlePrefix);

    MyDocument* m_pDoc;
    ParameterTableModel* m_pModel;
    // The open data-entry windows (the commands _dataentryGraphical / _dataentryTrace).
    std::unique_ptr<DataEntryController> m_pDataentryGraphical;
    std::unique_ptr<DataEntryController> m_pDataentryTrace;
    FrozenColumnView* m_pFrozen = nullptr;
    PlayCursor* m_pPlayCursor = nullptr;
    int m_nPlayColumn = -1;
    // Playing the document (see TablePlayback).
    std::unique_ptr<TablePlayback> m_pPlayback;
    QString m_strDocumentTitle;  // empty until the window names the document
    QPointer<QWidget> m_pFFTLPC; // the document's FFT/LPC window
    bool m_bSetUp = false;

    // The row and column selections (see TableSelection), a child of the table.
    TableSelection* m_pSelection = nullptr;
};
