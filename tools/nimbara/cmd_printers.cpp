// nimbara printers: the queues of the CUPS server, which one is the default, and their state.
#include <iostream>
#include <memory>

#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "json_output.hpp"
#include "nimbara/printer_queue.hpp"
#include "printer_target.hpp"

namespace nimbara::cli {
namespace {

int printers(bool json, std::ostream& out)
{
    const auto queues = list_printers();
    if (json) {
        nlohmann::ordered_json document = {{"status", 0}, {"default", nullptr}, {"printers", nlohmann::ordered_json::array()}};
        for (const auto& q : queues) {
            if (q.is_default) document["default"] = q.name;
            document["printers"].push_back({{"name", q.name}, {"default", q.is_default}, {"state", q.state},
                                            {"accepting_jobs", q.accepting_jobs}, {"state_message", q.state_message},
                                            {"info", q.info}, {"location", q.location}});
        }
        write_json(out, document);
        return 0;
    }
    if (queues.empty()) std::cerr << "nimbara printers: the CUPS server has no queues\n";
    for (const auto& q : queues) {
        out << (q.is_default ? "* " : "  ") << q.name << "  " << q.state << (q.accepting_jobs ? "" : ", rejecting jobs");
        if (!q.state_message.empty()) out << " (" << q.state_message << ")";
        if (!q.info.empty() && q.info != q.name) out << "  " << q.info;
        out << '\n';
    }
    return 0;
}

}  // namespace

void register_printers(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("printers", "List the printers' queues of the CUPS server, the default one marked *");
    auto json = std::make_shared<bool>(false);
    cmd->add_flag("--json", *json, "Write the queues as one JSON document: each one's name, state, whether it "
                                   "accepts jobs, and which is the default");
    cmd->footer("The server is the one CUPS_SERVER or the CUPS client configuration names, else the local one. The "
                "default is the one lp would use (LPDEST, PRINTER, lpoptions, then the server's).\n"
                "Exit status: 0 listed (possibly none), 2 no CUPS server answers.\nExamples:\n"
                "  nimbara printers\n  nimbara print guia.json --printer office\n  nimbara printers --json");
    cmd->callback([json, &status] {
        try {
            status = printers(*json, std::cout);
        } catch (const PrinterError& e) {
            std::cerr << "nimbara printers: " << printer_refusal(e) << '\n';
            if (*json) write_json(std::cout, refusal_json("nimbara printers", printer_refusal(e)));
            status = 2;
        }
    });
}

}  // namespace nimbara::cli
