// File > Make Continuum...: the dialog driven through its fields, the work on its worker thread.
#include "continuum/gui/ContinuumDialog.h"
#include "document/MyDocument.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"

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

namespace
{

std::unique_ptr<MyDocument> makeDocument(int frames, int f2)
{
    auto document = makeTestDocument(frames);
    setRowValue(*document, Row::f2, f2);
    return document;
}

struct Folder : TempDir {
    QString operator/(const char* name) const { return QString::fromStdString(TempDir::operator/(name)); }
    // Saves a document of `frames` frames whose f2 is 2200 Hz as `name`; its path.
    QString saved(const char* name, int frames) const
    {
        std::string error;
        EXPECT_TRUE(makeDocument(frames, 2200)->writeSafelyToURL(TempDir::operator/(name), "stk", &error))
            << error;
        return *this / name;
    }
};

} // namespace

TEST(ContinuumDialog, MakesTheStepsOnAWorkerAndReportsTheFolder)
{
    Folder folder;
    auto a = makeDocument(20, 1200);
    ContinuumDialog dialog(*a, folder / "ba.stk");
    dialog.secondDocumentField()->setText(folder.saved("da.stk", 20));
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
    const std::string manifest = slurp((folder / "ba-continuum/manifest.csv").toStdString());
    EXPECT_EQ(manifest.rfind("step,weight,document,wave,f2\n1,0,ba_1.stk,ba_1.wav,1200.000\n", 0), 0u)
        << manifest;
}

// A document of another length, and the last step's document reached through a link to its
// folder (still the file a step would replace): refused with a message before anything is written.
TEST(ContinuumDialog, RefusesADocumentOfAnotherLengthAndAnInputReachedThroughALink)
{
    Folder folder;
    auto a = makeDocument(20, 1200);
    ContinuumDialog dialog(*a, folder / "ba.stk");
    const auto status = [&dialog] { return dialog.findChild<QLabel*>(QStringLiteral("status"))->text(); };
    dialog.secondDocumentField()->setText(folder.saved("short.stk", 15));
    EXPECT_FALSE(dialog.start());
    EXPECT_TRUE(status().contains(QStringLiteral("short.stk")) &&
                status().contains(QStringLiteral("15 frames")))
        << status().toStdString();
    EXPECT_FALSE(std::filesystem::exists(folder.path / "ba-continuum"));

    std::filesystem::create_directory_symlink(folder.path, folder.path / "link");
    dialog.secondDocumentField()->setText(folder.saved("ba_7.stk", 20));
    dialog.stepsField()->setValue(7);
    dialog.folderField()->setText(folder / "link");
    EXPECT_FALSE(dialog.start());
    EXPECT_TRUE(status().contains(QStringLiteral("write over"))) << status().toStdString();
    EXPECT_FALSE(std::filesystem::exists(folder.path / "ba_1.stk"));
}
