#include "json_output.hpp"

#include <ostream>

namespace nimbara::cli {

void write_json(std::ostream& out, const nlohmann::json& document)
{
    // Texts of any byte content reach the reader as replacement characters rather than an exception.
    out << document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

void write_json(std::ostream& out, const nlohmann::ordered_json& document)
{
    out << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

nlohmann::json refusal_json(const std::string& command, const std::string& message)
{
    return {{"command", command}, {"status", 2}, {"error", message}};
}

}  // namespace nimbara::cli
