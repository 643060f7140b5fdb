#pragma once
// A print's calls as the golden files in tests/data/golden hold them, and where two such logs part.
#include <cmath>
#include <cstdio>
#include <sstream>
#include <string>

#include "printing/recording_surface.hpp"

namespace nimbara::testing {

// One call a line: the operation, its numbers (whole ones without decimals, others to a thousandth
// of a twip) and its text in quotes.
inline std::string call_log(const printing::RecordingSurface& s)
{
    std::ostringstream out;
    char number[64];
    for (const auto& c : s.calls()) {
        out << c.op;
        for (const double n : c.numbers) {
            if (n == std::trunc(n)) std::snprintf(number, sizeof number, " %.0f", n);
            else std::snprintf(number, sizeof number, " %.3f", n);
            out << number;
        }
        if (!c.text.empty()) out << " \"" << c.text << '"';
        out << '\n';
    }
    return out.str();
}

// The first line where the two logs part, with both versions.
inline std::string first_difference(const std::string& expected, const std::string& actual)
{
    std::istringstream e(expected), a(actual);
    std::string le, la;
    for (int line = 1;; ++line) {
        const bool more_e = static_cast<bool>(std::getline(e, le));
        const bool more_a = static_cast<bool>(std::getline(a, la));
        if (!more_e && !more_a) return "identical";
        if (!more_e || !more_a || le != la)
            return "line " + std::to_string(line) + ": expected \"" + (more_e ? le : "<end>") + "\", printed \"" +
                   (more_a ? la : "<end>") + "\"";
    }
}

}  // namespace nimbara::testing
