// Makes the example documents that ship in examples/: a sustained vowel /a/, the syllable
// "ba" (a labial release, a formant transition into a steady /a/, a voicing onset) and ten
// seconds of moving vowels (the analysis benchmarks' recording). Run it from the build:
// make_examples OUTPUT_DIR
#include "document/MyDocument.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace
{

std::unique_ptr<MyDocument> makeDocument(double lengthMS)
{
    auto document = std::make_unique<MyDocument>();
    for (int ch = 0; ch < 3; ++ch) {
        Channels* c = document->getChannel(ch);
        c->m_dLengthMS = lengthMS;
        c->m_nColumnNum = static_cast<int>(lengthMS / c->m_nUpdateIntervalMS);
    }
    document->SetUpDataGridMemory();
    document->buildDataTableDictionary();
    return document;
}

// Sets a parameter in every frame from a function of the frame's time in ms.
void setTrack(MyDocument& document, int row, double (*value)(double))
{
    Channels* c = document.getChannel(0);
    for (int k = 1; k <= c->m_nColumnNum; ++k) {
        CellRef cell =
            document._dataTableDictionary.cellAt(static_cast<long long>(k) * c->m_nUpdateIntervalMS, row);
        const int v = static_cast<int>(std::lround(value(k * c->m_nUpdateIntervalMS)));
        cell->set_nValue(v);
        cell->setInttoStringValue(v);
    }
}

double ramp(double t, double t0, double v0, double t1, double v1)
{
    if (t <= t0)
        return v0;
    if (t >= t1)
        return v1;
    return v0 + (v1 - v0) * (t - t0) / (t1 - t0);
}

void save(MyDocument& document, const std::string& path)
{
    std::string error;
    if (!document.writeSafelyToURL(path, "stk", &error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        std::exit(1);
    }
    std::printf("wrote %s\n", path.c_str());
}

void makeVowel(const std::string& dir)
{
    // 600 ms of /a/ with a falling pitch and a smooth voicing on- and offset.
    auto document = makeDocument(600.0);
    MyDocument& d = *document;
    setTrack(d, Row::f0, [](double t) { return ramp(t, 0, 1250, 600, 1000); });
    setTrack(d, Row::av,
             [](double t) { return t < 50 ? ramp(t, 0, 30, 50, 60) : ramp(t, 520, 60, 600, 30); });
    setTrack(d, Row::f1, [](double) { return 700.0; });
    setTrack(d, Row::f2, [](double) { return 1220.0; });
    setTrack(d, Row::f3, [](double) { return 2600.0; });
    setTrack(d, Row::b1, [](double) { return 130.0; });
    setTrack(d, Row::b2, [](double) { return 70.0; });
    setTrack(d, Row::b3, [](double) { return 160.0; });
    save(d, dir + "/vowel-a.stk");
}

void makeBa(const std::string& dir)
{
    // Closure until 60 ms, a weak labial burst through the bypass path, voicing from 70 ms with
    // F1, F2 and F3 rising from their labial loci into the steady /a/.
    auto document = makeDocument(450.0);
    MyDocument& d = *document;
    setTrack(d, Row::f0, [](double t) { return ramp(t, 70, 1300, 450, 1000); });
    setTrack(d, Row::av, [](double t) {
        if (t < 70)
            return 0.0;
        return t < 380 ? ramp(t, 70, 50, 100, 60) : ramp(t, 380, 60, 450, 30);
    });
    setTrack(d, Row::af, [](double t) { return (t >= 60 && t < 70) ? 55.0 : 0.0; });
    setTrack(d, Row::ab, [](double t) { return (t >= 60 && t < 70) ? 55.0 : 0.0; });
    setTrack(d, Row::f1, [](double t) { return ramp(t, 70, 250, 130, 700); });
    setTrack(d, Row::f2, [](double t) { return ramp(t, 70, 900, 140, 1220); });
    setTrack(d, Row::f3, [](double t) { return ramp(t, 70, 2100, 140, 2600); });
    setTrack(d, Row::b1, [](double) { return 130.0; });
    setTrack(d, Row::b2, [](double) { return 70.0; });
    setTrack(d, Row::b3, [](double) { return 160.0; });
    save(d, dir + "/ba.stk");
}

void makeMovingVowels(const std::string& dir)
{
    // Ten seconds of running vowels for the analysis benchmarks: the pitch swings between 90
    // and 190 Hz, the formants glide through /a/, /i/ and /u/ every 600 ms, and the voice
    // pauses for 300 ms every 2.5 s.
    auto document = makeDocument(10000.0);
    MyDocument& d = *document;
    struct Vowel {
        double f1, f2, f3;
    };
    static constexpr Vowel kVowels[] = {{700, 1220, 2600}, {300, 2300, 3000}, {300, 870, 2240}};
    // Holds a vowel for 400 ms, then glides for 200 ms into the next one.
    static constexpr auto formant = [](double t, int which) {
        const int step = static_cast<int>(t / 600.0);
        const Vowel& a = kVowels[step % 3];
        const Vowel& b = kVowels[(step + 1) % 3];
        const double from = which == 1 ? a.f1 : which == 2 ? a.f2 : a.f3;
        const double to = which == 1 ? b.f1 : which == 2 ? b.f2 : b.f3;
        return ramp(std::fmod(t, 600.0), 400, from, 600, to);
    };
    setTrack(d, Row::f0, [](double t) { return 1400.0 + 500.0 * std::sin(2.0 * M_PI * t / 2500.0); });
    setTrack(d, Row::av, [](double t) { return std::fmod(t, 2500.0) >= 2200.0 ? 0.0 : 60.0; });
    setTrack(d, Row::f1, [](double t) { return formant(t, 1); });
    setTrack(d, Row::f2, [](double t) { return formant(t, 2); });
    setTrack(d, Row::f3, [](double t) { return formant(t, 3); });
    setTrack(d, Row::b1, [](double) { return 90.0; });
    setTrack(d, Row::b2, [](double) { return 110.0; });
    setTrack(d, Row::b3, [](double) { return 170.0; });
    save(d, dir + "/moving-vowels.stk");
}

} // namespace

int main(int argc, char** argv)
{
    const std::string dir = argc > 1 ? argv[1] : ".";
    makeVowel(dir);
    makeBa(dir);
    makeMovingVowels(dir);
    return 0;
}
