#pragma once
// The add-frames dialog: where to insert new frames (at the beginning, after the selected
// frame, at the end) and how many ms to add. It shows the document's remembered settings
// (_nindexModifyColumn, _nDurationModifyColumn) and stores them back only on OK; as every
// modal panel, showInWindow() answers 1000 for OK and 1001 for Cancel.
// Main thread only. Durations are in ms.
#include "options/OptionPanel.h"

class QButtonGroup;
class QSpinBox;

class addColumns : public OptionPanel
{
    Q_OBJECT
public:
    static constexpr int kMaximumDurationMS = 600000; // ten minutes of frames at a time

    explicit addColumns(QWidget* parent = nullptr);

    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;

    QButtonGroup* _groupLocation() const { return m_groupLocation; }
    QSpinBox* _duration() const { return m_duration; }

private:
    QButtonGroup* m_groupLocation;
    QSpinBox* m_duration;
};
