#pragma once
// The line batch of check-lines: the ten arguments of DoValidaProduto per line, tab-separated.
#include <cstddef>
#include <istream>
#include <ostream>
#include <string>

#include "nimbara/export.hpp"

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

}  // namespace nimbara
