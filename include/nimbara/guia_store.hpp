#pragma once
// A Guia file on the database: stored as a new Guia with fresh numbers, and a stored Guia given back
// as a Guia file. Which key goes to which column is fixed here, once, for every front end (the
// program's db save and db show among them).
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "nimbara/Database.hpp"
#include "nimbara/export.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara {

// The three numbers a new Guia was stored under.
struct SavedGuia {
    std::int32_t N_Req = 0;
    std::int32_t N_Req2 = 0;
    std::int32_t Id_Req_Anual = 0;
};

// There is no stored Guia of that number.
class NIMBARA_API GuiaNotStoredError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Stores the file as a new Guia: its client and contract must exist; the numbers are taken inside the
// save's own transaction, under the store's numbering lock. Every value is checked first (whole
// numbers, dates, codes and texts as the columns take them), so that a refused file stores nothing:
// GuiaFileError names `source`, the place (/produtos/2/B_Produto) and the reason. A failure of the
// store itself is a DatabaseError.
NIMBARA_API SavedGuia save_guia_file(const std::shared_ptr<Database>& db, const GuiaFile& file,
                                     std::string_view source);

// The stored Guia `n_req` as a Guia file: the header's client fields from its client and contract,
// the parameters from Tbl_Parametro, the day code computed from the date. Throws GuiaNotStoredError
// when there is none.
NIMBARA_API GuiaFile load_guia_file(const std::shared_ptr<Database>& db, std::int32_t n_req);

}  // namespace nimbara
