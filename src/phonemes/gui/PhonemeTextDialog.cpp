// The New from Text dialog: live phonemes, Play, and the document OK makes.
#include "phonemes/gui/PhonemeTextDialog.h"

#include "audio/AudioPlayer.h"
#include "document/DocumentException.h"
#include "document/MyDocument.h"
#include "phonemes/PhonemeDocument.h"
#include "phonemes/PhonemeError.h"
#include "phonemes/english/TextPhonemes.h"
#include "table/gui/mainTable.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

PhonemeTextDialog::PhonemeTextDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(tr("New from Text"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(tr("Words, ARPAbet (B AE1 D) or IPA between slashes (/bæd/):"), this));
    m_pText = new QLineEdit(this);
    m_pText->setPlaceholderText(tr("a bad bed"));
    m_pText->setMinimumWidth(420);
    layout->addWidget(m_pText);
    m_pPhonemes = new QLabel(this);
    m_pPhonemes->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pPhonemes->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_pPhonemes->setWordWrap(true);
    m_pPhonemes->setMinimumHeight(40);
    layout->addWidget(m_pPhonemes);

    auto* form = new QFormLayout;
    m_pSpeed = new QDoubleSpinBox(this);
    m_pSpeed->setRange(0.25, 4.0);
    m_pSpeed->setSingleStep(0.05);
    m_pSpeed->setValue(1.0);
    m_pSpeed->setToolTip(tr("Speaking-rate factor: 2 speaks twice as fast"));
    form->addRow(tr("&Speed:"), m_pSpeed);
    m_pF0 = new QSpinBox(this);
    m_pF0->setRange(50, 500);
    m_pF0->setValue(120);
    m_pF0->setSuffix(tr(" Hz"));
    form->addRow(tr("Starting &f0:"), m_pF0);
    m_pRate = new QComboBox(this);
    m_pRate->addItem(tr("11025 Hz"), 11025);
    m_pRate->addItem(tr("22050 Hz (sixth formant shown)"), 22050);
    form->addRow(tr("Sample &rate:"), m_pRate);
    layout->addLayout(form);

    m_pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_pPlay = m_pButtons->addButton(tr("&Play"), QDialogButtonBox::ActionRole);
    layout->addWidget(m_pButtons);
    connect(m_pButtons, &QDialogButtonBox::accepted, this, &PhonemeTextDialog::accept);
    connect(m_pButtons, &QDialogButtonBox::rejected, this, &PhonemeTextDialog::reject);
    connect(m_pPlay, &QPushButton::clicked, this, &PhonemeTextDialog::play);
    connect(m_pText, &QLineEdit::textChanged, this, &PhonemeTextDialog::textChanged);
    textChanged();
}

PhonemeTextDialog::~PhonemeTextDialog()
{
    stopOwnPlayback();
}

QPushButton* PhonemeTextDialog::okButton() const
{
    return m_pButtons->button(QDialogButtonBox::Ok);
}

std::unique_ptr<MyDocument> PhonemeTextDialog::takeDocument()
{
    return std::move(m_document);
}

RuleSettings PhonemeTextDialog::settings() const
{
    RuleSettings s;
    s.speed = m_pSpeed->value();
    s.f0Hz = m_pF0->value();
    s.sampleRate = m_pRate->currentData().toInt();
    return s;
}

void PhonemeTextDialog::textChanged()
{
    const QString text = m_pText->text().trimmed();
    bool usable = false;
    if (text.isEmpty()) {
        m_pPhonemes->setText(tr("<i>The phonemes appear here as you type.</i>"));
    } else {
        try {
            const TextPhonemes input =
                TextPhonemes::read(text.toStdString(), PhonemeInventory::americanEnglish());
            const std::string shown = PhonemeString::describe(input.tokens);
            usable = shown.find_first_not_of(" ,;:.!?|") != std::string::npos;
            m_pPhonemes->setText(QString::fromStdString(shown).toHtmlEscaped());
        } catch (const PhonemeError& e) {
            m_pPhonemes->setText("<span style='color:#b00000'>" +
                                 QString::fromUtf8(e.what()).toHtmlEscaped() + "</span>");
        }
    }
    okButton()->setEnabled(usable);
    m_pPlay->setEnabled(usable);
}

std::unique_ptr<MyDocument> PhonemeTextDialog::makeDocument()
{
    try {
        const PhonemeInventory& table = PhonemeInventory::americanEnglish();
        const TextPhonemes input = TextPhonemes::read(m_pText->text().trimmed().toStdString(), table);
        const RuleSettings s = settings();
        return PhonemeDocument::make(PhonemeRules::frames(input.tokens, table, s), s.sampleRate);
    } catch (const PhonemeError& e) {
        m_pPhonemes->setText("<span style='color:#b00000'>" + QString::fromUtf8(e.what()).toHtmlEscaped() +
                             "</span>");
    } catch (const DocumentException& e) {
        m_pPhonemes->setText("<span style='color:#b00000'>" +
                             QString::fromStdString(e.name() + ": " + e.reason()).toHtmlEscaped() +
                             "</span>");
    }
    return nullptr;
}

void PhonemeTextDialog::play()
{
    std::unique_ptr<MyDocument> document = makeDocument();
    if (!document)
        return;
    try {
        document->Synthesize();
    } catch (const DocumentException& e) {
        m_pPhonemes->setText(QString::fromStdString(e.name() + ": " + e.reason()).toHtmlEscaped());
        return;
    }
    const Channels& channel = *document->getChannel(0);
    AudioPlayer* player = mainTable::sharedPlayer();
    if (player->isPlaying())
        player->stopPlay();
    // The player plays whole requests only: silence after the samples lets the last ones be heard.
    const std::size_t request = AudioPlayer::kFramesPerRequest;
    m_samples.assign(channel.samples(), channel.samples() + channel.sampleCount());
    m_samples.resize((m_samples.size() + request - 1) / request * request + request, 0.0f);
    player->CreateDefaultAU();
    player->setDelegate(this);
    player->setData(reinterpret_cast<const std::uint8_t*>(m_samples.data()),
                    static_cast<double>(m_samples.size()), 0);
    player->setSampleRate(channel.m_dSampleRate);
    player->startPlay();
    m_nPlayback = player->playbackNumber();
}

void PhonemeTextDialog::stopOwnPlayback()
{
    // Our samples go with the dialog: a playback of them must end first.
    AudioPlayer* player = mainTable::sharedPlayer();
    if (m_nPlayback != 0 && player->playbackNumber() == m_nPlayback && player->isPlaying())
        player->stopClean();
    m_nPlayback = 0;
}

void PhonemeTextDialog::accept()
{
    m_document = makeDocument();
    if (m_document)
        QDialog::accept();
}

void PhonemeTextDialog::done(int result)
{
    stopOwnPlayback();
    QDialog::done(result);
}
