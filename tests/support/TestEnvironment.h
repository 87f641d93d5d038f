#pragma once
// The environment the GUI tests and the workbench benchmarks run in: the offscreen platform
// unless one is set, private configuration and state folders (the real home is never touched),
// and an ALSA set-up whose default output writes what it plays into a file (AUDIO_CAPTURE_FILE)
// and whose default input reads what it records from a file (AUDIO_INPUT_FILE, raw samples in
// the stream's format), so that playback and recording run the real path without a sound card.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

// Prepares the environment; answers the private folder (empty when it could not be made).
inline std::string prepareTestEnvironment()
{
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    char folder[] = "/tmp/tessaphon-test-XXXXXX";
    if (!mkdtemp(folder))
        return {};
    const std::string base = folder;
    setenv("XDG_CONFIG_HOME", (base + "/config").c_str(), 1);
    setenv("XDG_STATE_HOME", (base + "/state").c_str(), 1); // crash-recovery copies
    std::ofstream(base + "/asound.conf") << R"(pcm.!default {
    type file
    slave.pcm { type null }
    file { @func getenv vars [ AUDIO_CAPTURE_FILE ] default "/tmp/tessaphon-capture.raw" }
    infile { @func getenv vars [ AUDIO_INPUT_FILE ] default "/dev/zero" }
    format "raw"
}
)";
    setenv("ALSA_CONFIG_PATH", (base + "/asound.conf").c_str(), 1);
    setenv("AUDIO_CAPTURE_FILE", (base + "/capture.raw").c_str(), 1);
    unsetenv("PULSE_SERVER");
    return base;
}

inline void removeTestEnvironment(const std::string& folder)
{
    std::error_code ignored;
    if (!folder.empty())
        std::filesystem::remove_all(folder, ignored);
}
