#pragma once
// Small helpers of the data-entry windows: conversions between the document's colours and
// Qt's for the colour wells (an unset document colour reads as black), and the window title.
#include "document/Color.h"
#include "document/MyDocument.h"

#include <QColor>
#include <QFileInfo>
#include <QString>

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
