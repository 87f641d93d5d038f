#include "table/gui/mainTable.h"

#include "FramesInTable.h"
#include "audio/AudioPlayer.h"
#include "document/Log.h"
#include "options/optionFile.h"
#include "support/TestFiles.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>

#include <cstdlib>
#include <fstream>
#include <mutex>

namespace
{
// A table over a new document (frames at the factory values), with diagnostics recorded.
struct TableOverNewDocument : FramesInTable {
    std::shared_ptr<std::vector<std::string>> log = std::make_shared<std::vector<std::string>>();
    std::shared_ptr<std::mutex> logMutex = std::make_shared<std::mutex>();

    void SetUp() override
    {
        open(20, 900, 700, false);
        Log::setSink([log = log, m = logMutex](const std::string& text) {
            std::lock_guard<std::mutex> lock(*m);
            log->push_back(text);
        });
    }
    void TearDown() override
    {
        FramesInTable::TearDown();
        Log::setSink({});
    }
    int logged(const std::string& text)
    {
        std::lock_guard<std::mutex> lock(*logMutex);
        return static_cast<int>(std::count_if(log->begin(), log->end(), [&](const std::string& l) {
            return l.find(text) != std::string::npos;
        }));
    }
    void waitForPlaybackEnd()
    {
        QTest::qWait(300);
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
    // (Frames' headers, values and anchors as shown, and the names: TableViewTest.cpp.)
    EXPECT_EQ(model->headerData(0, Qt::Horizontal).toString(), "param");
    EXPECT_EQ(model->data(model->index(Row::ah, 3), Qt::ToolTipRole).toString(),
              " ah = Amplitude fo aspiration in dB (0 - 87) ");
    EXPECT_FALSE(model->flags(model->index(Row::f1, 0)) & Qt::ItemIsEditable);
    EXPECT_TRUE(model->flags(model->index(Row::f1, 1)) & Qt::ItemIsEditable);
    // Hidden parameters (f8, oq, gain) collapse to a hairline; shown ones take a full row.
    EXPECT_LT(table.rowHeight(Row::f8), 3);
    EXPECT_LT(table.rowHeight(Row::gain), 3);
    EXPECT_GE(table.rowHeight(Row::f1), 14);

    // Group colours show as the cell background.
    EXPECT_EQ(model->data(model->index(Row::av, 4), Qt::BackgroundRole).value<QColor>(), QColor(Qt::white));
}

TEST_F(TableOverNewDocument, AnchorsFromTheContextMenuFollowTheRules)
{
    table->addAnchor(Row::f1, 4);
    EXPECT_TRUE(cell(4, Row::f1)->_bAnchor());
    table->removeAnchor(Row::f1, 4);
    EXPECT_FALSE(cell(4, Row::f1)->_bAnchor());
    table->addAnchor(Row::f8, 4); // hidden row: nothing
    EXPECT_FALSE(cell(4, Row::f8)->_bAnchor());
    table->addAnchor(Row::f1, 0); // name column: nothing
    EXPECT_FALSE(cell(0, Row::f1)->_bAnchor());
    EXPECT_TRUE(doc._arrayUndo.empty()) << "anchors record no undo step";

    // Typed values with the anchor and interpolate switches: the view shows what was filled in.
    doc.getChannel(0)->m_bDoAnchor = 1;
    doc.getChannel(0)->m_bDoInterpolate = 1;
    type(2, Row::f2, "1000");
    QSignalSpy redrawn(table->model(), &QAbstractItemModel::dataChanged);
    type(6, Row::f2, "2200");
    EXPECT_EQ(shown(4, Row::f2), "1600");
    ASSERT_FALSE(redrawn.isEmpty());
    EXPECT_LE(redrawn.last()[0].toModelIndex().column(), 4) << "the interpolated frames are redrawn";
}

// (Selecting a frame for the data-entry windows: SelectionTest.cpp.)
TEST_F(TableOverNewDocument, RevertWithoutASavedFileIsAnAlertWithTheCommandsButton)
{
    table->revertDocumentToSaved();
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "Error in reading the file");
    EXPECT_EQ(alerts[0].button, "Error in Revert to Save");
}

TEST_F(TableOverNewDocument, TwoPlaysSynthesizeOnceAndTheOutputGetsTheSamples)
{
    const std::string capture = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".table";
    setenv("AUDIO_CAPTURE_FILE", capture.c_str(), 1);
    // Just opened: the table flag is clear and channel 0 holds no samples, yet Play Current is
    // heard: a document never synthesized is synthesized to play.
    ASSERT_FALSE(table->_bSynthesize);
    ASSERT_FALSE(doc.getChannel(0)->hasAudio());
    table->_PlayCurrent();
    waitForPlaybackEnd();
    EXPECT_EQ(logged("strat synthesize"), 1);
    EXPECT_FALSE(table->_bSynthesize);
    ASSERT_TRUE(doc.getChannel(0)->hasAudio());

    // What the output received: after the priming silence, the synthesized samples (the
    // whole requests of them).
    const std::vector<float> heard = slurpFloats(capture);
    const float* synthesized = doc.getChannel(0)->samples();
    const std::size_t played = doc.getChannel(0)->sampleCount() / 512 * 512;
    ASSERT_GT(played, 0u);
    auto at = std::search(heard.begin(), heard.end(), synthesized, synthesized + played);
    EXPECT_NE(at, heard.end()) << "the synthesized samples were not heard as they are";

    table->_PlayCurrent();
    waitForPlaybackEnd();
    EXPECT_EQ(logged("strat synthesize"), 1) << "no edit, no new synthesis";

    type(3, Row::f0, "1200");
    table->_PlayCurrent();
    waitForPlaybackEnd();
    EXPECT_EQ(logged("strat synthesize"), 2);

    // The model channel holds nothing: playing it does nothing and says nothing.
    table->_PlayAudio();
    QTest::qWait(200);
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
    EXPECT_TRUE(alerts.empty());
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

TEST_F(TableOverNewDocument, SaveAudioWritesTheSynthesis)
{
    // A new document, never played: its synthesis is made first and saved, 200 ms at 11025 Hz.
    const std::string path = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".audio.wav";
    ASSERT_FALSE(table->_bSynthesize);
    ASSERT_TRUE(table->saveAudioTo(QString::fromStdString(path)));
    const std::string bytes = slurp(path);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.size(), 48u + 2 * 2205);
    EXPECT_EQ(logged("strat synthesize"), 1);
    EXPECT_EQ(logged("yes"), 1);
    EXPECT_FALSE(table->saveAudioTo("/proc/no/such/folder/audio.wav"));
    EXPECT_EQ(logged("no"), 1);
    EXPECT_EQ(logged("strat synthesize"), 1) << "saved twice, synthesized once";

    // A document too short for a single sample writes nothing and says so.
    const std::string empty = path + ".empty.wav";
    doc.getChannel(0)->m_dLengthMS = 0;
    table->_bSynthesize = true;
    EXPECT_FALSE(table->saveAudioTo(QString::fromStdString(empty)));
    EXPECT_FALSE(std::ifstream(empty).good());
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "No audio to save");
}

TEST_F(TableOverNewDocument, PlaySelectionPlaysExactlyTheSelectedFrames)
{
    const std::string capture = std::string(std::getenv("AUDIO_CAPTURE_FILE")) + ".selection";
    setenv("AUDIO_CAPTURE_FILE", capture.c_str(), 1);
    // Frames 5 to 8 of a document never synthesized: 110 samples a frame at 11025 Hz.
    clickHeader(*table, 5);
    clickHeader(*table, 8, Qt::ShiftModifier);
    ASSERT_EQ(table->selectedColumnSpan(), std::make_pair(5, 8));
    table->_PlaySelection();
    waitForPlaybackEnd();
    EXPECT_EQ(logged("strat synthesize"), 1);
    ASSERT_EQ(doc.getChannel(0)->sampleCount(), 2205u);

    const std::vector<float> heard = slurpFloats(capture);
    const float* selected = doc.getChannel(0)->samples() + 4 * 110;
    const auto at = std::search(heard.begin(), heard.end(), selected, selected + 4 * 110);
    ASSERT_NE(at, heard.end()) << "the selected frames were not heard as they are";
    // Nothing else of the synthesis was heard: silence before and after the selection.
    EXPECT_TRUE(std::all_of(heard.begin(), at, [](float s) { return s == 0.0f; }));
    EXPECT_TRUE(std::all_of(at + 4 * 110, heard.end(), [](float s) { return s == 0.0f; }));

    // A parameter row selects no frame: nothing plays.
    clickName(*table, Row::f1);
    table->PlaySelection();
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
}

TEST_F(TableOverNewDocument, CopiedCellsPasteElsewhereAsOneUndoStep)
{
    QAbstractItemModel* model = table->model();
    // Cells selected in the view (a selected row or frame is let go first).
    auto select = [&](int top, int left, int bottom, int right) {
        table->clearSelection();
        table->selectionModel()->select(QItemSelection(model->index(top, left), model->index(bottom, right)),
                                        QItemSelectionModel::ClearAndSelect);
    };
    for (int k = 3; k <= 5; ++k) {
        cell(k, Row::f2)->set_nValue(1600 + k);
        cell(k, Row::f1)->set_nValue(700 + k);
    }
    select(Row::f2, 3, Row::f1, 5); // f2 is the row above f1
    table->copySelection();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "f2\tf1\n1603\t703\n1604\t704\n1605\t705\n");

    select(Row::f2, 10, Row::f2, 10);
    table->pasteAtSelection();
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(value(10 + k, Row::f2), 1603 + k);
        EXPECT_EQ(shown(10 + k, Row::f1), QString::number(703 + k));
    }
    EXPECT_TRUE(table->_bSynthesize);
    EXPECT_TRUE(doc.isDocumentEdited());
    EXPECT_EQ(doc._arrayUndo.size(), 1u);
    table->undo();
    EXPECT_EQ(value(11, Row::f2), 1500);

    // A row selected by its name is copied over every frame, a frame over every row.
    clickName(*table, Row::f1);
    table->copySelection();
    QStringList lines = QGuiApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 21);
    EXPECT_EQ(lines[0], "f1");
    EXPECT_EQ(lines[4], "704");
    clickHeader(*table, 4);
    table->copySelection();
    lines = QGuiApplication::clipboard()->text().split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].split('\t').size(), 48);
    EXPECT_EQ(lines[1].split('\t').value(Row::f1), "704");

    // Values from elsewhere (CR LF, no header) are clamped as typed values are.
    QGuiApplication::clipboard()->setText("200\t-3\r\n50\r\n");
    select(Row::av, 2, Row::av, 2);
    table->pasteAtSelection();
    EXPECT_EQ(value(2, Row::av), 87);
    EXPECT_EQ(value(2, Row::ah), 0);
    EXPECT_EQ(value(3, Row::av), 50);

    // What does not fit, or is not numbers, is refused and changes nothing.
    const std::size_t undoSteps = doc._arrayUndo.size();
    QGuiApplication::clipboard()->setText("f1\n1\n2\n3\n");
    select(Row::f1, 19, Row::f1, 19); // two frames left
    table->pasteAtSelection();
    QGuiApplication::clipboard()->setText("1\t2\n");
    select(Row::gain, 4, Row::gain, 4); // the last row
    table->pasteAtSelection();
    QGuiApplication::clipboard()->setText("f1\n700\nloud\n");
    select(Row::f1, 7, Row::f1, 7);
    table->pasteAtSelection();
    EXPECT_EQ(doc._arrayUndo.size(), undoSteps);
    EXPECT_EQ(value(19, Row::f1), 500);
    EXPECT_EQ(value(7, Row::f1), 500);
    EXPECT_EQ(value(4, Row::gain), 60);
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_TRUE(alerts[0].message.contains("3 frames")) << alerts[0].message.toStdString();
    EXPECT_TRUE(alerts[2].message.contains("“loud”")) << alerts[2].message.toStdString();
}

TEST_F(TableOverNewDocument, ShorteningAsksBeforeItRemovesEnteredValues)
{
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
        table->_optionsFile();
    };

    // Frames at the factory values go without a question.
    shortenTo("150", "Cancel");
    EXPECT_TRUE(questions.isEmpty());
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, 15);

    type(14, Row::f1, "700");
    shortenTo("100", "Cancel");
    ASSERT_EQ(questions.size(), 1);
    EXPECT_EQ(questions[0], "Shortening to 100 ms removes 5 frames.");
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, 15) << "declined: nothing removed";
    EXPECT_EQ(value(14, Row::f1), 700);

    shortenTo("100", "Shorten");
    EXPECT_EQ(questions.size(), 2);
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, 10);
    EXPECT_EQ(table->model()->columnCount(), 11);
}
