#pragma once
// What the rows of the table share in both editions: their font, set as it always was, and codes
// of one character padded to two.
#include <string>

#include "foundation/chars.hpp"
#include "nimbara/PageSurface.hpp"

namespace nimbara::printing {

inline void detail_font(PageSurface& s)
{
    s.setFillColor(kBlack);
    s.setFontName("Times New Roman");
    s.setFontSize(8);
    s.setFontBold(true);
    s.setFillColor(kBlack);
}

inline std::string two_digits(std::string code)
{
    if (chars::length(code) == 1) code.insert(code.begin(), '0');
    return code;
}

}  // namespace nimbara::printing
