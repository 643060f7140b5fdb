#pragma once
// What read and db receive share: the scans given on the command line read into Guias, and a Guia
// read from paper as JSON, each line with its verdict by the compiled-in rules.
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "nimbara/guia_symbol.hpp"

namespace nimbara::cli {

struct ScanFailure {
    std::string input;
    std::string error;
};

struct ScanInput {
    AssembledScan scan;
    std::vector<ScanFailure> failures;     // files that could not be read, or that hold no symbol at all
    std::vector<std::string> blank_pages;  // pages without a symbol in files whose other pages have one
    // Nothing stands in the way of taking the Guias: every file read, every symbol ours, every Guia whole.
    bool whole() const;
};

// Reads every file ("-" is standard input) and puts the Guias on their pages together.
ScanInput read_scan_inputs(const std::vector<std::string>& files);

// The verdicts of the Guia's lines, as check-lines gives them; a line that rode in the symbol as
// another's service has none (null).
std::vector<nlohmann::json> line_verdicts(const AssembledGuia& guia);

// The Guia as JSON: its edition, head fields and lines under the Guia file's keys, its pages, and each
// line's verdict; `passed` tells whether every line passed.
nlohmann::ordered_json guia_json(const AssembledGuia& guia, bool& passed);

// The ScanInput's faults as JSON: "unreadable", "not_ours", "pages_without_symbol".
void add_scan_faults(nlohmann::ordered_json& document, const ScanInput& input);

// One line of standard error per fault, prefixed with the command's name.
void report_scan_faults(std::ostream& err, const std::string& command, const ScanInput& input);

// "contract 300042, client 456, yearly number 1027, day 6327": how a Guia is named to a person.
std::string guia_name(const SymbolHead& head);

// The faults that keep a Guia from being taken: its missing and conflicting pages, in words.
std::vector<std::string> page_faults(const AssembledGuia& guia);

}  // namespace nimbara::cli
