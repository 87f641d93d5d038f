#include "display/gui/FFTLPCWindow.h"

#include "display/gui/PictureExport.h"
#include "display/gui/sliceView.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>

#include <algorithm>
#include <cmath>

FFTLPCWindow::FFTLPCWindow(mainTable* table, double startSample, QWidget* parent)
    : QMainWindow(parent, Qt::Window), m_pTable(table), m_pDoc(table->document())
{
    setAttribute(Qt::WA_DeleteOnClose);
    m_pView = new sliceView(this);
    setCentralWidget(m_pView);
    m_pStatus = new QLabel(this);
    statusBar()->addWidget(m_pStatus, 1);
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Export Picture..."), QKeySequence(tr("Ctrl+E")), this, &FFTLPCWindow::exportPicture);
    file->addAction(tr("&Print..."), QKeySequence::Print, this, &FFTLPCWindow::printPicture);
    file->addSeparator();
    file->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);
    // A new synthesis changes what the slice shows.
    connect(table, &mainTable::synthesized, this, &FFTLPCWindow::recompute);
    connect(table, &mainTable::analysisSettingsChanged, this, &FFTLPCWindow::recompute);
    setWindowTitle(documentName());
    setFocusPolicy(Qt::StrongFocus);
    resize(680, 480);
    set_nStartFile(startSample);
}

QString FFTLPCWindow::documentName() const
{
    const QString path = QString::fromStdString(m_pDoc->fileURL());
    return path.isEmpty() ? tr("Untitled") : QFileInfo(path).fileName();
}

int FFTLPCWindow::frameOf(double startSample) const
{
    const Channels& c = *m_pDoc->getChannel(0);
    if (c.m_nColumnNum < 1 || !(c.m_dwFileLength > 0.0))
        return 0;
    // Frame k (from 1) starts at trunc((k - 1) x samples / frames): one sample more reaches
    // past that boundary whatever the truncation took away.
    return static_cast<int>(std::floor((startSample + 1.0) * c.m_nColumnNum / c.m_dwFileLength)) + 1;
}

QString FFTLPCWindow::frameSpan(int frame) const
{
    Channels& c = *m_pDoc->getChannel(0);
    if (c.m_nUpdateIntervalMS < 1)
        c.m_nUpdateIntervalMS = 10;
    const qlonglong interval = c.m_nUpdateIntervalMS;
    const qlonglong end = static_cast<qlonglong>(frame) * interval;
    return tr("%1-%2 ms").arg(std::max(0LL, end - interval)).arg(end);
}

void FFTLPCWindow::set_nStartFile(double startSample)
{
    m_nStartFile = std::max(0.0, std::trunc(startSample));
    recompute();
}

void FFTLPCWindow::setTimeMS(double ms)
{
    set_nStartFile(ms * m_pDoc->getChannel(0)->m_dSampleRate / 1000.0);
}

void FFTLPCWindow::stepFrames(int frames)
{
    const Channels& c = *m_pDoc->getChannel(0);
    if (c.m_nColumnNum < 1 || !(c.m_dwFileLength > 0.0))
        return;
    const double perFrame = c.m_dwFileLength / c.m_nColumnNum;
    // The frame the start lies in (from 0), then whole frames from there.
    const int frame = frameOf(m_nStartFile) - 1;
    const int target = std::clamp(frame + frames, 0, c.m_nColumnNum - 1);
    set_nStartFile(std::trunc(target * perFrame));
}

void FFTLPCWindow::recompute()
{
    const Channels& synthesis = *m_pDoc->getChannel(0);
    const Channels& model = *m_pDoc->getChannel(2);
    const SliceSettings settings = SliceSettings::fromDocument(*m_pDoc);
    const double rate = synthesis.m_dSampleRate;
    const double ms = rate > 0 ? m_nStartFile * 1000.0 / rate : 0.0;
    SliceComputation own(settings);
    own.compute(synthesis, m_nStartFile);
    std::optional<SliceComputation> copied;
    if (model.hasAudio()) {
        copied.emplace(settings);
        copied->compute(model, std::trunc(ms * model.m_dSampleRate / 1000.0));
    }
    const int frame = frameOf(m_nStartFile);
    // Named as the table names it: the column titled 710 is frame 71, which covers 700-710 ms.
    QString span = frameSpan(frame);
    if (m_segmentNamer) {
        const double interval = std::max(m_pDoc->updateInterval(), 1);
        if (const QString segment = m_segmentNamer((frame - 0.5) * interval); !segment.isEmpty())
            span += QStringLiteral(", ") + segment;
    }
    const QString title = tr("frame %1, %2").arg(frame).arg(span);
    m_pView->setSlices(std::move(own), std::move(copied), SlicePlotStyle::fromDocument(*m_pDoc, true), title);
    QString status = tr("Frame %1, %2; slice from %3 ms, sample %4; Left and Right step one frame")
                         .arg(frame)
                         .arg(span)
                         .arg(ms, 0, 'f', 1)
                         .arg(static_cast<qlonglong>(m_nStartFile));
    if (m_pView->synthesisSlice().m_dFFT.empty())
        status = tr("No synthesis at %1 ms").arg(ms, 0, 'f', 1);
    m_pStatus->setText(status);
}

void FFTLPCWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Left)
        stepFrames(-1);
    else if (event->key() == Qt::Key_Right)
        stepFrames(1);
    else if (event->key() == Qt::Key_Space && m_pTable)
        m_pTable->_PlayCurrent();
    else
        QMainWindow::keyPressEvent(event);
}

void FFTLPCWindow::setSegmentNamer(SegmentNamer namer)
{
    m_segmentNamer = std::move(namer);
    recompute();
}

void FFTLPCWindow::exportPicture()
{
    const SlicePlotStyle style = SlicePlotStyle::fromDocument(*m_pDoc, false);
    PictureExport::exportPicture(
        this, [this, style](QPainter& p, const QSizeF& size) { m_pView->drawPicture(p, size, style); },
        PictureExport::sizeInInches(m_pDoc->m_dFFTWidth, m_pDoc->m_dFFTHeight, m_pDoc->m_bFFTInches != 0),
        QFileInfo(documentName()).completeBaseName() + QStringLiteral("-slice"));
}

void FFTLPCWindow::printPicture()
{
    const SlicePlotStyle style = SlicePlotStyle::fromDocument(*m_pDoc, false);
    PictureExport::printPicture(
        this, [this, style](QPainter& p, const QSizeF& size) { m_pView->drawPicture(p, size, style); },
        PictureExport::sizeInInches(m_pDoc->m_dFFTWidth, m_pDoc->m_dFFTHeight, m_pDoc->m_bFFTInches != 0));
}
