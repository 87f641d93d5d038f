#pragma once
// Channels carrying generated samples, for the tests of the computations that read them and of
// the commands and windows that open them, and the same samples as the bytes of a WAVE file
// written by the document's own writer.
#include "document/MyDocument.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

// Replaces the channel's samples; its rate and sample count follow.
inline void setSamples(Channels& channel, const std::vector<float>& samples, double sampleRate)
{
    channel.m_hData = MemoryBlock::newHandleClear(samples.size() * sizeof(float));
    if (!samples.empty())
        std::memcpy(channel.m_hData->bytes(), samples.data(), samples.size() * sizeof(float));
    channel.m_dSampleRate = sampleRate;
    channel.m_dwFileLength = static_cast<double>(samples.size());
}

inline std::unique_ptr<Channels> channelOf(const std::vector<float>& samples, double sampleRate)
{
    auto channel = std::make_unique<Channels>();
    setSamples(*channel, samples, sampleRate);
    channel->m_dLengthMS = samples.size() * 1000.0 / sampleRate;
    return channel;
}

inline std::string waveFileBytes(const std::vector<float>& samples, double sampleRate)
{
    MyDocument writer;
    setSamples(*writer.getChannel(0), samples, sampleRate);
    return writer.save_Wave_FileType();
}
