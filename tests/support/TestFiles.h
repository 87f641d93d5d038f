#pragma once
// Files of a test: a fresh temporary folder removed with the test, a whole file read back as
// bytes (empty when it cannot be read), a raw capture of 32-bit float samples (what the ALSA file
// plugin records), and a CSV file (a manifest) as rows of named fields.
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

struct TempDir {
    std::filesystem::path path;
    // mkdtemp gives a folder nobody else holds, not even one a crashed run left behind under a
    // process id that came round again.
    TempDir()
    {
        std::string name = (std::filesystem::temp_directory_path() / "tessaphon-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("cannot make a temporary folder in " + name);
        path = name;
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string operator/(const std::string& name) const { return (path / name).string(); }
};

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

inline std::vector<std::map<std::string, std::string>> readCsv(const std::string& path)
{
    std::istringstream in(slurp(path));
    std::vector<std::string> names;
    std::vector<std::map<std::string, std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> fields;
        std::istringstream cells(line);
        for (std::string cell; std::getline(cells, cell, ',');)
            fields.push_back(cell);
        if (names.empty()) {
            names = fields;
            continue;
        }
        std::map<std::string, std::string> row;
        for (std::size_t i = 0; i < names.size(); ++i)
            row[names[i]] = i < fields.size() ? fields[i] : "";
        rows.push_back(row);
    }
    return rows;
}
