#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <sys/resource.h>

namespace
{

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2)
        lines.push_back(text.substr(start, end - start));
    EXPECT_EQ(start, text.size()) << "text does not end with CR LF";
    return lines;
}

int fieldCount(const std::string& line)
{
    return static_cast<int>(std::count(line.begin(), line.end(), '\t'));
}

} // namespace

TEST(StkFile, FactoryDocumentLayout)
{
    auto document = makeTestDocument(20, 10, 1);
    EXPECT_FALSE(document->isDocumentEdited());
    const std::string text = document->Save_STK_FileType50(true);
    EXPECT_TRUE(document->isDocumentEdited()); // saving the text marks the document changed

    const auto lines = linesOf(text);
    ASSERT_EQ(lines.size(), 3u + 5u + 1u + 20u);
    EXPECT_EQ(lines[0], "200\t11025\t10\t");
    EXPECT_EQ(lines[1], "1\t0\t0\t0\t0\t0\t0\t0\t0\t50\t");
    std::string white;
    for (int i = 0; i < 30; ++i)
        white += "255\t";
    EXPECT_EQ(lines[2], white);
    EXPECT_EQ(lines[3], "1\t1\t1\t1\t1\t0\t0\t0\t1\t1\t"); // f0 av ah af tl f8 f7 f6 f5 f4
    EXPECT_EQ(lines[7], "1\t1\t0\t0\t1\t0\t0\t0\t");       // rows 40..47: fnp bnp oq anv apv atu skew gain
    // No anchors: the names line follows the selection lines directly.
    EXPECT_EQ(lines[8].substr(0, 18), "f0\tav\tah\taf\ttl\tf8\t");
    EXPECT_EQ(fieldCount(lines[8]), 48);
    EXPECT_EQ(lines[9].substr(0, 8), "1000\t60\t");
    EXPECT_EQ(fieldCount(lines[28]), 48);

    // Anchors of shown rows are counted on the second line and listed ten to a line before the
    // names; an anchor on a hidden row is not written.
    for (int k = 1; k <= 11; ++k)
        frameCell(*document, k, Row::f1)->set_bAnchor(true);
    frameCell(*document, 4, Row::oq)->set_bAnchor(true);
    const auto anchored = linesOf(document->Save_STK_FileType50(true));
    EXPECT_EQ(anchored[1].substr(0, 5), "1\t11\t");
    EXPECT_EQ(anchored[8], "f1,0\tf1,1\tf1,2\tf1,3\tf1,4\tf1,5\tf1,6\tf1,7\tf1,8\tf1,9\t");
    EXPECT_EQ(anchored[9], "f1,10\t");
    EXPECT_EQ(anchored[10].substr(0, 3), "f0\t");
}

TEST(StkFile, RandomDocumentsComeBackWithAllRowsOrTheShownOnes)
{
    // Random settings, colours, shown rows, 16-bit values and anchors, written with every row and
    // with the shown rows only: read back, each setting comes back, each written row its values
    // (rows not written their defaults), each shown row its anchors, and the copy writes the
    // same text.
    std::mt19937 random(5);
    const auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int trial = 0; trial < 30; ++trial) {
        const int frames = pick(1, 30), interval = 5 * pick(1, 4);
        auto original = makeTestDocument(frames, interval, 1);
        Channels* c = original->getChannel(0);
        c->m_dSampleRate = pick(0, 1) ? 22050.0 : 11025.0;
        c->m_bCascade_Parallel = static_cast<std::uint8_t>(pick(0, 1));
        for (int i = 0; i < 10; ++i)
            original->m_bgColor[i] =
                Color::rgb(pick(0, 255) / 255.0, pick(0, 255) / 255.0, pick(0, 255) / 255.0);
        for (int row = 0; row < kParameterCount; ++row)
            c->m_Parameters[row].bSelected = static_cast<std::uint8_t>(pick(0, 1));
        original->buildDataTableDictionary();
        for (int k = 1; k <= frames; ++k)
            for (int row = 0; row < kParameterCount; ++row) {
                setValue(*original, k, row, pick(-32768, 32767));
                frameCell(*original, k, row)->set_bAnchor(pick(0, 5) == 0);
            }
        for (bool all : {true, false}) {
            SCOPED_TRACE("trial " + std::to_string(trial) + (all ? ", all rows" : ", shown rows"));
            original->m_bSaveAll = all;
            const std::string text = original->Save_STK_FileType50(all);
            MyDocument copy;
            ASSERT_EQ(copy.Read_STK_FileType(text), 0) << copy.lastReadError();
            const Channels* d = copy.getChannel(0);
            EXPECT_EQ(d->m_bParallel, 1 - c->m_bCascade_Parallel);
            EXPECT_EQ(copy.m_bver50, 1);
            EXPECT_EQ(d->m_bHaveData, 1);
            EXPECT_EQ(d->m_bSynthesize, 1);
            EXPECT_EQ(copy.m_bAudiofile, 0);
            EXPECT_EQ(copy.m_nClampedValues, 0);
            EXPECT_EQ(copy.fileType(), "stk");
            int shown = 0, anchors = 0;
            for (int row = 0; row < kParameterCount; ++row)
                shown += c->m_Parameters[row].bSelected;
            EXPECT_EQ(d->m_nParameterNumber, all ? kParameterCount : shown);
            ASSERT_EQ(d->m_snppDataImage_Col_Row.size(), frames + 2u);
            copy.m_bReadFile = 1;
            copy.buildDataTableDictionary();
            for (int k = 1; k <= frames; ++k)
                for (int row = 0; row < kParameterCount; ++row) {
                    const CellRef a = frameCell(*original, k, row), b = frameCell(copy, k, row);
                    const bool written = all || c->m_Parameters[row].bSelected;
                    ASSERT_EQ(b->_nValue(), written ? a->_nValue() : kFactoryParameters[row].defaultValue)
                        << k << "," << row;
                    ASSERT_EQ(b->_bAnchor(), a->_bAnchor() && a->_bSelected()) << k << "," << row;
                    anchors += b->_bAnchor();
                }
            EXPECT_EQ(d->m_nNumberofAnchors, anchors);
            EXPECT_EQ(copy.Save_STK_FileType50(all), text);
        }
    }
}

TEST(StkFile, OlderMarkersUnknownNamesAndRaggedLines)
{
    const std::string head = "30\t11025\t10\t\r\n1\t0\t0\t0\t0\t0\t0\t0\t0\t30\t\r\n";
    const std::string text = head + "10\t20\t30\t\r\n" + "f0\tzz\tatv\tf1\t\r\n" + "1200\t5\t44\t640\t\r\n" +
                             "1300\t6\r\n" + "1400\t7\t45\t650\t999\t999\t\r\n";
    MyDocument document;
    ASSERT_EQ(document.Read_STK_FileType(text), 0) << document.lastReadError();
    EXPECT_EQ(document.m_bver50, 0);
    EXPECT_EQ(document.getChannel(0)->m_nParameterNumber, 3); // f0, atv as apv, f1
    const auto& grid = document.getChannel(0)->m_snppDataImage_Col_Row;
    EXPECT_EQ(grid[0][Row::f0], 1200);
    EXPECT_EQ(grid[0][Row::apv], 44);
    EXPECT_EQ(grid[0][Row::f1], 640);
    EXPECT_EQ(grid[1][Row::f0], 1300); // short line: the rest keep their defaults
    EXPECT_EQ(grid[1][Row::apv], 0);
    EXPECT_EQ(grid[1][Row::f1], 500);
    EXPECT_EQ(grid[2][Row::f1], 650); // long line: extra fields ignored
    EXPECT_NEAR(document.m_bgColor[0].red, 10 / 255.0, 1e-12);
    EXPECT_NEAR(document.m_bgColor[0].blue, 30 / 255.0, 1e-12);
    EXPECT_EQ(document.m_bgColor[1], Color::white()); // colours the line lacks stay
    EXPECT_FALSE(document.isTruncated());

    // A file that stops before its declared length (50 ms: five frames) is read as far as it
    // goes and says how far that was; the missing frames keep the defaults.
    MyDocument cut;
    ASSERT_EQ(cut.Read_STK_FileType("50" + text.substr(2)), 0) << cut.lastReadError();
    EXPECT_TRUE(cut.isTruncated());
    EXPECT_EQ(cut.framesInFile(), 3);
    EXPECT_EQ(cut.framesDeclared(), 5);
    EXPECT_EQ(cut.getChannel(0)->m_snppDataImage_Col_Row[2][Row::f0], 1400);
    EXPECT_EQ(cut.getChannel(0)->m_snppDataImage_Col_Row[4][Row::f0], 1000);

    // With another marker "atv" is unknown; LF-only lines are read too.
    std::string other = text;
    other.replace(other.find("30\t\r\n"), 2, "40");
    MyDocument older;
    ASSERT_EQ(older.Read_STK_FileType(other), 0);
    EXPECT_EQ(older.getChannel(0)->m_snppDataImage_Col_Row[0][Row::apv], 0);
    std::string lf = text;
    lf.erase(std::remove(lf.begin(), lf.end(), '\r'), lf.end());
    MyDocument unix;
    ASSERT_EQ(unix.Read_STK_FileType(lf), 0);
    EXPECT_EQ(unix.getChannel(0)->m_snppDataImage_Col_Row[2][Row::f1], 650);
}

TEST(StkFile, AbsurdDocumentsAreRefusedAndLeaveTheDocumentAlone)
{
    const std::string tail = "1\t0\t0\t0\t0\t0\t0\t0\t0\t50\t\r\n";
    const struct {
        std::string text;
        const char* reasonPart;
    } cases[] = {
        {"", "empty"},
        {"200\t11025\t10\t\r\n", "ends after its first line"},
        {"hello\tworld\r\n" + tail, "first line"},
        {"200\t11025\r\n" + tail, "first line"},
        {"1000000000000\t11025\t10\t\r\n" + tail, "length"},
        {"-5\t11025\t10\t\r\n" + tail, "length"},
        {"200\t0\t10\t\r\n" + tail, "sample rate"},
        {"3600000\t11025\t1\t\r\n" + tail, "frames"},
        {"200\t11025\t99999999999\t\r\n" + tail, "update interval"},
        {"200\t11025\t10\t\r\nx\r\n", "second line"},
    };
    for (const auto& c : cases) {
        auto document = makeTestDocument(30, 10, 1);
        document->getChannel(0)->m_snppDataImage_Col_Row[1][Row::f2] = 1777;
        EXPECT_EQ(document->Read_STK_FileType(c.text), -1) << c.text;
        EXPECT_NE(document->lastReadError().find(c.reasonPart), std::string::npos)
            << document->lastReadError();
        const Channels* ch = document->getChannel(0);
        EXPECT_DOUBLE_EQ(ch->m_dLengthMS, 300.0);
        EXPECT_EQ(ch->m_nColumnNum, 30);
        EXPECT_EQ(ch->m_snppDataImage_Col_Row[1][Row::f2], 1777);
    }

    // A negative interval becomes 10; a number the 16-bit grid cannot hold takes its row's maximum
    // or minimum and is counted (32767 fits and is kept as written); anchors outside the frames,
    // with unknown names or without a column are dropped; extra value lines are ignored.
    const std::string odd = "100\t11025\t-7\t\r\n" + tail + "\r\nf1,3\tq9,1\tf1,10\tf2,x\tf2,-1\t\r\n" +
                            "f1\tf2\tf0\tav\t\r\n70000\tabc\t32767\t-70000\t\r\n" +
                            "1000000000000000000000\t\r\n" + std::string(40, '\n');
    MyDocument document;
    ASSERT_EQ(document.Read_STK_FileType(odd), 0) << document.lastReadError();
    const Channels* c = document.getChannel(0);
    EXPECT_EQ(c->m_nUpdateIntervalMS, 10);
    EXPECT_EQ(c->m_nColumnNum, 10);
    const auto& grid = c->m_snppDataImage_Col_Row;
    EXPECT_EQ(grid[0][Row::f1], c->m_Parameters[Row::f1].nMaxValue);
    EXPECT_EQ(grid[0][Row::f2], 1500);
    EXPECT_EQ(grid[0][Row::f0], 32767);
    EXPECT_EQ(grid[0][Row::av], c->m_Parameters[Row::av].nMinValue);
    EXPECT_EQ(grid[1][Row::f1], c->m_Parameters[Row::f1].nMaxValue);
    EXPECT_EQ(document.m_nClampedValues, 3);
    EXPECT_EQ(c->m_pAnchorPosition, (std::vector<std::int32_t>{Row::f1, 3}));
    EXPECT_EQ(c->m_nNumberofAnchors, 1);
}

TEST(StkFile, AtomicSaveAndItsFailures)
{
    namespace fs = std::filesystem;
    const TempDir folder;
    const fs::path target = folder.path / "utterance.stk";

    auto document = makeTestDocument(25, 5, 1);
    setValue(*document, 3, Row::f1, 777);
    document->updateChangeCount(MyDocument::ChangeDone);
    std::string error;
    ASSERT_TRUE(document->writeSafelyToURL(target.string(), "stk", &error)) << error;
    const std::string saved = slurp(target);
    EXPECT_EQ(saved, document->Save_STK_FileType50(true));
    EXPECT_EQ(document->_fileTypeName, "stk");
    EXPECT_EQ(document->fileURL(), target.string());
    // Saving again replaces the file but keeps its permissions.
    const fs::perms ownerOnly = fs::perms::owner_read | fs::perms::owner_write;
    fs::permissions(target, ownerOnly);
    document->writeSafelyToURL(target.string(), "stk", &error);
    EXPECT_FALSE(document->isDocumentEdited());
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all, ownerOnly);

    // A folder that does not exist: refused, with the file and the reason named.
    EXPECT_FALSE(document->writeSafelyToURL(folder / "missing/a.stk", "stk", &error));
    EXPECT_NE(error.find("missing/a.stk"), std::string::npos) << error;
    EXPECT_NE(error.find("No such file or directory"), std::string::npos) << error;
    EXPECT_FALSE(document->canRevert());
    EXPECT_EQ(document->_fileData, saved); // revert still means the text on the disk

    // The disk refuses the data half-way (file size limit): the old file stays whole and no
    // temporary file is left behind.
    auto bigger = makeTestDocument(2000, 10, 1);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = saved.size() + 100;
    setrlimit(RLIMIT_FSIZE, &small);
    const bool written = bigger->writeSafelyToURL(target.string(), "stk", &error);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_FALSE(written);
    EXPECT_NE(error.find("File too large"), std::string::npos) << error;
    EXPECT_EQ(slurp(target), saved);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), fs::directory_iterator()), 1);
}
