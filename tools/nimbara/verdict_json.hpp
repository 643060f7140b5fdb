#pragma once
// A validator's verdict as the JSON documents of check, print and the line batches carry it.
#include <nlohmann/json.hpp>

#include <vector>

#include "nimbara/error_array.hpp"
#include "nimbara/line_batch.hpp"
#include "nimbara/possible_value.hpp"

namespace nimbara::cli {

// {"number": N, "description": "..."} or, for an error that lists service codes, {"number": N, "services": [...]}.
nlohmann::json error_json(const ErrorArray& error);

// [{"code", "designation"}...], or [{"minimum", "maximum"}...] for weight steps.
nlohmann::json possible_values_json(const std::vector<PossibleValue>& values, bool weight_steps);

// One row of a line batch: {"line", "passed", "number", "description", "possible_values"}, or
// {"line", "refused"} for a row that could not be judged.
nlohmann::json batch_result_json(const BatchLineResult& r);

}  // namespace nimbara::cli
