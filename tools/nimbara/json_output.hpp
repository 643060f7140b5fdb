#pragma once
// The one JSON document a command writes on standard output with --json: its data or verdict, or,
// when the command refuses its input (exit 2), the refusal, so that a script reads one shape always.
#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>

namespace nimbara::cli {

// Writes `document` as the run's one JSON document, indented, ending in a new line.
void write_json(std::ostream& out, const nlohmann::json& document);
// The same for a document whose keys keep the order they were given in (rows of a table).
void write_json(std::ostream& out, const nlohmann::ordered_json& document);

// The refusal of exit 2: {"command": "nimbara db list", "status": 2, "error": "the message"}; the
// same message also goes to standard error, as without --json.
nlohmann::json refusal_json(const std::string& command, const std::string& message);

}  // namespace nimbara::cli
