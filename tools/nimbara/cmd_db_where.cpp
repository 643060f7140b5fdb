// nimbara db where: the connection in force, which of the four places named it, and the places
// below it that were not used, so that a user learns why the program opened the database it did.
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "db_location.hpp"
#include "json_output.hpp"
#include "nimbara/Database.hpp"

namespace nimbara::cli {
namespace {

struct WhereOptions {
    std::string conn;
    bool json = false;
};

std::string place_name(const DbPlace& p) { return p.key.empty() ? p.name : p.name + " (" + p.key + ")"; }

std::string place_state(const DbPlace& p)
{
    if (!p.problem.empty()) return p.problem;
    return p.value ? shown_connection(*p.value) : "not set";
}

int where(const WhereOptions& o)
{
    const DbLocation found = locate_database(o.conn);
    // The refusal names the four places, or the config file's problem when it is the one in the way.
    const std::string conn = connection_in_force(o.conn);
    const DbPlace& source = found.places.at(*found.in_force);
    const auto network = SqliteFileOf(conn) ? NetworkFileSystemOf(*SqliteFileOf(conn)) : std::nullopt;
    if (network) warn_if_shared_over_network(conn);
    if (o.json) {
        nlohmann::json places = nlohmann::json::array();
        for (std::size_t i = 0; i < found.places.size(); ++i) {
            const DbPlace& p = found.places[i];
            nlohmann::json item = {{"place", p.name}};
            if (!p.key.empty()) item["key"] = p.key;
            item["value"] = p.value ? nlohmann::json(shown_connection(*p.value)) : nlohmann::json(nullptr);
            item["state"] = i == *found.in_force ? "in force" : i < *found.in_force ? "not set" : "not used";
            if (!p.problem.empty()) item["problem"] = p.problem;
            places.push_back(item);
        }
        write_json(std::cout, nlohmann::ordered_json{{"command", "nimbara db where"},
                               {"status", 0},
                               {"connection", shown_connection(conn)},
                               {"from", source.name},
                               {"network_file_system", network ? nlohmann::json(*network) : nlohmann::json(nullptr)},
                               {"places", places}});
        return 0;
    }
    std::cout << "connection: " << shown_connection(conn) << '\n' << "from: " << place_name(source) << '\n';
    if (*found.in_force + 1 < found.places.size()) {
        std::cout << "not used:\n";
        for (std::size_t i = *found.in_force + 1; i < found.places.size(); ++i)
            std::cout << "  " << place_name(found.places[i]) << ": " << place_state(found.places[i]) << '\n';
    }
    return 0;
}

}  // namespace

void register_db_where(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("where", "Show the database in force and which place named it: --db, NIMBARA_DB, "
                                           "Zartel_Nimbara.Ini of the working folder, or ~/.config/nimbara/config");
    auto o = std::make_shared<WhereOptions>();
    add_db_option(*cmd, o->conn);
    cmd->add_flag("--json", o->json, "Write the answer as one JSON document");
    cmd->footer("Exit status: 0 a database is named, 2 none of the four places names one, or a config file "
                "that cannot be read.\nExamples:\n  nimbara db where\n  NIMBARA_DB=shop.db nimbara db where --json");
    cmd->callback([o, &status] {
        status = run_db_command("where", o->json, std::cout, std::cerr, [&] { return where(*o); });
    });
}

}  // namespace nimbara::cli
