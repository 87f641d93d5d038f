#include "table/gui/mainTable.h"

#include "audio/AudioPlayer.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "options/optionFile.h"
#include "support/TestFiles.h"
#include "table/gui/Alert.h"
#include "table/gui/TableClicks.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>

namespace
{
// A table over a new document, with alerts and diagnostics recorded instead of shown.
struct TableFixture {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    QStringList alerts;
    std::shared_ptr<std::vector<std::string>> log = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<std::mutex> logMutex = std::make_shared<std::mutex>();

    TableFixture()
    {
        doc.SetUpDataGridMemory();
        doc.buildDataTableDictionary();
        table = std::make_unique<mainTable>(&doc);
        table->resize(900, 700);
        table->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(table.get()));
        Alert::setHandler([this](const QString& title, const QString& message, const QString& button) {
            alerts << title + "|" + message + "|" + button;
        });
        Log::setSink([log = log, m = logMutex](const std::string& text) {
            std::lock_guard<std::mutex> lock(*m);
            log->push_back(text);
        });
    }
    ~TableFixture()
    {
        table.reset();
        Alert::setHandler({});
        Log::setSink({});
    }
    int value(int row, int column) const
    {
        return doc._dataTableDictionary.cellAt(static_cast<long long>(column) * 10, row)->_nValue();
    }
    int logged(const std::string& text)
    {
        std::lock_guard<std::mutex> lock(*logMutex);
        return static_cast<int>(std::count_if(log->begin(), log->end(), [&](const std::string& l) {
            return l.find(text) != std::string::npos;
        }));
    }
    // Types text into a cell through the keyboard, as a user does.
    void type(int row, int column, const QString& text)
    {
        const QModelIndex index = table->model()->index(row, column);
        table->setCurrentIndex(index);
        table->scrollTo(index);
        table->activateWindow();
        table->setFocus();
        typeIntoCurrentCell(*table, text);
    }
    void waitForPlaybackEnd()
    {
        for (int i = 0; i < 200 && mainTable::sharedPlayer()->isPlaying(); ++i)
            QTest::qWait(25);
    }
};
} // namespace

TEST(mainTable, SetUpShowsNamesFramesAndHiddenRows)
{
    MyDocument doc;
    doc.buildDataTableDictionary();
    doc.getChannel(0)->m_nUpdateIntervalMS = 0; // repaired to 10 when the table is set up
    mainTable table(&doc);
    EXPECT_EQ(doc.getChannel(0)->m_nUpdateIntervalMS, 10);
    QAbstractItemModel* model = table.model();
    ASSERT_EQ(model->rowCount(), 48);
    ASSERT_EQ(model->columnCount(), 21);
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), "param");
    EXPECT_EQ(model->headerData(1, Qt::Horizontal).toString(), "10");
    EXPECT_EQ(model->headerData(20, Qt::Horizontal).toString(), "200");
    EXPECT_EQ(model->data(model->index(Row::f1, 0)).toString(), "f1");
    EXPECT_EQ(model->data(model->index(Row::f1, 3)).toString(), "500");
    EXPECT_EQ(model->data(model->index(Row::ah, 3), Qt::ToolTipRole).toString(),
              " ah = Amplitude fo aspiration in dB (0 - 87) ");
    EXPECT_FALSE(model->flags(model->index(Row::f1, 0)) & Qt::ItemIsEditable);
    EXPECT_TRUE(model->flags(model->index(Row::f1, 1)) & Qt::ItemIsEditable);
    // Hidden parameters (f8, oq, gain) collapse to a hairline; shown ones take a full row.
    EXPECT_LT(table.rowHeight(Row::f8), 3);
    EXPECT_LT(table.rowHeight(Row::gain), 3);
    EXPECT_GE(table.rowHeight(Row::f1), 14);

    // Anchors show red; group colours show as the cell background.
    doc._dataTableDictionary.cellAt(30, Row::av)->set_bAnchor(true);
    EXPECT_EQ(model->data(model->index(Row::av, 3), Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(model->data(model->index(Row::av, 4), Qt::BackgroundRole).value<QColor>(), QColor(Qt::white));
}

TEST(mainTable, TypedEntryThroughTheKeyboardClampsAndUndoes)
{
    TableFixture f;
    QSignalSpy changed(f.table.get(), &mainTable::documentChanged);
    f.type(Row::av, 3, "9999");
    EXPECT_EQ(f.value(Row::av, 3), 87);
    EXPECT_TRUE(f.table->_bSynthesize);
    EXPECT_TRUE(f.doc.isDocumentEdited());
    EXPECT_GE(changed.count(), 1);
    f.type(Row::f1, 5, "-5");
    EXPECT_EQ(f.value(Row::f1, 5), 200);
    EXPECT_EQ(f.doc._arrayUndo.size(), 2u);

    // The same value again records nothing.
    f.type(Row::f1, 5, "200");
    EXPECT_EQ(f.doc._arrayUndo.size(), 2u);

    // Undo and redo through the table's commands restore the values and rebuild the view.
    f.table->_bSynthesize = false;
    f.table->undo();
    EXPECT_EQ(f.value(Row::f1, 5), 500);
    EXPECT_EQ(f.value(Row::av, 3), 87);
    EXPECT_TRUE(f.table->_bSynthesize);
    EXPECT_EQ(f.table->model()->data(f.table->model()->index(Row::f1, 5)).toString(), "500");
    f.table->undo();
    EXPECT_EQ(f.value(Row::av, 3), 60);
    f.table->redo();
    EXPECT_EQ(f.value(Row::av, 3), 87);
    f.table->redo();
    EXPECT_EQ(f.value(Row::f1, 5), 200);
    EXPECT_TRUE(f.alerts.isEmpty());
}

TEST(mainTable, AnchorsFromTheContextMenuFollowTheRules)
{
    TableFixture f;
    f.table->addAnchor(Row::f1, 4);
    EXPECT_TRUE(f.doc._dataTableDictionary.cellAt(40, Row::f1)->_bAnchor());
    f.table->removeAnchor(Row::f1, 4);
    EXPECT_FALSE(f.doc._dataTableDictionary.cellAt(40, Row::f1)->_bAnchor());
    f.table->addAnchor(Row::f8, 4); // hidden row: nothing
    EXPECT_FALSE(f.doc._dataTableDictionary.cellAt(40, Row::f8)->_bAnchor());
    f.table->addAnchor(Row::f1, 0); // name column: nothing
    EXPECT_FALSE(f.doc._dataTableDictionary.cellAt(0, Row::f1)->_bAnchor());
    EXPECT_TRUE(f.doc._arrayUndo.empty()) << "anchors record no undo step";

    // Typed values with the anchor and interpolate switches.
    f.doc.getChannel(0)->m_bDoAnchor = 1;
    f.doc.getChannel(0)->m_bDoInterpolate = 1;
    f.type(Row::f2, 2, "1000");
    f.type(Row::f2, 6, "2000");
    EXPECT_EQ(f.value(Row::f2, 4), 1500);
    EXPECT_EQ(f.table->model()->data(f.table->model()->index(Row::f2, 4)).toString(), "1500");
}

// (Selecting a frame for the data-entry windows: SelectionTest.cpp.)
TEST(mainTable, RevertWithoutASavedFileIsAnAlertWithTheCommandsButton)
{
    TableFixture f;
    f.table->revertDocumentToSaved();
    ASSERT_EQ(f.alerts.size(), 1);
    EXPECT_TRUE(f.alerts[0].startsWith("Error in reading the file|"));
    EXPECT_TRUE(f.alerts[0].endsWith("|Error in Revert to Save"));
}

TEST(mainTable, TwoPlaysSynthesizeOnceAndTheOutputGetsTheSamples)
{
    TableFixture f;
    const std::string capture = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".table";
    setenv("AUDIO_CAPTURE_FILE", capture.c_str(), 1);
    // Just opened: the table flag is clear and channel 0 holds no samples, yet Play Current is
    // heard: a document never synthesized is synthesized to play.
    ASSERT_FALSE(f.table->_bSynthesize);
    ASSERT_FALSE(f.doc.getChannel(0)->hasAudio());
    f.table->_PlayCurrent();
    QTest::qWait(300);
    f.waitForPlaybackEnd();
    EXPECT_EQ(f.logged("strat synthesize"), 1);
    EXPECT_FALSE(f.table->_bSynthesize);
    ASSERT_TRUE(f.doc.getChannel(0)->hasAudio());

    // What the output received: after the priming silence, the synthesized samples (the
    // whole requests of them).
    const std::vector<float> heard = slurpFloats(capture);
    const float* synthesized = f.doc.getChannel(0)->samples();
    const std::size_t played = f.doc.getChannel(0)->sampleCount() / 512 * 512;
    ASSERT_GT(played, 0u);
    auto at = std::search(heard.begin(), heard.end(), synthesized, synthesized + played);
    EXPECT_NE(at, heard.end()) << "the synthesized samples were not heard as they are";

    f.table->_PlayCurrent();
    QTest::qWait(300);
    f.waitForPlaybackEnd();
    EXPECT_EQ(f.logged("strat synthesize"), 1) << "no edit, no new synthesis";

    f.type(Row::f0, 3, "1200");
    f.table->_PlayCurrent();
    QTest::qWait(300);
    f.waitForPlaybackEnd();
    EXPECT_EQ(f.logged("strat synthesize"), 2);

    // The model channel holds nothing: playing it does nothing and says nothing.
    f.table->_PlayAudio();
    QTest::qWait(200);
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
    EXPECT_TRUE(f.alerts.isEmpty());
}

TEST(mainTable, AFailedSetUpIsAnAlertAndTheProgramGoesOn)
{
    QStringList alerts;
    Alert::setHandler(
        [&](const QString& title, const QString&, const QString& button) { alerts << title + "|" + button; });
    // More frames than a document holds: refused before anything is made.
    MyDocument tooLong;
    tooLong.getChannel(0)->m_nColumnNum = MyDocument::kMaxFrames + 1;
    {
        mainTable table(&tooLong);
        EXPECT_FALSE(table.isSetUp());
        EXPECT_EQ(alerts, QStringList{"Document Too Long|Error in starting the window"});
        EXPECT_EQ(table.model()->columnCount(), 0);
        EXPECT_TRUE(tooLong._dataTableDictionary.empty());
    }

    // Columns that cannot be made leave an empty table, not stale columns.
    MyDocument doc;
    doc.buildDataTableDictionary();
    mainTable table(&doc);
    ASSERT_TRUE(table.isSetUp());
    DataTableDictionary runaway;
    for (long long k = 0; k <= MyDocument::kMaxFrames + 1; ++k)
        runaway.setObject(k * 10, CellArray{});
    doc._dataTableDictionary = std::move(runaway);
    EXPECT_FALSE(table.rebuildColumns());
    EXPECT_EQ(alerts.value(1), "Document Too Long|Error in creating columns");
    EXPECT_EQ(table.model()->columnCount(), 0);
    EXPECT_EQ(table.model()->rowCount(), 0);
    Alert::setHandler({});
}

TEST(mainTable, SaveAudioWritesTheSynthesis)
{
    // A new document, never played: its synthesis is made first and saved, 200 ms at 11025 Hz.
    TableFixture f;
    const std::string path = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".audio.wav";
    ASSERT_FALSE(f.table->_bSynthesize);
    ASSERT_TRUE(f.table->saveAudioTo(QString::fromStdString(path)));
    const std::string bytes = slurp(path);
    ASSERT_GE(bytes.size(), 48u);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.size(), 48u + 2 * 2205);
    EXPECT_EQ(f.logged("strat synthesize"), 1);
    EXPECT_EQ(f.logged("yes"), 1);
    EXPECT_FALSE(f.table->saveAudioTo("/proc/no/such/folder/audio.wav"));
    EXPECT_EQ(f.logged("no"), 1);
    EXPECT_EQ(f.logged("strat synthesize"), 1) << "saved twice, synthesized once";

    // A document too short for a single sample writes nothing and says so.
    const std::string empty = path + ".empty.wav";
    f.doc.getChannel(0)->m_dLengthMS = 0;
    f.table->_bSynthesize = true;
    EXPECT_FALSE(f.table->saveAudioTo(QString::fromStdString(empty)));
    EXPECT_FALSE(std::ifstream(empty).good());
    ASSERT_EQ(f.alerts.size(), 1);
    EXPECT_TRUE(f.alerts[0].startsWith("No audio to save|")) << f.alerts[0].toStdString();
}

TEST(mainTable, PlaySelectionPlaysExactlyTheSelectedFrames)
{
    TableFixture f;
    const std::string capture = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".selection";
    setenv("AUDIO_CAPTURE_FILE", capture.c_str(), 1);
    // Frames 5 to 8 of a document never synthesized: 110 samples a frame at 11025 Hz.
    clickHeader(*f.table, 5);
    clickHeader(*f.table, 8, Qt::ShiftModifier);
    ASSERT_EQ(f.table->selectedColumnSpan(), std::make_pair(5, 8));
    f.table->_PlaySelection();
    QTest::qWait(300);
    f.waitForPlaybackEnd();
    EXPECT_EQ(f.logged("strat synthesize"), 1);
    ASSERT_EQ(f.doc.getChannel(0)->sampleCount(), 2205u);

    const std::vector<float> heard = slurpFloats(capture);
    const float* selected = f.doc.getChannel(0)->samples() + 4 * 110;
    const auto at = std::search(heard.begin(), heard.end(), selected, selected + 4 * 110);
    ASSERT_NE(at, heard.end()) << "the selected frames were not heard as they are";
    // Nothing else of the synthesis was heard: silence before and after the selection.
    EXPECT_TRUE(std::all_of(heard.begin(), at, [](float s) { return s == 0.0f; }));
    EXPECT_TRUE(std::all_of(at + 4 * 110, heard.end(), [](float s) { return s == 0.0f; }));

    // A parameter row selects no frame: nothing plays.
    clickName(*f.table, Row::f1);
    f.table->PlaySelection();
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
}

TEST(mainTable, CopiedCellsPasteElsewhereAsOneUndoStep)
{
    TableFixture f;
    QAbstractItemModel* model = f.table->model();
    // Cells selected in the view (a selected row or frame is let go first).
    auto select = [&](int top, int left, int bottom, int right) {
        f.table->clearSelection();
        f.table->selectionModel()->select(
            QItemSelection(model->index(top, left), model->index(bottom, right)),
            QItemSelectionModel::ClearAndSelect);
    };
    for (int k = 3; k <= 5; ++k) {
        f.doc._dataTableDictionary.cellAt(k * 10, Row::f2)->set_nValue(1600 + k);
        f.doc._dataTableDictionary.cellAt(k * 10, Row::f1)->set_nValue(700 + k);
    }
    select(Row::f2, 3, Row::f1, 5); // f2 is the row above f1
    f.table->copySelection();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "f2\tf1\n1603\t703\n1604\t704\n1605\t705\n");

    select(Row::f2, 10, Row::f2, 10);
    f.table->pasteAtSelection();
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(f.value(Row::f2, 10 + k), 1603 + k);
        EXPECT_EQ(f.value(Row::f1, 10 + k), 703 + k);
        EXPECT_EQ(model->data(model->index(Row::f1, 10 + k)).toString(), QString::number(703 + k));
    }
    EXPECT_TRUE(f.table->_bSynthesize);
    EXPECT_TRUE(f.doc.isDocumentEdited());
    EXPECT_EQ(f.doc._arrayUndo.size(), 1u);
    f.table->undo();
    EXPECT_EQ(f.value(Row::f2, 11), 1500);
    EXPECT_EQ(f.value(Row::f1, 12), 500);

    // A row selected by its name is copied over every frame, a frame over every row.
    clickName(*f.table, Row::f1);
    f.table->copySelection();
    QStringList lines = QGuiApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 21);
    EXPECT_EQ(lines[0], "f1");
    EXPECT_EQ(lines[4], "704");
    clickHeader(*f.table, 4);
    f.table->copySelection();
    lines = QGuiApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].split('\t').size(), 48);
    EXPECT_EQ(lines[1].split('\t').value(Row::f1), "704");

    // Values from elsewhere (CR LF, no header) are clamped as typed values are.
    QGuiApplication::clipboard()->setText("200\t-3\r\n50\r\n");
    select(Row::av, 2, Row::av, 2);
    f.table->pasteAtSelection();
    EXPECT_EQ(f.value(Row::av, 2), 87);
    EXPECT_EQ(f.value(Row::ah, 2), 0);
    EXPECT_EQ(f.value(Row::av, 3), 50);

    // What does not fit, or is not numbers, is refused and changes nothing.
    const std::size_t undoSteps = f.doc._arrayUndo.size();
    QGuiApplication::clipboard()->setText("f1\n1\n2\n3\n");
    select(Row::f1, 19, Row::f1, 19); // two frames left
    f.table->pasteAtSelection();
    QGuiApplication::clipboard()->setText("1\t2\n");
    select(Row::gain, 4, Row::gain, 4); // the last row
    f.table->pasteAtSelection();
    QGuiApplication::clipboard()->setText("f1\n700\nloud\n");
    select(Row::f1, 7, Row::f1, 7);
    f.table->pasteAtSelection();
    EXPECT_EQ(f.doc._arrayUndo.size(), undoSteps);
    EXPECT_EQ(f.value(Row::f1, 19), 500);
    EXPECT_EQ(f.value(Row::f1, 7), 500);
    EXPECT_EQ(f.value(Row::gain, 4), 60);
    ASSERT_EQ(f.alerts.size(), 3);
    EXPECT_TRUE(f.alerts[0].contains("3 frames")) << f.alerts[0].toStdString();
    EXPECT_TRUE(f.alerts[2].contains("“loud”")) << f.alerts[2].toStdString();
}

TEST(mainTable, ShorteningAsksBeforeItRemovesEnteredValues)
{
    TableFixture f;
    QStringList questions;
    // The option panel gets the new length and OK; a question that follows gets `answer`.
    auto shortenTo = [&](const QString& length, const QString& answer) {
        QTimer poll;
        QPointer<QWidget> handled;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal || modal == handled)
                return;
            handled = modal;
            if (auto* panel = qobject_cast<optionFile*>(modal)) {
                panel->m_nFileLength->setText(length);
                panel->oktButton();
            } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
                questions << box->text();
                for (QAbstractButton* button : box->buttons())
                    if (button->text() == answer)
                        button->click();
            }
        });
        poll.start(10);
        f.table->_optionsFile();
    };

    // Frames at the factory values go without a question.
    shortenTo("150", "Cancel");
    EXPECT_TRUE(questions.isEmpty());
    EXPECT_EQ(f.doc.getChannel(0)->m_nColumnNum, 15);

    f.type(Row::f1, 14, "700");
    shortenTo("100", "Cancel");
    ASSERT_EQ(questions.size(), 1);
    EXPECT_EQ(questions[0], "Shortening to 100 ms removes 5 frames.");
    EXPECT_EQ(f.doc.getChannel(0)->m_nColumnNum, 15) << "declined: nothing removed";
    EXPECT_EQ(f.value(Row::f1, 14), 700);

    shortenTo("100", "Shorten");
    EXPECT_EQ(questions.size(), 2);
    EXPECT_EQ(f.doc.getChannel(0)->m_nColumnNum, 10);
    EXPECT_EQ(f.table->model()->columnCount(), 11);
}
