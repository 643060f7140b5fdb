// nimbara db client save CLIENT.json | show COD | list | delete COD: clients with their contracts.
#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>
#include <memory>
#include <vector>

#include "client_json.hpp"
#include "commands.hpp"
#include "db_command.hpp"
#include "delimited.hpp"
#include "json_output.hpp"
#include "nimbara/client_store.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "standard_streams.hpp"

namespace nimbara::cli {
namespace {

using nlohmann::ordered_json;

struct ClientOptions {
    std::string conn;
    std::string file;
    std::int32_t cod = 0;
    bool json = false;
};

// The client file's text (standard input for "-"); a folder, an unreadable or an over-long file is refused by name.
std::string read_client_file(const std::string& path)
{
    constexpr std::size_t kMaxBytes = 16u << 20;
    if (path == "-") return read_standard_input(kMaxBytes);
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) throw CommandError(path + ": is a folder, not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw CommandError(path + ": cannot open the file: " + std::strerror(errno));
    std::string content;
    char buffer[65536];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        content.append(buffer, static_cast<std::size_t>(in.gcount()));
        if (content.size() > kMaxBytes) throw CommandError(path + ": larger than " + std::to_string(kMaxBytes) + " bytes");
    }
    if (in.bad()) throw CommandError(path + ": cannot read the file: " + std::strerror(errno));
    return content;
}

// The parser's message without its identifier in brackets: "parse error at line 3, column 7: ...".
std::string plain(const char* message)
{
    std::string_view m = message;
    if (m.starts_with('[')) {
        if (const auto close = m.find("] "); close != std::string_view::npos) m.remove_prefix(close + 2);
    }
    return std::string(m);
}

// The name messages give the file: "<stdin>" for standard input.
std::string source(const std::string& file) { return file == "-" ? "<stdin>" : file; }

int save(const ClientOptions& o)
{
    ordered_json root;
    try {
        root = ordered_json::parse(read_client_file(o.file));
    } catch (const ordered_json::exception& e) {
        // Malformed, cut short or not UTF-8: the parser names the line and column.
        throw CommandError(source(o.file) + ": " + plain(e.what()));
    }
    const auto db = open_command_database(o.conn);
    const std::string cod = client_number(root, source(o.file));
    // A key the file leaves out keeps what the stored client has.
    ClientFields c = load_client(db, static_cast<std::int32_t>(std::stol(cod))).value_or(ClientFields{});
    read_client_json(root, source(o.file), c);

    std::int32_t id = 0;
    try {
        id = save_client(db, c);
    } catch (const std::invalid_argument& e) {  // a contract given twice, named by its place
        throw CommandError(source(o.file) + ": " + e.what());
    } catch (const DatabaseError& e) {
        throw CommandError(source(o.file) + ": " + e.what());
    }
    if (o.json)
        write_json(std::cout, nlohmann::ordered_json{{"input", o.file}, {"status", 0}, {"Id_Cliente", id},
                                                     {"Cod_Cliente", c.vCod_Cliente}});
    else
        std::cout << id << '\t' << c.vCod_Cliente << '\n';
    return 0;
}

int show(const ClientOptions& o)
{
    const auto c = load_client(open_command_database(o.conn), o.cod);
    if (!c) throw CommandError("no client " + std::to_string(o.cod));
    const ordered_json out = client_json(*c);
    write_json(std::cout, out);
    return 0;
}

int list(const ClientOptions& o)
{
    cls_Cliente c(open_command_database(o.conn));
    Recordset rs;
    c.SelectAll(rs);
    const char* columns[] = {"Id_Cliente", "Cod_Cliente", "Nome", "iTipoCliente", "Morada", "Localidade",
                             "Cod_Postal", "Desig_Postal", "NContribuinte", "Observacoes", "IAcessoRede"};
    if (o.json) {
        write_json(std::cout, ordered_json{{"status", 0}, {"clients", client_rows(c.myConn)}});
        return 0;
    }
    for (std::size_t i = 0; i < std::size(columns); ++i) std::cout << (i ? "\t" : "") << columns[i];
    std::cout << '\n';
    for (; !rs.IsEOF(); rs.MoveNext()) {
        for (std::size_t i = 0; i < std::size(columns); ++i) {
            std::string v = rs[columns[i]].text();
            for (char& ch : v)
                if (ch == '\t' || ch == '\n' || ch == '\r') ch = ' ';
            std::cout << (i ? "\t" : "") << v;
        }
        std::cout << '\n';
    }
    return 0;
}

int remove(const ClientOptions& o)
{
    const ordered_json deleted = delete_client(open_command_database(o.conn), o.cod, true);
    if (o.json) {
        write_json(std::cout, nlohmann::ordered_json{{"command", "nimbara db client delete"}, {"status", 0},
                                                     {"deleted", deleted}});
        return 0;
    }
    const auto counted = [](std::int64_t n, const char* one, const char* many) {
        return std::to_string(n) + " " + (n == 1 ? one : many);
    };
    std::cout << "deleted client " << deleted["cod_cliente"].get<std::string>() << " \""
              << deleted["nome"].get<std::string>() << "\" with "
              << counted(deleted["contracts"].get<std::int64_t>(), "contract", "contracts") << ", "
              << counted(deleted["guias"].get<std::int64_t>(), "Guia", "Guias") << ", "
              << counted(deleted["lines"].get<std::int64_t>(), "line", "lines") << " and "
              << counted(deleted["services"].get<std::int64_t>(), "service", "services") << '\n';
    return 0;
}

}  // namespace

void register_db_client(CLI::App& db, int& status)
{
    auto* client = db.add_subcommand("client", "Clients with their contracts");
    client->require_subcommand(1);
    client->footer("Exit status: that of the command run.\nExamples:\n  nimbara db client list\n"
                   "  nimbara db client help save");
    auto o = std::make_shared<ClientOptions>();
    const auto add = [&](const char* name, const char* help, int (*body)(const ClientOptions&)) {
        auto* cmd = client->add_subcommand(name, help);
        add_db_option(*cmd, o->conn);
        cmd->callback([o, &status, name, body] {
            status = run_db_command(std::string("client ") + name, o->json, std::cout, std::cerr,
                                    [&] { return body(*o); });
        });
        return cmd;
    };
    // The commands that answer data: a refusal is then JSON on standard output too.
    const auto with_json = [&](CLI::App* cmd, const char* help) {
        cmd->add_flag("--json", o->json, help);
        return cmd;
    };
    with_json(add("save", "Create or update a client and its contracts from a JSON file; print Id_Cliente and Cod_Cliente",
                  save),
              "Write {\"input\", \"status\", \"Id_Cliente\", \"Cod_Cliente\"} as JSON")
        ->footer("Exit status: 0 saved, 2 a refused file or value (nothing is stored).\nExamples:\n"
                 "  nimbara db client save client.json\n  nimbara db client save - < client.json")
        ->add_option("CLIENT", o->file, "The client file (JSON); - reads standard input")
        ->required();
    with_json(add("show", "Write a client with its contracts as JSON (a client file)", show),
              "The client is JSON already; a refusal is then JSON on standard output too")
        ->footer("Exit status: 0 written, 2 no such client.\nExample:\n  nimbara db client show 456 > client.json")
        ->add_option("COD", o->cod, "The client number")
        ->required();
    with_json(add("list", "Print every client as TSV with a header line", list),
              "Write {\"status\", \"clients\": [...]} as JSON")
        ->footer("Exit status: 0 listed, 2 a database that cannot be read.\nExamples:\n  nimbara db client list\n"
                 "  nimbara db client list --json");
    with_json(add("delete", "Delete a client with its contracts and Guias; print what went", remove),
              "Write what was deleted as one JSON document")
        ->footer("Exit status: 0 deleted, 2 no such client or a database that cannot be written (nothing is "
                 "deleted).\nExample:\n  nimbara db client delete 456")
        ->add_option("COD", o->cod, "The client number")
        ->required();
}

}  // namespace nimbara::cli
