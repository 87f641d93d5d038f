#pragma once
// ChannelPlotView: what the spectrogram and pitch views of the analysis window share: one
// channel (`_nChannel`) of a document drawn over the channel's length in ms, a plot area inside
// the widget, and a time cursor. Subclasses say where the plot area lies and draw the picture;
// this class paints it on screen with the cursor over it. Main thread only.
#include <QWidget>

class MyDocument;

class ChannelPlotView : public QWidget
{
public:
    int _nChannel;

    // The time cursor in ms (negative: none).
    double cursorMS() const { return m_dCursorMS; }
    void setCursorMS(double ms);
    // The plot area inside the widget.
    virtual QRect plotArea() const = 0;
    // Draws the picture into `area` of any painter; grids always on screen, else as the
    // document's switches say.
    virtual void drawPicture(QPainter& painter, const QRectF& area, bool forScreen) const = 0;

protected:
    ChannelPlotView(MyDocument* document, int channel, int minimumHeight, QWidget* parent);
    // The channel's length in ms (0 without a sample rate).
    double lengthMS() const;
    // The background, the picture in the plot area and the cursor; the plot area painted.
    QRect paintPicture(QPainter& painter);

    MyDocument* m_pDoc;

private:
    double m_dCursorMS = -1.0;
};
