#pragma once
// The designations of data/designations.tsv: the label of each code, by the set it belongs to.
#include <map>
#include <string>
#include <string_view>

namespace nimbara::rules {

class Designations {
public:
    // Throws std::runtime_error naming the line of a malformed or repeated entry.
    explicit Designations(std::string_view tsv_text);

    // The label of a code in a set; code "0" has the empty label in every set. Throws when the set
    // has no label for the code, so that a document never goes out with a label missing.
    std::string_view label(std::string_view set, std::string_view code) const;

private:
    std::map<std::string, std::string, std::less<>> labels_;  // "SET\tCODE" -> label
};

}  // namespace nimbara::rules
