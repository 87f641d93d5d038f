#pragma once
// SpectrogramPitchWindow: the spectrogram and pitch window of one channel of a document (0 the
// table data, 2 the model): the spectrogram with its formant tracks above, the pitch track
// below, one time axis. The window of the table data follows later syntheses. Clicking sets a
// time cursor in both views, shows time, frequency and level in the status line and moves the
// document's FFT/LPC window to that time; Space plays the channel shown. File > Export
// Picture... and Print... write both views at the settings' size, with the strip installed
// under them (the document's labels, see setPictureStrip).
//
// A new window is made for every command; it belongs to the document window and closes with
// it. Main thread only.
#include <QMainWindow>
#include <QPointer>
#include <QRectF>

#include <functional>
#include <vector>

class MyDocument;
class mainTable;
class pitchView;
class spectrogramView;
class QLabel;

class SpectrogramPitchWindow : public QMainWindow
{
    Q_OBJECT
public:
    SpectrogramPitchWindow(mainTable* table, int channel, QWidget* parent);

    spectrogramView* spectrogram() const { return m_pSpectrogram; }
    pitchView* pitch() const { return m_pPitch; }
    int channel() const { return m_nChannel; }
    MyDocument* document() const { return m_pDoc; }

    // The picture of both views over `size` units (points for files and paper).
    void drawPicture(QPainter& painter, const QSizeF& size, bool forScreen) const;

    // What the picture shows under the views, across their time axis: its height on a painter,
    // and its drawing in `area` for the channel's `seconds`, with `plots` the views' plot areas
    // (for lines drawn through them). Without one the views take the whole picture.
    struct PictureStrip {
        std::function<double(QPainter&)> height;
        std::function<void(QPainter&, const QRectF& area, double seconds, const std::vector<QRectF>& plots)>
            draw;
    };
    void setPictureStrip(PictureStrip strip) { m_pictureStrip = std::move(strip); }

public slots:
    // Recomputes both views (after a synthesis of the channel shown).
    void setupViews();
    void exportPicture();
    void printPicture();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void cursorMoved(double ms, double hz, double levelDB);
    QString documentName() const;

    QPointer<mainTable> m_pTable;
    MyDocument* m_pDoc;
    int m_nChannel;
    spectrogramView* m_pSpectrogram;
    pitchView* m_pPitch;
    QLabel* m_pStatus;
    PictureStrip m_pictureStrip;
};
