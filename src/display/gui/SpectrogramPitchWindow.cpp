#include "display/gui/SpectrogramPitchWindow.h"

#include "display/gui/FFTLPCWindow.h"
#include "display/gui/PictureExport.h"
#include "display/gui/pitchView.h"
#include "display/gui/spectrogramView.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QSplitter>
#include <QStatusBar>
#include <QTimer>

namespace
{
// Share of the height the spectrogram takes; the pitch track has the rest.
constexpr double kSpectrogramShare = 0.7;
} // namespace

SpectrogramPitchWindow::SpectrogramPitchWindow(mainTable* table, int channel, QWidget* parent)
    : QMainWindow(parent, Qt::Window), m_pTable(table), m_pDoc(table->document()), m_nChannel(channel)
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    m_pSpectrogram = new spectrogramView(m_pDoc, channel, splitter);
    m_pPitch = new pitchView(m_pDoc, channel, splitter);
    splitter->addWidget(m_pSpectrogram);
    splitter->addWidget(m_pPitch);
    splitter->setStretchFactor(0, 7);
    splitter->setStretchFactor(1, 3);
    setCentralWidget(splitter);
    m_pStatus = new QLabel(tr("Click to set the time cursor; Space plays"), this);
    statusBar()->addWidget(m_pStatus, 1);

    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&Export Picture..."), QKeySequence(tr("Ctrl+E")), this,
                    &SpectrogramPitchWindow::exportPicture);
    file->addAction(tr("&Print..."), QKeySequence::Print, this, &SpectrogramPitchWindow::printPicture);
    file->addSeparator();
    file->addAction(tr("&Close"), QKeySequence::Close, this, &QWidget::close);

    connect(m_pSpectrogram, &spectrogramView::cursorMoved, this, &SpectrogramPitchWindow::cursorMoved);
    if (channel == 0)
        connect(table, &mainTable::synthesized, this, &SpectrogramPitchWindow::setupViews);
    connect(table, &mainTable::analysisSettingsChanged, this, &SpectrogramPitchWindow::setupViews);
    setWindowTitle(documentName());
    setFocusPolicy(Qt::StrongFocus);
    resize(1000, 560);
    // The pitch track is computed on the main thread right after the spectrogram's worker has
    // started (when the view first gets its size), so that the two run side by side.
    QTimer::singleShot(0, m_pPitch, &pitchView::setup);
}

QString SpectrogramPitchWindow::documentName() const
{
    const QString path = QString::fromStdString(m_pDoc->fileURL());
    return path.isEmpty() ? tr("Untitled") : QFileInfo(path).fileName();
}

void SpectrogramPitchWindow::setupViews()
{
    m_pSpectrogram->setup();
    m_pPitch->setup();
}

void SpectrogramPitchWindow::cursorMoved(double ms, double hz, double levelDB)
{
    m_pPitch->setCursorMS(ms);
    m_pStatus->setText(
        tr("%1 ms   %2 Hz   %3 dB").arg(ms, 0, 'f', 1).arg(hz, 0, 'f', 0).arg(levelDB, 0, 'f', 1));
    if (m_pTable)
        if (auto* slice = qobject_cast<FFTLPCWindow*>(m_pTable->fftlpcWindow()))
            slice->setTimeMS(ms);
}

void SpectrogramPitchWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Space || !m_pTable) {
        QMainWindow::keyPressEvent(event);
        return;
    }
    if (m_nChannel == 0)
        m_pTable->_PlayCurrent();
    else
        m_pTable->_PlayAudio();
}

void SpectrogramPitchWindow::drawPicture(QPainter& painter, const QSizeF& size, bool forScreen) const
{
    painter.fillRect(QRectF(QPointF(0, 0), size), Qt::white);
    const double left = spectrogramView::kLeftMargin, right = spectrogramView::kRightMargin;
    const double top = painter.fontMetrics().height() + 6.0;
    painter.setPen(Qt::black);
    painter.drawText(QPointF(left, top - 6.0), windowTitle());
    const double strip = m_pictureStrip.height ? m_pictureStrip.height(painter) : 0.0;
    const double plots = size.height() - top - pitchView::kTimeAxisHeight - 4.0 - strip;
    const QRectF upper(left, top, size.width() - left - right, plots * kSpectrogramShare - 4.0);
    const QRectF lower(left, upper.bottom() + 8.0, upper.width(), plots * (1.0 - kSpectrogramShare) - 4.0);
    m_pSpectrogram->drawPicture(painter, upper, forScreen);
    m_pPitch->drawPicture(painter, lower, forScreen);
    if (strip > 0.0 && m_pictureStrip.draw) {
        const Channels& c = *m_pDoc->getChannel(m_nChannel);
        const double seconds = c.m_dSampleRate > 0.0 ? c.sampleCount() / c.m_dSampleRate : 0.0;
        const QRectF area(left, lower.bottom() + pitchView::kTimeAxisHeight, upper.width(), strip);
        m_pictureStrip.draw(painter, area, seconds, {upper, lower});
    }
}

void SpectrogramPitchWindow::exportPicture()
{
    PictureExport::exportPicture(
        this, [this](QPainter& p, const QSizeF& size) { drawPicture(p, size, false); },
        PictureExport::sizeInInches(m_pDoc->m_dSpecWidth, m_pDoc->m_dSpecHeight, m_pDoc->m_bSpecInches != 0),
        QFileInfo(documentName()).completeBaseName() + QStringLiteral("-spectrogram"));
}

void SpectrogramPitchWindow::printPicture()
{
    PictureExport::printPicture(
        this, [this](QPainter& p, const QSizeF& size) { drawPicture(p, size, false); },
        PictureExport::sizeInInches(m_pDoc->m_dSpecWidth, m_pDoc->m_dSpecHeight, m_pDoc->m_bSpecInches != 0));
}
