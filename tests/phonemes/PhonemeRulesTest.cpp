// Synthesis by rule: the durations the rules state, the releases of stops and their loci, the
// table's values in held segments, the pitch contour, and a document whose anchors give its
// values back when the table re-interpolates them.
#include "phonemes/PhonemeRules.h"

#include "phonemes/PhonemeDocument.h"
#include "phonemes/PhonemeError.h"
#include "table/TableEditing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

RuleFrames framesOf(const std::string& arpabet, const RuleSettings& settings = {})
{
    const PhonemeInventory& inventory = PhonemeInventory::americanEnglish();
    return PhonemeRules::frames(PhonemeString::parse(arpabet, inventory), inventory, settings);
}

// The segment of a phoneme (the first with that ARPAbet symbol).
const Segment& segmentOf(const RuleFrames& frames, const std::string& arpa)
{
    return *std::find_if(frames.segments.begin(), frames.segments.end(),
                         [&](const Segment& s) { return s.phoneme->arpa == arpa; });
}

} // namespace

TEST(PhonemeRules, DurationsFollowTheRules)
{
    // "bad" said alone: /æ/ is in the phrase's last syllable (1.4) before a voiced stop (1.2):
    // 80 + (230 - 80) x 1.68. The /d/ after it is lengthened too: 50 + 25 x 1.4.
    RuleFrames bad = framesOf("B AE1 D");
    EXPECT_DOUBLE_EQ(segmentOf(bad, "AE").durationMS, 80 + 150 * 1.4 * 1.2);
    EXPECT_DOUBLE_EQ(segmentOf(bad, "D").durationMS, 50 + 25 * 1.4);
    // The onset /b/ is neither final nor before an unstressed vowel: its inherent 85 ms.
    EXPECT_DOUBLE_EQ(segmentOf(bad, "B").durationMS, 85);
    // Before a voiceless stop a final vowel shortens: 80 + 150 x 1.4 x 0.7.
    EXPECT_DOUBLE_EQ(segmentOf(framesOf("B AE1 T"), "AE").durationMS, 80 + 150 * 1.4 * 0.7);
    // Not final and unstressed, in a word's first syllable, before a voiced stop (halfway: 1.1):
    // 60 + 60 x 0.5 x 0.85 x 1.1; the consonant before that unstressed vowel shortens to
    // 50 + 25 x 0.7.
    const RuleFrames about = framesOf("D AX0 B AW1 T");
    EXPECT_DOUBLE_EQ(segmentOf(about, "AX").durationMS, 60 + 60 * 0.5 * 0.85 * 1.1);
    EXPECT_DOUBLE_EQ(segmentOf(about, "D").durationMS, 50 + 25 * 0.7);
    // Twice the speed halves every rule duration; a written duration is kept.
    RuleSettings fast;
    fast.speed = 2.0;
    EXPECT_DOUBLE_EQ(segmentOf(framesOf("B AE1 D", fast), "AE").durationMS, (80 + 150 * 1.4 * 1.2) / 2);
    EXPECT_DOUBLE_EQ(segmentOf(framesOf("AA1:300", fast), "AA").durationMS, 300);
    fast.speed = 5.0;
    EXPECT_THROW(framesOf("AA1", fast), PhonemeError);

    // Pauses: 50 ms before the first phrase, 200 ms at a comma, 300 at a full stop, 100 at the end.
    const RuleFrames phrases = framesOf("AA1 , AA1 . AA1");
    std::vector<double> pauses;
    for (const Segment& s : phrases.segments)
        if (s.phoneme->silent())
            pauses.push_back(s.durationMS);
    EXPECT_EQ(pauses, (std::vector<double>{50, 200, 300, 100}));
    EXPECT_GE(phrases.frames * 10.0, phrases.segments.back().endMS());
}

TEST(PhonemeRules, StopsHaveClosureBurstAndVoiceOnsetTime)
{
    const RuleFrames pa = framesOf("P AA1");
    const Segment& p = segmentOf(pa, "P");
    EXPECT_DOUBLE_EQ(p.burstMS, 10);
    EXPECT_DOUBLE_EQ(p.burstMS + p.aspirationMS, 55); // voice onset 55 ms after the release
    // Times become frames to the nearest frame.
    auto at = [&](int row, double ms) { return pa.value(row, static_cast<int>(std::lround(ms / 10))); };
    EXPECT_EQ(at(Row::av, p.startMS + 20), 0); // a silent closure
    EXPECT_EQ(at(Row::af, p.startMS + 20), 0);
    EXPECT_EQ(at(Row::af, p.releaseMS()), 60); // the burst
    EXPECT_EQ(at(Row::ab, p.releaseMS()), 63);
    EXPECT_EQ(at(Row::ah, p.releaseMS() + 20), 60); // aspiration
    EXPECT_EQ(at(Row::av, p.releaseMS() + 20), 0);
    EXPECT_EQ(at(Row::av, p.endMS() + 10), 60); // the vowel is voiced

    // A voiced closure after a voiced sound keeps a voice bar; at the start of a phrase it does not.
    const RuleFrames aba = framesOf("AA1 B AA1");
    const Segment& b = segmentOf(aba, "B");
    EXPECT_EQ(aba.value(Row::av, static_cast<int>(b.startMS / 10) + 2), 47);
    const RuleFrames ba = framesOf("B AA1");
    EXPECT_EQ(ba.value(Row::av, static_cast<int>(segmentOf(ba, "B").startMS / 10) + 2), 0);

    // A nasal opens its zero; elsewhere it sits on the pole.
    const RuleFrames ama = framesOf("AA1 M AA1");
    const Segment& m = segmentOf(ama, "M");
    EXPECT_EQ(ama.value(Row::fnz, static_cast<int>(m.startMS / 10) + 2), 450);
    EXPECT_EQ(ama.value(Row::fnz, 10), 270);
}

TEST(PhonemeRules, StopPlacesStartTheirTransitionsWhereTheLociPutThem)
{
    for (const char* vowel : {"AA", "IY", "UW", "AE"}) {
        std::array<int, 3> f2{}, f3{};
        const char* stops[] = {"B", "D", "G"};
        for (int i = 0; i < 3; ++i) {
            const RuleFrames frames = framesOf(std::string(stops[i]) + " " + vowel + "1");
            const Segment& stop = segmentOf(frames, stops[i]);
            // At the release F2 starts from the locus C + k (V - C), then the first voiced frame.
            int frame = static_cast<int>(stop.releaseMS() / 10.0);
            const Phoneme &c = *stop.phoneme, &v = *PhonemeInventory::americanEnglish().find(vowel);
            EXPECT_EQ(frames.value(Row::f2, frame), std::lround(c.f[1] + c.k * (v.f[1] - c.f[1])));
            while (frames.value(Row::av, frame) == 0)
                ++frame;
            f2[i] = frames.value(Row::f2, frame);
            f3[i] = frames.value(Row::f3, frame);
        }
        EXPECT_LT(f2[0], f2[1]) << vowel;
        EXPECT_LT(f2[0], f2[2]) << vowel;
        EXPECT_LT(f3[2] - f2[2], f3[1] - f2[1]) << vowel;
        EXPECT_LT(f3[2] - f2[2], f3[0] - f2[0]) << vowel;
    }
}

TEST(PhonemeRules, HeldVowelsAndFricativesTakeTheTablesValues)
{
    // Between the transitions (50 ms at each end) a held segment has the table's formants,
    // bandwidths and sources at any sample rate; what the synthesizer makes of these values is
    // the synthesis and display tests' to check.
    const int rows[] = {Row::f1,  Row::f2,  Row::f3, Row::b1, Row::b2, Row::b3, Row::a2f, Row::a3f, Row::a4f,
                        Row::a5f, Row::a6f, Row::av, Row::ah, Row::af, Row::ab, Row::fnz, Row::fnp, Row::b6f};
    for (const std::string arpa : {"IY", "IH", "EH", "AE", "AA", "AO", "UH", "UW", "AH", "ER", "S", "SH"}) {
        const bool fricative = arpa[0] == 'S';
        RuleSettings settings;
        settings.sampleRate = fricative ? 22050 : 11025;
        const RuleFrames frames = framesOf(arpa + (fricative ? ":300" : "1:300"), settings);
        const Segment& s = segmentOf(frames, arpa);
        const Phoneme& p = *s.phoneme;
        const std::vector<int> table = {p.f[0], p.f[1], p.f[2], p.b[0], p.b[1], p.b[2],
                                        p.a[0], p.a[1], p.a[2], p.a[3], p.a[4], p.av,
                                        p.ah,   p.af,   p.ab,   p.fnz,  270,    p.b6f};
        for (int frame = static_cast<int>(s.startMS / 10) + 5; frame < static_cast<int>(s.endMS() / 10) - 5;
             ++frame) {
            std::vector<int> held;
            for (int row : rows)
                held.push_back(frames.value(row, frame));
            ASSERT_EQ(held, table) << arpa << " frame " << frame;
        }
    }
}

TEST(PhonemeRules, PitchRisesOnStressFallsAtTheEndRisesForAQuestionAndTheOpenPhaseFollows)
{
    RuleSettings settings;
    settings.f0Hz = 100.0;
    const RuleFrames statement = framesOf("B AE1 D .", settings);
    const RuleFrames question = framesOf("B AE1 D ?", settings);
    const Segment& vowel = segmentOf(statement, "AE");
    const int start = static_cast<int>(vowel.startMS / 10);
    const int peak = static_cast<int>((vowel.startMS + vowel.durationMS / 3) / 10);
    const int end = static_cast<int>(vowel.endMS() / 10);
    EXPECT_EQ(statement.value(Row::f0, 0), 1000);
    EXPECT_GT(statement.value(Row::f0, peak), statement.value(Row::f0, start));
    EXPECT_LT(statement.value(Row::f0, end), 850); // falls below the declined baseline
    EXPECT_GT(question.value(Row::f0, end), 1200); // rises well above the start
    // Unstressed syllables stay on the baseline: no accent peak.
    const RuleFrames flat = framesOf("B AX0 D", settings);
    const Segment& schwa = segmentOf(flat, "AX");
    EXPECT_LE(flat.value(Row::f0, static_cast<int>((schwa.startMS + schwa.durationMS / 3) / 10)), 1000);

    // The open phase is half the period wherever f0 goes (within the rounding of its line), and
    // stays within its row at 22050 Hz, where half a 100 Hz period would be 110 samples.
    for (const int rate : {11025, 22050}) {
        settings.sampleRate = rate;
        const RuleFrames frames = framesOf("B AE1 D ?", settings);
        for (int frame = 0; frame < frames.frames; ++frame) {
            const double halfPeriod = 0.5 * rate / (frames.value(Row::f0, frame) / 10.0);
            EXPECT_NEAR(frames.value(Row::oq, frame), std::min(halfPeriod, 65.0), 0.05 * halfPeriod + 1.0)
                << rate << " Hz, frame " << frame;
        }
    }
}

TEST(PhonemeRules, TheDocumentsAnchorsReinterpolateToItsValues)
{
    const RuleFrames frames = framesOf("HH AH0 L OW1 | W ER1 L D ?");
    auto document = PhonemeDocument::make(frames, 11025);
    const Channels& c = *document->getChannel(0);
    EXPECT_EQ(c.m_nColumnNum, frames.frames);
    EXPECT_EQ(c.m_dLengthMS, frames.frames * 10.0);
    EXPECT_EQ(document->synthesisSampleRate(), 11025);
    auto cell = [&](const MyDocument& d, int row, int frame) {
        return d._dataTableDictionary.cellAt((frame + 1) * 10LL, row);
    };
    int anchors = 0;
    for (int row = 0; row < kParameterCount; ++row)
        for (int frame = 0; frame < frames.frames; ++frame) {
            ASSERT_EQ(cell(*document, row, frame)->_nValue(), frames.value(row, frame))
                << row << "/" << frame;
            anchors += cell(*document, row, frame)->_bAnchor() ? 1 : 0;
        }
    EXPECT_EQ(anchors, static_cast<int>(frames.anchors.size()));
    EXPECT_GT(anchors, 100);

    // Interpolate All changes nothing: every value between anchors is the table's own line.
    interpolateAll(*document);
    for (int row = 0; row < kParameterCount; ++row)
        for (int frame = 0; frame < frames.frames; ++frame)
            ASSERT_EQ(cell(*document, row, frame)->_nValue(), frames.value(row, frame))
                << row << "/" << frame;

    // At 22050 Hz the sixth formant's rows are shown, and synthesis runs at that rate.
    EXPECT_EQ(PhonemeDocument::make(frames, 22050)->synthesisSampleRate(), 22050);
}
