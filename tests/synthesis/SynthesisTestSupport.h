#pragma once
// Helpers shared by the synthesizer and driver tests: noise-free frames and engine runs. A frame
// without aspiration, frication and breathiness synthesizes the same samples on every run,
// whatever the process-wide noise state.
#include "document/ParameterDefinition.h"
#include "synthesis/CKlattEngine.h"

#include <algorithm>
#include <vector>

// The factory parameter values as a frame, breathiness off.
inline klatt_frame_t quietFactoryFrame()
{
    klatt_frame_t f{};
    for (int i = 0; i < klatt_frame_t::kFieldCount; ++i)
        f[i] = kFactoryParameters[i].defaultValue;
    f.atu = 0;
    return f;
}

// A run prepared the way the synthesis driver prepares one, with the given rate, cascade
// length, frame size and glottal source.
inline klatt_global_t preparedRun(int rate, int cascade, int samplesPerFrame, int source = 2)
{
    klatt_global_t g{};
    g.model = 1;
    g.quiet = 1;
    g.glottal_source = source;
    g.source_samples = CKlattEngine::natural_samples;
    g.source_sample_count = 100;
    g.source_sample_scale = 0.00001;
    g.sample_rate = rate;
    g.cascade_formants = cascade;
    g.samples_per_frame = samplesPerFrame;
    CKlattEngine().parwave_init(&g);
    return g;
}

// Runs parwave on a fresh copy of each frame in turn.
inline std::vector<int> runFrames(klatt_global_t& g, const std::vector<klatt_frame_t>& frames)
{
    CKlattEngine engine;
    std::vector<int> out(frames.size() * static_cast<std::size_t>(g.samples_per_frame));
    for (std::size_t i = 0; i < frames.size(); ++i) {
        klatt_frame_t scratch = frames[i];
        engine.parwave(&g, &scratch, out.data() + i * static_cast<std::size_t>(g.samples_per_frame));
    }
    return out;
}

// Runs `frames` calls of parwave with a fresh copy of `frame` each time.
inline std::vector<int> runFrames(klatt_global_t& g, const klatt_frame_t& frame, int frames)
{
    return runFrames(g, std::vector<klatt_frame_t>(static_cast<std::size_t>(frames), frame));
}

// One fresh run of a steady frame at 11025 Hz with five cascade formants.
inline std::vector<int> steadyRun(const klatt_frame_t& frame, int frames, int samplesPerFrame = 110)
{
    klatt_global_t g = preparedRun(11025, 5, samplesPerFrame);
    return runFrames(g, frame, frames);
}

inline bool allZero(const std::vector<int>& x)
{
    return std::all_of(x.begin(), x.end(), [](int v) { return v == 0; });
}
