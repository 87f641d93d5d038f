// The pictures of analysis results (spectrogram pixels, formant and pitch tracks) and the
// background spectrogram worker: its result equals the computation on the calling thread, a
// newer run supersedes an older one, and a worker destroyed mid-run neither crashes nor delivers.
#include "support/TestSignals.h"
// Qt's `signals` keyword would swallow the namespace's name below.
namespace testsignals = signals;

#include "display/gui/AnalysisTracks.h"
#include "display/gui/SpectrogramImage.h"
#include "display/gui/SpectrogramWorker.h"
#include "support/TestChannels.h"
#include "support/WidgetEvents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include <QPainter>
#include <QTest>

namespace
{

constexpr double kRate = 11025.0;

// A computation with set levels: W x H, every value of column x equal to levels[x].
SpectrogramComputation withColumnLevels(const std::vector<double>& levels, int height, int range)
{
    SpectrogramSettings settings;
    settings.m_nSpecDynamicRange = range;
    SpectrogramComputation s(settings);
    s.SetupDisplay(static_cast<int>(levels.size()), height, kRate);
    s.GetStorage();
    for (int x = 0; x < static_cast<int>(levels.size()); ++x)
        std::fill(s.frame(x), s.frame(x) + height, levels[static_cast<std::size_t>(x)]);
    s.m_bHaveSpectrogram = 1;
    return s;
}

std::unique_ptr<Channels> vowelChannel(double seconds)
{
    const int n = static_cast<int>(seconds * kRate);
    const auto x = testsignals::vowel(n, 120.0, kRate, {{700.0, 80.0}, {1200.0, 90.0}, {2600.0, 120.0}});
    return channelOf(testsignals::toFloat(x, 0.02), kRate);
}

} // namespace

TEST(SpectrogramImage, RampAndPixelPlacement)
{
    const std::tuple<double, int, int> positions[] = {
        {0.0, 50, 0},        {25.0, 50, 128},    {50.0, 50, 256},       {80.0, 50, 256}, {-3.0, 50, 0},
        {HUGE_VAL, 50, 256}, {-HUGE_VAL, 50, 0}, {std::nan(""), 50, 0}, {5.0, 0, 256}};
    for (const auto& [level, range, position] : positions)
        EXPECT_EQ(SpectrogramImage::rampPosition(level, range), position) << level << " of " << range;

    const SpectrogramImage ramp;
    EXPECT_EQ(qGray(ramp.rampColor(0)), 255); // silence is white
    EXPECT_EQ(qGray(ramp.rampColor(256)), 0); // the loudest level is black
    for (int i = 1; i < SpectrogramImage::kRampSize; ++i)
        EXPECT_LE(qGray(ramp.rampColor(i)), qGray(ramp.rampColor(i - 1))) << i;

    // Value (x, y) of a picture wider than one band of columns lands one pixel right of x, y
    // rows up from the bottom; the last column falls outside the image, the left edge keeps the frame.
    SpectrogramComputation wide = withColumnLevels(std::vector<double>(37, 0.0), 23, 50);
    for (int x = 0; x < 37; ++x)
        for (int y = 0; y < 23; ++y)
            wide.frame(x)[y] = (x * 7 + y * 3) % 53;
    const QImage picture = ramp.DrawImage(wide);
    ASSERT_EQ(picture.size(), QSize(37, 23));
    for (int y = 0; y < 23; ++y) {
        EXPECT_EQ(qGray(picture.pixel(0, y)), 0) << y;
        for (int x = 0; x < 36; ++x)
            ASSERT_EQ(picture.pixel(x + 1, 22 - y),
                      ramp.rampColor(SpectrogramImage::rampPosition(wide.frame(x)[y], 50)))
                << x << " " << y;
    }
    // A computation without a spectrogram gives no picture.
    EXPECT_TRUE(ramp.DrawImage(SpectrogramComputation()).isNull());
}

TEST(AnalysisTracks, FormantDotsAndPitchLineWhereTheValuesAre)
{
    SpectrogramComputation s = withColumnLevels(std::vector<double>(100, 10.0), 50, 50);
    s.m_phsnFormants.assign(100, FormantRecord{-1, -1, -1, -1, -1, 0});
    s.m_phsnFormants[50] = FormantRecord{1000, 2500, -1, -1, -1, 0};
    s.m_bHaveFormants = 1;
    QImage canvas(200, 100, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    {
        QPainter painter(&canvas);
        DrawFormantTracks(painter, canvas.rect(), s, 5000,
                          {Qt::red, Qt::blue, Qt::green, Qt::cyan, Qt::magenta});
    }
    // Record 50 of 100 is at x = 100; 1000 Hz of 5000 is 20 % up a 100-pixel area.
    EXPECT_EQ(canvas.pixelColor(100, 99 - 19), QColor(Qt::red));
    EXPECT_EQ(canvas.pixelColor(100, 99 - 49), QColor(Qt::blue));
    int coloured = 0;
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 200; ++x)
            coloured += canvas.pixelColor(x, y) != QColor(Qt::white);
    EXPECT_EQ(coloured, 18); // two 3 x 3 dots, nothing for the empty slots

    // Pitch: frames 0 .. 9 at 10 ms over 100 ms (20 pixels a frame), 0 .. 300 Hz; frames 4 and 5
    // unvoiced.
    std::vector<double> track = {100, 100, 100, 100, 0, 0, 200, 200, 200, 200};
    canvas.fill(Qt::white);
    {
        QPainter painter(&canvas);
        DrawPitchTrack(painter, canvas.rect(), track, 10.0, 100.0, 0.0, 300.0, Qt::black);
    }
    // The line is anti-aliased: one of the pixels next to the exact height is dark.
    const auto darkAt = [&](int x, int y) {
        return std::min({qGray(canvas.pixel(x, y - 1)), qGray(canvas.pixel(x, y)),
                         qGray(canvas.pixel(x, y + 1))}) < 160;
    };
    EXPECT_TRUE(darkAt(30, 99 - 33));  // on the 100 Hz segment
    EXPECT_TRUE(darkAt(150, 99 - 66)); // on the 200 Hz segment
    EXPECT_FALSE(darkAt(90, 99 - 50)); // no line across the unvoiced gap
    EXPECT_FALSE(darkAt(90, 99 - 33));
}

TEST(SpectrogramWorker, DeliversWhatTheComputationGivesAndOnlyTheNewestRun)
{
    auto channel = vowelChannel(1.0);
    SpectrogramSettings settings;
    SpectrogramComputation direct(settings);
    ASSERT_TRUE(direct.compute(*channel, 150, 80));

    SpectrogramWorker worker;
    std::vector<std::shared_ptr<const SpectrogramWorker::Result>> results;
    QObject::connect(&worker, &SpectrogramWorker::finished,
                     [&](std::shared_ptr<const SpectrogramWorker::Result> r) { results.push_back(r); });
    // The first run is superseded at once; only the second is delivered.
    worker.start(*channel, settings, 400, 100);
    worker.start(*channel, settings, 150, 80);
    // The worker has its own copy of the samples: the channel may go away meanwhile.
    channel.reset();
    ASSERT_TRUE(waitFor([&] { return !worker.isRunning(); }));
    QTest::qWait(50);
    ASSERT_EQ(results.size(), 1u);
    const SpectrogramWorker::Result& r = *results[0];
    EXPECT_EQ(r.width, 150);
    EXPECT_EQ(r.image.size(), QSize(150, 80));
    EXPECT_EQ(r.computation.m_phdDataFile, direct.m_phdDataFile);
    EXPECT_EQ(r.computation.m_phsnFormants, direct.m_phsnFormants);

    // A run of an empty channel finishes too.
    worker.start(Channels(), settings, 100, 50);
    ASSERT_TRUE(waitFor([&] { return results.size() == 2; }));
    EXPECT_EQ(results[1]->width, 100);
}

TEST(SpectrogramWorker, CancelledOrDestroyedMidRunDeliversNothing)
{
    auto channel = vowelChannel(20.0);
    int delivered = 0;
    {
        SpectrogramWorker worker;
        QObject::connect(&worker, &SpectrogramWorker::finished, [&] { ++delivered; });
        worker.start(*channel, SpectrogramSettings(), 2000, 300);
        worker.cancel();
        EXPECT_FALSE(worker.isRunning());
        worker.start(*channel, SpectrogramSettings(), 2000, 300);
    } // destroyed while the second run goes on
    QTest::qWait(100);
    EXPECT_EQ(delivered, 0);
}
