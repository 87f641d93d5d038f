// The Audio Output panel driven as a user drives it: typed and chosen values, OK and Cancel,
// a rate out of range refused in the panel, the settings kept in their file.
#include "stimulus/gui/AudioOutputPanel.h"
#include "stimulus/StimulusOutputFile.h"
#include "support/ModalAnswers.h"
#include "support/TestFiles.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace
{

namespace fs = std::filesystem;

// The settings file in a folder that does not exist yet.
struct SettingsFile {
    TempDir dir;
    const fs::path file = dir.path / "settings" / StimulusOutputFile::kFileName;
    SettingsFile() { StimulusOutputFile::setDefaultPath(file.string()); }
    ~SettingsFile() { StimulusOutputFile::setDefaultPath(""); }
};

// Replaces the text of a field the way a user does: select all, type.
void typeInto(QWidget* field, const QString& text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
}

template <typename T> T* child(AudioOutputPanel& panel, const char* name)
{
    return panel.findChild<T*>(QString::fromLatin1(name));
}

} // namespace

TEST(AudioOutputPanel, TypedSettingsAreKeptOnOKOnlyAndShownAgain)
{
    SettingsFile settings;
    {
        AudioOutputPanel panel;
        pressLater(&panel, QDialogButtonBox::Ok, [&] {
            typeInto(child<QComboBox>(panel, "rate")->lineEdit(), QStringLiteral("44100"));
            child<QComboBox>(panel, "level")->setFocus();
            QTest::keyClick(child<QComboBox>(panel, "level"), Qt::Key_Down); // RMS
            typeInto(child<QDoubleSpinBox>(panel, "levelDb"), QStringLiteral("-20"));
            typeInto(child<QDoubleSpinBox>(panel, "ramp"), QStringLiteral("10"));
            typeInto(child<QDoubleSpinBox>(panel, "padAfter"), QStringLiteral("250"));
            child<QComboBox>(panel, "format")->setFocus();
            QTest::keyClick(child<QComboBox>(panel, "format"), Qt::Key_Down); // FLAC
            EXPECT_EQ(child<QLabel>(panel, "summary")->text().toStdString(),
                      "Save Audio writes: 44100 Hz, RMS -20 dBFS, 10 ms ramps, 0/250 ms silence, "
                      "16-bit FLAC");
        });
        EXPECT_EQ(panel.run(nullptr), 1000);
    }
    EXPECT_EQ(StimulusOutputFile::load().commandLine(),
              "--rate 44100 --normalize rms:-20 --ramp 10 --pad 0,250 --format flac");

    // Opened again it shows what was kept; changes then cancelled are not kept.
    AudioOutputPanel again;
    pressLater(&again, QDialogButtonBox::Cancel, [&] {
        EXPECT_EQ(child<QComboBox>(again, "rate")->currentText(), QStringLiteral("44100"));
        EXPECT_EQ(child<QDoubleSpinBox>(again, "ramp")->value(), 10.0);
        typeInto(child<QDoubleSpinBox>(again, "ramp"), QStringLiteral("50"));
    });
    EXPECT_EQ(again.run(nullptr), 1001);
    EXPECT_EQ(StimulusOutputFile::load().rampMS, 10.0);
}

TEST(AudioOutputPanel, ARateOutOfRangeIsRefusedInThePanel)
{
    SettingsFile settings;
    AudioOutputPanel panel;
    // Refused, then back to the synthesis rate: accepted, and plain output is what is kept.
    pressLater(&panel, QDialogButtonBox::Ok, [&] {
        typeInto(child<QComboBox>(panel, "rate")->lineEdit(), QStringLiteral("7000"));
        press(&panel, QDialogButtonBox::Ok);
        EXPECT_TRUE(panel.isVisible()); // still open, saying why
        EXPECT_TRUE(child<QLabel>(panel, "refusal")->isVisible());
        EXPECT_TRUE(child<QLabel>(panel, "refusal")->text().contains(QStringLiteral("8000")));
        child<QComboBox>(panel, "rate")->setCurrentIndex(0);
    });
    EXPECT_EQ(panel.run(nullptr), 1000);
    EXPECT_TRUE(StimulusOutputFile::load().plain());
    EXPECT_TRUE(fs::exists(settings.file));
}
