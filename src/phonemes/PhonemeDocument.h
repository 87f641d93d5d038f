#pragma once
// PhonemeDocument: a new parameter document holding the frames of synthesis by rule, with the
// rules' anchor points as the table's anchors, as a document read from a file holds them. At
// 22050 Hz the sixth formant's rows are shown, which is what makes synthesis run at that rate.
// The document is new and untitled; the caller owns it. Main thread or any one thread.
#include "phonemes/PhonemeRules.h"

#include <memory>

class MyDocument;

class PhonemeDocument
{
public:
    // Throws DocumentException ("Memory Error", "Document Too Long") as building any document does.
    static std::unique_ptr<MyDocument> make(const RuleFrames& frames, int sampleRate);
    // Fills an existing, new document the same way (its settings from the configuration stay).
    static void fill(MyDocument& document, const RuleFrames& frames, int sampleRate);
};
