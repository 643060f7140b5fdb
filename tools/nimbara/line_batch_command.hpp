#pragma once
// What check-lines and db check-lines share: the batch file or standard input, the results on
// standard output, the exit status.
#include <string>

#include "nimbara/line_batch.hpp"

namespace nimbara::cli {

// Judges the batch in `file` (standard input when empty or "-") by the judge, or by the compiled-in
// rules without one; answers the exit status: 0 every row was judged, 2 a row was refused or the
// input could not be opened or read. With `json` the results are one JSON document: {"input",
// "status", "results": [{"line", "passed", "number", "description" or "services",
// "possible_values"} or {"line", "refused"}]}.
int run_line_batch(const std::string& command, const std::string& file, const BatchJudge* judge = nullptr,
                   bool json = false);

}  // namespace nimbara::cli
