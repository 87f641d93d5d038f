#pragma once
// Helpers shared by the data-entry window tests and benchmarks: long documents and their cells
// (and, from the headers below, widget events and recordings as the bytes of WAVE files).
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestFiles.h"
#include "support/WidgetEvents.h"

// A document of `frames` 10 ms frames with factory values and its table data.
inline void makeLong(MyDocument& doc, int frames)
{
    for (int channel = 0; channel < 3; ++channel) {
        Channels* c = doc.getChannel(channel);
        c->m_dLengthMS = frames * 10.0;
        c->m_nColumnNum = frames;
    }
    doc.SetUpDataGridMemory();
    doc.buildDataTableDictionary();
}

// The value of table column `column` (frame column-1) in `row`, for 10 ms frames.
inline int cellValue(const MyDocument& doc, int column, int row)
{
    return doc._dataTableDictionary.cellAt(column * 10LL, row)->_nValue();
}
