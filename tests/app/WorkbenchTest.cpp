#include "app/DocumentWindow.h"
#include "app/WorkbenchApplication.h"
#include "document/MyDocument.h"
#include "table/mainTable.h"

#include <QAction>
#include <QCoreApplication>
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

TEST(Workbench, LoadModelRecordingKeepsTheTableAndItsHistory)
{
    Workbench wb;
    MyDocument recording;
    Channels& c = *recording.getChannel(0);
    c.m_hData = MemoryBlock::newHandleClear(4410 * sizeof(float));
    for (int i = 0; i < 4410; ++i)
        reinterpret_cast<float*>(c.m_hData->bytes())[i] = (i % 50) / 200.0f;
    c.m_dSampleRate = 11025;
    c.m_dwFileLength = 4410;
    const QString file = wb.path("voice.wav");
    std::ofstream(file.toStdString(), std::ios::binary) << recording.save_Wave_FileType();

    DocumentWindow* w = wb.app.newDocument();
    const int columns = w->table()->model()->columnCount();
    typeInto(w, Row::f1, 3, 700);
    ASSERT_TRUE(w->document()->canUndo());
    const std::string before = w->document()->Save_STK_FileType50(true);

    ASSERT_TRUE(w->loadModelRecordingFrom(file)) << wb.app.lastAlert().toStdString();
    const Channels& model = *w->document()->getChannel(2);
    EXPECT_TRUE(model.hasAudio());
    EXPECT_EQ(model.m_dwFileLength, 4410.0);
    EXPECT_NEAR(model.samples()[49], 49 / 200.0f, 1e-3);
    EXPECT_EQ(w->table()->model()->columnCount(), columns);
    EXPECT_EQ(value(w, Row::f1, 3), 700);
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
    EXPECT_EQ(d.m_Parameters[Row::f1].nMaxValue, 1000);
    EXPECT_EQ(d.m_nColumnNum, 30);
    EXPECT_EQ(b->table()->model()->columnCount(), 31);
    EXPECT_EQ(value(b, Row::f0, 20), 1234) << "the frames carry over";
    EXPECT_DOUBLE_EQ(d.m_dSampleRate, 22050.0) << "f7 shown: the higher rate";
    EXPECT_EQ(b->table()->tableModel()->cellAt(Row::f1, 5)->_nMaxValue(), 1000);
    EXPECT_FALSE(b->loadConfigurationFrom(wb.path("missing.cfg")));
}
