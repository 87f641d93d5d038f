// The copy synthesis's own runs of the synthesizer.
#include "copysynth/KlattRender.h"

#include "synthesis/CKlattEngine.h"
#include "synthesis/KlattInternals.h"

#include <algorithm>
#include <memory>

namespace
{

// Holds the synthesizer's process-wide state at fixed values for one run and puts the old
// values back when the run ends.
class FixedEngineState
{
public:
    FixedEngineState()
        : m_nlast(klatt_state::nlast), m_natural(klatt_state::natural_vwave),
          m_impulsive(klatt_state::impulsive_vwave), m_skew(klatt_state::skew),
          m_time(klatt_state::time_count), m_noise(klatt_state::noise_state)
    {
        klatt_state::nlast = 0.0;
        klatt_state::natural_vwave = 0.0;
        klatt_state::impulsive_vwave = 0.0;
        klatt_state::skew = 0;
        klatt_state::time_count = 0;
        klatt_state::noise_state = 0x2545F4914F6CDD1DULL;
    }
    ~FixedEngineState()
    {
        klatt_state::nlast = m_nlast;
        klatt_state::natural_vwave = m_natural;
        klatt_state::impulsive_vwave = m_impulsive;
        klatt_state::skew = m_skew;
        klatt_state::time_count = m_time;
        klatt_state::noise_state = m_noise;
    }
    FixedEngineState(const FixedEngineState&) = delete;
    FixedEngineState& operator=(const FixedEngineState&) = delete;

private:
    double m_nlast, m_natural, m_impulsive;
    std::int32_t m_skew;
    std::int64_t m_time;
    std::uint64_t m_noise;
};

} // namespace

Rendering renderFrames(const std::vector<FrameValues>& frames, int rate, int intervalMS)
{
    Rendering out;
    if (frames.size() < 2)
        return out;
    const FixedEngineState fixedState;
    auto g = std::make_unique<klatt_global_t>();
    g->quiet = 1;
    g->glottal_source = 2;
    g->source_samples = CKlattEngine::natural_samples;
    g->source_sample_count = 100;
    g->source_sample_scale = 0.00001;
    g->output_select = 0;
    g->flutter_percent = 0;
    g->model = 1;
    g->cascade_formants = rate == 22050 ? 8 : 5;
    g->sample_rate = rate;
    g->samples_per_frame = intervalMS * rate / 1000;
    CKlattEngine engine;
    engine.parwave_init(g.get());
    const std::size_t perFrame = static_cast<std::size_t>(g->samples_per_frame);
    out.samples.resize((frames.size() - 1) * perFrame);
    out.framePeaks.reserve(frames.size() - 1);
    std::vector<int> output(perFrame);
    klatt_frame_t frame{};
    for (std::size_t c = 1; c < frames.size(); ++c) {
        for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
            frame[i] = frames[c - 1][i];
        g->peak_magnitude = 0.0;
        engine.parwave(g.get(), &frame, output.data());
        out.framePeaks.push_back(g->peak_magnitude / 32768.0);
        out.peak = std::max(out.peak, out.framePeaks.back());
        float* dst = out.samples.data() + (c - 1) * perFrame;
        for (std::size_t j = 0; j < perFrame; ++j)
            dst[j] = static_cast<float>(static_cast<std::int16_t>(output[j]) * 0.000030517578125);
    }
    out.clippedSamples = g->clipped_samples;
    return out;
}
