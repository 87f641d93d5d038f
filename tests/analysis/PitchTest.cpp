#include "analysis/CMathFunc.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

constexpr double kRate = 11025.0;

double pitchOf(const std::vector<float>& x, double start, double low = 50.0, double high = 500.0,
               int fft = 1024, int window = 385)
{
    CMathFunc math;
    return math.DoPitchCepstrumNewFloat(x.data(), start, static_cast<double>(x.size()), kRate, low, high, fft,
                                        window);
}

// Runs f on a fresh thread, whose work arrays are still all zero.
template <typename F> auto onFreshThread(F f)
{
    decltype(f()) result{};
    std::thread t([&] { result = f(); });
    t.join();
    return result;
}

} // namespace

TEST(Pitch, TransformSizesOtherThanPowersOfTwoFrom128To4096AreRefusedTheOthersFindThePeriod)
{
    const auto pulses = signals::toFloat(signals::pulseTrain(6000, 220.0, kRate));
    for (int size : {300, 64, 8192, 0, -1024, 1000})
        EXPECT_EQ(pitchOf(pulses, 0.0, 50.0, 500.0, size), -1.0) << size;
    // Every accepted size finds the period of 50.1 samples at quefrency 50, with a window
    // shorter and one longer than the smallest transform.
    for (int size : {128, 256, 512, 1024, 2048, 4096})
        for (int window : {100, 385})
            EXPECT_DOUBLE_EQ(pitchOf(pulses, 1000.0, 50.0, 500.0, size, window), kRate / 50) << size;
    // A low vowel of narrow formants: only the level spectrum in dB, mirrored whole, leaves its
    // period of 138 samples the highest quefrency.
    const auto vowel =
        signals::toFloat(signals::vowel(8000, 80.0, kRate, {{700, 40}, {1200, 40}, {2500, 40}}));
    EXPECT_DOUBLE_EQ(pitchOf(vowel, 2000.0), kRate / 138);
}

TEST(Pitch, SilenceAndFlatCepstrum)
{
    const std::vector<float> silence(4000, 0.0f);
    // A silent window: every cepstral value becomes 20 and the lowest quefrency wins.
    EXPECT_EQ(pitchOf(silence, 100.0, 60.0, 400.0), 0.0); // 11025 / 27 lies above 400 Hz
    EXPECT_DOUBLE_EQ(pitchOf(silence, 100.0, 60.0, 441.0), 441.0);

    // When no quefrency of the range rises above 0 the index stays at half the transform:
    // 11025 / 64 Hz for 128 points. Here the range (quefrencies 64 .. 182) lies beyond the
    // cepstrum, over the copied samples, which are silent.
    EXPECT_DOUBLE_EQ(pitchOf(silence, 100.0, 60.0, kRate / 64.0, 128, 200), kRate / 64.0);

    // A window longer than the transform: only its first points enter, nothing overruns.
    const auto pulses = signals::toFloat(signals::pulseTrain(20000, 100.0, kRate));
    EXPECT_NEAR(pitchOf(pulses, 1000.0, 50.0, 500.0, 1024, 9000), 100.0, 2.0);
    // A negative start counts as 0; so does a start that is not a number, and a range that
    // holds no quefrency at all reports 0.
    const double fromStart = pitchOf(pulses, 0.0, 50.0, 500.0, 1024, 100000);
    EXPECT_NEAR(fromStart, 100.0, 2.0);
    EXPECT_EQ(pitchOf(pulses, -50.0, 50.0, 500.0, 1024, 100000), fromStart);
    EXPECT_EQ(pitchOf(pulses, std::nan(""), 50.0, 500.0, 1024, 100000), fromStart);
    EXPECT_EQ(pitchOf(pulses, 0.0, -1.0, 0.0), 0.0);
}

TEST(Pitch, WindowsNearTheEndReuseThePreviousCallsArrays)
{
    // 1000 samples, window 385: a window from 600 fits (600 + 390 <= 1000); one from 620 does
    // not, and then samples are copied only below index 1000 - 620 = 380, that is none.
    const auto pulses = signals::toFloat(signals::pulseTrain(1000, 100.0, kRate));
    const double fits = onFreshThread([&] { return pitchOf(pulses, 600.0); });
    EXPECT_NEAR(fits, 100.0, 2.0);
    // On a fresh thread nothing has been left behind: the window is silent.
    const double stale = onFreshThread([&] { return pitchOf(pulses, 620.0, 60.0, 441.0); });
    EXPECT_DOUBLE_EQ(stale, 441.0); // the lowest quefrency, 11025 / 441 = 25
    // After an analysis of another signal, the same call reads what that one left.
    const auto other = signals::toFloat(signals::pulseTrain(3000, 210.0, kRate));
    const double afterOther = onFreshThread([&] {
        pitchOf(other, 500.0);
        return pitchOf(pulses, 620.0, 60.0, 441.0);
    });
    EXPECT_NE(afterOther, stale);
}
