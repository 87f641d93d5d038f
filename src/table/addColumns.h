#pragma once
// The add-frames dialog: where to insert new frames (at the beginning, after the selected
// frame, at the end) and how many ms to add. It shows the document's remembered settings
// (_nindexModifyColumn, _nDurationModifyColumn) and stores them back only on OK.
// showInWindow() runs it window-modal on the parent and answers 1000 for OK, 1001 for Cancel.
// Main thread only. Durations are in ms.
#include <QDialog>

class MyDocument;
class QButtonGroup;
class QSpinBox;

class addColumns : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kOK = 1000;
    static constexpr int kCancel = 1001;
    static constexpr int kMaximumDurationMS = 600000; // ten minutes of frames at a time

    explicit addColumns(QWidget* parent = nullptr);

    int showInWindow(QWidget* parent, MyDocument* doc);

    // Fills the dialog from the document / stores the dialog into the document.
    void setup(const MyDocument& doc);
    void save(MyDocument& doc) const;

    void oktButton() { done(kOK); }
    void canceltButton() { done(kCancel); }

    QButtonGroup* _groupLocation() const { return m_groupLocation; }
    QSpinBox* _duration() const { return m_duration; }

protected:
    void reject() override { canceltButton(); } // Escape and the close box are Cancel

private:
    QButtonGroup* m_groupLocation;
    QSpinBox* m_duration;
};
