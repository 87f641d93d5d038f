// A document from rule frames: grid, anchors and table data.
#include "phonemes/PhonemeDocument.h"

#include "document/DocumentException.h"
#include "document/MyDocument.h"

std::unique_ptr<MyDocument> PhonemeDocument::make(const RuleFrames& frames, int sampleRate)
{
    auto document = std::make_unique<MyDocument>();
    fill(*document, frames, sampleRate);
    return document;
}

void PhonemeDocument::fill(MyDocument& document, const RuleFrames& frames, int sampleRate)
{
    if (frames.frames > MyDocument::kMaxFrames)
        throw DocumentException::tooManyFrames(frames.frames, MyDocument::kMaxFrames);
    Channels& c = *document.getChannel(0);
    c.m_nUpdateIntervalMS = frames.intervalMS;
    c.m_nColumnNum = frames.frames;
    c.m_dLengthMS = static_cast<double>(frames.frames) * frames.intervalMS;
    c.m_dSampleRate = sampleRate;
    const bool high = sampleRate > 11025;
    for (int row : {Row::f6, Row::b6, Row::a6f, Row::b6f})
        c.m_Parameters[row].bSelected = high ? 1 : 0;
    document.SetUpDataGridMemory();
    for (int frame = 0; frame < frames.frames; ++frame)
        for (int row = 0; row < kParameterCount; ++row)
            c.m_snppDataImage_Col_Row[frame][row] = static_cast<std::int16_t>(frames.value(row, frame));
    c.m_pAnchorPosition.clear();
    for (const auto& [row, frame] : frames.anchors) {
        c.m_pAnchorPosition.push_back(row);
        c.m_pAnchorPosition.push_back(frame);
    }
    c.m_nNumberofAnchors = static_cast<std::int32_t>(frames.anchors.size());
    c.m_bHaveData = 1;
    c.m_bSynthesize = 1;
    document.m_bReadFile = 1;
    document.buildDataTableDictionary();
}
