#pragma once
// Guias built in a few lines for the printing tests: a header, the barcode parameters of the bundled
// examples, product lines with everyday values and their special services.
#include <optional>
#include <string>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::testing {

struct LineShape {
    std::string product = "C01";
    std::string quantity = "100";
    std::string zone = "01";
    std::string weight = "20";
    std::string format = "02";
    std::optional<std::string> campaign;
    std::string tax_quantity = "100";
};

// Header: access type 0, contract 123, client 456, no third party, Julian date 5123, yearly
// identifier 7, payment 1, credential 77; parameters: font size 3, ratio 0, 10 columns, level 2.
GuiaArrays sample_guia();

// Adds a product line numbered after the lines already there; answers its line number.
int add_line(GuiaArrays& g, const LineShape& line = {});
void add_service(GuiaArrays& g, int line, const std::string& code, const std::string& value);

}  // namespace nimbara::testing
