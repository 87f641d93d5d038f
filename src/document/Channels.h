#pragma once
// One signal of a document: a block of 32-bit float samples (nominally -1..+1) with its rate
// and duration, the display state of the pane that shows it, and a parameter definition table
// with grid settings. A document owns four: 0 synthesis (grid + synthesized audio), 1 previous
// synthesis, 2 model utterance, 3 spare. Only channel 0's grid and parameter table count.
// Fields are public: the other subsystems read and write them directly. Main thread only,
// except that the audio thread reads the samples of a locked block while it plays.
#include "document/Color.h"
#include "document/DataGrid.h"
#include "document/MemoryBlock.h"
#include "document/ParameterDefinition.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

// A time label of a channel. Nothing in the system creates labels; channels carry them.
struct Labels {
    char cText[256] = {};
    std::int32_t nJustification = 0;
    double dTime = 0.0;
    double dVerticalFactor = 0.0;
    std::array<std::int16_t, 4> rectLocation{};
    std::uint8_t bAddLine = 0;
    std::string _strText;
};

struct ShortRect {
    std::int16_t top = 0, left = 0, bottom = 0, right = 0;
};

struct FloatPoint {
    float x = 0.0f, y = 0.0f;
};

// The fields of a channel that a duplicate takes as they are: the audio's description, the
// display, calibration and cursor state, and the settings of the derived signals. The title and
// unit strings are shared by the copies.
struct ChannelState {
    // --- audio (the samples are Channels::m_hData) ---
    std::int32_t m_nChannelType = 0;
    std::int32_t m_nChannelsinFile = 0;
    double m_dLengthMS = 0.0;
    double m_dSampleRate = 11025.0;
    double m_dwFileLength = 0.0;
    std::int32_t m_nResolutionBits = 16;
    std::int32_t m_nDataType = 0;

    // --- display and calibration ---
    ShortRect m_rLocation;
    std::int32_t m_nHeigth = 100;
    std::shared_ptr<std::string> m_strTitle = std::make_shared<std::string>("channel");
    std::int32_t m_nOrder = 0;
    std::uint8_t m_bAnchorChannel = 0;
    std::uint8_t m_bShow = 1;
    std::int32_t m_nColorRed = 0, m_nColorGreen = 0, m_nColorBlue = 0;
    std::shared_ptr<std::string> m_strUnit;
    double m_dGain = 1.0;
    double m_dFilterRate = 5500.0;
    double m_dReference = 0.0;
    std::uint8_t m_bDrawReference = 1;
    double m_dADInputVoltageRangeMV = 1.0, m_dMaxRangeBits = 1.0;
    double m_dA3Cal = 0.0, m_dB2Cal = 0.0, m_dC1Cal = 1.0, m_dD0Cal = 0.0;
    double m_dPageMin = 0.0, m_dPageMax = 0.0, m_dPageSize = 0.0;
    double m_dPageTimeMin = 0.0, m_dPageTimeMax = 0.0, m_dPageTimeSize = 0.0;
    FloatPoint m_ptOldCursorLoc, m_ptNewCursorLoc;
    double m_dCursorDataValue = 0.0, m_dMarkerDataValue = 0.0, m_dCursorFileValue = 0.0,
           m_dMarkerFileValue = 0.0;
    double m_dCursorTime = 0.0, m_dMarkerTime = 0.0;
    double m_dDurationStartTime = 0.0, m_dDurationStopTime = 0.0, m_dDurationStartFile = 0.0,
           m_dDurationStopFile = 0.0, m_dDurationTime = 0.0, m_dDurationFile = 0.0;
    double m_dMinUnZoom = 0.0, m_dMaxUnZoom = 0.0;

    // --- settings of the derived signals (the signals are blocks of Channels) ---
    double m_dIntensityWindowLengthMS = 30.0;
    double m_dIntensityStepSizeMS = 10.0;
    std::uint8_t m_bDrawIntensity = 1;
    double m_dSmoothNumOfPoints = 5.0;
    std::int32_t m_nVelocityColorRed = 0, m_nVelocityColorGreen = 0, m_nVelocityColorBlue = 65535;
    double m_dVelocitySmoothingWindow = 0.5;
    std::int32_t m_nAccelerationColorRed = 0, m_nAccelerationColorGreen = 65535, m_nAccelerationColorBlue = 0;
    double m_dAccelerationSmoothingWindow = 0.5;
    double m_dPositionEstimationWindow = 20.0, m_dVelocityEstimationWindow = 20.0,
           m_dAccelerationEstimationWindow = 20.0;
    double m_dDCShiftWindowMS = 8.0;
    double m_dThresholdLevelDetectPerCent = 10.0;
};

class Channels : public ChannelState
{
public:
    Channels(); // every field takes its fresh value
    Channels(const Channels&) = delete;
    Channels& operator=(const Channels&) = delete;

    // Makes this channel a copy of the source's audio and display state (not its grid, not its
    // parameter table, not its anchor dictionary or calibration switch). The title and unit
    // strings are shared with the source, not copied.
    void Duplicate(const Channels& source);
    // The same, but the source's samples move into this channel instead of being copied when
    // they are exactly what the copy would hold; the source is then left without a block. For a
    // source whose samples are about to be replaced anyway.
    void DuplicateTakingSamples(Channels& source);

    // Fills m_hData with `length` samples decoded from `bytes` starting at byte `location`,
    // for 12, 16 or 32 bits per sample (`datasize`); see WaveFile.cpp. Never reads outside
    // `bytes`: samples the file does not hold stay 0. Returns false when nothing was decoded.
    bool readData(const std::uint8_t* bytes, std::size_t byteCount, double length, double location,
                  int datasize, bool swap);

    // Samples of the block, or nullptr without a block. The count is truncate(m_dwFileLength)
    // but never more than the block holds: use sampleCount().
    float* samples() { return m_hData ? m_hData->floats() : nullptr; }
    const float* samples() const { return m_hData ? m_hData->floats() : nullptr; }
    std::size_t sampleCount() const;
    bool hasAudio() const { return m_hData != nullptr; }

    // --- what a duplicate does not take as it is ---
    std::unique_ptr<MemoryBlock> m_hData; // the samples
    std::map<std::string, std::int32_t> m_AnchorPositionDict;
    std::uint8_t m_bApplyCalibration = 0;
    std::int32_t m_nLabelCount = 0;
    std::vector<std::unique_ptr<Labels>> m_pArrayLabels;
    // Derived signals: carried with their settings, never computed.
    std::unique_ptr<MemoryBlock> m_hdIntensity, m_hdPitch, m_hdVelocity, m_hdAcceleration;

    // --- parameter definitions and grid settings ---
    std::array<ParameterDefinition, kParameterRecords> m_Parameters{};
    std::int32_t m_nParameterNumber = 0;
    std::int32_t m_nUpdateIntervalMS = 10;
    std::int32_t m_nColumnNum = 0;
    std::uint8_t m_bCascade_Parallel = 1;
    std::uint8_t m_bParallel = 0;
    std::uint8_t m_bIncraseSampleRate = 0;
    std::uint8_t m_bSampleRateChanged = 0;
    std::uint8_t m_bDoInterpolate = 0;
    std::uint8_t m_bDoAnchor = 0;
    std::uint8_t m_bSynthesize = 1;
    std::int32_t m_nNumberofAnchors = 0;
    std::uint8_t m_bHaveData = 0;
    std::int32_t m_nTimeToAdd = 10;
    std::uint8_t m_bBegin = 0, m_bSelected = 0, m_bEnd = 1;
    // Anchor list of a document read from a file: pairs (row, zero-based frame column).
    std::vector<std::int32_t> m_pAnchorPosition;
    std::int32_t m_nAddSubtract = 0;

    // The grid (channel 0 only): column-major, one column of 50 cells per frame; built by
    // MyDocument::SetUpDataGridMemory with m_nColumnNum + 2 columns, the first m_nColumnNum
    // holding values. Empty until built. Only the columns written are held in memory.
    DataGrid m_snppDataImage_Col_Row;

private:
    // Everything Duplicate copies except the samples.
    void copyStateFrom(const Channels& source);
};
