#pragma once
// The validation report of a held Guia: every line judged, then the Guia as a whole when no line
// failed, written as the readable text the user receives (CR LF line ends).
#include <stdexcept>
#include <string>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_arrays.hpp"
#include "validation/possible_values.hpp"
#include "validation/rule_catalogue.hpp"

namespace nimbara::document {

// A value the report must read as a number (a weight step, a scope code turned weight) does not
// convert, or the Guia has lines but no header; the caller answers with its fixed failure text.
struct ReportFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What the report lists under a failing line as accepted: code and designation pairs, or, for a
// weight, minimum and maximum pairs; or a sentence saying what a service needs. Empty when the error
// asks no such question or the answer is empty.
struct AcceptedValues {
    bool ranges = false;
    std::vector<validation::CodeLabel> values;
    std::string sentence;
};

struct ValidationReport {
    bool errors = false;  // a line or a Guia rule failed
    std::string text;     // the report, without the line break that writing it adds
    std::vector<LineError> line_errors;
    std::vector<AcceptedValues> accepted;  // one for each of line_errors
    ValidationResult guia_error;
};

// Judges the Guia against the catalogue and builds its report; the Guia must have lines. Throws
// ReportFailure.
ValidationReport build_validation_report(const GuiaArrays& guia,
                                         const validation::RuleCatalogue& catalogue = validation::RuleCatalogue::compiled());

}  // namespace nimbara::document
