// Any bytes as a check-lines batch: every line must get its answer or its refusal, never a crash.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "nimbara/line_batch.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    std::ostringstream out, err;
    const auto summary = nimbara::check_line_batch(in, out, err, "fuzz");
    // One answer line per input line, whether judged or refused.
    std::size_t answers = 0;
    for (const char c : out.str()) answers += c == '\n';
    if (answers != summary.lines) __builtin_trap();
    return 0;
}
