#pragma once
// What `print` and `check` share: read the Guia file, fill the façade, finish it with ImprimeGuia
// and write its answer.
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "nimbara/PageSurface.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara::cli {

struct GuiaRun {
    std::vector<std::string> files;         // "-" reads standard input
    std::string file;                       // the one in hand
    std::optional<std::string> report_dir;  // the current folder when not given
    std::optional<std::string> out_dir;     // where printed copies go; the report folder when not given
    std::optional<std::string> print_log;   // under $XDG_STATE_HOME/nimbara when not given
    std::string report = "always";          // always, errors (only a Guia that failed) or never
    bool only_printer = false;
    bool printing = true;
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    // The printer every Guia shares (a batch), instead of a PDF file per copy.
    std::shared_ptr<PageSurface> printer;
    // The CUPS queue each copy goes to as a job, instead of a PDF file (print --printer).
    std::optional<std::string> queue;
    // Set when a Guia drawn into the shared printer did not come out whole.
    std::shared_ptr<bool> printer_spoiled = std::make_shared<bool>(false);
};

// The Guia file named, or standard input for "-" (named "<stdin>" in messages); throws GuiaFileError.
GuiaFile read_guia_input(const std::string& file);

// Creates the folder with its parents when it is missing; a place that cannot be a folder is
// refused with std::runtime_error naming `what` and the place.
std::filesystem::path usable_folder(const std::string& what, const std::filesystem::path& folder);

// The print log: nimbara.log in the user's state folder (the library's default), its folder made.
std::filesystem::path default_print_log();

// The options both commands take; `many` lets the command take several Guia files.
void add_guia_options(CLI::App& command, GuiaRun& run, bool many = false);

// Exit status: 0 when the Guia passed (and printed whole), 1 when a line or the Guia failed, 2 when
// the input or an output place is refused (a message on `err`, nothing written), 3 when the Guia
// passed but could not be printed whole (the report is written; the message names the field and line).
// Runs `run.file`.
// With --json the run's result (or its refusal), named by its "input", is stored in `document`, or
// written to `out` as the run's one JSON document when `document` is null.
int run_guia(const GuiaRun& run, std::ostream& out, std::ostream& err, const std::string& command,
             nlohmann::json* document = nullptr);

}  // namespace nimbara::cli
