#pragma once
// Reading back what a test made a program write: a whole file as bytes (empty when it cannot be
// read), and a raw capture of 32-bit float samples (what the ALSA file plugin records).
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

inline std::string slurp(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

inline std::vector<float> slurpFloats(const std::string& path)
{
    const std::string bytes = slurp(path);
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}
