// Replays stored inputs through a fuzz target's entry point without libFuzzer, so that every
// compiler (and the sanitizer build) runs the corpus kept in the repository as a test:
//   replay_x FILE_OR_FOLDER...      replay_x --make-seeds DIR
// Each file, and each regular file of a folder in name order, is passed once to
// LLVMFuzzerTestOneInput. A failed check aborts (the target's fuzz::require), which the test
// reports as a crash with the file named on the line before. Exit 1 when an argument cannot be
// read or holds no input at all.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{

bool readFile(const std::filesystem::path& path, std::string& bytes)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

// The files an argument names: itself, or the regular files of the folder sorted by name.
bool inputsOf(const std::filesystem::path& argument, std::vector<std::filesystem::path>& files)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::is_regular_file(argument, error)) {
        files.push_back(argument);
        return true;
    }
    if (!fs::is_directory(argument, error))
        return false;
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(argument, error))
        if (entry.is_regular_file(error))
            found.push_back(entry.path());
    if (error)
        return false;
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    // The target's set-up: `--make-seeds DIR` writes its seeds and exits, as in the fuzzing build.
    LLVMFuzzerInitialize(&argc, &argv);

    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i)
        if (!inputsOf(argv[i], files)) {
            std::fprintf(stderr, "%s: cannot read the inputs\n", argv[i]);
            return 1;
        }
    if (files.empty()) {
        std::fprintf(stderr, "no inputs to replay\n");
        return 1;
    }
    for (const std::filesystem::path& file : files) {
        std::string bytes;
        if (!readFile(file, bytes)) {
            std::fprintf(stderr, "%s: cannot read the file\n", file.c_str());
            return 1;
        }
        std::printf("%s (%zu bytes)\n", file.c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", files.size());
    return 0;
}
