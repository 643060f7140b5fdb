#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "nimbara/Recordset.hpp"

namespace nimbara {
namespace {

template <class... F>
struct Overloaded : F... {
    using F::operator()...;
};
// Spelled out for compilers that do not yet deduce an aggregate's arguments by themselves.
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

[[noreturn]] void mismatch() { raise(RunTimeError::TypeMismatch); }

// Reads a number the way both stores print one; surrounding blanks are allowed, nothing else.
double parse_number(std::string_view s)
{
    while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
    while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
    double v = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
    if (s.empty() || ec != std::errc() || end != s.data() + s.size()) mismatch();
    return v;
}

bool valid(const Timestamp& t)
{
    static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return t.month >= 1 && t.month <= 12 && t.day >= 1 && t.day <= kDays[t.month - 1] && t.hour >= 0 && t.hour < 24 &&
           t.minute >= 0 && t.minute < 60 && t.second >= 0 && t.second < 60;
}

}  // namespace

std::string Timestamp::text() const
{
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", year, month, day, hour, minute, second);
    return buf;
}

Timestamp Timestamp::parse(std::string_view s)
{
    Timestamp t;
    t.hour = t.minute = t.second = 0;
    const auto bad = [&] { return std::invalid_argument("not a date: \"" + std::string(s) + "\""); };
    const auto digits = [&](std::size_t at, std::size_t n, int& out) {
        if (at + n > s.size()) return false;
        const auto [end, ec] = std::from_chars(s.data() + at, s.data() + at + n, out);
        return ec == std::errc() && end == s.data() + at + n;
    };
    if (!digits(0, 4, t.year) || s.size() < 10 || s[4] != '-' || !digits(5, 2, t.month) || s[7] != '-' ||
        !digits(8, 2, t.day))
        throw bad();
    if (s.size() > 10) {
        if ((s[10] != ' ' && s[10] != 'T') || !digits(11, 2, t.hour) || s.size() < 16 || s[13] != ':' ||
            !digits(14, 2, t.minute))
            throw bad();
        if (s.size() > 16 && (s[16] != ':' || !digits(17, 2, t.second))) throw bad();
        // Fractions of a second and a zone that PostgreSQL may add are dropped: the stores keep seconds.
        if (s.size() > 19 && s[19] != '.' && s[19] != '+' && s[19] != '-') throw bad();
    }
    if (!valid(t)) throw bad();
    return t;
}

Timestamp Timestamp::now()
{
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm tm{};
    localtime_r(&now, &tm);
    return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

ValueKind FieldValue::kind() const
{
    return std::visit(Overloaded{
                          [](std::monostate) { return ValueKind::Null; },
                          [](std::int64_t) { return ValueKind::Number; },
                          [](double) { return ValueKind::Number; },
                          [](const std::string&) { return ValueKind::Text; },
                          [](bool) { return ValueKind::YesNo; },
                          [](const Timestamp&) { return ValueKind::Date; },
                      },
                      v_);
}

std::string FieldValue::text() const
{
    return std::visit(Overloaded{
                          [](std::monostate) { return std::string(); },
                          [](std::int64_t v) { return std::to_string(v); },
                          [](double v) {
                              char buf[32];
                              const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v);
                              return std::string(buf, end);
                          },
                          [](const std::string& v) { return v; },
                          [](bool v) { return std::string(v ? "True" : "False"); },
                          [](const Timestamp& v) { return v.text(); },
                      },
                      v_);
}

double FieldValue::number() const
{
    return std::visit(Overloaded{
                          [](std::monostate) -> double { mismatch(); },
                          [](std::int64_t v) { return static_cast<double>(v); },
                          [](double v) { return v; },
                          [](const std::string& v) { return parse_number(v); },
                          [](bool v) { return v ? -1.0 : 0.0; },  // True is -1 where a yes/no is read as a number
                          [](const Timestamp&) -> double { mismatch(); },
                      },
                      v_);
}

std::int64_t FieldValue::integer() const
{
    if (const auto* i = std::get_if<std::int64_t>(&v_)) return *i;
    const double d = number();
    if (!std::isfinite(d) || std::fabs(d) > 9.2e18) raise(RunTimeError::Overflow);
    return static_cast<std::int64_t>(std::llround(d));
}

bool FieldValue::yes_no() const
{
    if (const auto* b = std::get_if<bool>(&v_)) return *b;
    if (const auto* s = std::get_if<std::string>(&v_)) {
        if (*s == "True" || *s == "true" || *s == "t") return true;
        if (*s == "False" || *s == "false" || *s == "f") return false;
    }
    return number() != 0;
}

Timestamp FieldValue::date() const
{
    if (const auto* t = std::get_if<Timestamp>(&v_)) return *t;
    if (const auto* s = std::get_if<std::string>(&v_)) return Timestamp::parse(*s);
    mismatch();
}

}  // namespace nimbara
