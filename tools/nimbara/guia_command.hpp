#pragma once
// What `print` and `check` share: read the Guia file, fill the façade, finish it with ImprimeGuia
// and write its answer.
#include <CLI/CLI.hpp>

#include <optional>
#include <ostream>
#include <string>

namespace nimbara::cli {

struct GuiaRun {
    std::string file;                       // "-" reads standard input
    std::optional<std::string> report_dir;  // the current folder when not given
    std::optional<std::string> out_dir;     // where printed copies go; the report folder when not given
    std::optional<std::string> print_log;   // beside the program, or under $XDG_STATE_HOME/nimbara
    bool only_printer = false;
    bool printing = true;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
};

// The options both commands take.
void add_guia_options(CLI::App& command, GuiaRun& run);

// Exit status: 0 when the Guia passed (and printed whole), 1 when a line or the Guia failed, 2 when
// the input or an output place is refused (a message on `err`, nothing written), 3 when the Guia
// passed but could not be printed whole (the report is written; the message names the field and line).
int run_guia(const GuiaRun& run, std::ostream& out, std::ostream& err, const std::string& command);

}  // namespace nimbara::cli
