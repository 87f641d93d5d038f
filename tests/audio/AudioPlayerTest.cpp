#include "audio/AudioPlayer.h"
#include "support/TestFiles.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

namespace
{
std::vector<float> ramp(int count)
{
    std::vector<float> samples(count);
    for (int i = 0; i < count; ++i)
        samples[i] = static_cast<float>(i + 1) / 65536.0f;
    return samples;
}

const std::uint8_t* bytesOf(const std::vector<float>& samples)
{
    return reinterpret_cast<const std::uint8_t*>(samples.data());
}

// One render request of `frames` frames into `buffers` output buffers, each followed by a
// guard sample; checks the guards and that every buffer got the same samples, and answers
// the first buffer.
std::vector<float> request(AudioPlayer& player, int frames, int buffers = 1)
{
    std::vector<std::vector<float>> out(buffers, std::vector<float>(frames + 1, -9.0f));
    std::vector<void*> list;
    for (auto& b : out)
        list.push_back(b.data());
    EXPECT_EQ(player.render(list.data(), buffers, frames * 4), 0);
    for (auto& b : out) {
        EXPECT_EQ(b.back(), -9.0f) << "wrote past the buffer";
        EXPECT_EQ(b, out[0]);
    }
    out[0].pop_back();
    return out[0];
}

// Plays `samples` through the default output into a fresh capture file and waits for the
// player to stop by itself; answers what the output received.
std::vector<float> playAndCapture(const std::vector<float>& samples)
{
    const std::string path = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".played";
    setenv("AUDIO_CAPTURE_FILE", path.c_str(), 1);
    AudioPlayer player;
    QSignalSpy stopped(&player, &AudioPlayer::playbackStopped);
    player.CreateDefaultAU();
    player.setData(bytesOf(samples), static_cast<double>(samples.size()), 0);
    player.setSampleRate(11025);
    player.startPlay();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_TRUE(stopped.wait(10000)) << "playback did not end by itself";
    EXPECT_FALSE(player.isPlaying());
    EXPECT_EQ(player.getOutputUnit(), nullptr);
    return slurpFloats(path);
}
} // namespace

// The player against a twin of what it should do, through random steps: new data (a length and
// a start sample), playback started and stopped, render requests of whole blocks into one or two
// buffers, the main thread handling the stops the requests queued. Only whole requests are
// played (an end exactly at the data's length included); a request that finds the player stopped
// or that would run past the data gives silence and queues a stop; a queued stop ends only the
// playback it was queued for.
TEST(AudioPlayer, RenderAndQueuedStopsFollowTheirTwinThroughRandomSteps)
{
    const std::vector<float> samples = ramp(4096);
    AudioPlayer player;
    struct {
        bool playing = false;
        int playback = 0, length = 0, start = 0, played = 0;
        std::vector<int> stops;
    } twin;
    std::mt19937 random(11);
    const auto pick = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int step = 0; step < 3000; ++step) {
        const int what = pick(0, 9);
        if (what == 0) {
            twin = {twin.playing, twin.playback, 64 * pick(0, 40), pick(0, 3) * 50, 0, twin.stops};
            player.setData(bytesOf(samples), twin.length, twin.start);
        } else if (what == 1) {
            twin.playing = pick(0, 1) == 1;
            twin.playback += twin.playing ? 1 : 0;
            player.setPlaying(twin.playing);
        } else if (what == 2) {
            QCoreApplication::processEvents();
            for (const int stop : twin.stops)
                twin.playing = twin.playing && stop != twin.playback;
            twin.stops.clear();
        } else {
            const int frames = 64 * pick(1, 8);
            std::vector<float> expected(frames, 0.0f);
            if (!twin.playing || twin.played + frames > twin.length) {
                twin.stops.push_back(twin.playback);
            } else {
                std::copy_n(samples.begin() + twin.start + twin.played, frames, expected.begin());
                twin.played += frames;
            }
            ASSERT_EQ(request(player, frames, pick(1, 2)), expected) << "step " << step;
        }
        ASSERT_EQ(player.isPlaying(), twin.playing) << "step " << step;
        ASSERT_EQ(player.playedSamples(), twin.played) << "step " << step;
    }
}

TEST(AudioPlayer, DefaultOutputReceivesWholeRequestsExactly)
{
    // 2048 samples: four whole requests, all heard, after nothing but silence.
    const std::vector<float> samples = ramp(2048);
    const std::vector<float> capture = playAndCapture(samples);
    const auto at = std::search(capture.begin(), capture.end(), samples.begin(), samples.end());
    ASSERT_NE(at, capture.end()) << "the samples were not played as they are (" << capture.size()
                                 << " captured)";
    EXPECT_TRUE(std::all_of(capture.begin(), at, [](float s) { return s == 0.0f; }))
        << "only silence may come before the samples";
}

TEST(AudioPlayer, StopsAndRestartsCleanly)
{
    const std::vector<float> samples = ramp(11025 * 5);
    AudioPlayer player;
    for (int round = 0; round < 3; ++round) {
        if (player.isPlaying())
            player.stopPlay();
        const std::uint32_t before = player.playbackNumber();
        player.CreateDefaultAU();
        player.setData(bytesOf(samples), static_cast<double>(samples.size()), 0);
        player.setSampleRate(11025);
        player.startPlay();
        EXPECT_TRUE(player.isPlaying());
        EXPECT_EQ(player.playbackNumber(), before + 1) << "each start is a new playback";
    }
    // A render request that finds the playback stopped queues the stop that closes the output.
    player.setPlaying(false);
    EXPECT_EQ(request(player, 64), std::vector<float>(64, 0.0f));
    QCoreApplication::processEvents();
    EXPECT_EQ(player.getOutputUnit(), nullptr);
    player.stopClean(); // a second stop with nothing open is harmless
    // The test-tone set-up forces 32-bit float.
    player.sWhichFormat = 16;
    EXPECT_EQ(player.ParseArgsAndSetup(0, nullptr), 0);
    EXPECT_EQ(player.sWhichFormat, 32);
    EXPECT_EQ(player.theFormatFlags, 41u);
    char text[] = "tone  440 0.5";
    char* argv[8];
    ASSERT_EQ(AudioPlayer::CreateArgListFromString(text, argv, 8), 3);
    EXPECT_STREQ(argv[1], "440");
    EXPECT_STREQ(argv[2], "0.5");
}
