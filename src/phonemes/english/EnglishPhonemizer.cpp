// espeak-ng as a phonemizer: its data and the American English voice's rules loaded, no output
// set up at all (the phonemizer needs none), asked for IPA clause by clause so that the
// punctuation between clauses survives.
#include "phonemes/english/EnglishPhonemizer.h"

#include "phonemes/PhonemeError.h"
#include "phonemes/PhonemeString.h"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

#include <filesystem>
#include <mutex>
#include <system_error>

namespace
{

std::mutex gEspeak;
int gStarted = 0; // 1 started, -1 failed

// The small data folder the build lays out beside the program (share/tessaphon/espeak-ng-data,
// links to the system's files), when every file it needs is there; else none, and espeak-ng
// uses its own. Choosing the voice reads every voice file of the folder, so a folder with one
// voice starts several milliseconds sooner.
std::string ownDataFolder()
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error)
        return {};
    const fs::path folder = program.parent_path().parent_path() / "share" / "tessaphon";
    for (const char* part : {"phontab", "phonindex", "phondata", "intonations", "en_dict", "lang/gmw/en-US"})
        if (!fs::is_regular_file(folder / "espeak-ng-data" / part, error))
            return {};
    return folder.string();
}

void start()
{
    if (gStarted != 0)
        return;
    // No output mode is initialised: nothing can be played, and starting no audio saves the
    // time a sound server's client takes to set itself up.
    const std::string folder = ownDataFolder();
    espeak_ng_InitializePath(folder.empty() ? nullptr : folder.c_str());
    espeak_ng_ERROR_CONTEXT context = nullptr;
    const bool started = espeak_ng_Initialize(&context) == ENS_OK;
    espeak_ng_ClearErrorContext(&context);
    gStarted = started && espeak_ng_SetVoiceByName("en-us") == ENS_OK ? 1 : -1;
}

// The IPA of one clause (text without punctuation marks).
void clauseIpa(const std::string& clause, std::string& out)
{
    const void* text = clause.c_str();
    while (text) {
        const char* phonemes = espeak_TextToPhonemes(&text, espeakCHARS_UTF8, espeakPHONEMES_IPA);
        if (!phonemes || !*phonemes)
            continue;
        if (!out.empty() && out.back() != ' ')
            out += ' ';
        out += phonemes;
    }
}

} // namespace

std::string EnglishPhonemizer::toIpa(std::string_view text)
{
    std::lock_guard<std::mutex> lock(gEspeak);
    start();
    if (gStarted < 0)
        throw PhonemeError("espeak-ng could not be started with its American English data (en-us)");
    std::string out, clause;
    for (char c : text) {
        if (!PhonemeString::isMark(c)) {
            clause += c;
            continue;
        }
        clauseIpa(clause, out);
        clause.clear();
        out += c;
    }
    clauseIpa(clause, out);
    return out;
}
