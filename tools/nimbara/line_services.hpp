#pragma once
// The special services of the stored lines, read in one query for an export, and the fixed set of
// service columns a CSV or TSV export has.
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::cli {

struct LineService {
    std::string code;         // CodServEsp
    std::string designation;  // empty when the services list lacks the code
    std::string amount;       // the stored digits, cents included, as the Guia file writes Valor
};

struct LineServices {
    // Every special-service code the database knows (its list, and any code a stored line holds),
    // code "0" aside, in code order: one export column each.
    std::vector<std::string> codes;
    // The services of each line, by N_Req and N_Linha, in code order.
    std::map<std::pair<std::int64_t, std::int64_t>, std::vector<LineService>> of_line;
};

LineServices read_line_services(Database& db);

}  // namespace nimbara::cli
