#include "standard_streams.hpp"

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace nimbara::cli {

std::string read_standard_input(std::size_t limit)
{
    std::string text;
    char buffer[65536];
    while (std::cin.read(buffer, sizeof buffer) || std::cin.gcount() > 0) {
        text.append(buffer, static_cast<std::size_t>(std::cin.gcount()));
        if (text.size() > limit) throw std::runtime_error("<stdin>: larger than " + std::to_string(limit) + " bytes");
    }
    if (std::cin.bad()) throw std::runtime_error("<stdin>: cannot read standard input");
    return text;
}

void write_standard_output(const std::string& bytes)
{
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::cout.flush();
    if (!std::cout) throw std::runtime_error("cannot write to standard output");
}

std::optional<std::string> stream_name_refusal(const std::string& option, const std::string& place, const std::string& what)
{
    if (place != "-") return std::nullopt;
    return option + " -: " + what + " cannot be a standard stream; name it (./- for one called \"-\")";
}

}  // namespace nimbara::cli
