#include "rules/build/designations.hpp"

#include <stdexcept>

#include "rules/build/tsv.hpp"

namespace nimbara::rules {
namespace {

std::string key(std::string_view set, std::string_view code)
{
    std::string k(set);
    k += '\t';
    k += code;
    return k;
}

}  // namespace

Designations::Designations(std::string_view tsv_text)
{
    for (const TsvLine& line : read_tsv(tsv_text, "designations.tsv")) {
        const auto& f = line.fields;
        const std::string where = "designations.tsv:" + std::to_string(line.number) + ": ";
        if (f.size() != 3 || f[0].empty() || f[1].empty()) throw std::runtime_error(where + "expected Set, Code and Designation");
        if (f[1] == "0") throw std::runtime_error(where + "code 0 always has the empty designation");
        if (!labels_.emplace(key(f[0], f[1]), std::string(f[2])).second)
            throw std::runtime_error(where + std::string(f[0]) + " " + std::string(f[1]) + " is labelled twice");
    }
}

std::string_view Designations::label(std::string_view set, std::string_view code) const
{
    if (code == "0") return {};
    const auto it = labels_.find(key(set, code));
    if (it == labels_.end())
        throw std::runtime_error("designations.tsv has no label for " + std::string(set) + " " + std::string(code));
    return it->second;
}

}  // namespace nimbara::rules
