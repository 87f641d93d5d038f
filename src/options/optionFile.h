#pragma once
// The file options panel: the utterance's sample rate (11025 or 22050), length and update
// interval in ms, and the interpolate and anchor switches of typed entry. The rate, length
// and interval it saves are proposals (m_dNewSampleRate, m_dNewLengthMS,
// m_nNewUpdateIntervalMS) that the table then applies; the switches go to channel 0.
// OK refuses a length beyond one hour and more frames than a document holds
// (MyDocument::kMaxLengthMS, kMaxFrames), saying so in the panel. Main thread only.
#include "options/OptionPanel.h"

class QButtonGroup;
class QComboBox;
class QLabel;
class QLineEdit;

class optionFile : public OptionPanel
{
    Q_OBJECT
public:
    explicit optionFile(QWidget* parent = nullptr);

    void setup(MyDocument* doc) override;
    void save(MyDocument* doc) override;

    QComboBox* _popupSR = nullptr;
    QLineEdit* m_nFileLength = nullptr; // ms
    QLineEdit* m_nInterval = nullptr;   // ms
    // First row "On" carries id 1, second row "Off" id 0: setup selects by id, save reads
    // whether the first row is chosen.
    QButtonGroup* _interpolationGroup = nullptr;
    QButtonGroup* _anchorGroup = nullptr;
    // Why OK was refused; hidden while there is nothing to say.
    QLabel* m_pRefusal = nullptr;

    // Why the length and interval shown cannot be taken, or empty when they can.
    static QString sizeRefusal(long long lengthMS, long long intervalMS);

protected:
    bool mayAccept() override;
};
