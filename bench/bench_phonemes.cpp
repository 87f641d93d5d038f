// Synthesis by rule: a ten-word sentence from words to a document (the phonemizer started once,
// before the timing; tessaphon-cli's whole-process figure, start-up included, is in
// cli_bench.sh), the same from phonemes, and the document made and saved.
#include "document/MyDocument.h"
#include "phonemes/PhonemeDocument.h"
#include "phonemes/english/TextPhonemes.h"

#include <benchmark/benchmark.h>

namespace
{

const char* const kSentence = "The quick brown fox jumps over the lazy dog today.";

void BM_WordsToDocument(benchmark::State& state)
{
    const PhonemeInventory& table = PhonemeInventory::americanEnglish();
    TextPhonemes::read(kSentence, table); // starts the phonemizer
    for (auto _ : state) {
        const TextPhonemes input = TextPhonemes::read(kSentence, table);
        const RuleFrames frames = PhonemeRules::frames(input.tokens, table, RuleSettings{});
        auto document = PhonemeDocument::make(frames, 11025);
        benchmark::DoNotOptimize(document->Save_STK_FileType50(true));
    }
}
BENCHMARK(BM_WordsToDocument)->Unit(benchmark::kMillisecond);

void BM_PhonemesToFrames(benchmark::State& state)
{
    const PhonemeInventory& table = PhonemeInventory::americanEnglish();
    const auto tokens = TextPhonemes::read(kSentence, table).tokens;
    const std::string arpabet = PhonemeString::describe(tokens);
    for (auto _ : state) {
        const auto parsed = PhonemeString::parse(arpabet, table);
        benchmark::DoNotOptimize(PhonemeRules::frames(parsed, table, RuleSettings{}));
    }
}
BENCHMARK(BM_PhonemesToFrames)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
