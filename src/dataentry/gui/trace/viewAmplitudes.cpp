#include "dataentry/gui/trace/viewAmplitudes.h"

#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <cmath>

viewAmplitudes::viewAmplitudes(QWidget* parent)
    : TraceView(90.0, {"a1f", "a2f", "a3f", "a4f", "a5f", "av", "apv"},
                {Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f, Row::av, Row::apv}, parent)
{
}

void viewAmplitudes::remoteTraceValue(double amplitude, int column, int index)
{
    if (index < 0 || index >= m_lists.slotCount() || column < 0 || column >= m_lists.columnCount(index))
        return;
    m_lists.setValue(index, column, static_cast<int>(std::trunc(amplitude)));
    updateColumn(column);
}

TraceView::ValueGrid viewAmplitudes::valueGrid() const
{
    return {0.0, 80.0, 20.0, fullScale(), QStringLiteral("dB")};
}

QString viewAmplitudes::caption() const
{
    static const char* const names[] = {"A1F", "A2F", "A3F", "A4F", "A5F", "AV", "APV"};
    for (int slot = 0; slot < m_lists.slotCount(); ++slot)
        if (isActive(slot))
            return QStringLiteral("%1 (dB)").arg(QString::fromLatin1(names[slot]));
    return QStringLiteral("Amplitudes (dB)");
}

void viewAmplitudes::afterCommit()
{
    // A traced amplitude shows in the spectrogram view's formants too.
    if (_containerID() && _containerID()->_viewSpectrogram())
        _containerID()->_viewSpectrogram()->update();
}
