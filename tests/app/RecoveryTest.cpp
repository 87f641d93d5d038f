// The crash-recovery copies: written a while after an edit, removed by a save or by letting the
// changes go (closing the window or quitting), offered again after a crash.
#include "app/WorkbenchFixtures.h"

// (Closing without saving removes the copy too: QuitWithDontSaveLeavesNoCopyAndNoLock.)
TEST(Recovery, AnEditIsCopiedWholeAWhileAfterAndTheCopyGoesWithASave)
{
    StateFolder state;
    Workbench wb;
    DocumentWindow* w = wb.app.newDocument();
    typeInto(w, Row::f1, 3, 700);
    EXPECT_TRUE(state.copies().isEmpty()) << "not at once";
    for (int i = 0; i < 250 && state.copies().isEmpty(); ++i)
        QTest::qWait(20);
    ASSERT_EQ(state.copies().size(), 1);
    // Every row and every frame, the hidden ones too: what saving everything would write.
    EXPECT_EQ(fileText(state.folder() + "/" + state.copies()[0]), w->document()->parameterDocumentText(true));
    EXPECT_TRUE(w->isWindowModified()) << "a copy is not a save";

    ASSERT_TRUE(w->saveDocumentTo(wb.path("v.stk")));
    EXPECT_TRUE(state.copies().isEmpty());
}

TEST(Recovery, CopiesLeftByAWorkbenchThatEndedAreRecoveredOrDiscarded)
{
    StateFolder state;
    QTemporaryDir files;
    const QString saved = files.filePath("vowel.stk");
    {
        WorkbenchApplication crashed;
        crashed.setQuietAlerts(true);
        DocumentWindow* a = crashed.newDocument();
        typeInto(a, Row::f1, 3, 700);
        ASSERT_TRUE(a->saveDocumentTo(saved));
        typeInto(a, Row::f1, 3, 710);
        DocumentWindow* b = crashed.newDocument(); // "Untitled 2"
        typeInto(b, Row::f2, 5, 1700);
        crashed.newDocument(); // nothing to copy
        writeRecording(files.filePath("rec.wav"));
        ASSERT_NE(crashed.openFile(files.filePath("rec.wav")), nullptr); // a new document with a model
        crashed.autosaveAll();
        WorkbenchApplication running;
        EXPECT_TRUE(running.autosave()->leftBehind().isEmpty())
            << "the copies of a running workbench stay its own";
    } // gone without closing its windows, as in a crash
    ASSERT_EQ(state.copies().size(), 3);
    std::ofstream((state.folder() + "/999.1-1.stk").toStdString()) << "not a document";

    const QStringList old = state.copies();
    {
        WorkbenchApplication next;
        next.setQuietAlerts(true);
        whenModal<RecoveryDialog>([](RecoveryDialog* dialog) {
            EXPECT_EQ(dialog->windowTitle(), "Recover Unsaved Documents");
            EXPECT_EQ(dialog->list()->count(), 4);
            const Qt::MatchFlags part = Qt::MatchContains | Qt::MatchCaseSensitive;
            for (const char* line : {"Untitled 2 — changed", "vowel.stk — changed"})
                EXPECT_EQ(dialog->list()->findItems(line, part).size(), 1) << line;
            dialog->recoverButton()->click();
        });
        EXPECT_EQ(next.offerRecovery(), 3);
        EXPECT_TRUE(next.lastAlert().contains("could not be recovered")) << next.lastAlert().toStdString();
        DocumentWindow* vowel = windowNamed(next, "vowel.stk");
        ASSERT_NE(vowel, nullptr);
        EXPECT_EQ(vowel->filePath(), saved);
        EXPECT_TRUE(vowel->isWindowModified());
        EXPECT_EQ(value(vowel, Row::f1, 3), 710);
        DocumentWindow* untitled = windowNamed(next, "Untitled 2");
        ASSERT_NE(untitled, nullptr);
        EXPECT_TRUE(untitled->filePath().isEmpty());
        EXPECT_EQ(value(untitled, Row::f2, 5), 1700);
        // With its model recording, and its name still only proposed (a save asks before replacing).
        DocumentWindow* recording = windowNamed(next, "rec.stk");
        ASSERT_NE(recording, nullptr);
        EXPECT_TRUE(recording->document()->getChannel(2)->hasAudio());
        EXPECT_TRUE(recording->isFileNameProposed());
        // The recovered documents have copies of their own; the unreadable one is kept.
        const QStringList now = state.copies();
        EXPECT_EQ(now.size(), 4);
        EXPECT_TRUE(now.contains("999.1-1.stk"));
        for (const QString& copy : old)
            EXPECT_TRUE(copy == "999.1-1.stk" || !now.contains(copy)) << copy.toStdString();
    }

    WorkbenchApplication last;
    whenModal<RecoveryDialog>([](RecoveryDialog* dialog) { dialog->discardButton()->click(); });
    EXPECT_EQ(last.offerRecovery(), 0);
    EXPECT_TRUE(last.windows().empty());
    EXPECT_TRUE(state.copies().isEmpty());
}

TEST(Recovery, QuitWithDontSaveLeavesNoCopyAndNoLock)
{
    StateFolder state;
    {
        Workbench wb;
        DocumentWindow* w = wb.app.newDocument();
        typeInto(w, Row::f1, 3, 700);
        ASSERT_TRUE(w->autosaveNow());
        ASSERT_EQ(state.copies().size(), 1);
        EXPECT_EQ(QDir(state.folder()).entryList({"*.lock"}, QDir::Files).size(), 1)
            << "this workbench's own";

        // File > Quit, then Don't Save in the question about the changes.
        dontSaveWhenAsked();
        action(w, "&Quit")->trigger();
        EXPECT_TRUE(state.copies().isEmpty()) << "the changes were let go on purpose";
        // What the application runs as its event loop ends: no copy comes back.
        wb.app.autosaveAll();
        EXPECT_TRUE(state.copies().isEmpty());
    }
    EXPECT_TRUE(QDir(state.folder()).entryList({"*.lock"}, QDir::Files).isEmpty()) << "a clean exit";
    WorkbenchApplication next;
    EXPECT_TRUE(next.autosave()->leftBehind().isEmpty()) << "nothing to offer at the next start";
}
