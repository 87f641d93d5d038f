#pragma once
// FFTLPCWindow: the FFT/LPC slice window of one document. It shows the slice of the synthesis
// (channel 0) from a start sample and, when the model channel holds audio, the model's slice
// at the same time over it with the spectral distance of the two. Left and Right step one
// frame of the table; the spectrogram windows move it to their time cursor. File > Export
// Picture... and Print... write the picture at the settings' size. With a segment namer
// installed (the document's labels), the title also names the segments the frame lies in.
//
// The slices are computed on the main thread when the start moves: a slice takes well under a
// millisecond. The window belongs to the document window (it closes with it); it reads the
// document and reaches the table for synthesis only while both exist. Main thread only.
#include <QMainWindow>
#include <QPointer>

#include <functional>

class MyDocument;
class mainTable;
class sliceView;
class QLabel;

class FFTLPCWindow : public QMainWindow
{
    Q_OBJECT
public:
    FFTLPCWindow(mainTable* table, double startSample, QWidget* parent);

    // The start of the slice in samples of channel 0 (truncated toward zero).
    void set_nStartFile(double startSample);
    double startSample() const { return m_nStartFile; }
    // Moves the slice to a time in ms of channel 0.
    void setTimeMS(double ms);
    // The frame of the table (1 = the first) a start sample of channel 0 lies in.
    int frameOf(double startSample) const;
    // A frame's span in the table's terms: frame 71 of 10 ms frames is "700-710 ms".
    QString frameSpan(int frame) const;
    // Steps by whole frames of the table (negative: back), staying within the utterance.
    void stepFrames(int frames);

    sliceView* view() const { return m_pView; }

    // What lies at a time in ms ("words: bad; phones: æ"), empty for nothing; shown after the
    // frame in the title and the status line.
    using SegmentNamer = std::function<QString(double ms)>;
    void setSegmentNamer(SegmentNamer namer);

public slots:
    void exportPicture();
    void printPicture();
    // Recomputes both slices from the document's current settings and samples.
    void recompute();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString documentName() const;

    QPointer<mainTable> m_pTable;
    MyDocument* m_pDoc;
    double m_nStartFile = 0.0;
    sliceView* m_pView;
    QLabel* m_pStatus;
    SegmentNamer m_segmentNamer;
};
