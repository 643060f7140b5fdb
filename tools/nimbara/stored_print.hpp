#pragma once
// A stored Guia printed by the database edition, every copy of Tbl_Parametro's vGuiaNVias, onto a
// surface the caller chose: files for `db print`, one PDF in memory for the web API.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/PageSurface.hpp"

namespace nimbara::cli {

struct StoredGuiaPrint {
    std::int32_t n_req = 0;
    std::string date;        // yyyy-mm-dd
    std::string NDoc;        // the document number the form shows, "2026/17"
    std::int32_t copies = 0;  // vGuiaNVias
    double top_mm = 0;
    double left_mm = 0;
};

// Reads what the print needs; throws NotFoundError when there is no such Guia, and CommandError
// naming every problem when it would not print whole (nothing is drawn then).
StoredGuiaPrint prepare_stored_print(const std::shared_ptr<Database>& db, std::int32_t n_req,
                                     const std::filesystem::path& print_log);

// Draws every copy on `surface`, already started; answers what the page routines logged as failed
// (empty when every copy came out whole).
std::vector<std::string> print_stored_copies(const std::shared_ptr<Database>& db, const StoredGuiaPrint& guia,
                                             PageSurface& surface, const std::filesystem::path& print_log);

}  // namespace nimbara::cli
