#pragma once
// One synthetic utterance: four channels (0 synthesis with the grid, 1 previous synthesis,
// 2 model utterance, 3 spare), the table data the editors change in place, the undo and redo
// snapshots, the display colours, the track switches and the analysis settings.
// Main thread only. Operations that fail throw DocumentException (name + reason); readers
// answer 0 for success and -1 for failure.
//
// Where things live: set-up and grid in MyDocument.cpp, table data in MyDocumentTableData.cpp,
// parameter documents in StkFile.cpp, WAVE files in WaveFile.cpp, undo/redo/revert in
// UndoRedo.cpp (all src/document/). Synthesize runs the synthesizer installed through
// SynthesisHook.h (src/synthesis/Synthesize.cpp in every program that links the synthesis).
#include "document/AnalysisSettings.h"
#include "document/AtomicFile.h"
#include "document/Channels.h"
#include "document/Color.h"
#include "document/DataTableDictionary.h"
#include "document/DocumentSnapshot.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The analysis settings are the document's own fields, inherited from the structs the analyses
// take (AnalysisSettings.h): a copy of them is one assignment.
class MyDocument : public PitchSettings, public SpectrogramSettings, public FFTLPCSettings
{
public:
    enum ChangeKind { ChangeDone = 0, ChangeUndone = 1, ChangeCleared = 2 };

    // Runs the set-up in order: flags, empty table data and undo lists, file type "stk", four
    // channels, colours, track switches, analysis defaults, SetFileDefaultValues, then the
    // configuration hook (when one is installed).
    MyDocument();
    ~MyDocument();
    MyDocument(const MyDocument&) = delete;
    MyDocument& operator=(const MyDocument&) = delete;

    // The configuration file is the application's business: it installs a loader that every
    // new document runs at the end of its set-up, and a writer that saveConfig() runs.
    using ConfigurationHook = std::function<void(MyDocument&)>;
    static void setConfigurationLoader(ConfigurationHook loader);
    static void setConfigurationWriter(ConfigurationHook writer);
    void saveConfig();

    // --- parameters and grid ---
    void SetFileDefaultValues();
    bool SetUpDataGridMemory(); // throws "Memory Error" / "Unable to allocate memory, in setupdatagrid"
    Channels* getChannel(int index) { return m_Channel[index].get(); }
    const Channels* getChannel(int index) const { return m_Channel[index].get(); }
    // Channel 0's update interval; a value below 1 is written back as 10 and 10 is used.
    int updateInterval();

    // --- table data ---
    // Empties and rebuilds _dataTableDictionary from the parameter records of channel 0: values
    // from the records for a new document, from the grid and the anchor list for a read one
    // (m_bReadFile set). Repairs an update interval of 0 or less to 10 first. More frames than
    // kMaxFrames throw DocumentException "Document Too Long" before anything is made; running
    // out of memory throws "Memory Error" and leaves the table data empty. The columns' cells
    // are made when a column is first looked up (DataTableDictionary::setPendingColumns), from
    // the records, grid and anchors as they were here.
    void buildDataTableDictionary();
    // Background colour of a row's cells: the group colour of m_bgColor by row; row 0 stays white.
    Color groupBackgroundColor(int row) const;
    // The shared part of a frame cell made from a parameter record: name, definition text,
    // default, limits and colour of the record, and the background given.
    static CellDefinition frameCellDefinition(const ParameterDefinition& record, const Color& background);

    // --- change count and file identity ---
    void updateChangeCount(ChangeKind kind);
    bool isDocumentEdited() const { return m_nChangeCount != 0; }
    const std::string& fileURL() const { return m_strFileURL; } // a file-system path, may be empty
    void setFileURL(const std::string& path) { m_strFileURL = path; }
    const std::string& fileType() const { return m_strFileType; }
    void setFileType(const std::string& type) { m_strFileType = type; }
    // Why the last read failed, in words (for messages that name the file and the fault).
    const std::string& lastReadError() const { return m_strReadError; }

    // The largest document the readers take in: one hour, and no more frames than an hour of
    // 10 ms frames. Longer files are refused with a reason instead of allocating without bound.
    static constexpr double kMaxLengthMS = 3600.0 * 1000.0;
    static constexpr int kMaxFrames = 360000;

    // Frames of the last parameter document read from a file: how many value lines it held
    // and how many frames its length declares. A file that stops early is read as far as it
    // goes; its missing frames keep the parameters' default values.
    int framesInFile() const { return m_nFramesInFile; }
    int framesDeclared() const { return m_nFramesDeclared; }
    bool isTruncated() const { return m_nFramesInFile < m_nFramesDeclared; }
    void noteFramesRead(int present, int declared)
    {
        m_nFramesInFile = present;
        m_nFramesDeclared = declared;
    }

    // Samples of the last WAVE file read: how many its data chunk holds and how many it
    // declares. A chunk that stops early is read as far as it goes.
    std::int64_t waveSamplesPresent() const { return m_nWaveSamplesPresent; }
    std::int64_t waveSamplesDeclared() const { return m_nWaveSamplesDeclared; }
    bool isWaveShort() const { return m_nWaveSamplesPresent < m_nWaveSamplesDeclared; }

    // --- parameter document files ---
    std::string Save_STK_FileType50(bool allRows);
    // The same text without marking the document changed: for copies that are not the
    // document's own file (the crash-recovery autosaves).
    std::string parameterDocumentText(bool allRows);
    std::string Save_STK_FileType(bool allRows); // undo snapshots
    int Read_STK_FileType(std::string_view bytes);
    static void EnterNumber(std::string& text, int number, bool bCRLFOnly);
    static void EnterParameter(std::string& text, const char* name);
    // Writes the document atomically (temporary file in the same folder, then rename); on
    // failure the old file is untouched and `error` names the file and the system's reason.
    bool writeSafelyToURL(const std::string& path, const std::string& typeName, std::string* error);

    // --- WAVE files ---
    // The WAVE image of a channel (16-bit mono PCM): channel 0, the synthesis, unless another
    // is named (2 writes the model).
    std::string save_Wave_FileType(int channel = 0);
    // The same image handed to `write` in pieces (the header first), for a caller that writes it
    // out without holding all of it; answers false when `write` did.
    bool writeWave(int channel, const PieceWriter& write);
    // Makes `samples` at `sampleRate` the model channel, as an opened WAVE file does, without
    // touching the grid or the file name; marks the document changed. false (nothing changed)
    // for no samples, an unusable rate or more than an hour. Throws "Memory Error".
    bool setModelSamples(const std::vector<float>& samples, double sampleRate);
    int Read_WAVE_FileType(std::string_view bytes);
    // Open entry point: WAVE first, then parameter document. On failure sets *errorCode = -4.
    // The bytes are kept as _fileData (moved there when the caller gives them up).
    bool readFromData(std::string bytes, const std::string& typeName, int* errorCode);
    // The same without keeping the bytes, for a reader that never reverts (the command-line
    // tool): _fileData stays empty, so revert has nothing to go back to.
    bool readFromBytes(std::string_view bytes, const std::string& typeName, int* errorCode);

    // --- undo, redo, revert ---
    void saveUndo();
    void saveRedo();
    void doUndo(); // throws "Error in reading the file" on an unreadable snapshot
    void doRedo();
    bool canUndo() const;
    bool canRedo() const;
    bool canRevert() const;
    bool Read_STK_FileTypeDoUndo(const std::string& snapshot);
    bool doRevertDocumentToSaved();

    // --- synthesis (the installed synthesizer, see SynthesisHook.h) ---
    // Reads the frames from the table data; a document whose table data has not been built
    // (one read but never shown) is synthesized from the values the table data would be built
    // with, as saving does, without building it.
    void Synthesize();
    void ReadGridData() {}
    void CopyCurrentToPrevious();
    // The same, moving channel 0's samples into channel 1 instead of copying them when they are
    // exactly what the copy would hold (channel 0 is then left without audio): for a synthesis
    // about to replace them.
    void MoveCurrentToPrevious();
    bool CheckParameterNew(const std::string& name, bool batvapv) const;
    bool CheckParameter(const char* name, bool batvapv) const;
    // The rate the next synthesis runs at: 22050 Hz when any parameter of the sixth to eighth
    // formants is shown in channel 0, else 11025 Hz.
    int synthesisSampleRate() const;
    // "N samples clipped (peak x dB)" for the last synthesis, empty when nothing clipped.
    std::string clippingReport() const;
    // The last synthesis came out silent: every sample below one step of 16 bits.
    bool isSilent() const;
    // What the user is told after a synthesis: that it is silent, else its clipping report;
    // empty when there is nothing to say.
    std::string synthesisWarning() const;
    // What the output limiting did in the last synthesis: samples beyond full scale, and the
    // largest magnitude before limiting (1.0 = full scale).
    std::int64_t m_nClippedSamples = 0;
    double m_dPeakLevel = 0.0;
    std::int64_t m_nSynthesizedSamples = 0; // samples of the last synthesis, 0 before any

    // Values of the last document read from a file that lay outside the grid's 16-bit range
    // and were clamped to their rows' limits.
    std::int64_t m_nClampedValues = 0;

    // ===== fields =====
    std::array<std::unique_ptr<Channels>, 4> m_Channel;
    DataTableDictionary _dataTableDictionary;
    std::string _fileTypeName;
    std::string _fileData;
    std::uint8_t m_bAudiofile = 0;
    std::uint8_t _bShowGridData = 1;
    std::uint8_t m_bver50 = 0;
    std::uint8_t m_bSaveAll = 1;
    std::uint8_t m_bReadFile = 0;
    double m_dNewSampleRate = 0.0;
    double m_dNewLengthMS = 0.0;
    std::int32_t m_nNewUpdateIntervalMS = 0;
    std::array<Color, 15> m_bgColor{};
    std::array<Color, 15> m_ColorTracing{};
    std::int32_t m_nF0 = 1, m_nF1 = 0, m_nF2 = 0, m_nF3 = 0, m_nF4 = 0, m_nF5 = 0, m_nF6 = 0, m_nF7 = 0,
                 m_nF8 = 0;
    std::int32_t m_nAV = 0, m_nAPV = 0;
    std::int32_t m_nA1F = 0, m_nA2F = 0, m_nA3F = 0, m_nA4F = 0, m_nA5F = 0, m_nA6F = 0, m_nA7F = 0,
                 m_nA8F = 0;

    // Undo and redo: snapshots before and after edits, oldest first, one shared position.
    std::vector<DocumentSnapshot> _arrayUndo;
    std::vector<DocumentSnapshot> _arrayRedo;
    std::int32_t _nUndoRedoManCount = 10;
    std::int32_t _nUndoRedoIndex = -1;
    std::uint8_t _bDoRevert = 0;

    // Frame dialog settings, remembered between uses: where (0 beginning, 1 after the
    // selected frame, 2 end) and how many ms.
    std::int32_t _nindexModifyColumn = 2;
    std::int32_t _nDurationModifyColumn = 100;

    // How the analyses are shown and printed (what they compute with is in the base structs).
    // FFT/LPC slice.
    std::int32_t m_nFFTWindowLengthSelector = 3;
    std::uint8_t m_bFFTDrawLPC = 1;
    std::uint8_t m_bFFTAbsolute = 1;
    std::int32_t m_nFFTAbsoluteRange = 80;
    std::uint8_t m_bFFTInches = 1;
    std::uint8_t m_bFFTColor = 1;
    double m_dFFTWidth = 6.0, m_dFFTHeight = 4.0;
    std::uint8_t m_bFFTDrawFrequencyGrid = 1;
    std::int32_t m_nFFTFrequencyGrid = 1000;
    std::uint8_t m_bFFTDrawDBGrid = 1;
    std::int32_t m_nFFTDBGrid = 20;
    // Spectrogram.
    std::int32_t m_nSpecWindowLengthSelector = 2;
    std::uint8_t m_bSpecDrawFrequencyGrid = 1;
    std::int32_t m_nSpecFrequencyGrid = 1000;
    std::uint8_t m_bSpecDrawTimeGrid = 1;
    std::int32_t m_nSpecTimeGrid = 500;
    std::int32_t m_bSpecInches = 1;
    double m_dSpecWidth = 6.0, m_dSpecHeight = 4.0;
    // Pitch.
    std::int32_t m_nPitchDisplayLow = 50;
    std::int32_t m_nPitchDisplayHigh = 500;
    std::uint8_t m_bPitchDrawFreqGrid = 1;
    std::int32_t m_nPitchFreqGrid = 50;
    std::uint8_t m_bPitchDrawTimeGrid = 1;
    std::int32_t m_nPitchTimeGrid = 1000;

    // Sets the analysis settings to the values the option panels' Default buttons give for
    // a sample rate (frequency ranges and LPC orders depend on it).
    void setAnalysisDefaults(double sampleRate);
    // The settings each analysis computes with, as the document holds them.
    PitchSettings& pitchSettings() { return *this; }
    SpectrogramSettings& spectrogramSettings() { return *this; }
    FFTLPCSettings& fftlpcSettings() { return *this; }

private:
    // Builds the table data from the frames given (an image of the grid, or none: every frame
    // then holds the records' values), as buildDataTableDictionary does from the grid.
    void buildTableDataFrom(FrameImage frames);
    void fillDataTableDictionary(int columns, int interval, FrameImage frames);
    void restoreSnapshot(const DocumentSnapshot& snapshot);
    void appendSnapshot(std::vector<DocumentSnapshot>& list);

    // The frames of the snapshot recorded last: blocks a new snapshot holds unchanged are shared.
    FrameImage m_lastRecorded;

    std::string m_strFileURL;
    std::string m_strFileType = "stk";
    std::string m_strReadError;
    long m_nChangeCount = 0;
    int m_nFramesInFile = 0;
    int m_nFramesDeclared = 0;
    std::int64_t m_nWaveSamplesPresent = 0;
    std::int64_t m_nWaveSamplesDeclared = 0;
};
