#include "option_checks.hpp"

#include <charconv>
#include <sstream>

namespace nimbara::cli {
namespace {

std::string in_quotes(const std::string& text) { return "\"" + text + "\""; }

std::string number_text(double value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

}  // namespace

CLI::Validator one_of(std::vector<std::string> words)
{
    std::string shown, listed;
    for (std::size_t i = 0; i < words.size(); ++i) {
        shown += (i ? "|" : "") + words[i];
        listed += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    return CLI::Validator(
        [words = std::move(words), listed](std::string& value) -> std::string {
            for (const auto& w : words)
                if (w == value) return {};
            return "must be " + listed + ", not " + in_quotes(value);
        },
        shown, "one of");
}

CLI::Validator number_in(double low, double high)
{
    const std::string range = number_text(low) + " to " + number_text(high);
    return CLI::Validator(
        [low, high, range](std::string& value) -> std::string {
            double v = 0;
            const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), v);
            if (ec != std::errc{} || end != value.data() + value.size() || v < low || v > high)
                return "must be a number from " + range + ", not " + in_quotes(value);
            return {};
        },
        range, "number in");
}

CLI::Validator whole_in(std::int64_t low, std::int64_t high)
{
    const std::string range = std::to_string(low) + " to " + std::to_string(high);
    return CLI::Validator(
        [low, high, range](std::string& value) -> std::string {
            std::int64_t v = 0;
            const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), v);
            if (ec != std::errc{} || end != value.data() + value.size() || v < low || v > high)
                return "must be a whole number from " + range + ", not " + in_quotes(value);
            return {};
        },
        range, "whole number in");
}

}  // namespace nimbara::cli
