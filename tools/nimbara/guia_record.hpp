#pragma once
// Between a Guia file and a Guia on the database: which key goes to which column (README, "The
// database"), with every value checked before anything is stored.
#include <memory>
#include <string>

#include "guia_file.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"

namespace nimbara::cli {

// A new Guia for the file's client and contract, which must exist; its lines and services as the
// file gives them. Throws CommandError naming the file and the place of the first fault.
std::unique_ptr<cls_Guia_Cabecalho> guia_from_file(const GuiaFile& file, const std::string& file_name,
                                                   const std::shared_ptr<Database>& db);

// The stored Guia `n_req` as a Guia file: the header's client fields from its client, the
// parameters from Tbl_Parametro. Throws CommandError when there is no such Guia.
GuiaFile file_from_guia(std::int32_t n_req, const std::shared_ptr<Database>& db);

}  // namespace nimbara::cli
