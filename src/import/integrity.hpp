#pragma once
// Whether the rows of an old file hang together, read before anything is written: every contract's
// client, every Guia's client and contract, every line's Guia and every service's line present, and
// no text holding NUL characters (what a zeroed or damaged page leaves in a memo).
#include <cstdint>
#include <string>
#include <vector>

#include "import/mappings.hpp"
#include "platform/old_database.hpp"

namespace nimbara::import {

struct Integrity {
    // Rows whose parent row is missing: "TBL_LINHA, row N_Req 17, N_Linha 2: its Guia (N_Req 17) is
    // not in TBL_CAB". They may be brought in all the same, on request.
    std::vector<std::string> orphans;
    // Rows whose values are damaged; never brought in. At most kShown of them are kept here.
    std::vector<std::string> damaged;
    std::int64_t damaged_count = 0;

    static constexpr std::size_t kShown = 10;

    bool whole() const { return orphans.empty() && damaged.empty(); }
};

// Reads the five tables of `procedure` from `source` once. Throws CopyFailed when a table cannot be
// read, naming it.
Integrity check_integrity(const Procedure& procedure, const platform::OldDatabase& source);

// The refusal of a file that does not hang together: the first broken rows, and how many there are.
// `keeping_orphans` leaves the orphans out, since they are brought in.
std::string refusal(const Integrity& found, const std::string& file, bool keeping_orphans);

}  // namespace nimbara::import
