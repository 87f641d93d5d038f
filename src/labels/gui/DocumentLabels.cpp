#include "labels/gui/DocumentLabels.h"

#include "labels/TextGridReader.h"

DocumentLabels::DocumentLabels(QObject* owner) : QObject(owner)
{
    setObjectName(QStringLiteral("documentLabels"));
}

DocumentLabels* DocumentLabels::of(QObject* owner)
{
    if (auto* labels =
            owner->findChild<DocumentLabels*>(QStringLiteral("documentLabels"), Qt::FindDirectChildrenOnly))
        return labels;
    return new DocumentLabels(owner);
}

bool DocumentLabels::load(const QString& path, QString* error)
{
    TextGrid grid;
    std::string message;
    if (!loadTextGridFile(path.toStdString(), grid, message)) {
        if (error)
            *error = QString::fromStdString(message);
        return false;
    }
    m_grid = std::move(grid);
    m_strPath = path;
    m_shown.assign(m_grid.tiers.size(), true);
    rebuild();
    return true;
}

void DocumentLabels::clear()
{
    m_grid = TextGrid();
    m_strPath.clear();
    m_shown.clear();
    rebuild();
}

bool DocumentLabels::isTierShown(std::size_t tier) const
{
    return tier < m_shown.size() && m_shown[tier];
}

void DocumentLabels::setTierShown(std::size_t tier, bool shown)
{
    if (tier >= m_shown.size() || m_shown[tier] == shown)
        return;
    m_shown[tier] = shown;
    rebuild();
}

void DocumentLabels::rebuild()
{
    std::vector<std::size_t> tiers;
    for (std::size_t t = 0; t < m_shown.size(); ++t)
        if (m_shown[t])
            tiers.push_back(t);
    m_strip = LabelStrip(m_grid, tiers);
    emit changed();
}

QString DocumentLabels::boundaryNote(double startMS, double endMS) const
{
    QStringList lines;
    for (std::size_t t = 0; t < m_grid.tiers.size(); ++t) {
        if (!isTierShown(t))
            continue;
        const LabelTier& tier = m_grid.tiers[t];
        const auto note = [&](double seconds, const std::string& text) {
            const double ms = seconds * 1000.0;
            if (ms >= startMS && ms < endMS)
                lines << tr("%1 at %2 ms: %3")
                             .arg(QString::fromStdString(tier.name))
                             .arg(ms, 0, 'f', 1)
                             .arg(QString::fromStdString(text));
        };
        for (const LabelInterval& interval : tier.intervals)
            note(interval.xmin, interval.text);
        for (const LabelPoint& point : tier.points)
            note(point.time, point.text);
    }
    return lines.join(QLatin1Char('\n'));
}

QString DocumentLabels::segmentNote(double ms) const
{
    QStringList parts;
    for (std::size_t t = 0; t < m_grid.tiers.size(); ++t) {
        if (!isTierShown(t))
            continue;
        const LabelInterval* interval = m_grid.intervalAt(t, ms / 1000.0);
        if (interval && !interval->text.empty())
            parts << QStringLiteral("%1: %2").arg(QString::fromStdString(m_grid.tiers[t].name),
                                                  QString::fromStdString(interval->text));
    }
    return parts.join(QStringLiteral("; "));
}
