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
// The two halves of Channels::copyStateFrom: the file, display and cursor fields; the labels
// and the analysis tracks.
void copyFileAndViewState(Channels& d, const Channels& s)
{
    d.m_nChannelType = s.m_nChannelType;
    d.m_nChannelsinFile = s.m_nChannelsinFile;
    d.m_dLengthMS = s.m_dLengthMS;
    d.m_dSampleRate = s.m_dSampleRate;
    d.m_dwFileLength = s.m_dwFileLength;
    d.m_nResolutionBits = s.m_nResolutionBits;
    d.m_nDataType = s.m_nDataType;
    d.m_rLocation = s.m_rLocation;
    d.m_nHeigth = s.m_nHeigth;
    d.m_strTitle = s.m_strTitle; // shared, not copied
    d.m_nOrder = s.m_nOrder;
    d.m_bAnchorChannel = s.m_bAnchorChannel;
    d.m_bShow = s.m_bShow;
    d.m_nColorRed = s.m_nColorRed;
    d.m_nColorGreen = s.m_nColorGreen;
    d.m_nColorBlue = s.m_nColorBlue;
    d.m_strUnit = s.m_strUnit; // shared, not copied
    d.m_dGain = s.m_dGain;
    d.m_dFilterRate = s.m_dFilterRate;
    d.m_dReference = s.m_dReference;
    d.m_bDrawReference = s.m_bDrawReference;
    d.m_dADInputVoltageRangeMV = s.m_dADInputVoltageRangeMV;
    d.m_dMaxRangeBits = s.m_dMaxRangeBits;
    d.m_dA3Cal = s.m_dA3Cal;
    d.m_dB2Cal = s.m_dB2Cal;
    d.m_dC1Cal = s.m_dC1Cal;
    d.m_dD0Cal = s.m_dD0Cal;
    d.m_dPageMin = s.m_dPageMin;
    d.m_dPageMax = s.m_dPageMax;
    d.m_dPageSize = s.m_dPageSize;
    d.m_dPageTimeMin = s.m_dPageTimeMin;
    d.m_dPageTimeMax = s.m_dPageTimeMax;
    d.m_dPageTimeSize = s.m_dPageTimeSize;
    d.m_ptOldCursorLoc = s.m_ptOldCursorLoc;
    d.m_ptNewCursorLoc = s.m_ptNewCursorLoc;
    d.m_dCursorDataValue = s.m_dCursorDataValue;
    d.m_dMarkerDataValue = s.m_dMarkerDataValue;
    d.m_dCursorFileValue = s.m_dCursorFileValue;
    d.m_dMarkerFileValue = s.m_dMarkerFileValue;
    d.m_dCursorTime = s.m_dCursorTime;
    d.m_dMarkerTime = s.m_dMarkerTime;
    d.m_dDurationStartTime = s.m_dDurationStartTime;
    d.m_dDurationStopTime = s.m_dDurationStopTime;
    d.m_dDurationStartFile = s.m_dDurationStartFile;
    d.m_dDurationStopFile = s.m_dDurationStopFile;
    d.m_dDurationTime = s.m_dDurationTime;
    d.m_dDurationFile = s.m_dDurationFile;
    d.m_dMinUnZoom = s.m_dMinUnZoom;
    d.m_dMaxUnZoom = s.m_dMaxUnZoom;
}

void copyLabelsAndTracks(Channels& d, const Channels& s)
{
    d.m_pArrayLabels.clear();
    const std::size_t labels = std::min<std::size_t>(std::max(s.m_nLabelCount, 0), s.m_pArrayLabels.size());
    for (std::size_t i = 0; i < labels; ++i)
        if (s.m_pArrayLabels[i])
            d.m_pArrayLabels.push_back(std::make_unique<Labels>(*s.m_pArrayLabels[i]));
    d.m_nLabelCount = s.m_nLabelCount;

    // Intensity and pitch are copied; velocity and acceleration get blocks of the same
    // length that stay zero.
    d.m_hdIntensity = copyBlock(s.m_hdIntensity, true);
    d.m_hdPitch = copyBlock(s.m_hdPitch, true);
    d.m_hdVelocity = copyBlock(s.m_hdVelocity, false);
    d.m_hdAcceleration = copyBlock(s.m_hdAcceleration, false);
    d.m_dIntensityWindowLengthMS = s.m_dIntensityWindowLengthMS;
    d.m_dIntensityStepSizeMS = s.m_dIntensityStepSizeMS;
    d.m_bDrawIntensity = s.m_bDrawIntensity;
    d.m_dSmoothNumOfPoints = s.m_dSmoothNumOfPoints;
    d.m_nVelocityColorRed = s.m_nVelocityColorRed;
    d.m_nVelocityColorGreen = s.m_nVelocityColorGreen;
    d.m_nVelocityColorBlue = s.m_nVelocityColorBlue;
    d.m_dVelocitySmoothingWindow = s.m_dVelocitySmoothingWindow;
    d.m_nAccelerationColorRed = s.m_nAccelerationColorRed;
    d.m_nAccelerationColorGreen = s.m_nAccelerationColorGreen;
    d.m_nAccelerationColorBlue = s.m_nAccelerationColorBlue;
    d.m_dAccelerationSmoothingWindow = s.m_dAccelerationSmoothingWindow;
    d.m_dPositionEstimationWindow = s.m_dPositionEstimationWindow;
    d.m_dVelocityEstimationWindow = s.m_dVelocityEstimationWindow;
    d.m_dAccelerationEstimationWindow = s.m_dAccelerationEstimationWindow;
    d.m_dDCShiftWindowMS = s.m_dDCShiftWindowMS;
    d.m_dThresholdLevelDetectPerCent = s.m_dThresholdLevelDetectPerCent;
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
    copyFileAndViewState(*this, s);
    copyLabelsAndTracks(*this, s);
}
