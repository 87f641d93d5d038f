#pragma once
// Helpers shared by the data-entry window tests and benchmarks: the cells of long documents (and,
// from the headers below, documents, widget events and recordings as the bytes of WAVE files).
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"
#include "support/WidgetEvents.h"
#include <QApplication>
#include <QWidget>

// The value of table column `column` (frame column-1) in `row`, for 10 ms frames.
inline int cellValue(const MyDocument& doc, int column, int row)
{
    return doc._dataTableDictionary.cellAt(column * 10LL, row)->_nValue();
}

// Shows the graphical window with a content area (what the plots share, below the menu bar) of
// `width` x `height`.
template <typename Controller> void showContentAt(Controller& controller, int width, int height)
{
    QWidget* window = controller.window();
    window->show();
    const QSize content = controller._viewF0()->parentWidget()->size();
    window->resize(window->width() + (width - content.width()),
                   window->height() + (height - content.height()));
    QApplication::processEvents();
}
