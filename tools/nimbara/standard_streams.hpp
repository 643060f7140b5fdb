#pragma once
// "-" where a file is named: standard input read whole, a document written whole to standard
// output, and the refusal of "-" where a folder or a log is named, so that nothing called "-" is made.
#include <cstddef>
#include <optional>
#include <string>

namespace nimbara::cli {

// The whole of standard input, at most `limit` bytes; throws std::runtime_error naming "<stdin>"
// when it is larger or cannot be read.
std::string read_standard_input(std::size_t limit);

// Writes `bytes` to standard output and flushes it; throws std::runtime_error when it cannot.
void write_standard_output(const std::string& bytes);

// The refusal of "-" named by `option` where `what` (a folder, a log) is wanted; nothing for any other place.
std::optional<std::string> stream_name_refusal(const std::string& option, const std::string& place, const std::string& what);

}  // namespace nimbara::cli
