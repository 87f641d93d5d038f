// Entry point of the GUI test executables: the offscreen platform unless one is set, a
// private configuration folder (the real home is never touched), and an ALSA set-up whose
// default output writes what it plays into a file (AUDIO_CAPTURE_FILE), so that playback runs
// the real path without a sound card.
#include <QApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace
{
const char* kCaptureConfiguration = R"(pcm.!default {
    type file
    slave.pcm { type null }
    file { @func getenv vars [ AUDIO_CAPTURE_FILE ] default "/tmp/tessaphon-capture.raw" }
    format "raw"
}
)";

std::string g_folder;

void prepareEnvironment()
{
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    char folder[] = "/tmp/tessaphon-test-XXXXXX";
    if (!mkdtemp(folder))
        return;
    const std::string base = folder;
    g_folder = base;
    setenv("XDG_CONFIG_HOME", (base + "/config").c_str(), 1);
    std::ofstream(base + "/asound.conf") << kCaptureConfiguration;
    setenv("ALSA_CONFIG_PATH", (base + "/asound.conf").c_str(), 1);
    setenv("AUDIO_CAPTURE_FILE", (base + "/capture.raw").c_str(), 1);
    unsetenv("PULSE_SERVER");
}
} // namespace

int main(int argc, char** argv)
{
    prepareEnvironment();
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;
    if (!g_folder.empty())
        std::filesystem::remove_all(g_folder, ignored);
    return result;
}
