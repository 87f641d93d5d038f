#pragma once
// LevelMatching: the copy synthesis's analysis by synthesis. The estimate is synthesized, its
// levels are measured on the same frames as the recording's, and the amplitudes are corrected
// by the difference in dB: av in voiced frames, af with the parallel amplitudes a2f..a5f (from
// band levels) and ab in unvoiced frames; finally `gain` is lowered until nothing clips.
// Re-entrant; some stages synthesize on threads of their own. Units: dB, Hz, seconds.
#include "copysynth/KlattRender.h"
#include "copysynth/MelCepstrum.h"

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

// Levels (dB) of a signal around the given centres (seconds), Hann window of `windowS` seconds.
std::vector<double> frameLevels(const float* x, std::size_t count, double rate,
                                const std::vector<double>& centres, double windowS);

struct LevelTarget {
    const float* samples; // the recording
    std::size_t count;
    double rate;
    std::vector<double> centres; // of columns 0 .. n-2, seconds
    std::vector<bool> voiced;    // likewise
};

class LevelMatching
{
public:
    LevelMatching(const LevelTarget& target, int outputRate, int intervalMS);

    // Voicing levels: gain and av so that each voiced frame's synthesis has the recording's
    // level.
    void matchVoicing(std::vector<FrameValues>& frames, int passes) const;
    // av averaged over each voiced frame and its voiced neighbours.
    void smoothVoicing(std::vector<FrameValues>& frames) const;
    // Frication in unvoiced frames: af and a2f..a5f, ab from the recording's band levels.
    void matchFrication(std::vector<FrameValues>& frames, int passes) const;
    // Voicing through the parallel F4 and F5 where the cascade falls short there.
    void matchVoicedBalance(std::vector<FrameValues>& frames) const;
    // Whole levels of every frame with all sources on, then `gain` lowered until the synthesis
    // stays below full scale and no frame is louder than the recording's loudest.
    void matchTotal(std::vector<FrameValues>& frames, int passes) const;
    double limitPeak(std::vector<FrameValues>& frames) const; // answers the final peak
    // How far the voicing of `frames` is from the recording in spectral shape: the mean
    // mel-cepstral distance (dB) over the voiced frames within 30 dB of the loudest.
    double spectralDistance(const std::vector<FrameValues>& frames) const;

    // Voicing through the parallel branch instead of the cascade: in the voiced frames av is 0
    // and apv carries the voice into the five parallel formants, whose amplitudes a1f .. a5f
    // are matched to the recording's level around each formant (from 60 Hz to halfway to the
    // next formant, the last band to the top), so that each formant peak has the recording's
    // height rather than the one the cascade gives it. The parallel bandwidths are the cascade's
    // times `bandwidthScale`.
    void matchParallelVoicing(std::vector<FrameValues>& frames, int passes, double bandwidthScale) const;
    // Then the shape: in each parallel-voiced frame within 40 dB of the loudest, a1f .. a5f move
    // together (by least squares on the mel cepstrum, each formant's effect on every mel filter
    // computed from the frame's resonators) so that the synthesis's spectral shape comes closest
    // to the recording's, the frame's level kept (LevelMatchingShape.cpp).
    void refineParallelShape(std::vector<FrameValues>& frames, int passes) const;
    // Likewise the frication of unvoiced frames without aspiration: a2f .. a5f and ab.
    void refineFricationShape(std::vector<FrameValues>& frames, int passes) const;

    // At 22050 Hz: the band above 5.5 kHz, by the bandwidths of the cascade's f7 and f8 in
    // voiced frames (wide where the recording has nothing there) and by the bypass ab in
    // unvoiced ones (LevelMatchingHighBand.cpp).
    void matchHighBand(std::vector<FrameValues>& frames) const;

    // A part of the parallel branch whose amplitude the shape refinements move
    // (LevelMatchingShape.cpp).
    struct Part;

    const std::vector<double>& recordingLevels() const { return m_recordingLevels; }

    // The lowest value of an amplitude row that the synthesizer makes heard: av loses 7 dB
    // before the dB table is read, and the table gives nothing below 13 dB.
    static int audible(int row) { return row == Row::av ? 20 : 13; }

    // Lower edge of the band that the sixth to eighth formants serve, Hz.
    static constexpr double kHighBandHz = 5500.0;

private:
    // The frames with some sources switched off.
    static std::vector<FrameValues> only(std::vector<FrameValues> frames, bool voicing, bool noise);
    // Samples in a band-level frame of `seconds` at `rate`, 8 at least.
    static int frameLength(double seconds, double rate);
    // Level (dB) of the band lo .. hi Hz around every frame centre.
    std::vector<double> bandLevel(const float* x, std::size_t count, double rate, double lo, double hi) const;
    std::vector<double> levelsOf(const Rendering& r) const;
    // Levels of four bands (f1|f2 .. f2|f3 .. f3|f4 .. f4|f5 .. the top) of the voiced or the
    // unvoiced frames (empty lists for the others).
    std::vector<std::vector<double>> bandLevels(const float* x, std::size_t count, double rate,
                                                const std::vector<FrameValues>& frames, bool voiced) const;
    // How band levels are taken: a Hann window of `windowS` seconds around each voiced (or each
    // unvoiced) frame's centre, the band edges (Hz) from the frame's values and the top of the
    // bands (5.5 kHz or the lower Nyquist frequency).
    struct BandLayout {
        double windowS;
        bool voiced;
        std::function<std::vector<double>(const FrameValues&, double top)> edges;
    };
    void refineShape(std::vector<FrameValues>& frames, int passes, const std::array<Part, 5>& parts,
                     const std::vector<bool>& wanted, bool voicing) const;
    // The level of each frame marked in `wanted` brought to the recording's (`want`, of
    // wholeBand()) through a1f .. a5f.
    void matchParallelLevel(std::vector<FrameValues>& frames, const std::vector<bool>& wanted,
                            const std::vector<std::vector<double>>& want) const;
    static BandLayout wholeBand();
    std::vector<std::vector<double>> levelsInBands(const float* x, std::size_t count, double rate,
                                                   const std::vector<FrameValues>& frames,
                                                   const BandLayout& layout) const;

    LevelTarget m_target;
    int m_nRate;
    int m_nInterval;
    double m_dWindow;
    std::vector<double> m_recordingLevels;
    double m_dLoudest = 0.0; // the recording's loudest frame, dB
    double m_dMelTop;
    std::vector<MelFrame> m_recordingCepstra;
    std::vector<bool> m_loudVoiced; // voiced frames within 30 dB of the loudest
};
