#include "app/WorkbenchFixtures.h"

TEST(Workbench, SaveReopenAndRevertThroughTheFileCommands)
{
    Workbench wb;
    DocumentWindow* w = wb.app.newDocument();
    EXPECT_TRUE(w->isPristine());
    EXPECT_TRUE(w->windowTitle().startsWith("Untitled"));
    typeInto(w, Row::f1, 3, 700);
    EXPECT_FALSE(w->isPristine());
    w->updateActions();
    EXPECT_TRUE(action(w, "&Undo")->isEnabled());
    EXPECT_FALSE(action(w, "Re&vert to Saved")->isEnabled());

    const QString file = wb.path("vowel.stk");
    ASSERT_TRUE(w->saveDocumentTo(file));
    EXPECT_FALSE(w->isWindowModified());
    EXPECT_TRUE(w->windowTitle().startsWith("vowel.stk"));
    EXPECT_EQ(wb.app.recentFiles().value(0), file);
    EXPECT_TRUE(action(w, "Re&vert to Saved")->isEnabled());

    // Save (Ctrl+S) goes to the same file; revert brings the saved values back.
    typeInto(w, Row::f1, 3, 900);
    action(w, "Re&vert to Saved")->trigger();
    EXPECT_EQ(value(w, Row::f1, 3), 700);
    EXPECT_FALSE(w->isWindowModified());
    EXPECT_TRUE(w->table()->_bSynthesize);

    typeInto(w, Row::f2, 4, 1800);
    action(w, "&Save")->trigger();
    EXPECT_FALSE(w->isWindowModified());
    EXPECT_EQ(wb.app.openFile(file), w) << "an open file is brought to front, not opened twice";
    w->close();
    QCoreApplication::processEvents();
    ASSERT_TRUE(wb.app.windows().empty());

    DocumentWindow* again = wb.app.openFile(file);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(value(again, Row::f2, 4), 1800);
    EXPECT_FALSE(again->isWindowModified());
    // Undo and redo through the menu.
    typeInto(again, Row::f0, 2, 1500);
    action(again, "&Undo")->trigger();
    EXPECT_EQ(value(again, Row::f0, 2), 1000);
    action(again, "&Redo")->trigger();
    EXPECT_EQ(value(again, Row::f0, 2), 1500);
}

TEST(Workbench, WaveFilesOpenAsNewDocumentsWithAModelAndDamagedOnesAreNamed)
{
    Workbench wb;
    // 0.4 s of 16-bit mono at 11025 Hz.
    const QString file = wb.path("model.wav");
    writeRecording(file);

    DocumentWindow* w = wb.app.openFile(file);
    ASSERT_NE(w, nullptr) << wb.app.lastAlert().toStdString();
    EXPECT_EQ(w->filePath(), wb.path("model.stk"));
    EXPECT_TRUE(w->isWindowModified());
    EXPECT_EQ(w->table()->model()->columnCount(), 41);
    w->updateActions();
    EXPECT_TRUE(action(w, "Play &Model")->isEnabled());

    // A new document has no model to play.
    DocumentWindow* fresh = wb.app.newDocument();
    fresh->updateActions();
    EXPECT_FALSE(action(fresh, "Play &Model")->isEnabled());

    // A missing file opens nothing; nor do bytes that are neither a WAVE file nor a parameter
    // document, named in the alert.
    const std::size_t open = wb.app.windows().size();
    EXPECT_EQ(wb.app.openFile(wb.path("missing.stk")), nullptr);
    std::string noise;
    for (int i = 0; i < 600; ++i)
        noise += static_cast<char>((i * 7919 + 13) % 256);
    std::ofstream(wb.path("x.wav").toStdString(), std::ios::binary) << noise;
    EXPECT_EQ(wb.app.openFile(wb.path("x.wav")), nullptr);
    for (const char* part : {"could not be opened", "x.wav is not a WAVE file"})
        EXPECT_TRUE(wb.app.lastAlert().contains(part)) << wb.app.lastAlert().toStdString();
    EXPECT_EQ(wb.app.windows().size(), open);

    // A recording cut inside its samples is read as far as it goes, with an alert.
    const std::string whole = fileText(file);
    std::ofstream(wb.path("short.wav").toStdString(), std::ios::binary)
        << whole.substr(0, whole.size() - 2000);
    DocumentWindow* cut = wb.app.openFile(wb.path("short.wav"));
    ASSERT_NE(cut, nullptr);
    for (const char* part : {"short.wav", "holds 3410 samples of the 4410 it declares"})
        EXPECT_TRUE(wb.app.lastAlert().contains(part)) << wb.app.lastAlert().toStdString();
    EXPECT_EQ(cut->document()->getChannel(2)->sampleCount(), 3410u);
}

TEST(Workbench, LoadModelRecordingKeepsTheTableAndItsHistory)
{
    Workbench wb;
    const QString file = wb.path("voice.wav");
    writeRecording(file, 50);

    DocumentWindow* w = wb.app.newDocument();
    const int columns = w->table()->model()->columnCount();
    typeInto(w, Row::f1, 3, 700);
    ASSERT_TRUE(w->document()->canUndo());
    const std::string before = w->document()->Save_STK_FileType50(true);

    ASSERT_TRUE(w->loadModelRecordingFrom(file)) << wb.app.lastAlert().toStdString();
    const Channels& model = *w->document()->getChannel(2);
    EXPECT_EQ(model.m_dwFileLength, 4410.0);
    EXPECT_NEAR(model.samples()[49], 49 / 200.0f, 1e-3);
    EXPECT_EQ(w->table()->model()->columnCount(), columns);
    EXPECT_EQ(w->document()->Save_STK_FileType50(true), before);
    EXPECT_TRUE(w->document()->canUndo());
    EXPECT_TRUE(w->filePath().isEmpty()) << "the document keeps its own name";
    EXPECT_TRUE(w->statusBar()->currentMessage().contains("keeps its time axis"));
    w->updateActions();
    EXPECT_TRUE(action(w, "Play &Model")->isEnabled());
    EXPECT_TRUE(action(w, "&Trace Over Model...")->isEnabled());

    // A damaged file is refused and the model stays.
    const QString junk = wb.path("junk.wav");
    std::ofstream(junk.toStdString()) << "RIFF junk";
    EXPECT_FALSE(w->loadModelRecordingFrom(junk));
    EXPECT_TRUE(wb.app.lastAlert().contains("could not be used"));
    EXPECT_EQ(w->document()->getChannel(2)->m_dwFileLength, 4410.0);
}

TEST(Workbench, NamedConfigurationsCarrySettingsBetweenDocuments)
{
    Workbench wb;
    DocumentWindow* a = wb.app.newDocument();
    Channels& c = *a->document()->getChannel(0);
    c.m_Parameters[Row::f1].nMaxValue = 1000;
    c.m_Parameters[Row::f7].bSelected = 1;
    c.m_dLengthMS = 300;
    const QString config = wb.path("config.cfg");
    ASSERT_TRUE(a->saveConfigurationTo(config));

    DocumentWindow* b = wb.app.newDocument();
    typeInto(b, Row::f0, 20, 1234);
    ASSERT_TRUE(b->loadConfigurationFrom(config));
    const Channels& d = *b->document()->getChannel(0);
    EXPECT_EQ(b->table()->model()->columnCount(), 31);
    EXPECT_EQ(value(b, Row::f0, 20), 1234) << "the frames carry over";
    EXPECT_DOUBLE_EQ(d.m_dSampleRate, 22050.0) << "f7 shown: the higher rate";
    EXPECT_EQ(b->table()->tableModel()->cellAt(Row::f1, 5)->_nMaxValue(), 1000);
    EXPECT_FALSE(b->loadConfigurationFrom(wb.path("missing.cfg")));
}

TEST(Workbench, OpeningReportsValuesThatDidNotFitAndStartsInTheDocumentsFolder)
{
    Workbench wb;
    // Five frames declared, three present; f0 99999 in two of them, far beyond what the table
    // holds. Both facts come in one alert.
    const QString file = wb.path("wide.stk");
    std::ofstream(file.toStdString(), std::ios::binary)
        << "50\t11025\t10\t\r\n1\t0\t0\t0\t0\t0\t0\t0\t0\t50\t\r\n255\t255\t255\t\r\n"
           "f0\tf1\t\r\n99999\t600\t\r\n1200\t600\t\r\n99999\t600\t\r\n";
    DocumentWindow* w = wb.app.openFile(file);
    ASSERT_NE(w, nullptr);
    for (const char* part : {"wide.stk", "2 values did not fit", "declares 5 frames but holds values for 3"})
        EXPECT_TRUE(wb.app.lastAlert().contains(part)) << wb.app.lastAlert().toStdString();
    // The row's maximum, not a wrapped number, as the table shows it.
    EXPECT_EQ(w->table()->model()->data(w->table()->model()->index(Row::f0, 3)).toString(), "5000");

    EXPECT_EQ(wb.app.openFolder(w), wb.folder.path());
}

TEST(Workbench, StatusLineShowsTheNextRateAndTheLastClippingOrSilence)
{
    Workbench wb;
    DocumentWindow* w = wb.app.newDocument();
    auto status = [w](const char* name) -> QString {
        for (QLabel* label : w->statusBar()->findChildren<QLabel*>())
            if (label->objectName() == name || (QString(name) == "grid" && label->text().contains(" Hz")))
                return label->text();
        return {};
    };
    // The file options ask for 22050 Hz, but without a sixth to eighth formant shown the next
    // synthesis runs at 11025 Hz; showing f6 switches it at once.
    MyDocument& doc = *w->document();
    doc.m_dNewSampleRate = 22050;
    doc.m_dNewLengthMS = 200;
    doc.m_nNewUpdateIntervalMS = 10;
    w->table()->saveoptionsFile();
    EXPECT_TRUE(status("grid").contains("11025 Hz")) << status("grid").toStdString();
    doc.getChannel(0)->m_Parameters[Row::f6].bSelected = 1;
    w->table()->saveParameters();
    EXPECT_TRUE(status("grid").contains("22050 Hz")) << status("grid").toStdString();
    doc.getChannel(0)->m_Parameters[Row::f6].bSelected = 0;
    w->table()->saveParameters();

    // A plain synthesis says nothing; voicing and gain at their maximum clip, and the status line
    // says how much after saving. The gain row is shown first: a collapsed row takes nothing typed.
    ASSERT_TRUE(w->table()->saveAudioTo(wb.path("plain.wav")));
    EXPECT_TRUE(status("clipping").isEmpty());
    doc.getChannel(0)->m_Parameters[Row::gain].bSelected = 1;
    w->table()->saveParameters();
    for (int k = 1; k <= 20; ++k) {
        typeInto(w, Row::av, k, 87);
        typeInto(w, Row::gain, k, 87);
    }
    ASSERT_TRUE(w->table()->saveAudioTo(wb.path("loud.wav")));
    EXPECT_EQ(status("clipping"), QString::fromStdString(doc.clippingReport()));
    EXPECT_GT(doc.m_nClippedSamples, 0);

    // The gain rule makes 4 .. 15 silent: the same place says so.
    for (int k = 1; k <= 20; ++k)
        typeInto(w, Row::gain, k, 10);
    ASSERT_TRUE(w->table()->saveAudioTo(wb.path("silent.wav")));
    EXPECT_TRUE(status("clipping").contains("silent")) << status("clipping").toStdString();
}

TEST(Workbench, DataEntryWindowTitleFollowsTheDocument)
{
    Workbench wb;
    DocumentWindow* w = wb.app.newDocument();
    action(w, "&Graphical Data Entry...")->trigger();
    ASSERT_NE(w->table()->graphicalDataEntry(), nullptr);
    QWidget* entry = w->table()->graphicalDataEntry()->window();
    EXPECT_EQ(entry->windowTitle(), "data entry:: Untitled[*]");
    EXPECT_FALSE(entry->isWindowModified());
    typeInto(w, Row::f1, 3, 700);
    EXPECT_TRUE(entry->isWindowModified());
    ASSERT_TRUE(w->saveDocumentTo(wb.path("named.stk")));
    EXPECT_EQ(entry->windowTitle(), "data entry:: named.stk[*]");
    EXPECT_FALSE(entry->isWindowModified());
}

TEST(Workbench, TheFirstSaveOfARecordingsDocumentNeverReplacesAFileUnasked)
{
    Workbench wb;
    writeRecording(wb.path("x.wav"));
    writeRecording(wb.path("y.wav"));
    const QString yesterday = wb.path("x.stk");
    std::ofstream(yesterday.toStdString()) << "yesterday's traced document";

    // x.stk exists: Save goes through Save As; cancelled, nothing is written.
    DocumentWindow* w = wb.app.openFile(wb.path("x.wav"));
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(w->isFileNameProposed());
    typeInto(w, Row::f1, 3, 700);
    whenModal<QFileDialog>([](QFileDialog* panel) { panel->reject(); });
    action(w, "&Save")->trigger();
    EXPECT_EQ(fileText(yesterday), "yesterday's traced document");
    EXPECT_TRUE(w->isWindowModified());

    // Saved under another name the user chose; x.stk is still untouched, and from then on
    // Save goes to the chosen file without asking.
    const QString chosen = wb.path("x-today.stk");
    whenModal<QFileDialog>([chosen](QFileDialog* panel) {
        panel->selectFile(chosen);
        // The panel may keep the name it proposed when it already lists that folder (as after
        // earlier panels in this process): the user's typing is what counts.
        if (auto* edit = panel->findChild<QLineEdit*>("fileNameEdit"))
            edit->setText(QFileInfo(chosen).fileName());
        static_cast<QDialog*>(panel)->accept(); // the panel's own check of the name runs
    });
    EXPECT_TRUE(w->saveDocument());
    EXPECT_EQ(w->filePath(), chosen);
    EXPECT_EQ(fileText(yesterday), "yesterday's traced document");
    EXPECT_FALSE(w->isFileNameProposed());
    typeInto(w, Row::f1, 4, 710);
    EXPECT_TRUE(w->saveDocument());
    EXPECT_NE(fileText(chosen).find("710"), std::string::npos);

    // No y.stk yet: the proposed name is simply taken.
    DocumentWindow* y = wb.app.openFile(wb.path("y.wav"));
    ASSERT_NE(y, nullptr);
    EXPECT_TRUE(y->saveDocument());
    EXPECT_EQ(fileText(wb.path("y.stk")).substr(0, 4), "400\t");
}
