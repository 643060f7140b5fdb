#include "printing/printable.hpp"

#include <exception>
#include <optional>
#include <span>

#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/run_time_errors.hpp"
#include "foundation/text.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "printing/barcode_payload.hpp"
#include "printing/database_source.hpp"
#include "printing/page.hpp"
#include "printing/page_plan.hpp"

namespace nimbara::printing {
namespace {

// A place of the Guia, and its field without the row or line, which names the cause.
struct Where {
    std::string place;
    std::string field;
};

class Collector {
public:
    std::vector<PrintProblem> problems;

    // Runs a conversion the printing will run, and notes its failure at the place.
    template <class Conversion>
    void converts(const Where& at, std::string_view value, std::string_view kind, Conversion&& conversion)
    {
        try {
            conversion();
        } catch (const std::exception& e) {
            add(at, "\"" + std::string(value) + "\" is not " + std::string(kind) + " (" + e.what() + ")",
                "is not " + std::string(kind));
        }
    }

    void fits(const Where& at, std::string_view value, int width)
    {
        const auto length = chars::length(value);
        if (length > static_cast<std::size_t>(width))
            add(at,
                "\"" + std::string(value) + "\" has " + std::to_string(length) + " characters; the barcode carries " +
                    std::to_string(width),
                "longer than the " + std::to_string(width) + " characters the barcode carries");
    }

    void add(const Where& at, std::string what, const std::string& cause)
    {
        problems.push_back({at.place, std::move(what), at.field + ": " + cause});
    }
};

// A header field as each edition names it: the Guia file's key, or the stored column.
struct HeadName {
    cab::Field field;
    const char* key;
    const char* column;
};

constexpr HeadName kHeadNames[] = {
    {cab::N_Req, "cb_N_Req", "Tbl_Cab.N_Req"},
    {cab::CodTerceiro, "cb_CodTerceiro", "Tbl_Cab.CodigoTerceiro"},
    {cab::CodCliente, "cb_CodCliente", "Tbl_Cab.Cod_Cliente"},
    {cab::CodContrato, "cb_CodContrato", "Tbl_Cab.Cod_Contrato"},
    {cab::JppCredenciado, "cb_JppCredenciado", "Tbl_Cab.Credenciado"},
    {cab::Pagamento, "cb_Pagamento", "Tbl_Cab.Pagamento"},
    {cab::NCredencial, "cb_NCredencial", "Tbl_Cab.N_Credencial"},
    {cab::Drqjul, "cb_Drqjul", "Tbl_Cab.D_Req"},
    {cab::IDReqAnual, "cb_IDReqAnual", "Tbl_Cab.Id_Req_Anual"},
    {cab::NCompromisso, "cb_NCompromisso", "Tbl_Cab.nCompromisso"},
    {cab::TipoAcesso, "cb_TipoAcesso", "Tbl_Cliente.IAcessoRede"},
};

// The database edition's line fields: the columns of Query_ParteVariavel.
struct LineName {
    guia::Field field;
    const char* column;
};

constexpr LineName kLineNames[] = {
    {guia::A_Zona_Taxacao, "A_Zona_Taxacao"}, {guia::B_Produto, "B_Produto"},
    {guia::Escalao, "C_Escalao"},             {guia::D_Quantidade, "D_Quantidade"},
    {guia::E_Velocidade, "E_Velocidade"},     {guia::Formato, "F_Formato"},
    {guia::PreTratamento, "G_Pre_Tratamento"}, {guia::Desconto, "H_Descontos"},
    {guia::Entrega_Sampling, "K_Entrega_Sampling"}, {guia::TaxEsp_Semana, "L_TaxEsp_Semana"},
    {guia::TaxEsp_Quantidade, "M_TaxEsp_Quantidade"}, {guia::CodAmbitoDist, "N_Ambito_Distrib"},
    {guia::N_Linha, "N_Linha"},
};

constexpr const char* kSettingKeys[param::kFields] = {
    "VCod2DFonteSize", "vCod2DRatio",      "vCod2DNColunas", "vCod2DNLinhas",    "vCod2DErroLevel",      "vCod2DPDFMode",
    "vCod2DTruncated", "vCod2DApplyTilde", "vGuiaNVias",     "vGuiaMargensTopo", "vGuiaMargensEsquerda", "vCodTerceiro"};
constexpr const char* kSettingColumns[param::kFields] = {
    "Cod2DFonteSize", "Cod2DRatio",      "Cod2DNColunas", "Cod2DNLinhas",    "Cod2DErroLevel",      "Cod2DPDFMode",
    "Cod2DTruncated", "Cod2DApplyTilde", "GuiaNVias",     "GuiaMargensTopo", "GuiaMargensEsquerda", "CodTerceiro"};

// How an edition names the places of a Guia.
class Places {
public:
    Places(Edition edition, const GuiaSource& source) : edition_(edition), source_(source) {}

    bool array() const { return edition_ == Edition::Array; }

    Where head(cab::Field field) const
    {
        for (const auto& n : kHeadNames) {
            const std::string name = array() ? std::string("/cabecalho/") + n.key : std::string(n.column);
            if (n.field == field) return {name, name};
        }
        return {"/cabecalho", "/cabecalho"};
    }

    Where line(int index, guia::Field field, std::string_view key) const
    {
        if (array()) return {"/produtos/" + std::to_string(index) + "/" + std::string(key), "/produtos/*/" + std::string(key)};
        for (const auto& n : kLineNames)
            if (n.field == field) return {line_name(index) + ": " + n.column, std::string("Tbl_Linha.") + n.column};
        return {line_name(index), "Tbl_Linha"};
    }

    Where service(int index, std::string_view code, std::string_view column) const
    {
        if (array()) return {line_name(index) + ", service " + std::string(code), "/servicos/*/CodServEsp"};
        return {line_name(index) + ", service " + std::string(code) + ": " + std::string(column),
                "Tbl_Linha_ServicoEspecial." + std::string(column)};
    }

    std::string line_name(int index) const
    {
        if (array()) return "/produtos/" + std::to_string(index);
        const std::string number(source_.line(index).text(guia::N_Linha, 0));
        return "line " + (number.empty() ? "#" + std::to_string(index + 1) : number);
    }

    Where setting(int field) const
    {
        const std::string name =
            array() ? std::string("/parametros/") + kSettingKeys[field] : std::string("Tbl_Parametro.") + kSettingColumns[field];
        return {name, name};
    }

private:
    Edition edition_;
    const GuiaSource& source_;
};

void check_settings(Collector& c, const Places& at, const std::optional<cls_ParametroA>& settings)
{
    if (!settings) {
        c.add({"Tbl_Parametro", "Tbl_Parametro"}, "has no row: save the print settings first (nimbara db params set ...)",
              "no row");
        return;
    }
    const std::array<const std::string*, param::kFields> values = {
        &settings->VCod2DFonteSize, &settings->vCod2DRatio,      &settings->vCod2DNColunas, &settings->vCod2DNLinhas,
        &settings->vCod2DErroLevel, &settings->vCod2DPDFMode,    &settings->vCod2DTruncated, &settings->vCod2DApplyTilde,
        &settings->vGuiaNVias,      &settings->vGuiaMargensTopo, &settings->vGuiaMargensEsquerda, &settings->vCodTerceiro};
    for (int field = 0; field < param::kFields; ++field) {
        const auto problem = print_setting_problem(static_cast<param::Field>(field), *values[field]);
        if (problem) c.add(at.setting(field), "\"" + *values[field] + "\" " + *problem, *problem);
    }
}

void check_header(Collector& c, const Places& at, const cab::Table& cab, Edition edition)
{
    const auto header = [&](cab::Field f) { return std::string(cab.text(f, 0)); };
    if (edition == Edition::Array) {
        c.converts(at.head(cab::N_Req), header(cab::N_Req), "a whole number of 32 bits",
                   [&] { text::require_cell_int32(cab.at(cab::N_Req, 0)); });
        c.converts(at.head(cab::TipoAcesso), header(cab::TipoAcesso), "a number",
                   [&] { text::require_cell_number(cab.at(cab::TipoAcesso, 0)); });
    }
    // The header and footer read these as they stand: the empty text is no number there.
    c.converts(at.head(cab::Pagamento), header(cab::Pagamento), "a number",
               [&] { text::require_number(header(cab::Pagamento)); });
    c.converts(at.head(cab::CodContrato), header(cab::CodContrato), "a number",
               [&] { text::require_number(header(cab::CodContrato)); });
    if (edition == Edition::Array) {
        const std::string jpp = text::to_upper(text::trim(header(cab::JppCredenciado)));
        if (jpp != "TRUE" && jpp != "FALSE")
            c.converts(at.head(cab::JppCredenciado), header(cab::JppCredenciado), "True, False or a number",
                       [&] { text::require_number(header(cab::JppCredenciado)); });
        for (const auto& f : kHeadFields) c.fits(at.head(f.field), header(f.field), f.width);
    } else {
        for (const auto& f : kHeadFieldsDb) {
            if (f.field != cab::N_Req) {
                c.fits(at.head(f.field), header(f.field), f.width);
            } else if (chars::length(header(cab::N_Req)) > static_cast<std::size_t>(f.width)) {
                c.add(at.head(cab::N_Req),
                      "Guia " + header(cab::N_Req) +
                          " is above 9999: the symbol of the database edition holds the request number in four "
                          "digits; print it with --edition array, whose symbol carries the yearly number",
                      "above 9999 (print with --edition array)");
            }
        }
    }
    // The head's fields stand at fixed places after the Julian date, which goes in as it stands.
    if (chars::length(header(cab::Drqjul)) != 4)
        c.add(at.head(cab::Drqjul), "\"" + header(cab::Drqjul) + "\" is not 4 characters, as the barcode carries it",
              "not 4 characters");
}

void check_line(Collector& c, const Places& at, const guia::Table& line, int index, Edition edition)
{
    const auto text = [&](guia::Field f) { return std::string(line.text(f, 0)); };
    c.converts(at.line(index, guia::N_Linha, "N_Linha"), text(guia::N_Linha), "a whole number of 32 bits",
               [&] { text::require_cell_int32(line.at(guia::N_Linha, 0)); });
    const std::string quantity = text(guia::D_Quantidade);
    if (!quantity.empty())
        c.converts(at.line(index, guia::D_Quantidade, "D_Quantidade"), quantity, "a whole number of 32 bits",
                   [&] { text::require_int32(quantity); });
    // The row's right-hand columns depend on it: "0" when there is none.
    if (edition == Edition::Array) {
        const std::string weekly = text(guia::TaxEsp_Quantidade);
        c.converts(at.line(index, guia::TaxEsp_Quantidade, "TaxEsp_Quantidade"), weekly, "a whole number of 16 bits",
                   [&] { text::require_int16(weekly); });
    }
    const auto& fields = edition == Edition::Array ? std::span<const ItemField>(kItemFields)
                                                   : std::span<const ItemField>(kItemFieldsDb);
    for (const auto& f : fields) {
        const std::string value = text(f.field);
        const Where place = at.line(index, f.field, f.name);
        if (!f.digit) {
            c.fits(place, value, f.width);
            continue;
        }
        c.converts(place, value, "a one-digit number", [&] { item_digit(line.at(f.field, 0)); });
    }
}

// `at` names a column of the service.
template <class At>
void check_service(Collector& c, const At& at, const serv::Table& services, int row)
{
    c.fits(at("CodServEsp"), services.text(serv::CodServEsp, row), kServiceCodeWidth);
    c.fits(at("Valor"), services.text(serv::Valor, row), kServiceValueWidth);
    c.converts(at("Valor"), services.text(serv::Valor, row), "a whole number of 32 bits",
               [&] { text::require_cell_int32(services.at(serv::Valor, row)); });
    c.converts(at("CodServEsp"), services.text(serv::CodServEsp, row), "a whole number of 32 bits",
               [&] { text::require_cell_int32(services.at(serv::CodServEsp, row)); });
    c.converts(at("N_Linha"), services.text(serv::N_Linha, row), "a whole number of 32 bits",
               [&] { text::require_cell_int32(services.at(serv::N_Linha, row)); });
}

// Lays the pages out as printing will, and names the line and service where the walk stops.
void check_walk(Collector& c, const Places& at, const GuiaSource& source, Edition edition)
{
    const PagePlan plan = plan_pages(source, edition);
    if (!plan.failure) return;
    if (plan.failure_line && plan.failure_service && *plan.failure == description(RunTimeError::SubscriptOutOfRange)) {
        const int line = *plan.failure_line;
        const serv::Table services = source.services(line);
        const std::string code(services.text(serv::CodServEsp, *plan.failure_service));
        // The service walk's cells run out: the count of services with a value runs on across lines.
        c.add(at.service(line, code, "CodigoServicoEspecial"),
              "the form's service cells are full before this service: services with a value are counted on "
              "from the lines before it until three services without a value fill a row, and ten fit",
              "more than ten services counted into the form's service cells");
        return;
    }
    const std::string place = plan.failure_line ? at.line_name(*plan.failure_line) : at.array() ? "/produtos" : "Tbl_Linha";
    c.add({place, at.array() ? "/produtos" : "Tbl_Linha"}, "the pages cannot be laid out: " + *plan.failure,
          "pages not laid out (" + *plan.failure + ")");
}

// The checks of both editions; `services` names the services by the array's rows when it is given.
std::vector<PrintProblem> check(const GuiaSource& source, Edition edition, const serv::Table* all_services)
{
    Collector c;
    const Places at(edition, source);
    const cab::Table& cab = source.header();
    if (cab.empty()) {
        const std::string place = at.array() ? "/cabecalho" : "Tbl_Cab";
        c.add({place, place}, "no header to print (the Guia, its client or its contract is missing)", "no header");
        return c.problems;
    }
    check_header(c, at, cab, edition);
    check_settings(c, at, source.parameters());

    for (int index = 0; index < source.line_count(); ++index) {
        check_line(c, at, source.line(index), index, edition);
        if (all_services) continue;
        serv::Table services;
        try {
            services = source.services(index);
        } catch (const std::exception&) {
            continue;  // the line's number is named above
        }
        for (int row = 0; row < services.row_count(); ++row) {
            const std::string code(services.text(serv::CodServEsp, row));
            check_service(c, [&](std::string_view column) { return at.service(index, code, column); }, services, row);
        }
    }
    if (all_services)
        for (int row = 0; row < all_services->row_count(); ++row)
            check_service(
                c,
                [&](std::string_view column) {
                    return Where{"/servicos/" + std::to_string(row) + "/" + std::string(column),
                                 "/servicos/*/" + std::string(column)};
                },
                *all_services, row);

    // What the fields alone do not show (a page walk that cannot be laid out) is found by laying it out.
    if (c.problems.empty()) check_walk(c, at, source, edition);
    return c.problems;
}

}  // namespace

std::vector<PrintProblem> printing_problems(const GuiaSource& source, Edition edition)
{
    return check(source, edition, nullptr);
}

std::vector<PrintProblem> printing_problems(const GuiaArrays& arrays)
{
    return check(ArraySource(arrays), Edition::Array, &arrays.arrServEsp);
}

}  // namespace nimbara::printing
