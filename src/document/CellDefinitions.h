#pragma once
// The shared part of table cells: what every cell of one parameter row has in common (name,
// definition text, default, limits, colour, background). A document of an hour has 17 million
// cells but a few dozen distinct rows, so cells keep a 32-bit number of their definition here
// instead of the fields themselves.
//
// Definitions are interned: equal definitions get the same number. Each number is counted by
// the cells that hold it and is recycled when the last one lets go, so the registry holds only
// the definitions in use. Number 0 is the definition of a new cell (empty texts, zero numbers,
// white background) and is never counted or recycled.
// Thread-safe: interning and the last release lock a mutex; reading a definition and taking
// or dropping a further reference do not.
#include "document/Color.h"

#include <cstdint>

struct CellDefinition {
    const char* name = "";
    const char* definition = "";
    std::int32_t defaultValue = 0;
    std::int32_t minValue = 0;
    std::int32_t maxValue = 0;
    RGBColor16 colour;
    Color background = Color::white();
    bool operator==(const CellDefinition&) const = default;
};

class CellDefinitions
{
public:
    // The number of a definition equal to `definition`, with one reference taken for the caller.
    // Throws std::bad_alloc when the registry cannot grow.
    static std::uint32_t intern(const CellDefinition& definition);
    // Another reference to a number the caller already holds one of.
    static void retain(std::uint32_t id);
    // Drops one reference; the definition is recycled with its last reference.
    static void release(std::uint32_t id);
    // The definition of a number held by the caller. The reference stays valid while it is held.
    static const CellDefinition& at(std::uint32_t id);
    // Definitions in use, the permanent one included (for tests and memory accounting).
    static std::size_t liveCount();
};
