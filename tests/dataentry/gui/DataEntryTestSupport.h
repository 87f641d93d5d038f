#pragma once
// Helpers shared by the data-entry window tests and benchmarks: the cells of long documents (and,
// from the headers below, documents, widget events and recordings as the bytes of WAVE files).
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"
#include "support/WidgetEvents.h"

// The value of table column `column` (frame column-1) in `row`, for 10 ms frames.
inline int cellValue(const MyDocument& doc, int column, int row)
{
    return doc._dataTableDictionary.cellAt(column * 10LL, row)->_nValue();
}
