#include "import/column_values.hpp"

#include <charconv>
#include <cmath>
#include <limits>

namespace nimbara::import {
namespace {

const char* kind_name(Kind kind)
{
    switch (kind) {
    case Kind::Long:
    case Kind::Short: return "a number";
    case Kind::YesNo: return "a yes/no";
    case Kind::Date: return "a date";
    case Kind::Text:
    case Kind::BareText: return "a text";
    }
    return "a value";
}

std::int64_t whole_number(const platform::OldValue& value, Kind kind)
{
    if (const auto* i = std::get_if<std::int64_t>(&value)) return *i;
    // The old yes/no read as a number was True, -1.
    if (const auto* b = std::get_if<bool>(&value)) return *b ? -1 : 0;
    if (const auto* d = std::get_if<double>(&value)) {
        if (std::isfinite(*d) && *d == std::trunc(*d) && std::abs(*d) < 9.0e18) return static_cast<std::int64_t>(*d);
    }
    if (const auto* s = std::get_if<std::string>(&value)) {
        std::int64_t n = 0;
        const char* end = s->data() + s->size();
        if (!s->empty() && std::from_chars(s->data(), end, n).ptr == end) return n;
    }
    throw ValueRefused(shown(value) + " where " + kind_name(kind) + " must stand");
}

}  // namespace

std::string shown(const platform::OldValue& value)
{
    struct Show {
        std::string operator()(std::monostate) const { return "Null"; }
        std::string operator()(std::int64_t v) const { return std::to_string(v); }
        std::string operator()(double v) const { return FieldValue(v).text(); }
        std::string operator()(const std::string& v) const { return '"' + v + '"'; }
        std::string operator()(bool v) const { return v ? "True" : "False"; }
        std::string operator()(const platform::OldDateTime& v) const { return platform::to_string(v); }
    };
    return std::visit(Show{}, value);
}

FieldValue column_value(const platform::OldValue& value, Kind kind)
{
    if (platform::is_null(value)) {
        if (kind == Kind::Text) return std::string();
        if (kind == Kind::BareText) return {};
        throw ValueRefused(std::string("Null where ") + kind_name(kind) + " must stand");
    }
    switch (kind) {
    case Kind::Long:
    case Kind::Short: {
        const std::int64_t n = whole_number(value, kind);
        const std::int64_t limit = kind == Kind::Short ? std::numeric_limits<std::int16_t>::max()
                                                       : std::numeric_limits<std::int32_t>::max();
        if (n > limit || n < -limit - 1) throw ValueRefused(shown(value) + ": Overflow");
        return n;
    }
    case Kind::YesNo:
        if (const auto* b = std::get_if<bool>(&value)) return *b;
        if (const auto* i = std::get_if<std::int64_t>(&value)) return *i != 0;
        throw ValueRefused(shown(value) + " where a yes/no must stand");
    case Kind::Date:
        if (const auto* d = std::get_if<platform::OldDateTime>(&value))
            return Timestamp{d->year, d->month, d->day, d->hour, d->minute, d->second};
        throw ValueRefused(shown(value) + " where a date must stand");
    case Kind::Text:
    case Kind::BareText:
        if (const auto* s = std::get_if<std::string>(&value)) return *s;
        if (const auto* d = std::get_if<platform::OldDateTime>(&value)) return platform::to_string(*d);
        if (const auto* b = std::get_if<bool>(&value)) return std::string(*b ? "True" : "False");
        if (const auto* i = std::get_if<std::int64_t>(&value)) return std::to_string(*i);
        return FieldValue(std::get<double>(value)).text();
    }
    throw ValueRefused("unknown column kind");
}

}  // namespace nimbara::import
