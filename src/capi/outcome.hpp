#pragma once
// Outcomes built from what the validators answer.
#include "capi/handles.hpp"
#include "document/validation_report.hpp"

namespace nimbara::capi {

// An error as the outcome lists it: number, description (a list joined with ","), row and line.
nimbara_outcome::Error outcome_error(const ErrorArray& error, std::int32_t row, std::string line);

// Every line error with what would have been accepted, then the Guia's error.
nimbara_outcome outcome_of(const document::ValidationReport& report);

// NIMBARA_OK for an outcome without errors, else NIMBARA_FAILED_VALIDATION; the host gets the outcome.
nimbara_status hand_out(nimbara_outcome outcome, nimbara_outcome** out);

}  // namespace nimbara::capi
