// Synthesis by rule: a ten-word sentence from words to a document (the phonemizer started once,
// before the timing), the same from phonemes, and the document made and saved; then what the
// user waits for, tessaphon-cli's whole process from the words (start-up, the phonemizer's
// start, the rules, the atomic write) and from the same sentence's phonemes, which leaves out
// the phonemizer.
#include "CliProcess.h"
#include "document/MyDocument.h"
#include "phonemes/PhonemeDocument.h"
#include "phonemes/english/TextPhonemes.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <unistd.h>

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

std::string outputPath()
{
    return (std::filesystem::temp_directory_path() /
            ("tessaphon-bench-phonemes-" + std::to_string(::getpid()) + ".stk"))
        .string();
}

void BM_CliTextToDocument(benchmark::State& state)
{
    const std::string output = outputPath();
    cliprocess::timeCommand(state, {"phonemes", "--text", kSentence, "-o", output});
    std::filesystem::remove(output);
}
BENCHMARK(BM_CliTextToDocument)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_CliPhonemesToDocument(benchmark::State& state)
{
    const PhonemeInventory& table = PhonemeInventory::americanEnglish();
    const std::string arpabet = PhonemeString::describe(TextPhonemes::read(kSentence, table).tokens);
    const std::string output = outputPath();
    cliprocess::timeCommand(state, {"phonemes", arpabet, "-o", output});
    std::filesystem::remove(output);
}
BENCHMARK(BM_CliPhonemesToDocument)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
