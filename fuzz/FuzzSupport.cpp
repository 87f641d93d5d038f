#include "FuzzSupport.h"

#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"

#include <cstdio>
#include <cstring>
#include <fstream>

namespace fuzz
{
namespace
{

// A small document with varied values, hidden and shown rows, and anchors on both.
std::unique_ptr<MyDocument> variedDocument()
{
    auto document = makeTestDocument(12, 10, 1);
    Channels* c = document->getChannel(0);
    c->m_Parameters[Row::f7].bSelected = 1;
    c->m_Parameters[Row::ah].bSelected = 0;
    c->m_bCascade_Parallel = 0;
    document->m_bgColor[5] = Color::rgb(0.1, 0.5, 0.9);
    document->buildDataTableDictionary();
    for (int k = 1; k <= c->m_nColumnNum; ++k)
        for (int row = 0; row < kParameterCount; ++row) {
            CellRef cell = document->_dataTableDictionary.cellAt(k * 10LL, row);
            cell->set_nValue((k * 131 + row * 17) % 3000 - 20);
            cell->set_bAnchor((k + row) % 9 == 0);
        }
    return document;
}

} // namespace

std::vector<std::string> waveSeeds()
{
    std::vector<std::int16_t> tone;
    for (int i = 0; i < 64; ++i)
        tone.push_back(static_cast<std::int16_t>((i % 16) * 4096 - 32768));
    const std::string samples = pcm16(tone);
    std::string listed = waveImage(1, 1, 11025, 2, 16, samples);
    listed.insert(12, std::string("LIST\x04\0\0\0abcd", 12));
    return {waveImage(1, 1, 11025, 2, 16, samples),
            waveImage(1, 2, 22050, 4, 16, samples),
            waveImage(3, 1, 8000, 4, 32, samples),
            waveImage(7, 1, 8000, 1, 8, samples),
            waveImage(1, 1, 11025, 2, 12, samples),
            waveImage(1, 1, 11025, 1, 8, samples),
            waveImage(1, 1, 11025, 2, 16, samples, 17), // odd format chunk, no pad byte
            listed};
}

std::vector<std::string> documentSeeds()
{
    auto factory = makeTestDocument(20, 10, 1);
    auto varied = variedDocument();
    std::string older = varied->Save_STK_FileType50(true);
    older.replace(older.find("50\t\r\n"), 2, "30");
    const std::size_t apv = older.find("apv\t");
    older.replace(apv, 3, "atv");
    return {factory->Save_STK_FileType50(true), varied->Save_STK_FileType50(true),
            varied->Save_STK_FileType50(false), older};
}

std::vector<std::string> snapshotSeeds()
{
    auto factory = makeTestDocument(20, 10, 1);
    auto varied = variedDocument();
    return {factory->Save_STK_FileType(true), varied->Save_STK_FileType(true),
            varied->Save_STK_FileType(false)};
}

void makeSeedsIfAsked(int argc, char** argv, std::vector<std::string> (*seeds)())
{
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--make-seeds") != 0)
            continue;
        const std::vector<std::string> corpus = seeds();
        for (std::size_t n = 0; n < corpus.size(); ++n) {
            std::ofstream out(std::string(argv[i + 1]) + "/seed-" + std::to_string(n), std::ios::binary);
            out << corpus[n];
            if (!out) {
                std::fprintf(stderr, "cannot write the seeds into %s\n", argv[i + 1]);
                std::exit(1);
            }
        }
        std::printf("%zu seeds written to %s\n", corpus.size(), argv[i + 1]);
        std::exit(0);
    }
}

namespace
{
// The text written from the table data built from the grid, or (`fromTable` false) straight from
// the grid, as a document that was never shown is written.
std::string writeText(MyDocument& document, bool snapshot, bool fromTable)
{
    document._dataTableDictionary.removeAllObjects();
    if (fromTable) {
        document.m_bReadFile = 1;
        document.buildDataTableDictionary();
    }
    return snapshot ? document.Save_STK_FileType(true) : document.Save_STK_FileType50(true);
}

bool readText(MyDocument& document, const std::string& text, bool snapshot)
{
    return snapshot ? document.Read_STK_FileTypeDoUndo(text) : document.Read_STK_FileType(text) == 0;
}
} // namespace

void checkReadDocument(MyDocument& document, bool snapshot)
{
    const Channels& c = *document.getChannel(0);
    require(c.m_nColumnNum >= 0 && c.m_nColumnNum <= MyDocument::kMaxFrames);
    require(c.m_snppDataImage_Col_Row.size() == static_cast<std::size_t>(c.m_nColumnNum) + 2);
    require(c.m_pAnchorPosition.size() == 2 * static_cast<std::size_t>(c.m_nNumberofAnchors));
    for (std::size_t i = 0; i < c.m_pAnchorPosition.size(); i += 2)
        require(c.m_pAnchorPosition[i] >= 0 && c.m_pAnchorPosition[i] < kParameterCount &&
                c.m_pAnchorPosition[i + 1] >= 0 && c.m_pAnchorPosition[i + 1] < c.m_nColumnNum);
    if (c.m_nColumnNum > kRoundTripFrames)
        return;
    // Written text is a fixed point: read into a fresh document and written again, it is the same;
    // and the text written straight from the grid is the one its table data gives.
    const std::string first = writeText(document, snapshot, false);
    MyDocument again;
    require(readText(again, first, snapshot));
    require(writeText(again, snapshot, true) == first);
}

} // namespace fuzz
