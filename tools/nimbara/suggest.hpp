#pragma once
// The closest known word to a misspelt one, for messages such as "did you mean print?".
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbara::cli {

// The known word at the smallest edit distance, if it is close enough to be a likely slip.
std::optional<std::string> closest(std::string_view word, const std::vector<std::string>& known);

}  // namespace nimbara::cli
