#pragma once
// Channels carrying generated samples for the display computation tests.
#include "document/Channels.h"

#include <cstring>
#include <memory>
#include <vector>

inline std::unique_ptr<Channels> channelOf(const std::vector<float>& samples, double sampleRate)
{
    auto channel = std::make_unique<Channels>();
    channel->m_hData = MemoryBlock::newHandleClear(samples.size() * sizeof(float));
    if (!samples.empty())
        std::memcpy(channel->m_hData->bytes(), samples.data(), samples.size() * sizeof(float));
    channel->m_dSampleRate = sampleRate;
    channel->m_dwFileLength = static_cast<double>(samples.size());
    channel->m_dLengthMS = samples.size() * 1000.0 / sampleRate;
    return channel;
}
