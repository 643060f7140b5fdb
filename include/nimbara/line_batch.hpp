#pragma once
// The line batch of check-lines: the ten arguments of DoValidaProduto per line, tab-separated.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/error_array.hpp"
#include "nimbara/export.hpp"
#include "nimbara/possible_value.hpp"

namespace nimbara {

struct BatchSummary {
    std::size_t lines = 0;
    std::size_t refused = 0;  // lines that could not be judged
    bool read_failed = false;  // the input broke off: the lines after it were never judged
};

// Judges every line of `in`, writing one result line per input line to `out` and one message per
// refused line to `err`, prefixed with `source` and the line number. A read error of `in` ends the
// batch and is reported to `err` as well.
NIMBARA_API BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source);

// One row of a batch: its ten fields as written, the weight (the third) already read.
struct BatchRow {
    std::span<const std::string_view> fields;
    std::int32_t weight = 0;
};

// Judges a row. Throws std::invalid_argument, whose text says why, for a field it cannot take; the
// row is then refused as a malformed one is.
using BatchJudge = std::function<ValidationResult(const BatchRow&)>;

// A result as a batch writes it: "0", or the error number, a tab and the description, a list of
// service codes joined with ",".
NIMBARA_API std::string batch_result_text(const ValidationResult& result);

// As above, with another validator as the judge.
NIMBARA_API BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err,
                                          const std::string& source, const BatchJudge& judge);

// One row of a batch as a host reads it: its line number (from 1), and either its verdict or why it
// was refused. A line the compiled-in rules failed carries the values the report would list for it
// (weight steps, smallest and largest weight, when `weight_steps`).
struct BatchLineResult {
    std::size_t line = 0;
    ValidationResult result;
    std::vector<PossibleValue> possible_values;
    bool weight_steps = false;
    std::optional<std::string> refused;
};
using BatchResultSink = std::function<void(const BatchLineResult&)>;

// As above, each row's result handed to `sink` instead of written as text; the compiled-in rules
// judge unless a judge is given.
NIMBARA_API BatchSummary check_line_batch(std::istream& in, const BatchResultSink& sink, std::ostream& err,
                                          const std::string& source, const BatchJudge* judge = nullptr);

}  // namespace nimbara
