// nimbara db refs NAME [--active]: one reference list as tab-separated rows with a header line.
#include <iostream>
#include <map>
#include <memory>

#include "commands.hpp"
#include "option_checks.hpp"
#include "db_command.hpp"
#include "delimited.hpp"
#include "json_output.hpp"
#include "nimbara/cls_Ref.hpp"

namespace nimbara::cli {
namespace {

struct RefsOptions {
    std::string conn;
    std::string name;
    bool active = false;
    bool json = false;
};

using Maker = std::unique_ptr<RefList> (*)(std::shared_ptr<Database>);

template <class T>
std::unique_ptr<RefList> make(std::shared_ptr<Database> db)
{
    return std::make_unique<T>(std::move(db));
}

const std::map<std::string, Maker>& lists()
{
    static const std::map<std::string, Maker> m = {
        {"ambito", make<cls_Ref_ADistribuicao>},   {"conteudo", make<cls_Ref_Conteudos>},
        {"desconto", make<cls_Ref_Descontos>},     {"sampling", make<cls_Ref_ESampling>},
        {"formato", make<cls_Ref_Formato>},        {"pretratamento", make<cls_Ref_PreTratamento>},
        {"produto", make<cls_Ref_Produto>},        {"refcliente", make<cls_Ref_RefCliente>},
        {"servico", make<cls_Ref_SEspeciais>},     {"velocidade", make<cls_Ref_Velocidade>},
        {"zona", make<cls_Ref_ZTaxacao>},
    };
    return m;
}

// A text cell must not break the table: tabs and line breaks become blanks.
std::string cell(const FieldValue& v)
{
    std::string t = v.text();
    for (char& c : t)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    return t;
}

int refs(const RefsOptions& o)
{
    const auto list = lists().at(o.name)(open_command_database(o.conn));
    Recordset rs;
    if (o.active)
        list->SelectAllActive(rs);
    else
        list->SelectAll(rs);
    // The columns as the schema spells them, whatever case the store reports them in.
    std::vector<std::string> columns = {"Codigo", "Designacao", "Activo", "Observacoes"};
    if (o.name == "refcliente") columns.resize(2);
    if (o.json) {
        auto rows = nlohmann::ordered_json::array();
        for (; !rs.IsEOF(); rs.MoveNext()) {
            nlohmann::ordered_json row;
            for (const auto& c : columns) row[c] = json_value(rs[c]);
            rows.push_back(std::move(row));
        }
        write_json(std::cout, nlohmann::ordered_json{{"list", o.name}, {"status", 0}, {"rows", rows}});
        return 0;
    }
    for (std::size_t c = 0; c < columns.size(); ++c) std::cout << (c ? "\t" : "") << columns[c];
    std::cout << '\n';
    for (; !rs.IsEOF(); rs.MoveNext()) {
        for (std::size_t c = 0; c < columns.size(); ++c) std::cout << (c ? "\t" : "") << cell(rs[columns[c]]);
        std::cout << '\n';
    }
    return 0;
}

}  // namespace

void register_db_refs(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("refs", "Print a reference list as tab-separated rows with a header line");
    auto o = std::make_shared<RefsOptions>();
    std::vector<std::string> names;
    for (const auto& [name, maker] : lists()) names.push_back(name);
    cmd->add_option("NAME", o->name, "The list")->required()->check(one_of(names));
    cmd->add_flag("--active", o->active, "Only the active rows (the client references have no such mark: all rows)");
    cmd->add_flag("--json", o->json, "Write the list as one JSON document: {\"list\", \"status\", \"rows\": [...]}");
    add_db_option(*cmd, o->conn);
    cmd->footer("Exit status: 0 listed, 2 an unknown list or a database that cannot be read.\nExamples:\n"
                "  nimbara db refs zona --active\n  nimbara db refs servico --json --db shop.db");
    cmd->callback([o, &status] {
        status = run_db_command("refs", o->json, std::cout, std::cerr, [&] { return refs(*o); });
    });
}

}  // namespace nimbara::cli
