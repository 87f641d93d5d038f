#pragma once
// EnglishPhonemizer: American English words to IPA through espeak-ng's text-to-phoneme
// function. espeak-ng is started once per process (synchronous mode, no audio output) on the
// first call; its state is global, so calls are serialized and any thread may make them.
// Words come back separated by spaces, with the stress marks ˈ and ˌ; punctuation marks are
// kept between the clauses.
#include <string>
#include <string_view>

class EnglishPhonemizer
{
public:
    // "a bad bed?" -> "ɐ bˈæd bˈɛd?". Throws PhonemeError when espeak-ng or its American English
    // data cannot be started.
    static std::string toIpa(std::string_view text);
};
