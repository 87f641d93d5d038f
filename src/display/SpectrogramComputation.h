#pragma once
// SpectrogramComputation: the spectrogram of one channel for a display of W x H pixels, with
// its formant tracks. Owns one level frame per display column (H values in dB after
// DoSpectrogram, normalized so that the loudest frame reads m_nSpecDynamicRange and levels more
// than that far below it read 0) and, with formant tracking on, one formant record per column
// (five frequencies in Hz, F1 first, -1 where there is none).
//
// A view runs SetupDisplay, GetStorage and DoSpectrogram on a worker thread into its own
// object and paints from the finished result; the analysis routines keep their work arrays per
// thread, so several computations may run at once. An object is used by one thread at a time.
// The cancel flag is checked once per column: a cancelled run leaves m_bHaveSpectrogram clear.
#include "analysis/AnalysisRecords.h"
#include "document/AnalysisSettings.h"
#include "document/BulkMemory.h"
#include "document/Channels.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

// Smallest ratio of a formant's frequency to its bandwidth that the tracks accept.
inline constexpr double gRatioFormantBanswodth = 2.0;

// Five formant slots and one spare, 12 bytes as the tracks store them.
using FormantRecord = std::array<std::int16_t, 6>;

class SpectrogramComputation
{
public:
    explicit SpectrogramComputation(const SpectrogramSettings& settings = {}) : m_settings(settings) {}

    // Display geometry from a W x H display and the channel's sample rate: frame count W,
    // values per frame H, and the samples per stored frame (the largest of the LPC frame
    // length, the FFT frame length and H). A width or height below 1 gives an empty display.
    void SetupDisplay(int width, int height, double sampleRate);
    // Zero-filled storage for the geometry of SetupDisplay (and formant records when tracking).
    void GetStorage();
    void DeleteAllDataStorage();
    // Fills the level frames and formant records from the channel's samples. Returns false when
    // cancelled or when there is no storage for the geometry of SetupDisplay.
    bool DoSpectrogram(const Channels& channel, const std::atomic<bool>* cancel = nullptr);
    // The whole sequence for one display size.
    bool compute(const Channels& channel, int width, int height, const std::atomic<bool>* cancel = nullptr);

    // Level of column `column` (0 .. W-1), row `row` (0 = 0 Hz .. H-1); no range check.
    double level(int column, int row) const { return m_phdDataFile[frameOffset(column) + row]; }
    const double* frame(int column) const { return &m_phdDataFile[frameOffset(column)]; }
    double* frame(int column) { return &m_phdDataFile[frameOffset(column)]; }

    // The level under a display point as an amplitude in dB on a scale topped by `ceiling`.
    // The point (vertical from the bottom, horizontal from the left, both in display units) is
    // mapped onto the stored grid in proportion to the display's extents: column
    // trunc(horizontal * W / horizontalExtent), row trunc(vertical * H / verticalExtent), both
    // clamped to the grid. The normalized level v (0 .. dynamicRange) reads as
    // ceiling - dynamicRange + v, clamped to 0 .. ceiling: the loudest frame sits at the
    // ceiling. Answers 0 without a spectrogram or with a zero extent.
    double GetSpectrogramAmplitue(double verticalExtent, double horizontalExtent, int dynamicRange,
                                  double ceiling, int vertical, int horizontal) const;

    SpectrogramSettings m_settings;
    // W frames of m_nDataStorageLength + 100 doubles each: megabytes, so in large pages.
    std::vector<double, bulk::Allocator<double>> m_phdDataFile;
    std::vector<FormantRecord> m_phsnFormants;
    std::int32_t m_nAllocatedStorageAmount = 0;
    std::int32_t m_nDisplayRange = 0;
    std::int32_t m_nDisplayVerticalRange = 0;
    std::int32_t m_nDataStorageLength = 0;
    ShortRect m_rSpectrogram;
    std::uint8_t m_bRedraw = 0;
    std::uint8_t m_bHaveFormants = 0;
    std::uint8_t m_bHaveSpectrogram = 0;
    std::int32_t m_nFormantsFrames = 0;
    double m_dSampleRate = 0.0;  // of the channel last computed
    double m_dwFileLength = 0.0; // samples of the channel last computed

    // Steps of DoSpectrogram, callable alone on filled storage.
    // Formant slots of one column from a root record: all five set to -1, then the first five
    // candidates whose bandwidth x gRatioFormantBanswodth is at most their frequency (both
    // rounded by + 0.5) are packed from slot 0. A null record leaves all five at -1.
    static void packFormants(const RootRecord* roots, FormantRecord& record);
    // Levels relative to the loudest level of columns 10 .. W-11: max(0, range + v - loudest).
    void normalize();
    // Columns whose loudest normalized level is below 30 % of the range lose formants 1 to 4.
    void gateQuietColumns();

private:
    std::size_t frameOffset(int column) const
    {
        return static_cast<std::size_t>(column) * static_cast<std::size_t>(m_nDataStorageLength + 100);
    }
    void copyLevelFrame(const Channels& channel, double start, double* frame) const;
    void findFormants(const Channels& channel, double start, std::vector<double>& lpcBuffer, int column);
};
