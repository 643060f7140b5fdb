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

// Reads the keys of one object into the properties they name; a key of no property, or a value of
// the wrong type, is refused with its place.
class ObjectReader {
public:
    ObjectReader(const ordered_json& object, std::string place) : object_(object), place_(std::move(place))
    {
        if (!object.is_object()) throw CommandError(place_ + ": expected an object");
    }
    // A number given where text stands keeps its digits as written, however large.
    void text(const char* key, std::string& into)
    {
        if (auto* v = take(key)) {
            if (v->is_string()) into = v->get<std::string>();
            else if (v->is_number_unsigned()) into = std::to_string(v->get<std::uint64_t>());
            else if (v->is_number_integer()) into = std::to_string(v->get<std::int64_t>());
            else throw CommandError(place_ + "/" + key + ": expected text");
        }
    }
    // Read without a wrap: a number beyond 64 bits with a sign is never taken for a small one.
    template <class T>
    void number(const char* key, T& into)
    {
        if (auto* v = take(key)) {
            const bool in_range =
                v->is_number_unsigned()
                    ? v->get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<T>::max())
                    : v->is_number_integer() && v->get<std::int64_t>() >= std::numeric_limits<T>::min() &&
                          v->get<std::int64_t>() <= std::numeric_limits<T>::max();
            if (!in_range)
                throw CommandError(place_ + "/" + key + ": expected a whole number from " +
                                   std::to_string(std::numeric_limits<T>::min()) + " to " +
                                   std::to_string(std::numeric_limits<T>::max()) + ", found " + v->dump());
            into = static_cast<T>(v->get<std::int64_t>());
        }
    }
    void yes_no(const char* key, bool& into)
    {
        if (auto* v = take(key)) {
            if (!v->is_boolean()) throw CommandError(place_ + "/" + key + ": expected true or false");
            into = v->get<bool>();
        }
    }
    const ordered_json* take(const char* key)
    {
        if (!object_.contains(key)) return nullptr;
        ++taken_;
        return &object_[key];
    }
    // Every key must have been taken by now.
    void done() const
    {
        if (taken_ == object_.size()) return;
        for (const auto& [key, value] : object_.items())
            if (!known(key)) throw CommandError(place_ + ": unknown key \"" + key + "\"");
    }
    void know(std::initializer_list<const char*> keys) { known_.assign(keys.begin(), keys.end()); }

private:
    bool known(const std::string& key) const
    {
        for (const auto& k : known_)
            if (key == k) return true;
        return false;
    }
    const ordered_json& object_;
    std::string place_;
    std::size_t taken_ = 0;
    std::vector<std::string> known_;
};

// Client and contract numbers are whole numbers written in digits.
void require_whole(const std::string& text, const std::string& place)
{
    const bool digits = !text.empty() && text.size() <= 9 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits) throw CommandError(place + ": \"" + text + "\" is no whole number");
}

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
    ObjectReader r(root, source(o.file) + ": ");
    r.know({"vCod_Cliente", "vNome", "iTipoCliente", "vMorada", "vLocalidade", "vCodPostal", "vDesigPostal", "vNIF",
            "vObservacoes", "iAcessoRede", "contratos"});
    std::string cod;
    r.text("vCod_Cliente", cod);
    require_whole(cod, source(o.file) + ": /vCod_Cliente");
    // A key the file leaves out keeps what the stored client has.
    ClientFields c = load_client(db, static_cast<std::int32_t>(std::stol(cod))).value_or(ClientFields{});
    c.vCod_Cliente = cod;
    c.contratos.clear();
    r.text("vNome", c.vNome);
    r.number("iTipoCliente", c.iTipoCliente);
    r.text("vMorada", c.vMorada);
    r.text("vLocalidade", c.vLocalidade);
    r.text("vCodPostal", c.vCodPostal);
    r.text("vDesigPostal", c.vDesigPostal);
    r.text("vNIF", c.vNIF);
    r.text("vObservacoes", c.vObservacoes);
    r.number("iAcessoRede", c.iAcessoRede);
    if (const auto* list = r.take("contratos")) {
        if (!list->is_array()) throw CommandError(source(o.file) + ": /contratos: expected a list");
        for (std::size_t i = 0; i < list->size(); ++i) {
            const std::string place = source(o.file) + ": /contratos/" + std::to_string(i);
            ObjectReader cr((*list)[i], place);
            cr.know({"vCodContrato", "vDesignacao", "vJppCredenciado", "vCodCredencial", "vValidacao", "vDescricao",
                     "bActivo"});
            if (!(*list)[i].contains("vCodContrato"))
                throw CommandError(place + ": vCodContrato is missing: a contract needs its code");
            ContractFields& k = c.contratos.emplace_back();
            cr.text("vCodContrato", k.vCodContrato);
            require_whole(k.vCodContrato, place + "/vCodContrato");
            cr.text("vDesignacao", k.vDesignacao);
            cr.yes_no("vJppCredenciado", k.vJppCredenciado);
            cr.text("vCodCredencial", k.vCodCredencial);
            cr.text("vValidacao", k.vValidacao);
            cr.text("vDescricao", k.vDescricao);
            cr.yes_no("bActivo", k.bActivo);
            cr.done();
        }
    }
    r.done();

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

cls_Cliente& find(cls_Cliente& c, std::int32_t cod)
{
    std::string number = std::to_string(cod);
    if (!c.Busca_Cliente(number)) throw CommandError("no client " + number);
    c.SelectMeByCod_Cliente(cod);
    return c;
}

int show(const ClientOptions& o)
{
    const auto c = load_client(open_command_database(o.conn), o.cod);
    if (!c) throw CommandError("no client " + std::to_string(o.cod));
    ordered_json out = {{"vCod_Cliente", c->vCod_Cliente}, {"vNome", c->vNome}, {"iTipoCliente", c->iTipoCliente},
                        {"vMorada", c->vMorada}, {"vLocalidade", c->vLocalidade}, {"vCodPostal", c->vCodPostal},
                        {"vDesigPostal", c->vDesigPostal}, {"vNIF", c->vNIF}, {"vObservacoes", c->vObservacoes},
                        {"iAcessoRede", c->iAcessoRede}};
    out["contratos"] = ordered_json::array();
    for (const auto& k : c->contratos)
        out["contratos"].push_back({{"vCodContrato", k.vCodContrato}, {"vDesignacao", k.vDesignacao},
                                    {"vJppCredenciado", k.vJppCredenciado}, {"vCodCredencial", k.vCodCredencial},
                                    {"vValidacao", k.vValidacao}, {"vDescricao", k.vDescricao},
                                    {"bActivo", k.bActivo}});
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
        auto rows = ordered_json::array();
        for (; !rs.IsEOF(); rs.MoveNext()) {
            ordered_json row;
            for (const char* column : columns) row[column] = json_value(rs[column]);
            rows.push_back(std::move(row));
        }
        write_json(std::cout, ordered_json{{"status", 0}, {"clients", rows}});
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

// Says what went: the rows are counted in the delete's own transaction, so they are what it removed.
int remove(const ClientOptions& o)
{
    const auto db = open_command_database(o.conn);
    Transaction t(*db);
    cls_Cliente c(db);
    find(c, o.cod);
    const FieldValue id = c.iId_Cliente;
    const auto count = [&](const std::string& sql) { return db->open(sql, {id})[std::size_t{0}].integer(); };
    constexpr const char* kOfClient = " WHERE N_Req IN (SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ?)";
    const std::int64_t contracts = count("SELECT COUNT(*) FROM Tbl_Contrato WHERE Id_Cliente = ?");
    const std::int64_t lines = count(std::string("SELECT COUNT(*) FROM Tbl_Linha") + kOfClient);
    const std::int64_t services = count(std::string("SELECT COUNT(*) FROM Tbl_Linha_ServicoEspecial") + kOfClient);
    std::vector<std::int64_t> guias;
    for (Recordset rs = db->open("SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ? ORDER BY N_Req", {id}); !rs.IsEOF();
         rs.MoveNext())
        guias.push_back(rs[std::size_t{0}].integer());
    c.DeleteRegs(std::to_string(c.iId_Cliente));
    if (!c.LastError().empty()) throw CommandError("nothing was deleted: " + c.LastError());
    t.commit();
    if (o.json) {
        write_json(std::cout, nlohmann::ordered_json{{"command", "nimbara db client delete"},
                               {"status", 0},
                               {"deleted", {{"cod_cliente", c.vCod_Cliente}, {"nome", c.vNome},
                                            {"contracts", contracts}, {"guias", guias.size()}, {"n_req", guias},
                                            {"lines", lines}, {"services", services}}}});
        return 0;
    }
    const auto counted = [](std::int64_t n, const char* one, const char* many) {
        return std::to_string(n) + " " + (n == 1 ? one : many);
    };
    std::cout << "deleted client " << c.vCod_Cliente << " \"" << c.vNome << "\" with "
              << counted(contracts, "contract", "contracts") << ", "
              << counted(static_cast<std::int64_t>(guias.size()), "Guia", "Guias") << ", "
              << counted(lines, "line", "lines") << " and " << counted(services, "service", "services") << '\n';
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
