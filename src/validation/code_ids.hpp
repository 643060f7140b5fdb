#pragma once
// Dense ids for a fixed set of code keys by a perfect hash: every key of the set finds its id with
// two multiplications, a displacement and one comparison, and a key outside the set finds none.
// Built once per rule index.
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "validation/code_key.hpp"

namespace nimbara::validation {

class CodeIds {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // The keys must be distinct; each finds the id paired with it.
    explicit CodeIds(std::span<const std::pair<CodeKey, std::uint32_t>> entries = {});

    std::uint32_t find(CodeKey key) const
    {
        const Slot& slot = slots_[spot(key) ^ displacement_[bucket(key)]];
        return slot.key == key ? slot.id : kNone;
    }

private:
    // No key has all of its top bits set (see tagged), so an empty slot matches nothing.
    static constexpr CodeKey kEmpty = ~CodeKey{0};

    struct Slot {
        CodeKey key = kEmpty;
        std::uint32_t id = kNone;
    };

    // Multiplicative hashes: the top bits of the product depend on every bit of the key.
    std::size_t bucket(CodeKey key) const { return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ULL) >> bucket_shift_); }
    std::size_t spot(CodeKey key) const { return static_cast<std::size_t>((key * spot_multiplier_) >> slot_shift_); }

    bool place(std::span<const std::pair<CodeKey, std::uint32_t>> entries, unsigned slot_bits, std::uint64_t multiplier);

    std::vector<std::uint32_t> displacement_{0, 0};
    std::vector<Slot> slots_{Slot{}, Slot{}};
    std::uint64_t spot_multiplier_ = 0xC2B2AE3D27D4EB4FULL;
    unsigned bucket_shift_ = 63;
    unsigned slot_shift_ = 63;
};

}  // namespace nimbara::validation
