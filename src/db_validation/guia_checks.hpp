#pragma once
// The rules that span the lines of a Guia, read from the working table Tbl_Temp_Val_Guia: minimum
// quantities and inserts. The sums run over every Guia the table holds, not only the one asked for.
#include <cstdint>

#include "nimbara/Database.hpp"
#include "nimbara/error_array.hpp"

namespace nimbara::db_validation {

ValidationResult validate_table_guia(Database& db, std::int32_t n_req);

}  // namespace nimbara::db_validation
