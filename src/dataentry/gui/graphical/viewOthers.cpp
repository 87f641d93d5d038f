#include "dataentry/gui/graphical/viewOthers.h"

#include <QPainter>

viewOthers::viewOthers(QWidget* parent)
    : TrackPlotView(90,
                    {{"a1f", Row::a1f},
                     {"a2f", Row::a2f},
                     {"a3f", Row::a3f},
                     {"a4f", Row::a4f},
                     {"a5f", Row::a5f},
                     {"av", Row::av},
                     {"apv", Row::apv}},
                    parent)
{
}

QString viewOthers::caption() const
{
    for (const Track& track : tracks()) {
        if (!track.active)
            continue;
        // The parameter's own description names it ("a1f = First formant parallel ...").
        const char* definition =
            document() ? document()->getChannel(0)->m_Parameters[track.row].strDefinition : nullptr;
        const QString text = definition ? QString::fromUtf8(definition).simplified() : QString();
        return text.isEmpty() ? QString::fromUtf8(track.name) : text;
    }
    return {};
}

QRect viewOthers::captionBox() const
{
    const QString text = caption();
    if (text.isEmpty())
        return {};
    const QRect box = fontMetrics().boundingRect(text).adjusted(-4, -1, 4, 1);
    return QRect(width() - box.width() - 6, 4, box.width(), box.height());
}

void viewOthers::drawCaption(QPainter& painter)
{
    const QRect at = captionBox();
    if (at.isEmpty())
        return;
    painter.fillRect(at, QColor(255, 255, 255, 200));
    painter.setPen(Qt::black);
    painter.drawText(at, Qt::AlignCenter, caption());
}
