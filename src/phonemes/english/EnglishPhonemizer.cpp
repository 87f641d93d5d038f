// espeak-ng as a phonemizer: initialised for retrieval without playback, asked for IPA clause by
// clause so that the punctuation between clauses survives.
#include "phonemes/english/EnglishPhonemizer.h"

#include "phonemes/PhonemeError.h"
#include "phonemes/PhonemeString.h"

#include <espeak-ng/speak_lib.h>

#include <mutex>

namespace
{

std::mutex gEspeak;
int gStarted = 0; // 1 started, -1 failed

void start()
{
    if (gStarted != 0)
        return;
    // Synchronous mode with no callback: nothing is ever played, and only the phonemizer is used.
    const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 0, nullptr, espeakINITIALIZE_DONT_EXIT);
    gStarted = rate > 0 && espeak_SetVoiceByName("en-us") == EE_OK ? 1 : -1;
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
