#include "stimulus/StimulusFile.h"

#include "document/AtomicFile.h"
#include "document/DocumentException.h"
#include "document/PcmWaveWriter.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace
{

double toDb(double power)
{
    return power > 0.0 ? 10.0 * std::log10(power) : -std::numeric_limits<double>::infinity();
}

// Levels of integer samples of full scale `scale`, gathered one sample at a time.
class StoredLevels
{
public:
    void add(std::int32_t v)
    {
        m_sum += double(v) * v;
        m_peak = std::max(m_peak, std::fabs(double(v)));
        ++m_count;
    }
    void into(double scale, StimulusFigures& figures) const
    {
        figures.rmsDb = toDb(m_count == 0 ? 0.0 : m_sum / double(m_count) / (scale * scale));
        figures.peakDb = toDb(m_peak * m_peak / (scale * scale));
    }

private:
    double m_sum = 0.0;
    double m_peak = 0.0;
    std::size_t m_count = 0;
};

// A growing file image in memory that libsndfile writes into as if it were a file: the FLAC
// encoder goes back to the start to fill in the stream header when it finishes.
struct MemoryFile {
    std::string bytes;
    sf_count_t position = 0;
};

SF_VIRTUAL_IO memoryIo()
{
    SF_VIRTUAL_IO io{};
    io.get_filelen = [](void* f) { return sf_count_t(static_cast<MemoryFile*>(f)->bytes.size()); };
    io.seek = [](sf_count_t offset, int whence, void* f) {
        auto* m = static_cast<MemoryFile*>(f);
        const sf_count_t base = whence == SEEK_SET   ? 0
                                : whence == SEEK_CUR ? m->position
                                                     : sf_count_t(m->bytes.size());
        m->position = std::max<sf_count_t>(0, base + offset);
        return m->position;
    };
    io.read = [](void* out, sf_count_t count, void* f) {
        auto* m = static_cast<MemoryFile*>(f);
        const sf_count_t size = sf_count_t(m->bytes.size());
        const sf_count_t n = std::max<sf_count_t>(0, std::min(count, size - m->position));
        std::memcpy(out, m->bytes.data() + m->position, std::size_t(n));
        m->position += n;
        return n;
    };
    io.write = [](const void* in, sf_count_t count, void* f) {
        auto* m = static_cast<MemoryFile*>(f);
        const auto end = std::size_t(m->position + count);
        if (end > m->bytes.size())
            m->bytes.resize(end);
        std::memcpy(m->bytes.data() + m->position, in, std::size_t(count));
        m->position += count;
        return count;
    };
    io.tell = [](void* f) { return static_cast<MemoryFile*>(f)->position; };
    return io;
}

std::string encodeFlac(const std::vector<std::int32_t>& stored, int rate, int bits)
{
    MemoryFile file;
    SF_VIRTUAL_IO io = memoryIo();
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = 1;
    info.format = SF_FORMAT_FLAC | (bits == 24 ? SF_FORMAT_PCM_24 : SF_FORMAT_PCM_16);
    SNDFILE* sf = sf_open_virtual(&io, SFM_WRITE, &info, &file);
    if (!sf)
        throw DocumentException("FLAC", sf_strerror(nullptr));
    // libsndfile takes ints as 32-bit full scale: the stored values go in the top bits, so
    // that it keeps them exactly.
    std::vector<int> wide(stored.size());
    const int shift = 32 - bits;
    for (std::size_t i = 0; i < stored.size(); ++i)
        wide[i] = static_cast<int>(static_cast<std::uint32_t>(stored[i]) << shift);
    const sf_count_t written = sf_write_int(sf, wide.data(), sf_count_t(wide.size()));
    const std::string error = written == sf_count_t(wide.size()) ? "" : sf_strerror(sf);
    if (sf_close(sf) != 0 || !error.empty())
        throw DocumentException("FLAC", error.empty() ? "the encoder failed" : error);
    return std::move(file.bytes);
}

// The samples as stored, with the figures they give.
std::vector<std::int32_t> quantize(const Stimulus& stimulus, double gainDb, int bits,
                                   StimulusFigures& figures)
{
    const std::vector<float>& samples = stimulus.samples();
    std::vector<std::int32_t> stored(samples.size());
    const double gain = std::pow(10.0, gainDb / 20.0);
    long long clipped = 0;
    StoredLevels levels;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        bool limited = false;
        stored[i] = quantizeSample(samples[i], gain, bits, limited);
        clipped += limited ? 1 : 0;
        levels.add(stored[i]);
    }
    figures = StimulusFigures{};
    figures.durationMS = stimulus.durationMS();
    figures.rate = stimulus.rate();
    figures.clipped = clipped;
    figures.gainDb = gainDb;
    levels.into(bits == 24 ? 8388608.0 : 32768.0, figures);
    return stored;
}

} // namespace

const char* StimulusFigures::csvHeader()
{
    return "duration_ms,rate,rms_db,peak_db,clipped,gain_db";
}

std::string StimulusFigures::csvFields() const
{
    char text[160];
    std::snprintf(text, sizeof text, "%.3f,%d,%.2f,%.2f,%lld,%.2f", durationMS, rate, rmsDb, peakDb, clipped,
                  gainDb);
    return text;
}

std::string encodeStimulus(const Stimulus& stimulus, double gainDb, const StimulusOutput& output,
                           StimulusFigures& figures)
{
    const std::vector<std::int32_t> stored = quantize(stimulus, gainDb, output.bits, figures);
    if (output.format == StimulusOutput::Format::Flac)
        return encodeFlac(stored, stimulus.rate(), output.bits);
    std::string image;
    image.reserve(45 + stored.size() * static_cast<std::size_t>(output.bits / 8));
    writePcmWave(stored.data(), stored.size(), static_cast<std::uint32_t>(stimulus.rate()), output.bits,
                 [&image](const char* bytes, std::size_t size) {
                     image.append(bytes, size);
                     return true;
                 });
    return image;
}

StimulusFigures writeStimulus(const std::string& path, const Stimulus& stimulus, double gainDb,
                              const StimulusOutput& output)
{
    StimulusFigures figures;
    int error = 0;
    try {
        if (output.format == StimulusOutput::Format::Flac) {
            error = writeFileAtomically(path, encodeStimulus(stimulus, gainDb, output, figures));
        } else {
            // WAVE goes to the file piece by piece, never held whole.
            const std::vector<std::int32_t> stored = quantize(stimulus, gainDb, output.bits, figures);
            error = writeFileAtomically(path, [&](const PieceWriter& write) {
                return writePcmWave(stored.data(), stored.size(), static_cast<std::uint32_t>(stimulus.rate()),
                                    output.bits, write);
            });
        }
    } catch (const std::bad_alloc&) {
        throw DocumentException(path, "Unable to allocate memory");
    } catch (const DocumentException& e) {
        throw DocumentException(path, e.reason());
    }
    if (error != 0)
        throw DocumentException(path, std::string("cannot write: ") + std::strerror(error));
    return figures;
}

StimulusFigures saveStimulus(const std::string& path, const float* samples, std::size_t count, int rate,
                             const StimulusOutput& output)
{
    Stimulus stimulus;
    try {
        stimulus = Stimulus::prepare(samples, count, rate, output);
    } catch (const DocumentException& error) {
        throw DocumentException(path, error.reason());
    }
    const StimulusLevels levels = stimulus.levels();
    const double gainDb = levelGainDb(output, levels);
    if (output.level != StimulusOutput::Level::Unchanged && !output.allowClip &&
        gainClips(levels, gainDb, output.bits))
        throw DocumentException(path, clipRefusal(output, levels, gainDb));
    return writeStimulus(path, stimulus, gainDb, output);
}

StimulusFigures plainFigures(const float* samples, std::size_t count, int rate)
{
    // Measured as the samples are stored, without keeping them: a long synthesis is not copied.
    StimulusFigures figures;
    StoredLevels levels;
    for (std::size_t i = 0; i < count; ++i) {
        const double v = std::trunc(double(samples[i]) * 32768.0);
        figures.clipped += v >= 32768.0 || v < -32768.0 ? 1 : 0;
        levels.add(static_cast<std::int16_t>(static_cast<std::uint16_t>(
            static_cast<std::int64_t>(std::isfinite(v) && std::fabs(v) < 9e18 ? v : 0.0) & 0xffff)));
    }
    figures.durationMS = rate > 0 ? double(count) * 1000.0 / rate : 0.0;
    figures.rate = rate;
    levels.into(32768.0, figures);
    return figures;
}
