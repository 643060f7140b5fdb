#pragma once
// The twelve print and barcode settings of the database: as `db params --json` shows them and
// `db params set` saves them, and the web API's settings page with them.
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::cli {

// {NAME: {"value", "set"}...} in the settings' order; a setting not stored shows the value read in
// its place, with "set" false.
nlohmann::ordered_json settings_json(const std::shared_ptr<Database>& db);

// Checks and saves the settings given as (NAME, VALUE), names as settings_json gives them (any case);
// margins in twips or in millimetres written "10mm". An unknown name is a FieldError naming it; a
// refused value a CommandError; either way nothing is saved.
void save_settings(const std::shared_ptr<Database>& db, const std::vector<std::pair<std::string, std::string>>& assignments);

}  // namespace nimbara::cli
