#include "import/mappings.hpp"

#include <utility>

namespace nimbara::import {
namespace {

using K = Kind;

Column field(const char* name, Kind kind, int f) { return {name, kind, From::Field, f}; }
Column constant(const char* name, Kind kind, const char* value) { return {name, kind, From::Constant, -1, -1, value}; }
Column from(const char* name, Kind kind, From how, int f, int f2 = -1) { return {name, kind, how, f, f2}; }

enum class Client { NoAcesso, AcessoZero, AcessoCopied, AcessoCopiedNoApostrophe };

std::vector<Column> cliente(Client form)
{
    std::vector<Column> c = {field("Id_Cliente", K::Long, 0), field("Cod_Cliente", K::Long, 1),
                             form == Client::AcessoCopiedNoApostrophe ? from("Nome", K::Text, From::NoApostrophe, 2)
                                                                      : field("Nome", K::Text, 2),
                             field("iTipoCliente", K::Short, 3), field("Morada", K::Text, 4),
                             field("Localidade", K::Text, 5), field("Cod_Postal", K::Text, 6),
                             field("Desig_Postal", K::Text, 7), field("NContribuinte", K::Text, 8),
                             field("Observacoes", K::Text, 9)};
    if (form == Client::AcessoZero) c.push_back(constant("iAcessoRede", K::Short, "0"));
    if (form == Client::AcessoCopied || form == Client::AcessoCopiedNoApostrophe)
        c.push_back(field("iAcessoRede", K::Short, 10));
    return c;
}

std::vector<Column> contrato(bool by_client_number)
{
    return {by_client_number ? from("Id_Cliente", K::Long, From::ClientOf, 0) : field("Id_Cliente", K::Long, 0),
            field("Cod_Contrato", K::Long, 1),   field("Designacao", K::Text, 2),
            field("JPP_Credenciado", K::YesNo, 3), field("Cod_Credencial", K::Text, 4),
            field("Validacao", K::Text, 5),       field("Descricao", K::Text, 6),
            field("bActivo", K::YesNo, 7),        field("dDataActividade", K::Date, 8)};
}

// The header's fields from `first`, the position of CodigoTerceiro, on: they kept their order in every layout.
std::vector<Column> cab_tail(int first)
{
    return {field("CodigoTerceiro", K::Text, first),    field("N_Pag", K::Long, first + 1),
            field("D_Req", K::Date, first + 2),          field("Pagamento", K::Short, first + 3),
            field("Credenciado", K::YesNo, first + 4),   field("N_Credencial", K::Text, first + 5),
            field("Recolhido", K::YesNo, first + 6),     field("Situacao", K::Text, first + 7),
            field("Ficheiro", K::Text, first + 8),       field("Observacoes", K::Text, first + 9)};
}

std::vector<Column> join(std::vector<Column> head, const std::vector<Column>& tail)
{
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

// Layout with Id_Req_Anual stored third (0506 on).
std::vector<Column> cab_stored_year_number()
{
    return join(join({field("N_Req", K::Long, 0), field("Id_Cliente", K::Long, 1), field("Cod_Cliente", K::Long, 3),
                      field("Cod_Contrato", K::Long, 4)},
                     cab_tail(5)),
                {field("N_Req2", K::Long, 15), field("Id_Req_Anual", K::Long, 2)});
}

// Layout 0502: no Id_Req_Anual in the source; 0504 numbers it from the date.
std::vector<Column> cab_0502(bool numbered)
{
    auto c = join(join({field("N_Req", K::Long, 0), field("Id_Cliente", K::Long, 1), field("Cod_Cliente", K::Long, 2),
                        field("Cod_Contrato", K::Long, 3)},
                       cab_tail(4)),
                  {field("N_Req2", K::Long, 14)});
    if (numbered) c.push_back(from("Id_Req_Anual", K::Long, From::YearCount, 6));
    return c;
}

// Layout 0501: no Id_Cliente; it is looked up, and N_Req2 counted on the target.
std::vector<Column> cab_0501()
{
    return join(join({field("N_Req", K::Long, 0), from("Id_Cliente", K::Long, From::ClientOf, 1),
                      field("Cod_Cliente", K::Long, 1), field("Cod_Contrato", K::Long, 2)},
                     cab_tail(3)),
                {from("N_Req2", K::Long, From::NextNumber, 1, 2)});
}

enum class Line { Plain, DivisionZero, DivisionCopied, WithContent };

std::vector<Column> linha(Line form)
{
    std::vector<Column> c = {
        field("N_Req", K::Long, 0),          field("N_Linha", K::Short, 1),
        field("A_Zona_Taxacao", K::Text, 2), field("B_Produto", K::Text, 3),
        field("C_Escalao", K::Long, 4),      field("D_Quantidade", K::Long, 5),
        field("E_Velocidade", K::Text, 6),   field("F_Formato", K::Text, 7),
        from("G_Pre_Tratamento", K::Short, From::OneOrZero, 8), field("H_Descontos", K::Text, 9),
        field("I_Servicos_Especiais", K::BareText, 10), field("KM_Vexora", K::BareText, 11),
        field("K_Entrega_Sampling", K::Text, 12),   field("L_TaxEsp_Semana", K::Short, 13),
        field("M_TaxEsp_Quantidade", K::Short, 14), field("N_Ambito_Distrib", K::Text, 15),
        from("LinhaContinuacao", K::Text, From::OneOrZero, 16)};
    if (form == Line::DivisionZero) c.push_back(constant("O_Divisao_Remetente", K::Text, "0"));
    if (form != Line::Plain && form != Line::DivisionZero) c.push_back(field("O_Divisao_Remetente", K::Text, 18));
    if (form != Line::Plain) c.push_back(field("CodigoCampanha", K::Text, 17));
    if (form == Line::WithContent) {
        c.push_back(constant("Q_Conteudo", K::Text, ""));
        c.push_back(constant("P_RefCliente", K::Text, ""));
    }
    return c;
}

std::vector<Column> servico()
{
    return {field("N_Req", K::Long, 0), field("N_Linha", K::Short, 1), field("CodigoServicoEspecial", K::Text, 2),
            field("Valor", K::Text, 3)};
}

struct Forms {
    std::vector<Column> cliente, contrato, cab;
    Line line;
    int cab_sorted_by = -1;
};

std::vector<TableCopy> tables(Forms f, int last_progress = 100, int cliente_sorted_by = -1)
{
    return {{"TBL_CLIENTE", "Tbl_Cliente", 1, cliente_sorted_by, 20, std::move(f.cliente)},
            {"TBL_CONTRATO", "Tbl_Contrato", 2, -1, 30, std::move(f.contrato)},
            {"TBL_CAB", "Tbl_Cab", 1, f.cab_sorted_by, 40, std::move(f.cab)},
            {"TBL_LINHA", "Tbl_Linha", 2, -1, 70, linha(f.line)},
            {"TBL_LINHA_SERVICOESPECIAL", "Tbl_Linha_ServicoEspecial", 3, -1, last_progress, servico()}};
}

// 0501's clients have no Id_Cliente: they are numbered by two in client-number order, with a
// type of 0 and a tax number of "0" where none was kept.
std::vector<Column> cliente_0501()
{
    return {from("Id_Cliente", K::Long, From::EveryOther, 0), field("Cod_Cliente", K::Long, 0),
            field("Nome", K::Text, 1), constant("iTipoCliente", K::Short, "0"), field("Morada", K::Text, 2),
            field("Localidade", K::Text, 3), field("Cod_Postal", K::Text, 4), field("Desig_Postal", K::Text, 5),
            from("NContribuinte", K::Text, From::ZeroWhenEmpty, 6), field("Observacoes", K::Text, 7)};
}

std::vector<Procedure> make_procedures()
{
    // In 0506 to 0510 the old numbering read the page count where the date had been and threw its
    // result away, since Id_Req_Anual is stored in the source: only the stored value reaches the target.
    const auto kept_0506 = [](const char* name, bool withdraws) {
        return Procedure{name, withdraws,
                         tables({cliente(Client::NoAcesso), contrato(false), cab_stored_year_number(), Line::Plain})};
    };
    return {
        {"DoImportDados0501", false, tables({cliente_0501(), contrato(true), cab_0501(), Line::Plain, 0}, 80, 0)},
        {"DoImportDados0502", false, tables({cliente(Client::NoAcesso), contrato(false), cab_0502(false), Line::Plain})},
        {"DoImportDados0504", false,
         tables({cliente(Client::NoAcesso), contrato(false), cab_0502(true), Line::Plain, 0})},
        kept_0506("DoImportDados0506", false),
        kept_0506("DoImportDados0507", false),
        kept_0506("DoImportDados0508", true),
        kept_0506("DoImportDados0509", true),
        kept_0506("DoImportDados0510", true),
        {"DoImportDadosTo050313", false,
         tables({cliente(Client::AcessoZero), contrato(false), cab_stored_year_number(), Line::DivisionZero})},
        {"DoImportDadosTo050313B", false,
         tables({cliente(Client::AcessoCopied), contrato(false), cab_stored_year_number(), Line::DivisionCopied})},
        {"DoImportDadosTo050313C", false,
         tables({cliente(Client::AcessoCopied), contrato(false), cab_stored_year_number(), Line::WithContent})},
        {"DoImportDadosTo050314", false,
         tables({cliente(Client::AcessoCopiedNoApostrophe), contrato(false), cab_stored_year_number(),
                 Line::WithContent})},
    };
}

}  // namespace

const std::vector<Procedure>& procedures()
{
    static const std::vector<Procedure> all = make_procedures();
    return all;
}

const Procedure* find_procedure(std::string_view name)
{
    for (const auto& p : procedures())
        if (name == p.name) return &p;
    return nullptr;
}

const Procedure* procedure_for_version(std::string_view versao)
{
    static constexpr std::pair<std::string_view, std::string_view> kDispatch[] = {
        {"05083", "DoImportDadosTo050313"}, {"0509", "DoImportDadosTo050313"},  {"0510", "DoImportDadosTo050313"},
        {"0511", "DoImportDadosTo050313"},  {"0512", "DoImportDadosTo050313"},  {"0513", "DoImportDadosTo050313B"},
        {"0514", "DoImportDadosTo050314"},
    };
    for (const auto& [version, name] : kDispatch)
        if (versao == version) return find_procedure(name);
    return nullptr;
}

}  // namespace nimbara::import
