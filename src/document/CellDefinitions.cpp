#include "document/CellDefinitions.h"

#include <atomic>
#include <bit>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <vector>

namespace
{

constexpr std::uint32_t kChunkBits = 10;
constexpr std::uint32_t kChunkSize = 1u << kChunkBits;
constexpr std::uint32_t kMaxChunks = 1u << 14; // 16 million definitions at most

struct Entry {
    CellDefinition definition;
    std::atomic<std::uint32_t> references{0};
    bool live = false; // in the index; guarded by the registry's mutex
};

struct DefinitionHash {
    static std::size_t mix(std::size_t h, std::uint64_t v) { return (h ^ v) * 0x100000001b3ull; }
    static std::uint64_t bits(double v) { return std::bit_cast<std::uint64_t>(v == 0.0 ? 0.0 : v); }
    std::size_t operator()(const CellDefinition& d) const
    {
        std::size_t h = 0xcbf29ce484222325ull;
        h = mix(h, reinterpret_cast<std::uintptr_t>(d.name));
        h = mix(h, reinterpret_cast<std::uintptr_t>(d.definition));
        h = mix(h, static_cast<std::uint32_t>(d.defaultValue));
        h = mix(h, static_cast<std::uint32_t>(d.minValue));
        h = mix(h, static_cast<std::uint32_t>(d.maxValue));
        h = mix(h,
                (std::uint64_t{d.colour.red} << 32) | (std::uint64_t{d.colour.green} << 16) | d.colour.blue);
        h = mix(h, bits(d.background.red));
        h = mix(h, bits(d.background.green));
        h = mix(h, bits(d.background.blue));
        h = mix(h, bits(d.background.alpha));
        return mix(h, d.background.isSet ? 1 : 0);
    }
};

class Registry
{
public:
    Registry()
    {
        // Number 0: the definition of a new cell, permanent.
        slot(allocate()).live = true;
        m_index.emplace(CellDefinition{}, 0);
    }

    Entry& slot(std::uint32_t id) { return m_chunks[id >> kChunkBits][id & (kChunkSize - 1)]; }

    std::uint32_t intern(const CellDefinition& definition)
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_index.find(definition);
        if (found != m_index.end()) {
            if (found->second != 0)
                slot(found->second).references.fetch_add(1, std::memory_order_relaxed);
            return found->second;
        }
        const std::uint32_t id = allocate();
        Entry& entry = slot(id);
        entry.definition = definition;
        entry.references.store(1, std::memory_order_relaxed);
        entry.live = true;
        m_index.emplace(definition, id);
        return id;
    }

    void released(std::uint32_t id)
    {
        std::lock_guard lock(m_mutex);
        Entry& entry = slot(id);
        // Another thread may have taken a new reference, or recycled it already.
        if (!entry.live || entry.references.load(std::memory_order_acquire) != 0)
            return;
        entry.live = false;
        m_index.erase(entry.definition);
        m_free.push_back(id);
    }

    std::size_t liveCount()
    {
        std::lock_guard lock(m_mutex);
        return m_index.size();
    }

private:
    // A free number, from the recycled ones or a new one; the caller holds the mutex.
    std::uint32_t allocate()
    {
        if (!m_free.empty()) {
            const std::uint32_t id = m_free.back();
            m_free.pop_back();
            return id;
        }
        const std::uint32_t id = m_nNext;
        if ((id >> kChunkBits) >= kMaxChunks)
            throw std::bad_alloc();
        auto& chunk = m_chunks[id >> kChunkBits];
        if (!chunk)
            chunk = std::make_unique<Entry[]>(kChunkSize);
        ++m_nNext;
        m_free.reserve(m_nNext); // room for every number, so that a release never allocates
        return id;
    }

    std::mutex m_mutex;
    std::unordered_map<CellDefinition, std::uint32_t, DefinitionHash> m_index;
    std::vector<std::uint32_t> m_free;
    std::uint32_t m_nNext = 0;
    std::unique_ptr<Entry[]> m_chunks[kMaxChunks];
};

Registry& registry()
{
    static Registry* instance = new Registry(); // never destroyed: cells may outlive static destruction
    return *instance;
}

} // namespace

std::uint32_t CellDefinitions::intern(const CellDefinition& definition)
{
    return registry().intern(definition);
}

void CellDefinitions::retain(std::uint32_t id)
{
    if (id != 0)
        registry().slot(id).references.fetch_add(1, std::memory_order_relaxed);
}

void CellDefinitions::release(std::uint32_t id)
{
    if (id == 0)
        return;
    Registry& r = registry();
    if (r.slot(id).references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        r.released(id);
}

const CellDefinition& CellDefinitions::at(std::uint32_t id)
{
    return registry().slot(id).definition;
}

std::size_t CellDefinitions::liveCount()
{
    return registry().liveCount();
}
