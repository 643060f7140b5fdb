#include "entities/stored_values.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

#include "entities/schema_tables.hpp"
#include "foundation/chars.hpp"
#include "foundation/utf8.hpp"

namespace nimbara::entities {
namespace {

using Kind = ColumnType::Kind;

// The years a date may carry: what both stores and every reader of the program take, with room for
// any Guia ever written.
constexpr int kFirstYear = 1900;
constexpr int kLastYear = 9999;

bool same(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if ((a[i] | 0x20) != (b[i] | 0x20)) return false;
    return true;
}

std::string quoted(std::string_view text)
{
    constexpr std::size_t kShown = 40;
    std::string shown;
    for (unsigned char c : text.substr(0, kShown)) {
        if (c >= 0x20 && c < 0x7F && c != '"') {
            shown += static_cast<char>(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", c);
            shown += hex;
        }
    }
    return "\"" + shown + (text.size() > kShown ? "...\"" : "\"");
}

std::optional<std::string> text_refusal(const std::string& text, std::size_t width)
{
    if (const auto at = chars::invalid_utf8_at(text))
        return "text that is not UTF-8 (byte " + std::to_string(*at + 1) + " of " + quoted(text) + ")";
    if (const auto nul = text.find('\0'); nul != std::string::npos)
        return "text with a NUL character (byte " + std::to_string(nul + 1) + ")";
    if (const auto n = chars::length(text); width && n > width)
        return std::to_string(n) + " characters, where the column holds at most " + std::to_string(width);
    return std::nullopt;
}

std::optional<std::int64_t> whole_number(const FieldValue& value)
{
    const auto& v = value.alternatives();
    if (const auto* i = std::get_if<std::int64_t>(&v)) return *i;
    if (const auto* d = std::get_if<double>(&v)) {
        if (std::isfinite(*d) && *d == std::trunc(*d) && std::fabs(*d) < 9.0e18) return static_cast<std::int64_t>(*d);
        return std::nullopt;
    }
    if (const auto* s = std::get_if<std::string>(&v)) {
        std::int64_t n = 0;
        const char* end = s->data() + s->size();
        const auto [ptr, ec] = std::from_chars(s->data(), end, n);
        if (!s->empty() && ec == std::errc() && ptr == end) return n;
    }
    return std::nullopt;
}

std::optional<std::string> number_refusal(const FieldValue& value, Kind kind)
{
    const std::int64_t low = kind == Kind::Short ? std::numeric_limits<std::int16_t>::min()
                                                 : std::numeric_limits<std::int32_t>::min();
    const std::int64_t high = kind == Kind::Short ? std::numeric_limits<std::int16_t>::max()
                                                  : std::numeric_limits<std::int32_t>::max();
    const auto n = value.kind() == ValueKind::YesNo ? std::nullopt : whole_number(value);
    if (!n) return quoted(value.text()) + " is no whole number";
    if (*n < low || *n > high)
        return std::to_string(*n) + " is outside the column's range, " + std::to_string(low) + " to " +
               std::to_string(high);
    return std::nullopt;
}

std::optional<std::string> date_refusal(const FieldValue& value)
{
    Timestamp t;
    try {
        t = value.date();
    } catch (const std::exception&) {
        return quoted(value.text()) + " is no date";
    }
    try {
        Timestamp::parse(t.text());  // the form every reader reads back, which checks the calendar
    } catch (const std::invalid_argument&) {
        return quoted(t.text()) + " is no real date and time";
    }
    if (t.year < kFirstYear || t.year > kLastYear)
        return "the year " + std::to_string(t.year) + " is outside " + std::to_string(kFirstYear) + " to " +
               std::to_string(kLastYear);
    return std::nullopt;
}

std::optional<std::string> yes_no_refusal(const FieldValue& value)
{
    const auto& v = value.alternatives();
    if (std::holds_alternative<bool>(v)) return std::nullopt;
    if (const auto* i = std::get_if<std::int64_t>(&v); i && (*i == 0 || *i == 1 || *i == -1)) return std::nullopt;
    return quoted(value.text()) + " is no yes/no";
}

// Rules of single columns beyond their type.
std::optional<std::string> column_rule(std::string_view table, std::string_view column, const FieldValue& value)
{
    // The listings cut an amount's last two digits off as its cents.
    if (same(table, "Tbl_Linha_ServicoEspecial") && same(column, "Valor")) {
        const std::string text = value.text();
        if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos)
            return quoted(text) + " is no amount: digits only, the last two the cents";
    }
    // A contract is found by its code; 0 is what an object holds before it is given one.
    if (same(table, "Tbl_Contrato") && same(column, "Cod_Contrato") && whole_number(value) == 0)
        return "a contract needs its code (it is 0 or empty)";
    return std::nullopt;
}

}  // namespace

std::optional<std::string> refusal(std::string_view table, std::string_view column, const FieldValue& value)
{
    const auto type = column_type(table, column);
    if (!type) return "no such column in the register";
    if (value.is_null())
        return type->in_key ? std::optional<std::string>("a key cannot be empty (Null)") : std::nullopt;
    std::optional<std::string> why;
    switch (type->kind) {
    case Kind::Text: why = text_refusal(value.text(), type->width); break;
    case Kind::Long:
    case Kind::Short: why = number_refusal(value, type->kind); break;
    case Kind::Date: why = date_refusal(value); break;
    case Kind::YesNo: why = yes_no_refusal(value); break;
    }
    return why ? why : column_rule(table, column, value);
}

void check_row(std::string_view table, std::string_view place, std::span<const std::string_view> columns,
               std::span<const FieldValue> values)
{
    for (std::size_t i = 0; i < columns.size() && i < values.size(); ++i)
        if (const auto why = refusal(table, columns[i], values[i]))
            throw StoredValueRefused(std::string(place) + (place.empty() ? "" : ": ") + std::string(table) + "." +
                                     std::string(columns[i]) + ": " + *why);
}

}  // namespace nimbara::entities
