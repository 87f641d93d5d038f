// The table's analysis commands: the FFT/LPC slice window at the selected frame and the
// spectrogram and pitch windows of the table data and of the model. The windows themselves
// come from factories the application installs (they live above the table).
#include "table/gui/mainTable.h"

#include "document/InstalledHook.h"
#include "document/MyDocument.h"

#include <QWidget>

#include <cmath>

namespace
{
using FFTLPCWindows = InstalledHook<struct FFTLPCWindowsTag, mainTable::FFTLPCFactory>;
using SpectrogramWindows = InstalledHook<struct SpectrogramWindowsTag, mainTable::SpectrogramPitchFactory>;

void bringToFront(QWidget* window, const QString& titlePrefix)
{
    window->setWindowTitle(titlePrefix + window->windowTitle());
    window->show();
    window->raise();
    window->activateWindow();
}
} // namespace

void mainTable::setAnalysisWindowFactories(FFTLPCFactory fftlpc, SpectrogramPitchFactory spectrogram)
{
    FFTLPCWindows::install(std::move(fftlpc));
    SpectrogramWindows::install(std::move(spectrogram));
}

bool mainTable::hasAnalysisWindows()
{
    return FFTLPCWindows::installed() && SpectrogramWindows::installed();
}

double mainTable::FFTLPCStartSample() const
{
    const int column = selectedColumnSpan().first;
    const Channels& c = *m_pDoc->getChannel(0);
    if (column <= 1 || c.m_nColumnNum < 1)
        return -1.0;
    return std::trunc((column - 1) * c.m_dwFileLength / c.m_nColumnNum);
}

void mainTable::_analysisFFTLPC()
{
    if (!FFTLPCWindows::installed() || selectedColumnSpan().first <= 1)
        return;
    guarded(QStringLiteral("OK"), [&] {
        synthesizeIfNeeded(); // the start sample is taken from the synthesis's length
        // One FFT/LPC window per document: the open one goes first.
        if (m_pFFTLPC)
            delete m_pFFTLPC.data();
        m_pFFTLPC = FFTLPCWindows::function()(this, FFTLPCStartSample());
        if (m_pFFTLPC)
            bringToFront(m_pFFTLPC, QStringLiteral("FFT/LPC:: "));
    });
}

void mainTable::_analysisSpectrogramPitch()
{
    if (!SpectrogramWindows::installed())
        return;
    guarded(QStringLiteral("OK"), [&] {
        synthesizeIfNeeded();
        if (QWidget* w = SpectrogramWindows::function()(this, 0))
            bringToFront(w, QStringLiteral("Spectrogram and Pitch of table data:: "));
    });
}

void mainTable::_analysisSpectrogramPitchModel()
{
    if (!SpectrogramWindows::installed() || !m_pDoc->getChannel(2)->hasAudio())
        return;
    guarded(QStringLiteral("OK"), [&] {
        if (QWidget* w = SpectrogramWindows::function()(this, 2))
            bringToFront(w, QStringLiteral("Spectrogram and Pitch of model:: "));
    });
}
