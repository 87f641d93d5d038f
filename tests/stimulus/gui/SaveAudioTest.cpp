// Save Audio under the Audio Output settings: the file as other programs read it, the save
// panel's line of settings, and a level that would clip refused with an alert.
#include "document/MyDocument.h"
#include "stimulus/StimulusOutputFile.h"
#include "support/AudioFileProbe.h"
#include "support/ModalAnswers.h"
#include "support/TestFiles.h"
#include "table/gui/Alert.h"
#include "table/gui/mainTable.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

struct SaveFixture {
    TempDir folder;
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    QStringList alerts;

    SaveFixture()
    {
        StimulusOutputFile::setDefaultPath(folder / StimulusOutputFile::kFileName);
        doc.SetUpDataGridMemory();
        doc.buildDataTableDictionary();
        table = std::make_unique<mainTable>(&doc);
        Alert::setHandler([this](const QString& title, const QString& message, const QString&) {
            alerts << title + "|" + message;
        });
    }
    ~SaveFixture()
    {
        table.reset();
        Alert::setHandler({});
        StimulusOutputFile::setDefaultPath("");
    }
    void keep(const std::vector<std::pair<std::string, std::string>>& options)
    {
        StimulusOutput output;
        for (const auto& [name, value] : options)
            ASSERT_TRUE(output.set(name, value, nullptr)) << name;
        ASSERT_TRUE(StimulusOutputFile::store(output));
    }
};

} // namespace

TEST(SaveAudio, WritesTheSynthesisAsTheAudioOutputSettingsSayAndThePanelShowsThem)
{
    SaveFixture f;
    f.keep({{"rate", "44100"}, {"normalize", "rms:-20"}, {"ramp", "10"}, {"bits", "24"}});
    const std::string path = f.folder / "a.wav";
    ASSERT_TRUE(f.table->saveAudioTo(QString::fromStdString(path)));
    const probe::AudioFile r = probe::readAudioFile(path);
    EXPECT_EQ(r.info.samplerate, 44100);
    EXPECT_EQ(r.info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_NEAR(r.samples.size() / 44100.0, f.doc.getChannel(0)->sampleCount() / 11025.0, 0.001);
    EXPECT_EQ(r.samples.front(), 0.0); // the onset ramp starts from silence

    // A level that would clip is refused with an alert naming the file; nothing is written.
    f.keep({{"normalize", "rms:-1"}});
    const std::string loud = f.folder / "loud.wav";
    EXPECT_FALSE(f.table->saveAudioTo(QString::fromStdString(loud)));
    ASSERT_EQ(f.alerts.size(), 1);
    EXPECT_TRUE(f.alerts.front().contains(QString::fromStdString(loud))) << f.alerts.front().toStdString();
    EXPECT_TRUE(f.alerts.front().contains(QStringLiteral("would clip")));
    EXPECT_FALSE(fs::exists(loud));

    // The save panel shows the settings and proposes their format.
    f.keep({{"rate", "48000"}, {"format", "flac"}});
    QString shown, filter;
    whenModal<QFileDialog>([&](QFileDialog* panel) {
        shown = panel->findChild<QLabel*>(QStringLiteral("audioOutput"))->text();
        filter = panel->selectedNameFilter();
        auto* name = panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        name->setText(QString::fromStdString(f.folder / "panel"));
        QTest::keyClick(name, Qt::Key_Return);
    });
    f.table->_fileSaveAudio();
    EXPECT_EQ(shown.toStdString(), "Audio output: 48000 Hz, 16-bit FLAC (Options > Audio Output...)");
    EXPECT_EQ(filter.toStdString(), "FLAC audio (*.flac)");
    const probe::AudioFile flac = probe::readAudioFile(f.folder / "panel.flac");
    EXPECT_EQ(flac.info.format, SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    EXPECT_EQ(flac.info.samplerate, 48000);
}
