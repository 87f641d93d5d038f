#pragma once
// A document for the continuum tests: `frames` frames of 10 ms at the factory values, its table
// data built, and a row set to one value in every frame.
#include "document/MyDocument.h"

#include <memory>

inline void setRowValue(MyDocument& document, int row, int value)
{
    for (int frame = 1; frame <= document.getChannel(0)->m_nColumnNum; ++frame)
        document._dataTableDictionary.cellAt(frame * 10LL, row)->set_nValue(value);
}

inline std::unique_ptr<MyDocument> makeTestDocument(int frames)
{
    auto document = std::make_unique<MyDocument>();
    for (int ch = 0; ch < 3; ++ch) {
        document->getChannel(ch)->m_dLengthMS = frames * 10.0;
        document->getChannel(ch)->m_nColumnNum = frames;
    }
    document->SetUpDataGridMemory();
    document->buildDataTableDictionary();
    return document;
}
