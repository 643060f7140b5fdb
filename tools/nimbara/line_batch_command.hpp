#pragma once
// What check-lines and db check-lines share: the batch file or standard input, the results on
// standard output, the exit status.
#include <string>

#include "nimbara/line_batch.hpp"

namespace nimbara::cli {

// Judges the batch in `file` (standard input when empty or "-") by the judge, or by the compiled-in
// rules without one; answers the exit status: 0 every row was judged, 2 a row was refused or the
// input could not be opened or read.
int run_line_batch(const std::string& command, const std::string& file, const BatchJudge* judge = nullptr);

}  // namespace nimbara::cli
