#include "display/SpectrogramComputation.h"

#include "analysis/CMathFunc.h"

#include <algorithm>
#include <cmath>

namespace
{

// A sample count held as a double, made safe to truncate: not finite or negative reads 0.
double usableLength(double length)
{
    if (!std::isfinite(length) || length < 0.0)
        return 0.0;
    return std::min(length, 9.0e15);
}

// Copies samples from index trunc(start) on into out, each times `scale`. When the span fits
// (start + fit <= length) the copy runs below trunc(start + copyLength). Otherwise it runs below
// trunc(length - start): the start is subtracted from the length a second time, so frames near
// the end receive fewer samples than the channel holds and keep the rest of what they held.
// Intended: the last columns of every spectrogram look this way. Never reads beyond the
// channel's block nor writes beyond `capacity` values.
void copySpan(const Channels& channel, double length, double start, double fit, double copyLength,
              double scale, double* out, std::size_t capacity)
{
    const float* x = channel.samples();
    if (!x)
        return;
    const double bound = start + fit <= length ? std::trunc(start + copyLength) : std::trunc(length - start);
    const long long first = static_cast<long long>(start);
    long long last = static_cast<long long>(std::min(bound, static_cast<double>(first + capacity)));
    last = std::min(last, static_cast<long long>(channel.sampleCount()));
    for (long long i = first; i < last; ++i)
        out[i - first] = x[i] * scale;
}

// Samples of the LPC frame: trunc(sampleRate / 1000) x the LPC order, the order taken at most
// as large as the LPC records allow.
int lpcFrameLength(double sampleRate, int order)
{
    const double perMS = std::isfinite(sampleRate) ? std::clamp(sampleRate / 1000.0, 0.0, 1.0e6) : 0.0;
    return static_cast<int>(perMS) * std::clamp(order, 0, kMaxLpcOrder);
}

} // namespace

void SpectrogramComputation::SetupDisplay(int width, int height, double sampleRate)
{
    width = std::max(width, 0);
    height = std::max(height, 0);
    m_rSpectrogram = ShortRect{0, 0, static_cast<std::int16_t>(std::min(height, 32767)),
                               static_cast<std::int16_t>(std::min(width, 32767))};
    m_nDisplayRange = width;
    m_nDisplayVerticalRange = height;
    m_nFormantsFrames = width;
    const int lpcLength = lpcFrameLength(sampleRate, m_settings.m_nSpecLPCNumberofCoefficients);
    m_nDataStorageLength = std::max({lpcLength, m_settings.m_nSpecWindowLength, height, 0});
}

void SpectrogramComputation::GetStorage()
{
    m_nAllocatedStorageAmount = 0;
    DeleteAllDataStorage();
    m_phdDataFile.assign(static_cast<std::size_t>(m_nDisplayRange) * (m_nDataStorageLength + 100), 0.0);
    if (m_settings.m_bSpecDrawFormantTracking) {
        m_phsnFormants.assign(static_cast<std::size_t>(m_nFormantsFrames), FormantRecord{});
        m_nAllocatedStorageAmount = m_nFormantsFrames;
    }
}

void SpectrogramComputation::DeleteAllDataStorage()
{
    m_phdDataFile.clear();
    m_phdDataFile.shrink_to_fit();
    m_phsnFormants.clear();
    m_nAllocatedStorageAmount = 0;
    m_bHaveSpectrogram = 0;
    m_bHaveFormants = 0;
}

bool SpectrogramComputation::compute(const Channels& channel, int width, int height,
                                     const std::atomic<bool>* cancel)
{
    SetupDisplay(width, height, channel.m_dSampleRate);
    GetStorage();
    return DoSpectrogram(channel, cancel);
}

void SpectrogramComputation::copyLevelFrame(const Channels& channel, double start, double* frame) const
{
    const double w = m_settings.m_nSpecWindowLength;
    const double scale = m_settings.m_nSpecDynamicRange * 100.0;
    copySpan(channel, m_dwFileLength, start, w + 10, w + 10, scale, frame,
             static_cast<std::size_t>(m_nDataStorageLength + 100));
}

void SpectrogramComputation::findFormants(const Channels& channel, double start,
                                          std::vector<double>& lpcBuffer, int column)
{
    const int order = m_settings.m_nSpecLPCNumberofCoefficients;
    const int L = static_cast<int>(lpcBuffer.size()) - 20;
    copySpan(channel, m_dwFileLength, start, L, L + 5, 1.0, lpcBuffer.data(), lpcBuffer.size());
    CMathFunc math;
    math.DoLPC(lpcBuffer.data(), order, L, m_settings.m_dPreEmphasis, 1, 0, m_nDisplayVerticalRange,
               m_settings.m_nSpecfrequencyRange, m_dSampleRate, 1, 1);

    packFormants(lp_Roots, m_phsnFormants[column]);
}

void SpectrogramComputation::packFormants(const RootRecord* roots, FormantRecord& record)
{
    std::fill(record.begin(), record.begin() + 5, std::int16_t(-1));
    if (!roots)
        return;
    int slot = 0;
    for (int j = 0; j < 5; ++j) {
        const double f = roots->frequency[j] + 0.5;
        const double b = roots->bandwidth[j] + 0.5;
        // Rejected candidates leave no gap.
        if (b * gRatioFormantBanswodth <= f)
            record[slot++] = static_cast<std::int16_t>(std::min(std::trunc(f), 32767.0));
    }
}

bool SpectrogramComputation::DoSpectrogram(const Channels& channel, const std::atomic<bool>* cancel)
{
    m_bHaveSpectrogram = 0;
    m_bHaveFormants = 0;
    const int W = m_nDisplayRange;
    const int H = m_nDisplayVerticalRange;
    // Storage made for another geometry (SetupDisplay again without GetStorage) is not used.
    if (W <= 0 || H <= 0 || m_phdDataFile.size() < frameOffset(W))
        return false;
    m_dSampleRate = channel.m_dSampleRate;
    m_dwFileLength = usableLength(channel.m_dwFileLength);
    const bool tracking =
        m_settings.m_bSpecDrawFormantTracking && m_phsnFormants.size() >= static_cast<std::size_t>(W);

    // The LPC frame lasts as many milliseconds as the LPC order has coefficients. Its buffer
    // lives for the whole run, so a short frame near the end keeps the previous column's tail.
    const int lpcLength = lpcFrameLength(m_dSampleRate, m_settings.m_nSpecLPCNumberofCoefficients);
    std::vector<double> lpcBuffer(static_cast<std::size_t>(lpcLength) + 20, 0.0);
    const double spacing = m_dwFileLength / W;
    CMathFunc math;
    for (int i = 0; i < W; ++i) {
        if (cancel && cancel->load(std::memory_order_relaxed))
            return false;
        const double start = i * spacing;
        double* frame = &m_phdDataFile[frameOffset(i)];
        copyLevelFrame(channel, start, frame);
        math.DoFFT_Real(frame, m_settings.m_nSpecWindowLength, m_settings.m_dPreEmphasis, 1, 1, H,
                        m_settings.m_nSpecfrequencyRange, m_dSampleRate);
        if (tracking)
            findFormants(channel, start, lpcBuffer, i);
    }
    normalize();
    if (tracking)
        gateQuietColumns();
    m_bHaveSpectrogram = 1;
    m_bHaveFormants = tracking ? 1 : 0;
    m_bRedraw = 1;
    return true;
}

void SpectrogramComputation::normalize()
{
    const int W = m_nDisplayRange;
    const int H = m_nDisplayVerticalRange;
    const double range = m_settings.m_nSpecDynamicRange;
    // The ten columns at each edge stay out of the maximum; a display of 20 columns or fewer
    // has no maximum at all and every level is lifted by ten million dB.
    double peak = -10000000.0;
    for (int i = 10; i <= W - 11; ++i) {
        const double* frame = &m_phdDataFile[frameOffset(i)];
        peak = std::max(peak, *std::max_element(frame, frame + H));
    }
    for (int i = 0; i < W; ++i) {
        double* frame = &m_phdDataFile[frameOffset(i)];
        for (int y = 0; y < H; ++y)
            frame[y] = std::max(0.0, range + (frame[y] - peak));
    }
}

void SpectrogramComputation::gateQuietColumns()
{
    const int H = m_nDisplayVerticalRange;
    const double floor = m_settings.m_nSpecDynamicRange * 0.3;
    const int perRecord = m_nDisplayRange / m_nFormantsFrames;
    for (int i = 0; i < m_nFormantsFrames; ++i) {
        const double* frame = &m_phdDataFile[frameOffset(i * perRecord)];
        double loudest = -100000.0;
        for (int y = 0; y < H; ++y)
            loudest = std::max(loudest, frame[y]);
        // Only the first four slots are cleared; the fifth keeps its formant. Intended.
        if (loudest < floor)
            std::fill(m_phsnFormants[i].begin(), m_phsnFormants[i].begin() + 4, std::int16_t(-1));
    }
}

double SpectrogramComputation::GetSpectrogramAmplitue(double verticalExtent, double horizontalExtent,
                                                      int dynamicRange, double ceiling, int vertical,
                                                      int horizontal) const
{
    if (!m_bHaveSpectrogram || !(verticalExtent > 0.0) || !(horizontalExtent > 0.0))
        return 0.0;
    const double columnAt = std::trunc(horizontal * static_cast<double>(m_nDisplayRange) / horizontalExtent);
    const double rowAt = std::trunc(vertical * static_cast<double>(m_nDisplayVerticalRange) / verticalExtent);
    const int column = static_cast<int>(std::clamp(columnAt, 0.0, m_nDisplayRange - 1.0));
    const int row = static_cast<int>(std::clamp(rowAt, 0.0, m_nDisplayVerticalRange - 1.0));
    const double amplitude = ceiling - dynamicRange + level(column, row);
    return std::clamp(amplitude, 0.0, std::max(ceiling, 0.0));
}
