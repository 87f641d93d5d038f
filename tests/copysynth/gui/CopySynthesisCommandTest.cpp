// Automatic Copy Synthesis in the workbench, driven through the trace window's button and the
// command itself under the offscreen platform: one undo step, the command line's bytes, and a
// Cancel that leaves the document as it was.
#include "support/CliRunner.h" // first: its signals come before Qt's `signals` keyword

#include "copysynth/gui/CopySynthesisCommand.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "support/DocumentTestSupport.h"
#include "support/WidgetEvents.h"
#include "table/gui/Alert.h"
#include "table/gui/mainTable.h"

#include <gtest/gtest.h>

#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace
{

// A steady vowel of 1.5 s opened as the workbench opens a recording, in a table.
struct CopySynthesisWindow : ::testing::Test {
    TempDir folder;
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    std::string wav;

    void SetUp() override
    {
        wav = writeVowel(folder / "recording.wav", 1.5);
        ASSERT_TRUE(openBytes(doc, slurp(wav))) << doc.lastReadError();
        table = std::make_unique<mainTable>(&doc);
        Alert::setHandler([this](const QString& title, const QString& message, const QString&) {
            alerts.push_back((title + ": " + message).toStdString());
        });
    }
    void TearDown() override { Alert::setHandler({}); }
    std::string saved(const std::string& name)
    {
        const std::string path = folder / name;
        std::string error;
        EXPECT_TRUE(doc.writeSafelyToURL(path, "stk", &error)) << error;
        return slurp(path);
    }
    std::vector<std::string> alerts;
};

} // namespace

TEST_F(CopySynthesisWindow, TheButtonAppliesOneUndoStepThatEqualsTheCommandLine)
{
    const std::string before = saved("before.stk");
    dataentryTraceContoller trace(&doc, table.get());
    trace.window()->show();
    QPushButton* button = trace._AutomaticCopySynthesis();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("Automatic Copy Synthesis"));
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return doc.canUndo(); }));
    ASSERT_TRUE(waitFor([&] { return !table->findChild<QProgressDialog*>(); }));
    EXPECT_TRUE(alerts.empty()) << alerts.front();
    EXPECT_TRUE(doc.getChannel(2)->hasAudio()); // the model stays for Play Model
    const std::string window = saved("window.stk");

    const std::string cli = folder / "cli.stk";
    runCliOk("copysynth " + wav + " -o " + cli);
    EXPECT_TRUE(window == slurp(cli));

    // One undo step: undo gives back the document as it was, redo the copy synthesis.
    table->undo();
    EXPECT_TRUE(saved("undone.stk") == before);
    EXPECT_FALSE(doc.canUndo());
    table->redo();
    EXPECT_TRUE(saved("redone.stk") == window);
}

// Cancel, no model and a model too short: each leaves the document as it was and no undo step.
TEST_F(CopySynthesisWindow, CancelOrARefusalLeavesTheDocumentUntouchedAndAnAlertSaysWhy)
{
    const std::string before = saved("before.stk");
    CopySynthesisCommand* command = CopySynthesisCommand::start(*table, table.get());
    ASSERT_NE(command, nullptr);
    QSignalSpy cancelled(command, &CopySynthesisCommand::finished);
    QPushButton* cancel = command->progressDialog()->findChild<QPushButton*>();
    ASSERT_NE(cancel, nullptr);
    cancel->click();
    ASSERT_TRUE(waitFor([&] { return cancelled.count() == 1; }));
    EXPECT_FALSE(cancelled.at(0).at(0).toBool());
    EXPECT_FALSE(doc.canUndo());
    EXPECT_TRUE(saved("after.stk") == before);
    EXPECT_TRUE(alerts.empty());

    MyDocument empty;
    empty.buildDataTableDictionary();
    mainTable emptyTable(&empty);
    EXPECT_EQ(CopySynthesisCommand::start(emptyTable, &emptyTable), nullptr);
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_NE(alerts[0].find("model"), std::string::npos) << alerts[0];

    // Ten samples: the estimation refuses them.
    setSamples(*doc.getChannel(2), std::vector<float>(10, 0.1f), 11025.0);
    command = CopySynthesisCommand::start(*table, table.get());
    ASSERT_NE(command, nullptr);
    QSignalSpy refused(command, &CopySynthesisCommand::finished);
    ASSERT_TRUE(waitFor([&] { return refused.count() == 1; }));
    EXPECT_FALSE(refused.at(0).at(0).toBool());
    EXPECT_EQ(alerts.size(), 2u);
    EXPECT_FALSE(doc.canUndo());
}
