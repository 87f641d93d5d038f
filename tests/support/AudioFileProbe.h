#pragma once
// Reading an audio file as other programs do (libsndfile), for the tests that check written
// files from outside: its format, rate and samples (as floats of full scale 1, and as 32-bit
// integers of full scale 2^31, which keep every bit of a 16- or 24-bit file).
#include <sndfile.h>

#include <string>
#include <vector>

namespace probe
{

struct AudioFile {
    SF_INFO info{};
    std::vector<float> samples;
    std::vector<int> values;
};

inline AudioFile readAudioFile(const std::string& path)
{
    AudioFile a;
    SNDFILE* f = sf_open(path.c_str(), SFM_READ, &a.info);
    if (!f)
        return a;
    a.values.resize(static_cast<std::size_t>(a.info.frames));
    sf_read_int(f, a.values.data(), a.info.frames);
    sf_close(f);
    for (const int v : a.values)
        a.samples.push_back(static_cast<float>(v / 2147483648.0));
    return a;
}

} // namespace probe
