#include "audio/AudioPlayer.h"
#include "support/TestFiles.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
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

std::vector<float> slice(const std::vector<float>& v, std::size_t from, std::size_t count)
{
    return std::vector<float>(v.begin() + from, v.begin() + from + count);
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

TEST(AudioPlayer, RenderDeliversWholeRequestsAndStopsBeforeOverrun)
{
    const std::vector<float> samples = ramp(1000);
    AudioPlayer player;
    player.setData(bytesOf(samples), 1000, 0);

    // Not playing: nothing delivered (silence), a stop is queued.
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));
    EXPECT_EQ(player.playedSamples(), 0);

    // 1000 samples in requests of 512 frames: the first request plays 0..511, the second
    // would end at byte 4096 > 4000 and stops instead; the last 488 samples are not heard.
    player.setPlaying(true);
    EXPECT_EQ(request(player, 512), slice(samples, 0, 512));
    EXPECT_EQ(player.playedSamples(), 512);
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));
    EXPECT_EQ(player.playedSamples(), 512);

    // An exact multiple plays to the last sample and stops on the following request.
    const std::vector<float> exact = ramp(1024);
    player.setData(bytesOf(exact), 1024, 0);
    EXPECT_EQ(request(player, 512, 2), slice(exact, 0, 512)); // two buffers get the same samples
    EXPECT_EQ(request(player, 512, 2), slice(exact, 512, 512));
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));

    // A start sample skips the first samples; the length given is what the end test sees.
    player.setData(bytesOf(samples), 900, 100);
    EXPECT_EQ(request(player, 256), slice(samples, 100, 256));
    EXPECT_EQ(request(player, 256), slice(samples, 356, 256));
    EXPECT_EQ(request(player, 256), slice(samples, 612, 256));
    EXPECT_EQ(request(player, 256), std::vector<float>(256, 0.0f));

    // The queued stops reach the main thread: the player ends stopped, nothing open.
    QCoreApplication::processEvents();
    EXPECT_FALSE(player.isPlaying());
}

TEST(AudioPlayer, AStopQueuedForAnEarlierPlaybackLeavesTheNewOneRunning)
{
    const std::vector<float> first = ramp(600);
    const std::vector<float> second = ramp(3000);
    AudioPlayer player;

    // The first playback runs out: its stop is queued for the main thread...
    player.setData(bytesOf(first), 600, 0);
    player.setPlaying(true);
    EXPECT_EQ(request(player, 512), slice(first, 0, 512));
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));
    // ...which starts the next playback before it gets to that stop.
    player.setData(bytesOf(second), 3000, 0);
    player.setPlaying(true);
    QCoreApplication::processEvents();
    EXPECT_TRUE(player.isPlaying()) << "the first playback's stop ended the second";
    EXPECT_EQ(request(player, 512), slice(second, 0, 512));

    // A playback stopped by the user: the render request that finds it stopped queues a stop,
    // and a playback started before that stop is handled keeps running too.
    player.setPlaying(false);
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));
    player.setData(bytesOf(second), 3000, 0);
    player.setPlaying(true);
    QCoreApplication::processEvents();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_EQ(request(player, 512), slice(second, 0, 512));

    // The current playback's own stop still ends it.
    for (int i = 1; i < 5; ++i)
        EXPECT_EQ(request(player, 512), slice(second, 512 * i, 512));
    EXPECT_EQ(request(player, 512), std::vector<float>(512, 0.0f));
    QCoreApplication::processEvents();
    EXPECT_FALSE(player.isPlaying());
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
    player.stopClean();
    EXPECT_FALSE(player.isPlaying());
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
