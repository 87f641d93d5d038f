// File > Make Continuum...: the dialog driven through its fields, the work on its worker thread.
#include "continuum/gui/ContinuumDialog.h"
#include "document/MyDocument.h"
#include "support/TestDocuments.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace
{

std::unique_ptr<MyDocument> makeDocument(int frames, int f2)
{
    auto document = makeTestDocument(frames);
    setRowValue(*document, Row::f2, f2);
    return document;
}

struct Folder {
    std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("continuum-dialog-" + std::to_string(::getpid()));
    Folder() { std::filesystem::create_directories(path); }
    ~Folder() { std::filesystem::remove_all(path); }
    QString operator/(const char* name) const { return QString::fromStdString((path / name).string()); }
};

} // namespace

TEST(ContinuumDialog, MakesTheStepsOnAWorkerAndReportsTheFolder)
{
    Folder folder;
    auto a = makeDocument(20, 1200);
    auto b = makeDocument(20, 2200);
    std::string error;
    ASSERT_TRUE(b->writeSafelyToURL((folder / "da.stk").toStdString(), "stk", &error)) << error;

    ContinuumDialog dialog(*a, folder / "ba.stk");
    EXPECT_EQ(dialog.folderField()->text(), folder / "ba-continuum") << "default folder beside A";
    dialog.secondDocumentField()->setText(folder / "da.stk");
    dialog.stepsField()->setValue(7);
    dialog.scaleField()->setCurrentIndex(dialog.scaleField()->findText(QStringLiteral("Bark")));
    dialog.allDifferingField()->setChecked(false);
    dialog.rowsField()->item(Row::f2)->setCheckState(Qt::Checked);
    dialog.waveField()->setChecked(true);

    QSignalSpy written(&dialog, &ContinuumDialog::continuumWritten);
    ASSERT_TRUE(dialog.start()) << dialog.findChild<QLabel*>(QStringLiteral("status"))->text().toStdString();
    ASSERT_TRUE(written.wait(60000));
    EXPECT_EQ(written.front().front().toString(), folder / "ba-continuum");
    EXPECT_EQ(dialog.progressBar()->value(), 7);
    for (const char* name : {"ba_1.stk", "ba_7.stk", "ba_4.wav", "manifest.csv"})
        EXPECT_TRUE(std::filesystem::exists(folder.path / "ba-continuum" / name)) << name;
    std::ifstream manifest(folder.path / "ba-continuum" / "manifest.csv");
    std::string header, first;
    std::getline(manifest, header);
    std::getline(manifest, first);
    EXPECT_EQ(header, "step,weight,document,wave,f2");
    EXPECT_EQ(first, "1,0,ba_1.stk,ba_1.wav,1200.000");
}

TEST(ContinuumDialog, RefusesADocumentOfAnotherLengthWithAMessage)
{
    Folder folder;
    auto a = makeDocument(20, 1200);
    auto b = makeDocument(15, 2200);
    std::string error;
    ASSERT_TRUE(b->writeSafelyToURL((folder / "short.stk").toStdString(), "stk", &error)) << error;
    ContinuumDialog dialog(*a, folder / "ba.stk");
    dialog.secondDocumentField()->setText(folder / "short.stk");
    EXPECT_FALSE(dialog.start());
    const QString message = dialog.findChild<QLabel*>(QStringLiteral("status"))->text();
    EXPECT_TRUE(message.contains(QStringLiteral("short.stk")) &&
                message.contains(QStringLiteral("15 frames")))
        << message.toStdString();
    EXPECT_FALSE(std::filesystem::exists(folder.path / "ba-continuum"));
}

// The last step's document reached through a link to its folder is still the file a step would
// replace: the dialog refuses before it asks anything or writes.
TEST(ContinuumDialog, RefusesToWriteOverAnInputReachedThroughALink)
{
    Folder folder;
    auto a = makeDocument(20, 1200);
    auto b = makeDocument(20, 2200);
    std::string error;
    ASSERT_TRUE(b->writeSafelyToURL((folder / "ba_7.stk").toStdString(), "stk", &error)) << error;
    std::filesystem::create_directory_symlink(folder.path, folder.path / "link");

    ContinuumDialog dialog(*a, folder / "ba.stk");
    dialog.secondDocumentField()->setText(folder / "ba_7.stk");
    dialog.stepsField()->setValue(7);
    dialog.folderField()->setText(folder / "link");
    EXPECT_FALSE(dialog.start());
    const QString message = dialog.findChild<QLabel*>(QStringLiteral("status"))->text();
    EXPECT_TRUE(message.contains(QStringLiteral("write over"))) << message.toStdString();
    EXPECT_FALSE(std::filesystem::exists(folder.path / "ba_1.stk"));
}
