// nimbara read SCAN...: the Guias on scanned or photographed pages, read from their symbols and judged
// line by line by the compiled-in rules.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "json_output.hpp"
#include "scan_input.hpp"

namespace nimbara::cli {
namespace {

int run_read(const std::vector<std::string>& files)
{
    const ScanInput input = read_scan_inputs(files);
    report_scan_faults(std::cerr, "read", input);
    bool all_passed = true;
    auto guias = nlohmann::ordered_json::array();
    for (const auto& g : input.scan.guias) {
        bool passed = true;
        guias.push_back(guia_json(g, passed));
        all_passed &= passed;
        std::cerr << "Guia of " << guia_name(g.head) << ": " << g.head.pages << (g.head.pages == 1 ? " page, " : " pages, ")
                  << g.lines.size() << (g.lines.size() == 1 ? " line" : " lines");
        if (!g.repeated.empty()) std::cerr << ", " << g.repeated.size() << " page(s) found more than once";
        std::cerr << (passed ? "; every line passes" : "; a line fails (see its verdict)") << '\n';
        const auto& lines = guias.back()["produtos"];
        for (const auto& line : lines)
            if (!line["verdict"].is_null() && !line["verdict"]["passed"].get<bool>())
                std::cerr << "  line " << line["N_Linha"].get<std::string>() << " (" << line["B_Produto"].get<std::string>()
                          << "): " << (line["verdict"].contains("description") ? line["verdict"]["description"].dump()
                                                                               : line["verdict"].dump())
                          << '\n';
    }
    if (input.scan.guias.empty() && input.failures.empty() && input.scan.unread.empty())
        std::cerr << "nimbara read: no Guia found\n";
    const int status = !input.whole() ? 2 : all_passed ? 0 : 1;
    nlohmann::ordered_json document;
    document["command"] = "nimbara read";
    document["status"] = status;
    document["inputs"] = files;
    document["guias"] = std::move(guias);
    add_scan_faults(document, input);
    write_json(std::cout, document);
    return status;
}

}  // namespace

void register_read(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand(
        "read", "Read printed Guias back from scans or photographs of their pages (PNG, JPEG, TIFF or PDF) and "
                "judge their lines; the answer is one JSON document");
    auto files = std::make_shared<std::vector<std::string>>();
    cmd->add_option("SCAN", *files, "Scan files, several pages or Guias each as they come; - reads standard input")
        ->required();
    cmd->footer("The Guias come on standard output as one JSON document, each with the fields its symbols carry "
                "under the Guia file's keys and each line's verdict as check-lines gives it; a summary goes to "
                "standard error. A page without a symbol (the back of a sheet) is named and passed over.\n"
                "Exit status: 0 every Guia read whole and every line passed, 1 read whole but a line failed, 2 a "
                "file could not be read or holds no symbol, a symbol is no Guia of ours, or a Guia's pages are "
                "missing or disagree.\nExamples:\n  nimbara read scan.pdf\n  nimbara read page1.png page2.jpg\n"
                "  nimbara read - < scan.tiff");
    cmd->callback([files, &status] { status = run_read(*files); });
}

}  // namespace nimbara::cli
