#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "table/mainTable.h"

#include "table/DataEntryController.h"

#include <QAction>
#include <QCoreApplication>
#include <QLabel>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <fstream>

namespace
{
QAction* action(QWidget* window, const QString& text)
{
    for (QAction* a : window->findChildren<QAction*>())
        if (a->text() == text)
            return a;
    return nullptr;
}

int value(DocumentWindow* w, int row, int column)
{
    return w->document()->_dataTableDictionary.cellAt(static_cast<long long>(column) * 10, row)->_nValue();
}

void typeInto(DocumentWindow* w, int row, int column, int number)
{
    QAbstractItemModel* model = w->table()->model();
    ASSERT_TRUE(model->setData(model->index(row, column), QString::number(number), Qt::EditRole));
}

struct Workbench {
    QTemporaryDir folder;
    WorkbenchApplication app;
    Workbench()
    {
        QCoreApplication::setOrganizationName("Tessaphon");
        QCoreApplication::setApplicationName("Tessaphon");
        app.setQuietAlerts(true);
    }
    QString path(const QString& name) const { return folder.filePath(name); }
};
} // namespace

TEST(Workbench, SaveReopenAndRevertThroughTheFileCommands)
{
    Workbench wb;
    DocumentWindow* w = wb.app.newDocument();
    EXPECT_TRUE(w->isPristine());
    EXPECT_TRUE(w->windowTitle().startsWith("Untitled"));
    typeInto(w, Row::f1, 3, 700);
    EXPECT_TRUE(w->isWindowModified());
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
    typeInto(w, Row::av, 5, 10);
    action(w, "Re&vert to Saved")->trigger();
    EXPECT_EQ(value(w, Row::f1, 3), 700);
    EXPECT_EQ(value(w, Row::av, 5), 60);
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
    EXPECT_EQ(value(again, Row::f1, 3), 700);
    EXPECT_EQ(value(again, Row::f2, 4), 1800);
    EXPECT_FALSE(again->isWindowModified());
    // Undo and redo through the menu.
    typeInto(again, Row::f0, 2, 1500);
    action(again, "&Undo")->trigger();
    EXPECT_EQ(value(again, Row::f0, 2), 1000);
    action(again, "&Redo")->trigger();
    EXPECT_EQ(value(again, Row::f0, 2), 1500);
}

TEST(Workbench, WaveFilesOpenAsNewDocumentsWithAModel)
{
    Workbench wb;
    // 0.4 s of 16-bit mono at 11025 Hz, written by the document's own wave writer.
    MyDocument recording;
    Channels& c = *recording.getChannel(0);
    c.m_hData = MemoryBlock::newHandleClear(4410 * sizeof(float));
    for (int i = 0; i < 4410; ++i)
        reinterpret_cast<float*>(c.m_hData->bytes())[i] = (i % 100) / 400.0f;
    c.m_dSampleRate = 11025;
    c.m_dwFileLength = 4410;
    const QString file = wb.path("model.wav");
    std::ofstream(file.toStdString(), std::ios::binary) << recording.save_Wave_FileType();

    DocumentWindow* w = wb.app.openFile(file);
    ASSERT_NE(w, nullptr) << wb.app.lastAlert().toStdString();
    EXPECT_EQ(w->filePath(), wb.path("model.stk"));
    EXPECT_TRUE(w->isWindowModified());
    EXPECT_TRUE(w->document()->getChannel(2)->hasAudio());
    EXPECT_EQ(w->document()->getChannel(0)->m_nColumnNum, 40);
    EXPECT_EQ(w->table()->model()->columnCount(), 41);
    w->updateActions();
    EXPECT_TRUE(action(w, "Play &Model")->isEnabled());

    // A new document has no model to play.
    DocumentWindow* fresh = wb.app.newDocument();
    fresh->updateActions();
    EXPECT_FALSE(action(fresh, "Play &Model")->isEnabled());

    // Damaged or missing files are refused with the reason, and open nothing.
    const QString junk = wb.path("junk.stk");
    std::ofstream(junk.toStdString()) << "RIFF junk";
    const std::size_t open = wb.app.windows().size();
    EXPECT_EQ(wb.app.openFile(junk), nullptr);
    EXPECT_TRUE(wb.app.lastAlert().contains("could not be opened"));
    EXPECT_EQ(wb.app.openFile(wb.path("missing.stk")), nullptr);
    EXPECT_EQ(wb.app.windows().size(), open);
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
    EXPECT_EQ(d.m_Parameters[Row::f1].nMaxValue, 1000);
    EXPECT_EQ(d.m_nColumnNum, 30);
    EXPECT_EQ(b->table()->model()->columnCount(), 31);
    EXPECT_EQ(value(b, Row::f0, 20), 1234) << "the frames carry over";
    EXPECT_DOUBLE_EQ(d.m_dSampleRate, 22050.0) << "f7 shown: the higher rate";
    EXPECT_EQ(b->table()->tableModel()->cellAt(Row::f1, 5)->_nMaxValue(), 1000);
    EXPECT_FALSE(b->loadConfigurationFrom(wb.path("missing.cfg")));
}

TEST(Workbench, OpeningReportsValuesThatDidNotFitAndStartsInTheDocumentsFolder)
{
    Workbench wb;
    // Three frames; f0 99999 in two of them, far beyond what the table holds.
    const QString file = wb.path("wide.stk");
    std::ofstream(file.toStdString(), std::ios::binary)
        << "30\t11025\t10\t\r\n1\t0\t0\t0\t0\t0\t0\t0\t0\t50\t\r\n255\t255\t255\t\r\n"
           "f0\tf1\t\r\n99999\t600\t\r\n1200\t600\t\r\n99999\t600\t\r\n";
    DocumentWindow* w = wb.app.openFile(file);
    ASSERT_NE(w, nullptr);
    EXPECT_TRUE(wb.app.lastAlert().contains("wide.stk")) << wb.app.lastAlert().toStdString();
    EXPECT_TRUE(wb.app.lastAlert().contains("2 values did not fit")) << wb.app.lastAlert().toStdString();
    EXPECT_EQ(value(w, Row::f0, 1), 5000) << "the row's maximum, not a wrapped number";
    EXPECT_EQ(value(w, Row::f0, 2), 1200);
    EXPECT_EQ(w->table()->model()->data(w->table()->model()->index(Row::f0, 3)).toString(), "5000");

    EXPECT_EQ(wb.app.openFolder(w), wb.folder.path());
}

TEST(Workbench, StatusLineShowsTheNextRateAndTheLastClipping)
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

    // Voicing and gain at their maximum clip; the status line says how much after saving.
    EXPECT_TRUE(status("clipping").isEmpty());
    for (int k = 1; k <= 20; ++k) {
        typeInto(w, Row::av, k, 87);
        typeInto(w, Row::gain, k, 87);
    }
    ASSERT_TRUE(w->table()->saveAudioTo(wb.path("loud.wav")));
    EXPECT_EQ(status("clipping"), QString::fromStdString(doc.clippingReport()));
    EXPECT_TRUE(status("clipping").contains(QString("%1 samples clipped (peak ").arg(doc.m_nClippedSamples)));
    EXPECT_GT(doc.m_nClippedSamples, 0);
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
