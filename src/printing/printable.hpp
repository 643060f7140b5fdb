#pragma once
// What would keep a Guia from printing whole, found before anything is drawn: numbers that are no
// numbers where printing converts them, and values wider than their place in the barcode.
#include <string>
#include <vector>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::printing {

struct PrintProblem {
    std::string place;  // the fill argument and its row, e.g. "/produtos/2/Escalao"
    std::string what;
};

std::vector<PrintProblem> printing_problems(const GuiaArrays& arrays);

}  // namespace nimbara::printing
