#include "dataentry/gui/PlayAfterStroke.h"

#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QAction>
#include <QSettings>

namespace
{
const char* const kKey = "dataEntry/playAfterEachStroke";
} // namespace

namespace PlayAfterStroke
{

bool isOn()
{
    return QSettings().value(QLatin1String(kKey), false).toBool();
}

void setOn(bool on)
{
    QSettings().setValue(QLatin1String(kKey), on);
}

QAction* makeAction(QObject* parent)
{
    auto* action = new QAction(QStringLiteral("Play After Each Stroke"), parent);
    action->setCheckable(true);
    action->setChecked(isOn());
    QObject::connect(action, &QAction::toggled, [](bool on) { setOn(on); });
    return action;
}

void play(mainTable* table, MyDocument* doc, const StrokeSpan& stroke)
{
    if (!table || !doc)
        return;
    const Channels& c = *doc->getChannel(0);
    const auto [first, last] =
        StrokePlayback::columns(c.m_dLengthMS, doc->updateInterval(), c.m_nColumnNum, stroke);
    if (first == 0)
        table->PlayDocument(0);
    else if (first > 0)
        table->playFrames(first, last);
}

} // namespace PlayAfterStroke
