#pragma once
// Helpers shared by the data-entry window tests and benchmarks: a window shown at a given content
// size (and, from the headers below, documents and their cells, widget events and recordings as the
// bytes of WAVE files).
#include "document/MyDocument.h"
#include "support/DocumentTestSupport.h"
#include "support/TestChannels.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"
#include "support/WidgetEvents.h"
#include <QApplication>
#include <QWidget>

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
