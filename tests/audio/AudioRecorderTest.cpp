#include "audio/AudioRecorder.h"
#include "audio/RecordModelDialog.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace
{
// Feeds the default input from a file of float samples (see TestEnvironment.h).
std::vector<float> feedInput(int count)
{
    std::vector<float> samples(count);
    for (int i = 0; i < count; ++i)
        samples[i] = static_cast<float>((i % 1000) + 1) / 2048.0f;
    const std::string path = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".input";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(count * sizeof(float)));
    setenv("AUDIO_INPUT_FILE", path.c_str(), 1);
    return samples;
}

// Runs the event loop until the recorder holds at least `count` samples (or 5 s pass).
void recordAtLeast(const AudioRecorder& recorder, std::size_t count)
{
    for (int i = 0; i < 500 && recorder.recordedSamples() < count; ++i)
        QTest::qWait(10);
}
} // namespace

TEST(AudioRecorder, RecordsTheFedSamplesFromTheDefaultInput)
{
    const std::vector<float> fed = feedInput(11025);
    AudioRecorder recorder;
    QString error;
    ASSERT_TRUE(recorder.start(11025, &error)) << error.toStdString();
    EXPECT_TRUE(recorder.isRecording());
    EXPECT_EQ(recorder.capacity(), 300u * 11025u); // five minutes at most
    recordAtLeast(recorder, 4000);
    QSignalSpy finished(&recorder, &AudioRecorder::finished);
    recorder.stop();
    EXPECT_EQ(finished.count(), 1);
    EXPECT_FALSE(recorder.isRecording());
    const std::vector<float> got = recorder.samples();
    ASSERT_GE(got.size(), 4000u);
    // The input delivers the file from its start: the recording begins with the fed samples.
    const std::size_t n = std::min(got.size(), fed.size());
    EXPECT_TRUE(std::equal(got.begin(), got.begin() + static_cast<long>(n), fed.begin()));
    EXPECT_GT(recorder.takePeak(), 0.4);
    EXPECT_EQ(recorder.takePeak(), 0.0); // taken
    recorder.stop();                     // a second stop is harmless
    EXPECT_EQ(finished.count(), 1);
}

TEST(AudioRecorder, AFullBufferTakesNoMoreAndTheDialogKeepsTheRecording)
{
    // The audio thread's side alone: a full buffer refuses more and says so.
    AudioRecorder recorder;
    feedInput(2048);
    QString error;
    ASSERT_TRUE(recorder.start(11025, &error)) << error.toStdString();
    recorder.stop();
    const std::size_t had = recorder.recordedSamples();
    std::vector<float> block(recorder.capacity() - had, 0.25f);
    EXPECT_FALSE(recorder.append(block.data(), static_cast<unsigned long>(block.size())));
    EXPECT_EQ(recorder.recordedSamples(), recorder.capacity());
    EXPECT_FALSE(recorder.append(block.data(), 10));
    EXPECT_EQ(recorder.recordedSamples(), recorder.capacity());

    // The dialog: Stop keeps what was recorded, Cancel keeps nothing.
    feedInput(11025);
    RecordModelDialog dialog(11025, nullptr);
    ASSERT_TRUE(dialog.startRecording(&error)) << error.toStdString();
    recordAtLeast(*dialog.recorder(), 2000);
    dialog.stopRecording();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_GE(dialog.recording().size(), 2000u);
    EXPECT_FLOAT_EQ(dialog.recording()[0], 1.0f / 2048.0f);

    RecordModelDialog cancelled(11025, nullptr);
    ASSERT_TRUE(cancelled.startRecording(&error));
    recordAtLeast(*cancelled.recorder(), 500);
    cancelled.reject();
    EXPECT_EQ(cancelled.result(), QDialog::Rejected);
    EXPECT_TRUE(cancelled.recording().empty());
}
