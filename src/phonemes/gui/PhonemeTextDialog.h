#pragma once
// File > New from Text...: the user types words, ARPAbet ("B AE1 D") or IPA between slashes
// ("/bæd/") and sees at once the phonemes it became (or what is wrong with it); Play
// synthesizes the document the rules make and plays it through the application's player, and
// OK makes that document, new and untitled, for the caller to open. Speed, starting f0 and
// sample rate are the rules' settings. Main thread only; reading the text and making the
// document take a millisecond or two, so they run in the dialog's own event handlers.
#include "phonemes/SegmentTiming.h"

#include <QDialog>

#include <memory>
#include <vector>

class MyDocument;
class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

class PhonemeTextDialog : public QDialog
{
    Q_OBJECT
public:
    explicit PhonemeTextDialog(QWidget* parent = nullptr);
    ~PhonemeTextDialog() override;

    // The document OK made (nullptr before), handed over once.
    std::unique_ptr<MyDocument> takeDocument();

    // The form's fields, for tests.
    QLineEdit* textField() const { return m_pText; }
    QLabel* phonemesLabel() const { return m_pPhonemes; }
    QDoubleSpinBox* speedField() const { return m_pSpeed; }
    QSpinBox* f0Field() const { return m_pF0; }
    QComboBox* rateField() const { return m_pRate; }
    QPushButton* playButton() const { return m_pPlay; }
    QPushButton* okButton() const;
    // The samples Play synthesized last (empty before).
    const std::vector<float>& playedSamples() const { return m_samples; }

    void play();

protected:
    void accept() override;
    void done(int result) override;

private:
    void textChanged();
    RuleSettings settings() const;
    // The document of the current text, or nullptr with the reason shown.
    std::unique_ptr<MyDocument> makeDocument();
    void stopOwnPlayback();

    QLineEdit* m_pText = nullptr;
    QLabel* m_pPhonemes = nullptr;
    QDoubleSpinBox* m_pSpeed = nullptr;
    QSpinBox* m_pF0 = nullptr;
    QComboBox* m_pRate = nullptr;
    QPushButton* m_pPlay = nullptr;
    QDialogButtonBox* m_pButtons = nullptr;
    std::unique_ptr<MyDocument> m_document;
    std::vector<float> m_samples;  // what the player reads while it plays them
    std::uint32_t m_nPlayback = 0; // the player's playback number of ours, 0 for none
};
