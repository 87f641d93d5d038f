#pragma once
// PitchTracker: voicing and f0 of a recording on the copy synthesis's frame grid. Each frame's
// candidates are the peaks of its normalized autocorrelation (a Hann window of three periods of
// the lowest pitch, divided by the window's own autocorrelation), plus one unvoiced candidate
// whose strength grows as the frame grows quiet; a path search (Viterbi) picks one candidate
// per frame, with costs for octave jumps and for voicing changes, so the track neither jumps an
// octave nor flickers between voiced and unvoiced.
// Re-entrant; any thread. Units: Hz, samples full scale +-1.
#include <cstddef>
#include <vector>

struct PitchFrame {
    double f0 = 0.0;       // Hz; 0 = unvoiced
    double strength = 0.0; // normalized autocorrelation at the chosen period (0 when unvoiced)
};

struct PitchTrackerSettings {
    double lowHz = 60.0;
    double highHz = 500.0;
    double windowMS = 0.0; // 0: three periods of lowHz, at least 20 ms
    double silenceThreshold = 0.03;
    double voicingThreshold = 0.45;
    double octaveCost = 0.01;
    double octaveJumpCost = 0.35;
    double voicedUnvoicedCost = 0.14;
};

// Merges voicing decisions that last one frame into their surroundings.
void mergeLoneFrames(std::vector<PitchFrame>& path);

class PitchTracker
{
public:
    explicit PitchTracker(const PitchTrackerSettings& settings) : m_settings(settings) {}

    // One frame per centre (in seconds from the start of `samples`, at `rate`).
    std::vector<PitchFrame> track(const float* samples, std::size_t count, double rate,
                                  const std::vector<double>& centres) const;

private:
    struct Candidate {
        double f0;       // 0 = unvoiced
        double strength; // local score, higher is better
        double r;        // autocorrelation value
    };
    std::vector<std::vector<Candidate>> candidates(const float* samples, std::size_t count, double rate,
                                                   const std::vector<double>& centres) const;
    static double prepareFrame(const std::vector<float>& x, double centre, const std::vector<double>& window,
                               double* segment);
    std::vector<Candidate> peaks(const std::vector<double>& r, const std::vector<double>& windowR,
                                 double rate, int minLag, int maxLag) const;
    std::vector<PitchFrame> bestPath(const std::vector<std::vector<Candidate>>& frames) const;

    PitchTrackerSettings m_settings;
};
