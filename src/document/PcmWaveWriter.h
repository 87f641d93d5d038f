#pragma once
// WAVE images of integer PCM samples, 16 or 24 bits, mono, with the common RIFF header that
// other programs expect (RIFF size = file size - 8, a 16-byte format chunk, a pad byte after
// odd-sized sample data). This sits beside the document's own 16-bit writer, whose header keeps
// the system's historical layout; stimuli meant for other programs go through this one.
// Any thread; no state.
#include "document/AtomicFile.h"

#include <cstddef>
#include <cstdint>
#include <string>

// The 44-byte header for `samples` samples of `bits` (16 or 24) at `sampleRate` Hz.
std::string pcmWaveHeader(std::uint32_t samples, std::uint32_t sampleRate, int bits);

// Writes the header and the samples through `write`, in pieces of a fixed buffer. `samples`
// holds `count` values already in the range of `bits` (16: -32768..32767, 24: -8388608..8388607);
// they are stored little-endian in bits/8 bytes each. Answers false when a piece could not be
// written.
bool writePcmWave(const std::int32_t* samples, std::size_t count, std::uint32_t sampleRate, int bits,
                  const PieceWriter& write);
