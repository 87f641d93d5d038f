#pragma once
// DocumentLabels: the TextGrid loaded for one document (its segments, from an annotation
// program) and the tiers the user chose to show. One per document, a child of the document's
// table, found with of(); the windows that show labels follow its changed() signal. Main thread
// only.
#include "labels/LabelStrip.h"
#include "labels/TextGrid.h"

#include <QObject>
#include <QString>

#include <vector>

class DocumentLabels : public QObject
{
    Q_OBJECT
public:
    // The labels of the document whose table (or other per-document object) is `owner`; made
    // empty on first use.
    static DocumentLabels* of(QObject* owner);

    // Reads a TextGrid and shows all its tiers; on failure the labels stay as they were and
    // `error` names the file and the line.
    bool load(const QString& path, QString* error);
    void clear();
    bool hasLabels() const { return !m_grid.empty(); }
    const TextGrid& grid() const { return m_grid; }
    QString path() const { return m_strPath; }

    bool isTierShown(std::size_t tier) const;
    void setTierShown(std::size_t tier, bool shown);
    // The strip of the shown tiers (empty when none is shown).
    const LabelStrip& strip() const { return m_strip; }
    // For a frame from startMS to endMS: the boundaries of the shown tiers inside it, each with
    // the text of the segment it starts ("boundary at 250 ms: wa"); empty when none falls there.
    QString boundaryNote(double startMS, double endMS) const;
    // The segments of the shown interval tiers at a time, with text: "words: bad; phones: æ";
    // empty when none.
    QString segmentNote(double ms) const;

signals:
    void changed();

private:
    explicit DocumentLabels(QObject* owner);
    void rebuild();

    TextGrid m_grid;
    QString m_strPath;
    std::vector<bool> m_shown;
    LabelStrip m_strip;
};
