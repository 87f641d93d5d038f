#pragma once
// Small helpers of the data-entry windows: conversions between the document's colours and
// Qt's for the colour wells (an unset document colour reads as black), the window title, and
// the mapping of a view's height to its value scale.
#include "document/Color.h"
#include "document/MyDocument.h"

#include <QColor>
#include <QFileInfo>
#include <QPointF>
#include <QSize>
#include <QString>

#include <cmath>

inline QColor toQColor(const Color& c)
{
    if (!c.isSet)
        return Qt::black;
    return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                            static_cast<float>(c.blue), static_cast<float>(c.alpha));
}

inline Color toColor(const QColor& c)
{
    return Color::rgb(c.redF(), c.greenF(), c.blueF(), c.alphaF());
}

// The document's file name; the table that opens a data-entry window puts its prefix before it.
inline QString dataEntryWindowTitle(const MyDocument* doc)
{
    if (doc && !doc->fileURL().empty())
        return QFileInfo(QString::fromStdString(doc->fileURL())).fileName();
    return QStringLiteral("Untitled");
}

// The value at height y of a view `height` pixels high showing 0 .. scale: the bottom edge is 0,
// the top edge the full scale, truncated toward zero.
inline int valueAtHeight(double y, int height, double scale)
{
    if (height <= 0)
        return 0;
    return static_cast<int>(std::trunc((height - y) * scale / height));
}

// Both edges belong to the view: the top edge is the full scale and the bottom edge 0.
inline bool insideView(const QPointF& p, const QSize& size)
{
    return p.x() >= 0.0 && p.y() >= 0.0 && p.x() <= size.width() && p.y() <= size.height();
}
