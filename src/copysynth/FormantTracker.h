#pragma once
// FormantTracker: formant tracks of a recording under one formant ceiling. The recording is
// resampled to twice the ceiling, pre-emphasized and analysed by LPC in 25 ms Hamming frames;
// each frame's roots are its candidates, and a path search (Viterbi) assigns them to the
// formants with a cost for leaving a formant's reference position (a uniform tube that fits
// the ceiling), for a wide bandwidth, for missing a formant and for moving between frames.
// Frames where a formant was not found take the value interpolated from their neighbours.
// The roughness of the voiced stretches of the tracks tells which ceiling suits the speaker.
// Re-entrant; any thread. Units: Hz.
#include <array>
#include <cstddef>
#include <vector>

constexpr int kTrackedFormants = 5;

struct FormantFrame {
    std::array<double, kTrackedFormants> freq{}; // F1 first
    std::array<double, kTrackedFormants> bw{};
};

struct FormantTrack {
    double ceiling = 0.0;
    std::vector<FormantFrame> frames;
    double roughness = 0.0; // mean relative frame-to-frame change in voiced frames, with misses
};

struct FormantTrackerSettings {
    double ceiling = 5000.0;
    int order = 0;             // 0: 2 + 2 x ceiling / 1000, even
    double preEmphasis = 0.97; // 0 = off
    double windowMS = 25.0;
};

class FormantTracker
{
public:
    explicit FormantTracker(const FormantTrackerSettings& settings) : m_settings(settings) {}

    // One frame per centre (in seconds); `voiced` (same length) marks the frames that count for
    // the roughness.
    FormantTrack track(const float* samples, std::size_t count, double rate,
                       const std::vector<double>& centres, const std::vector<bool>& voiced) const;
    // The same in two steps: the path search, which needs no voicing (so it may run while the
    // pitch is tracked), and the track made of its path.
    std::vector<FormantFrame> path(const float* samples, std::size_t count, double rate,
                                   const std::vector<double>& centres) const;
    FormantTrack track(std::vector<FormantFrame> path, const std::vector<bool>& voiced) const;

    int formantCount() const { return m_settings.ceiling >= 4900.0 ? 5 : 4; }
    // Reference position of formant k (0 = F1) under the ceiling.
    double reference(int k) const { return (2 * k + 1) * m_settings.ceiling / 10.0; }

private:
    using Candidates = std::vector<std::vector<std::array<double, 2>>>; // per frame: {freq, bw}
    Candidates candidates(const float* samples, std::size_t count, double rate,
                          const std::vector<double>& centres) const;
    std::vector<FormantFrame> bestPath(const Candidates& frames) const;
    double roughness(const std::vector<FormantFrame>& frames, const std::vector<bool>& voiced) const;

    FormantTrackerSettings m_settings;
};

// Fills the frames where a formant is missing (0) from the nearest frames that have it
// (linear between two, held beyond the ends); a formant missing everywhere takes `fallback`.
void interpolateMissing(std::vector<FormantFrame>& frames,
                        const std::array<double, kTrackedFormants>& fallback);
