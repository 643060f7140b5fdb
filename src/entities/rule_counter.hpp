#pragma once
// The rule tables' change counter: one row in tbl_Val_Versao that the database itself moves on every
// write to tbl_Validacao or a tbl_Val_* table, so that a reader holding the rules in memory learns
// of any change, whoever wrote it (the seed, the import, a host or a hand at the SQL prompt).
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::entities {

// The tables whose writes move the counter.
inline constexpr const char* kRuleTables[] = {
    "tbl_Validacao",   "tbl_Val_ZTaxacao", "tbl_Val_Velocidade", "tbl_Val_Formato",
    "tbl_Val_PreTratamento", "tbl_Val_Desconto", "tbl_Val_AmbitoDist", "tbl_Val_ServicoE",
};

// The triggers that move the counter, in the store's dialect; run after the seed rows.
std::vector<std::string> rule_counter_statements(StoreKind kind);

// Whether the database has the counter; one made before it existed has not.
bool has_rule_counter(Database& db);

// The counter's value; nothing when its row is missing or holds no number.
std::optional<std::int64_t> read_rule_counter(Database& db);

}  // namespace nimbara::entities
