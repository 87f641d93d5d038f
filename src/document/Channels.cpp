#include "document/Channels.h"

#include <algorithm>
#include <cstring>

Channels::Channels() : m_strTitle(std::make_shared<std::string>("channel")) {}

std::size_t Channels::sampleCount() const
{
    if (!m_hData || m_dwFileLength <= 0.0)
        return 0;
    const std::size_t wanted = static_cast<std::size_t>(m_dwFileLength);
    return std::min(wanted, m_hData->size() / sizeof(float));
}

namespace
{
// A copy of a derived-signal block: same length; filled with the source's values or left zero.
std::unique_ptr<MemoryBlock> copyBlock(const std::unique_ptr<MemoryBlock>& source, bool fill)
{
    if (!source)
        return nullptr;
    auto block = fill ? MemoryBlock::newHandle(source->size()) : MemoryBlock::newHandleClear(source->size());
    if (block && fill)
        std::memcpy(block->bytes(), source->bytes(), source->size());
    return block;
}
} // namespace

namespace
{
// The samples a duplicate holds: truncate(m_dwFileLength) of them, as many as the source's block
// has copied and the rest zero. A source without samples yields an empty block, not a missing one.
std::size_t duplicateBytes(const Channels& s)
{
    const std::size_t count = s.m_dwFileLength > 0.0 ? static_cast<std::size_t>(s.m_dwFileLength) : 0;
    return count * sizeof(float);
}

std::unique_ptr<MemoryBlock> copySamples(const Channels& s)
{
    const std::size_t bytes = duplicateBytes(s);
    auto block = MemoryBlock::newHandle(bytes);
    if (!block)
        return block;
    const std::size_t copied = s.m_hData ? std::min(bytes, s.m_hData->size()) : 0;
    if (copied > 0)
        std::memcpy(block->bytes(), s.m_hData->bytes(), copied);
    std::memset(block->bytes() + copied, 0, bytes - copied);
    return block;
}
} // namespace

void Channels::Duplicate(const Channels& s)
{
    m_hData = copySamples(s);
    copyStateFrom(s);
}

void Channels::DuplicateTakingSamples(Channels& s)
{
    // The source's block is exactly what a copy would hold when it has the duplicate's size;
    // a block being played stays where the player took it from.
    if (s.m_hData && s.m_hData->size() == duplicateBytes(s) && !s.m_hData->isLocked())
        m_hData = std::move(s.m_hData);
    else
        m_hData = copySamples(s);
    copyStateFrom(s);
}

void Channels::copyStateFrom(const Channels& s)
{
    m_nChannelType = s.m_nChannelType;
    m_nChannelsinFile = s.m_nChannelsinFile;
    m_dLengthMS = s.m_dLengthMS;
    m_dSampleRate = s.m_dSampleRate;
    m_dwFileLength = s.m_dwFileLength;
    m_nResolutionBits = s.m_nResolutionBits;
    m_nDataType = s.m_nDataType;
    m_rLocation = s.m_rLocation;
    m_nHeigth = s.m_nHeigth;
    m_strTitle = s.m_strTitle; // shared, not copied
    m_nOrder = s.m_nOrder;
    m_bAnchorChannel = s.m_bAnchorChannel;
    m_bShow = s.m_bShow;
    m_nColorRed = s.m_nColorRed;
    m_nColorGreen = s.m_nColorGreen;
    m_nColorBlue = s.m_nColorBlue;
    m_strUnit = s.m_strUnit; // shared, not copied
    m_dGain = s.m_dGain;
    m_dFilterRate = s.m_dFilterRate;
    m_dReference = s.m_dReference;
    m_bDrawReference = s.m_bDrawReference;
    m_dADInputVoltageRangeMV = s.m_dADInputVoltageRangeMV;
    m_dMaxRangeBits = s.m_dMaxRangeBits;
    m_dA3Cal = s.m_dA3Cal;
    m_dB2Cal = s.m_dB2Cal;
    m_dC1Cal = s.m_dC1Cal;
    m_dD0Cal = s.m_dD0Cal;
    m_dPageMin = s.m_dPageMin;
    m_dPageMax = s.m_dPageMax;
    m_dPageSize = s.m_dPageSize;
    m_dPageTimeMin = s.m_dPageTimeMin;
    m_dPageTimeMax = s.m_dPageTimeMax;
    m_dPageTimeSize = s.m_dPageTimeSize;
    m_ptOldCursorLoc = s.m_ptOldCursorLoc;
    m_ptNewCursorLoc = s.m_ptNewCursorLoc;
    m_dCursorDataValue = s.m_dCursorDataValue;
    m_dMarkerDataValue = s.m_dMarkerDataValue;
    m_dCursorFileValue = s.m_dCursorFileValue;
    m_dMarkerFileValue = s.m_dMarkerFileValue;
    m_dCursorTime = s.m_dCursorTime;
    m_dMarkerTime = s.m_dMarkerTime;
    m_dDurationStartTime = s.m_dDurationStartTime;
    m_dDurationStopTime = s.m_dDurationStopTime;
    m_dDurationStartFile = s.m_dDurationStartFile;
    m_dDurationStopFile = s.m_dDurationStopFile;
    m_dDurationTime = s.m_dDurationTime;
    m_dDurationFile = s.m_dDurationFile;
    m_dMinUnZoom = s.m_dMinUnZoom;
    m_dMaxUnZoom = s.m_dMaxUnZoom;

    m_pArrayLabels.clear();
    const std::size_t labels = std::min<std::size_t>(std::max(s.m_nLabelCount, 0), s.m_pArrayLabels.size());
    for (std::size_t i = 0; i < labels; ++i)
        if (s.m_pArrayLabels[i])
            m_pArrayLabels.push_back(std::make_unique<Labels>(*s.m_pArrayLabels[i]));
    m_nLabelCount = s.m_nLabelCount;

    // Intensity and pitch are copied; velocity and acceleration get blocks of the same
    // length that stay zero.
    m_hdIntensity = copyBlock(s.m_hdIntensity, true);
    m_hdPitch = copyBlock(s.m_hdPitch, true);
    m_hdVelocity = copyBlock(s.m_hdVelocity, false);
    m_hdAcceleration = copyBlock(s.m_hdAcceleration, false);
    m_dIntensityWindowLengthMS = s.m_dIntensityWindowLengthMS;
    m_dIntensityStepSizeMS = s.m_dIntensityStepSizeMS;
    m_bDrawIntensity = s.m_bDrawIntensity;
    m_dSmoothNumOfPoints = s.m_dSmoothNumOfPoints;
    m_nVelocityColorRed = s.m_nVelocityColorRed;
    m_nVelocityColorGreen = s.m_nVelocityColorGreen;
    m_nVelocityColorBlue = s.m_nVelocityColorBlue;
    m_dVelocitySmoothingWindow = s.m_dVelocitySmoothingWindow;
    m_nAccelerationColorRed = s.m_nAccelerationColorRed;
    m_nAccelerationColorGreen = s.m_nAccelerationColorGreen;
    m_nAccelerationColorBlue = s.m_nAccelerationColorBlue;
    m_dAccelerationSmoothingWindow = s.m_dAccelerationSmoothingWindow;
    m_dPositionEstimationWindow = s.m_dPositionEstimationWindow;
    m_dVelocityEstimationWindow = s.m_dVelocityEstimationWindow;
    m_dAccelerationEstimationWindow = s.m_dAccelerationEstimationWindow;
    m_dDCShiftWindowMS = s.m_dDCShiftWindowMS;
    m_dThresholdLevelDetectPerCent = s.m_dThresholdLevelDetectPerCent;
}
