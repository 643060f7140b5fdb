#pragma once
// A stored Guia judged by the database's rule tables, as every front end asks it: each line, then
// the whole Guia in this connection's own working table.
#include <cstdint>
#include <memory>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/error_array.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

struct StoredLineVerdict {
    std::int16_t N_Linha = 0;
    ValidationResult result;
};

struct StoredGuiaVerdict {
    std::vector<StoredLineVerdict> lines;  // in the Guia's order
    ValidationResult guia;
    bool passed() const;
};

// Copies Guia `n_req` into the connection's working table and judges it. Nothing when no Guia has
// that number; a DatabaseError naming the step when the working table cannot be filled.
NIMBARA_API std::optional<StoredGuiaVerdict> check_stored_guia(const std::shared_ptr<Database>& db,
                                                               std::int32_t n_req);

}  // namespace nimbara
