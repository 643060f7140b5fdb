// nimbara db receive SCAN...: printed Guias taken in at the counter. Each Guia the scans hold is found
// in the database, compared with the paper field by field, and marked received when they agree.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "db_command.hpp"
#include "json_output.hpp"
#include "nimbara/guia_reception.hpp"
#include "nimbara/guia_store.hpp"
#include "scan_input.hpp"

namespace nimbara::cli {
namespace {

struct ReceiveOptions {
    std::string conn;
    std::vector<std::string> files;
    bool json = false;
};

// The exit status of each outcome, and how bad each is when several Guias are taken in at once.
int status_of(ReceptionOutcome outcome)
{
    switch (outcome) {
    case ReceptionOutcome::Received: return 0;
    case ReceptionOutcome::Differs: return 1;
    case ReceptionOutcome::AlreadyReceived: return 3;
    }
    return 2;
}
int rank(int status) { return status == 0 ? 0 : status == 3 ? 1 : status == 1 ? 2 : 3; }

int receive(const ReceiveOptions& o)
{
    std::ostream& say = o.json ? std::cerr : std::cout;
    const ScanInput input = read_scan_inputs(o.files);
    nlohmann::ordered_json document;
    document["command"] = "nimbara db receive";
    if (!input.whole()) {
        // The counter scans again: nothing is taken in from a scan that cannot be read whole.
        report_scan_faults(std::cerr, "db receive", input);
        if (input.scan.guias.empty() && input.failures.empty() && input.scan.unread.empty())
            std::cerr << "nimbara db receive: no Guia found\n";
        std::cerr << "nimbara db receive: nothing was received\n";
        document["status"] = 2;
        document["guias"] = nlohmann::ordered_json::array();
        add_scan_faults(document, input);
        if (o.json) write_json(std::cout, document);
        return 2;
    }
    const auto db = open_command_database(o.conn);
    int status = 0;
    auto guias = nlohmann::ordered_json::array();
    for (const auto& g : input.scan.guias) {
        nlohmann::ordered_json item;
        item["guia"] = guia_name(g.head);
        int guia_status = 2;
        try {
            const GuiaReception r = receive_guia(db, g, Timestamp::now());
            guia_status = status_of(r.outcome);
            item["N_Req"] = r.N_Req;
            item["outcome"] = r.outcome == ReceptionOutcome::Received ? "received"
                              : r.outcome == ReceptionOutcome::Differs ? "differs"
                                                                       : "already_received";
            item["received_at"] = r.received_at.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(r.received_at);
            auto differences = nlohmann::ordered_json::array();
            for (const auto& d : r.differences)
                differences.push_back({{"place", d.place}, {"paper", d.paper}, {"database", d.stored}});
            item["differences"] = std::move(differences);
            const std::string who = "Guia " + std::to_string(r.N_Req) + " (" + guia_name(g.head) + ")";
            if (r.outcome == ReceptionOutcome::Received) say << who << ": received at " << r.received_at << '\n';
            if (r.outcome == ReceptionOutcome::AlreadyReceived)
                std::cerr << "nimbara db receive: " << who << " was received before"
                          << (r.received_at.empty() ? std::string(", at a time not recorded") : " at " + r.received_at)
                          << "; not received again\n";
            if (r.outcome == ReceptionOutcome::Differs) {
                std::cerr << "nimbara db receive: " << who << ": the paper differs from the database; not received\n";
                for (const auto& d : r.differences)
                    say << "  " << d.place << ": paper \"" << d.paper << "\", database \"" << d.stored << "\"\n";
            }
        } catch (const GuiaNotStoredError& e) {
            std::cerr << "nimbara db receive: " << e.what() << '\n';
            item["outcome"] = "not_stored";
            item["error"] = e.what();
        }
        item["status"] = guia_status;
        if (rank(guia_status) > rank(status)) status = guia_status;
        guias.push_back(std::move(item));
    }
    document["status"] = status;
    document["guias"] = std::move(guias);
    add_scan_faults(document, input);
    if (o.json) write_json(std::cout, document);
    return status;
}

}  // namespace

void register_db_receive(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("receive", "Take in printed Guias at the counter from scans of their pages: compare "
                                             "each with the database and mark it received when they agree");
    auto o = std::make_shared<ReceiveOptions>();
    add_db_option(*cmd, o->conn);
    cmd->add_option("SCAN", o->files, "Scan files (PNG, JPEG, TIFF or PDF); - reads standard input")->required();
    cmd->add_flag("--json", o->json, "Write the outcome as one JSON document, each Guia with its differences");
    cmd->footer("A Guia is found by its client, contract, yearly number (the request number for the database "
                "edition) and the day of its date; every field the paper carries is compared with the database. "
                "When all agree, Recolhido is set and Situacao records the time, in one transaction; a Guia is "
                "received once.\nExit status: 0 received, 1 the paper differs from the database (each difference "
                "listed; nothing marked), 3 received before (the time of the first reception given; nothing "
                "marked), 2 a scan that cannot be read whole, no such Guia stored, or the database failed. With "
                "several Guias: 2, else 1, else 3, else 0.\nExamples:\n  nimbara db receive scan.pdf --db sqlite:shop.db\n"
                "  nimbara db receive page1.png page2.png --json");
    cmd->callback([o, &status] {
        status = run_db_command("receive", o->json, std::cout, std::cerr, [&] { return receive(*o); });
    });
}

}  // namespace nimbara::cli
