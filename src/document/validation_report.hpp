#pragma once
// The validation report of a held Guia: every line judged, then the Guia as a whole when no line
// failed, written as the readable text the user receives (CR LF line ends).
#include <stdexcept>
#include <string>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_arrays.hpp"

namespace nimbara::document {

// A value the report must read as a number (a weight step, a scope code turned weight) does not
// convert, or the Guia has lines but no header; the caller answers with its fixed failure text.
struct ReportFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct ValidationReport {
    bool errors = false;  // a line or a Guia rule failed
    std::string text;     // the report, without the line break that writing it adds
    std::vector<LineError> line_errors;
    ValidationResult guia_error;
};

// Judges the Guia and builds its report; the Guia must have lines. Throws ReportFailure.
ValidationReport build_validation_report(const GuiaArrays& guia);

}  // namespace nimbara::document
