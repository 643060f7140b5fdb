#include "suggest.hpp"

#include <algorithm>

namespace nimbara::cli {
namespace {

std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::optional<std::string> closest(std::string_view word, const std::vector<std::string>& known)
{
    std::optional<std::string> best;
    std::size_t best_distance = 0;
    for (const auto& k : known) {
        const auto d = distance(word, k);
        if (!best || d < best_distance) {
            best = k;
            best_distance = d;
        }
    }
    // More than a third of the word changed is a different word, not a slip.
    if (!best || best_distance > std::max<std::size_t>(2, word.size() / 3)) return std::nullopt;
    return best;
}

}  // namespace nimbara::cli
