#pragma once
// What `print` and `check` share: read the Guia file, fill the façade, finish it with ImprimeGuia
// and write its answer.
#include <optional>
#include <ostream>
#include <string>

namespace nimbara::cli {

struct GuiaRun {
    std::string file;
    std::optional<std::string> report_dir;  // the component's folder when not given
    std::optional<std::string> out_dir;     // where printed copies go; the report folder when not given
    bool only_printer = false;
    bool printing = true;
};

// Exit status: 0 when the answer says ERRO_ID 0, 1 when it says -1, 2 when the file or the report
// folder is refused (a message on `err`, nothing filled, no report written).
int run_guia(const GuiaRun& run, std::ostream& out, std::ostream& err, const std::string& command);

}  // namespace nimbara::cli
