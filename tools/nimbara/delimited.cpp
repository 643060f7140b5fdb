#include "delimited.hpp"

#include <ostream>
#include <variant>

namespace nimbara::cli {

std::string csv_field(const std::string& text)
{
    const bool plain = text.find_first_of(",\"\r\n") == std::string::npos &&
                       (text.empty() || (text.front() != ' ' && text.back() != ' '));
    if (plain) return text;
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    return out + '"';
}

std::string tsv_field(const std::string& text)
{
    std::string t = text;
    for (char& c : t)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return t;
}

void write_record(std::ostream& out, TableFormat format, const std::vector<std::string>& fields)
{
    const bool csv = format == TableFormat::Csv;
    for (std::size_t i = 0; i < fields.size(); ++i)
        out << (i ? (csv ? "," : "\t") : "") << (csv ? csv_field(fields[i]) : tsv_field(fields[i]));
    out << (csv ? "\r\n" : "\n");
}

nlohmann::ordered_json json_value(const FieldValue& v)
{
    const auto& a = v.alternatives();
    if (v.is_null()) return nullptr;
    if (const auto* i = std::get_if<std::int64_t>(&a)) return *i;
    if (const auto* d = std::get_if<double>(&a)) return *d;
    if (const auto* b = std::get_if<bool>(&a)) return *b;
    return v.text();
}

}  // namespace nimbara::cli
