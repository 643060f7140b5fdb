#include "validation/code_ids.hpp"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace nimbara::validation {

CodeIds::CodeIds(std::span<const std::pair<CodeKey, std::uint32_t>> entries)
{
    std::vector<CodeKey> keys;
    for (const auto& e : entries) keys.push_back(e.first);
    std::sort(keys.begin(), keys.end());
    if (std::adjacent_find(keys.begin(), keys.end()) != keys.end()) throw std::logic_error("a code is listed twice");

    // Half-empty slots let every bucket find a free place; should no multiplier place a set, a table
    // twice the size is tried. Odd multipliers from a fixed sequence keep the result the same everywhere.
    const auto at_least = std::bit_ceil(std::max<std::size_t>(2 * entries.size(), 2));
    for (auto slot_bits = static_cast<unsigned>(std::countr_zero(at_least)); slot_bits <= 24; ++slot_bits) {
        std::uint64_t multiplier = 0xC2B2AE3D27D4EB4FULL;
        for (int attempt = 0; attempt < 64; ++attempt, multiplier += 0x9E3779B97F4A7C16ULL)
            if (place(entries, slot_bits, multiplier)) return;
    }
    throw std::logic_error("no perfect hash for the codes of the rule table");
}

bool CodeIds::place(std::span<const std::pair<CodeKey, std::uint32_t>> entries, unsigned slot_bits,
                    std::uint64_t multiplier)
{
    const std::size_t slot_count = std::size_t{1} << slot_bits;
    const unsigned bucket_bits = slot_bits > 2 ? slot_bits - 2 : 1;  // about two keys a bucket
    bucket_shift_ = 64 - bucket_bits;
    slot_shift_ = 64 - slot_bits;
    spot_multiplier_ = multiplier;
    displacement_.assign(std::size_t{1} << bucket_bits, 0);
    slots_.assign(slot_count, Slot{});

    std::vector<std::vector<std::size_t>> buckets(displacement_.size());
    for (std::size_t i = 0; i < entries.size(); ++i) buckets[bucket(entries[i].first)].push_back(i);
    std::vector<std::size_t> order(buckets.size());
    for (std::size_t b = 0; b < order.size(); ++b) order[b] = b;
    // The fullest buckets are placed first, while the table is still empty.
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return buckets[a].size() > buckets[b].size(); });

    for (const std::size_t b : order) {
        const auto& members = buckets[b];
        if (members.empty()) break;
        // The displacement moves a bucket's keys together, so two of them on one spot never part.
        for (std::size_t i = 0; i < members.size(); ++i)
            for (std::size_t j = i + 1; j < members.size(); ++j)
                if (spot(entries[members[i]].first) == spot(entries[members[j]].first)) return false;
        bool placed = false;
        for (std::uint32_t d = 0; d < slot_count && !placed; ++d) {
            placed = std::all_of(members.begin(), members.end(),
                                 [&](std::size_t i) { return slots_[spot(entries[i].first) ^ d].key == kEmpty; });
            if (!placed) continue;
            displacement_[b] = d;
            for (const std::size_t i : members) slots_[spot(entries[i].first) ^ d] = {entries[i].first, entries[i].second};
        }
        if (!placed) return false;
    }
    return true;
}

}  // namespace nimbara::validation
