#include "support/DocumentTestSupport.h"
#include "support/TestChannels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

std::int16_t sampleAt(const std::string& image, std::size_t i)
{
    const auto* b = reinterpret_cast<const unsigned char*>(image.data() + 48 + 2 * i);
    return static_cast<std::int16_t>(b[0] | b[1] << 8);
}

} // namespace

TEST(WaveFile, WrittenHeaderIsByteExactAndSamplesWrapWithoutClipping)
{
    MyDocument document;
    setSamples(*document.getChannel(0), {0.5f, -0.25f, 1.0f, -1.0f, 1.5f, 0.99999f, -0.0000305f}, 11025.0);
    const std::string image = document.save_Wave_FileType();

    const unsigned char golden[48] = {'R',  'I',  'F', 'F', 14,   0,    0,   0,   'W', 'A', 'V', 'E',
                                      'f',  'm',  't', ' ', 20,   0,    0,   0,   1,   0,   1,   0,
                                      0x11, 0x2b, 0,   0,   0x22, 0x56, 0,   0,   2,   0,   16,  0,
                                      0,    0,    0,   0,   'd',  'a',  't', 'a', 14,  0,   0,   0};
    ASSERT_EQ(image.size(), 48u + 14u);
    EXPECT_EQ(std::memcmp(image.data(), golden, 48), 0);
    // +1.0 wraps; 1.5 -> 49152 -> its low 16 bits; the last truncates toward zero, not rounding.
    const std::int16_t expected[] = {16384, -8192, -32768, -32768, -16384, 32767, 0};
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(sampleAt(image, i), expected[i]) << i;

    // A fractional length writes the sample the loop reaches beyond the counted ones, as zero
    // when the block does not hold it.
    document.getChannel(0)->m_dwFileLength = 2.5;
    const std::string fractional = document.save_Wave_FileType();
    EXPECT_EQ(fractional[4], 4);
    EXPECT_EQ(fractional.size(), 48u + 6u);

    // No audio at all: a header for zero samples.
    MyDocument empty;
    EXPECT_EQ(empty.save_Wave_FileType().size(), 48u);
}

TEST(WaveFile, WrittenFileReadsBackAsModelWithGridAndStkLocation)
{
    // One second at 8000 Hz: 100 frames of 10 ms.
    std::vector<float> samples(8000, 0.0f);
    const float first[] = {0.25f, -0.5f, 0.125f};
    std::copy(first, first + 3, samples.begin());
    const std::string image = waveFileBytes(samples, 8000.0);

    MyDocument document;
    document.setFileURL("/some/folder/take.1.wav");
    int code = 1;
    ASSERT_TRUE(document.readFromData(image, "wav", &code)) << document.lastReadError();
    EXPECT_EQ(code, 0);
    const Channels* model = document.getChannel(2);
    EXPECT_DOUBLE_EQ(model->m_dSampleRate, 8000.0);
    EXPECT_DOUBLE_EQ(model->m_dwFileLength, 8000.0);
    EXPECT_DOUBLE_EQ(model->m_dLengthMS, 1000.0);
    ASSERT_EQ(model->sampleCount(), 8000u);
    EXPECT_TRUE(std::equal(first, first + 3, model->samples()));
    EXPECT_EQ(model->m_hData->size(), 8000u * 4u + 100u);
    EXPECT_EQ(model->m_nChannelsinFile, 1);
    EXPECT_EQ(model->m_nDataType, 3);
    EXPECT_DOUBLE_EQ(model->m_dC1Cal, 1000.0);
    EXPECT_DOUBLE_EQ(model->m_dFilterRate, 11025.0 * 0.5); // from channel 0's rate

    // The grid follows the recording's length, at the defaults.
    const Channels* c = document.getChannel(0);
    EXPECT_DOUBLE_EQ(c->m_dLengthMS, 1000.0);
    EXPECT_EQ(c->m_nColumnNum, 100);
    ASSERT_EQ(c->m_snppDataImage_Col_Row.size(), 102u);
    EXPECT_EQ(c->m_snppDataImage_Col_Row[99][Row::f0], 1000);

    EXPECT_EQ(document.fileURL(), "/some/folder/take.1.stk");
    EXPECT_EQ(document.fileType(), "stk");
    EXPECT_TRUE(document.isDocumentEdited());
    EXPECT_EQ(document.m_bReadFile, 1);
    EXPECT_EQ(document._fileTypeName, "wav");
    EXPECT_EQ(document._fileData, image);
}

TEST(WaveFile, ChunkWalkStereoFloatAndMuLaw)
{
    // An odd-sized format chunk is followed directly by the data chunk (no pad byte).
    MyDocument odd;
    ASSERT_EQ(odd.Read_WAVE_FileType(waveImage(1, 1, 16000, 2, 16, pcm16({100, -200, 300}), 17)), 0)
        << odd.lastReadError();
    EXPECT_DOUBLE_EQ(odd.getChannel(2)->m_dwFileLength, 3.0);
    EXPECT_FLOAT_EQ(odd.getChannel(2)->samples()[1], -200.0f / 32768.0f);

    // Stereo: D / block align samples, taken consecutively from the interleaved data.
    MyDocument stereo;
    ASSERT_EQ(stereo.Read_WAVE_FileType(waveImage(1, 2, 11025, 4, 16, pcm16({1, 2, 3, 4, 5, 6, 7, 8}))), 0);
    const Channels* s = stereo.getChannel(2);
    ASSERT_DOUBLE_EQ(s->m_dwFileLength, 4.0);
    for (int i = 0; i < 4; ++i)
        EXPECT_FLOAT_EQ(s->samples()[i], (i + 1) / 32768.0f);

    // IEEE float samples are copied as they stand, whatever bits the format block says.
    const float values[3] = {0.75f, -2.5f, 1e-3f};
    std::string floats(reinterpret_cast<const char*>(values), sizeof values);
    MyDocument ieee;
    ASSERT_EQ(ieee.Read_WAVE_FileType(waveImage(3, 1, 22050, 4, 64, floats)), 0);
    EXPECT_FLOAT_EQ(ieee.getChannel(2)->samples()[1], -2.5f);

    // Mu-law: accepted with its duration, samples silent.
    MyDocument mulaw;
    ASSERT_EQ(mulaw.Read_WAVE_FileType(waveImage(7, 1, 8000, 1, 8, std::string(80, '\x55'))), 0);
    const Channels* m = mulaw.getChannel(2);
    EXPECT_DOUBLE_EQ(m->m_dLengthMS, 10.0);
    ASSERT_EQ(m->sampleCount(), 80u);
    for (std::size_t i = 0; i < m->sampleCount(); ++i)
        ASSERT_EQ(m->samples()[i], 0.0f);

    // A data chunk that declares more than the file holds is read as far as it goes, and the
    // document says how many samples it holds of how many declared.
    MyDocument cut;
    ASSERT_EQ(cut.Read_WAVE_FileType(waveImage(1, 1, 8000, 2, 16, pcm16({7, 7, 9}), 16, 0xFFFFFFF0LL)), 0);
    const Channels* k = cut.getChannel(2);
    EXPECT_DOUBLE_EQ(k->m_dwFileLength, 3.0);
    EXPECT_DOUBLE_EQ(k->m_dLengthMS, 3 * 1000.0 / 8000);
    EXPECT_FLOAT_EQ(k->samples()[2], 9 / 32768.0f);
    EXPECT_TRUE(cut.isWaveShort());
    EXPECT_EQ(cut.waveSamplesPresent(), 3);
    EXPECT_EQ(cut.waveSamplesDeclared(), 0xFFFFFFF0LL / 2);
    // An odd byte left over is no sample; a whole file is not short.
    MyDocument oddByte;
    ASSERT_EQ(oddByte.Read_WAVE_FileType(waveImage(1, 1, 8000, 2, 16, pcm16({7}) + "x", 16, 4)), 0);
    EXPECT_DOUBLE_EQ(oddByte.getChannel(2)->m_dwFileLength, 1.0);
    EXPECT_TRUE(oddByte.isWaveShort());
    MyDocument whole;
    ASSERT_EQ(whole.Read_WAVE_FileType(waveImage(1, 1, 8000, 2, 16, pcm16({7, 7}))), 0);
    EXPECT_FALSE(whole.isWaveShort());
}

TEST(WaveFile, DamagedAndUnsupportedFilesAreRefusedUnchanged)
{
    const std::string good = waveImage(1, 1, 11025, 2, 16, pcm16({1, 2, 3, 4}));
    struct Case {
        std::string bytes;
        const char* reasonPart;
    };
    std::string dataFirst = waveImage(1, 1, 11025, 2, 16, pcm16({1, 2}));
    dataFirst.erase(12, 24); // the format chunk
    const Case cases[] = {
        {"", "not a RIFF/WAVE"},
        {std::string("RIFF\0\0\0\0WAV", 11), "its header ends after 11 bytes"},
        {good.substr(0, 12), "its header ends after 12 bytes"},
        {good.substr(0, 30), "its header ends after 30 bytes"},
        {good.substr(0, 40), "its header ends after 40 bytes"},
        {"WAVE" + good.substr(4), "not a RIFF/WAVE"},
        {"RIFX" + good.substr(4), "not a RIFF/WAVE"},
        {waveImage(2, 1, 11025, 2, 16, pcm16({1})), "format code 2"},
        {waveImage(-2, 1, 11025, 2, 16, pcm16({1})), "format code -2"},
        {good.substr(0, 36), "no data chunk"},
        {waveImage(1, 1, 11025, 2, 16, ""), "past the end"},
        {waveImage(1, 1, 11025, 0, 16, pcm16({1, 2})), "block align of 0"},
        {waveImage(1, 1, 0, 2, 16, pcm16({1, 2})), "sample rate of 0"},
        {dataFirst, "before any format chunk"},
        {waveImage(1, 1, 1, 1, 8, std::string(4000, 'x')), "longer than one hour"},
    };
    for (const Case& c : cases) {
        MyDocument document;
        document.setFileURL("/x/y.wav");
        EXPECT_EQ(document.Read_WAVE_FileType(c.bytes), -1) << c.reasonPart;
        EXPECT_NE(document.lastReadError().find(c.reasonPart), std::string::npos) << document.lastReadError();
        EXPECT_FALSE(document.getChannel(2)->hasAudio());
        EXPECT_DOUBLE_EQ(document.getChannel(2)->m_dSampleRate, 11025.0);
        EXPECT_EQ(document.fileURL(), "/x/y.wav");
        EXPECT_FALSE(document.isDocumentEdited());

        // The open entry point then tries a parameter document, fails with -4 and keeps the
        // WAVE reason for RIFF images.
        int code = 0;
        EXPECT_FALSE(document.readFromData(c.bytes, "wav", &code));
        EXPECT_EQ(code, -4);
        EXPECT_FALSE(document.lastReadError().empty());
        EXPECT_EQ(document.m_bReadFile, 0);
    }
    MyDocument document;
    EXPECT_FALSE(document.readFromData(waveImage(2, 1, 11025, 2, 16, pcm16({1})), "wav", nullptr));
    EXPECT_NE(document.lastReadError().find("format code 2"), std::string::npos);
}

TEST(WaveFile, FilesNeitherReaderTakesAreNamedByWhatTheyHold)
{
    std::string noise;
    for (int i = 0; i < 600; ++i)
        noise += static_cast<char>((i * 7919 + 13) % 256);
    struct Case {
        const char* path;
        std::string bytes;
        const char* reason;
    };
    const Case cases[] = {
        {"/d/x.wav", noise, "x.wav is not a WAVE file"},
        {"/d/x.WAVE", noise, "x.WAVE is not a WAVE file"},
        {"/d/x.stk", noise, "x.stk is neither a WAVE file nor a parameter document"},
        // Text is read as a parameter document whatever its name, and refused as one.
        {"/d/x.wav", "hello\r\nworld\r\n", "first line"},
        // A RIFF image is refused as a WAVE file whatever its name.
        {"/d/x.stk", waveImage(1, 1, 11025, 2, 16, pcm16({1, 2})).substr(0, 30),
         "its header ends after 30 bytes"},
    };
    for (const Case& c : cases) {
        MyDocument document;
        document.setFileURL(c.path);
        int code = 0;
        EXPECT_FALSE(document.readFromData(c.bytes, "stk", &code)) << c.path;
        EXPECT_EQ(code, -4);
        EXPECT_NE(document.lastReadError().find(c.reason), std::string::npos) << document.lastReadError();
    }
}

TEST(Channels, ReadDataDecodesEachSizeAndStaysInBounds)
{
    const unsigned char bytes[] = {0x01, 0x00, 0x00, 0x80, 0x12, 0x34};
    Channels c;
    // 16 bits, little-endian; the third sample is beyond the 4 bytes after location 2 -> 0.
    ASSERT_TRUE(c.readData(bytes, sizeof bytes, 3, 2, 16, false));
    EXPECT_EQ(c.m_hData->size(), 3u * 4u + 100u);
    EXPECT_FLOAT_EQ(c.samples()[0], -1.0f);
    EXPECT_FLOAT_EQ(c.samples()[1], 0x3412 / 32768.0f);
    EXPECT_EQ(c.samples()[2], 0.0f);
    // Swapped 16 bits.
    ASSERT_TRUE(c.readData(bytes, sizeof bytes, 1, 0, 16, true));
    EXPECT_FLOAT_EQ(c.samples()[0], 0x0100 / 32768.0f);
    // 12 bits are always byte-swapped and scaled by 2048.
    ASSERT_TRUE(c.readData(bytes, sizeof bytes, 2, 0, 12, false));
    EXPECT_FLOAT_EQ(c.samples()[0], 256 / 2048.0f);
    EXPECT_FLOAT_EQ(c.samples()[1], 128 / 2048.0f);
    // 8 bits and odd sizes are not decoded: a zero block and a failure.
    EXPECT_FALSE(c.readData(bytes, sizeof bytes, 6, 0, 8, false));
    ASSERT_TRUE(c.hasAudio());
    EXPECT_EQ(c.samples()[0], 0.0f);
    EXPECT_FALSE(c.readData(bytes, sizeof bytes, 1, 0, 24, false));
    // Locations outside the bytes, negative or absurd lengths read nothing and never crash.
    ASSERT_TRUE(c.readData(bytes, sizeof bytes, 2, 1e9, 32, false));
    EXPECT_EQ(c.samples()[0], 0.0f);
    EXPECT_TRUE(c.readData(bytes, sizeof bytes, 1, -5, 16, false));
    EXPECT_FALSE(c.readData(bytes, sizeof bytes, -1, 0, 16, false));
    EXPECT_FALSE(c.readData(bytes, sizeof bytes, 1e300, 0, 16, false));
    EXPECT_TRUE(c.readData(nullptr, 0, 4, 0, 32, false));
}
