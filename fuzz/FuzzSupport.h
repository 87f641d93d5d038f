#pragma once
// Shared by the fuzz targets: the seed corpus each target writes with `--make-seeds DIR`
// (documents and WAVE images made by the system's own writers), and the checks run on every
// input that a reader accepted.
#include "document/MyDocument.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace fuzz
{

// Documents up to this many frames also get their table data built and written back.
constexpr int kRoundTripFrames = 300;

// Stops the run (libFuzzer reports it as a crash with the input) when a check fails.
inline void require(bool condition)
{
    if (!condition)
        std::abort();
}

std::vector<std::string> waveSeeds();
std::vector<std::string> documentSeeds();
std::vector<std::string> snapshotSeeds();

// Handles `--make-seeds DIR` among the arguments: writes the seeds as DIR/seed-N and exits.
void makeSeedsIfAsked(int argc, char** argv, std::vector<std::string> (*seeds)());

// What every accepted document must satisfy: a grid of the frame count plus two, anchors
// inside it; and, for small documents, text written from it reads back to the same text.
void checkReadDocument(MyDocument& document, bool snapshot);

} // namespace fuzz
