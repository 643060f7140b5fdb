// The walk of one copy over the Guia's lines into pages of twelve rows, with the rows their special
// services need, the page turns and each page's symbol, all decided without drawing.
#include "printing/page_plan.hpp"

#include <limits>
#include <stdexcept>

#include "foundation/required_numbers.hpp"
#include "foundation/run_time_errors.hpp"
#include "printing/barcode_payload.hpp"

namespace nimbara::printing {
namespace {

constexpr int kRowsPerPage = 12;
constexpr std::int32_t kFirstRowY = 42;  // 42.5 rounded half to even, as the row's y always was
constexpr std::int32_t kRowPitch = 6;

// A slot of the service rows; the old arrays had eleven, and a count past them stopped the copy.
std::string& slot(ServiceSlots& slots, std::int32_t index)
{
    if (index < 0 || index >= static_cast<std::int32_t>(slots.size())) raise(RunTimeError::SubscriptOutOfRange);
    return slots[static_cast<std::size_t>(index)];
}

bool follows_with_c25(std::string_view product)
{
    return product == "C03" || product == "C05" || product == "C50";
}

// What sets the editions' walks apart.
struct WalkRules {
    // A "C25" line after a "C03", "C05" or "C50" rides in the symbol as that line's service 25, and
    // "C25" lines have no item of their own.
    bool c25_rides_along;
    // Campaign remarks are gathered and the remarks printed again at the end of each page.
    bool remarks;
    // The symbol's line count includes the service rows.
    bool count_service_rows;
    std::string (*head)(const cab::Table&, std::int32_t pag, std::int32_t TotPaginas);
    std::string (*item)(const guia::Table&, int row, std::string_view services, std::int32_t count);
    std::string (*finish)(std::string& head, std::int32_t pag, std::int32_t line_count, std::string_view items);
};

constexpr WalkRules kArrayWalk{true, true, false, codigo_cabecalho, item_linha, finish_payload};
constexpr WalkRules kDatabaseWalk{false, false, true, codigo_cabecalho_db, item_linha_db, finish_payload_db};

// The walk's working state and its steps, which follow the order the page has always been drawn in.
class Planner {
public:
    Planner(const GuiaSource& source, const WalkRules& rules, std::int32_t TotPaginas)
        : source(source), rules(rules)
    {
        plan.TotPaginas = TotPaginas;
    }

    PagePlan run();

private:
    void add(Step step) { plan.pages.back().steps.push_back(std::move(step)); }
    void newSheet() { plan.pages.emplace_back(); }
    void pageTop() { add(step::PageTop{}); }
    void pageNumbers() { add(step::PageNumbers{pag}); }
    void printLine();
    void printServices();
    void serviceRow();
    // A finished page's counts and symbol lines, forgotten when the next page starts.
    void forgetPage();
    void turnPage(bool count_first);
    void finishSymbol()
    {
        const std::int32_t line_count = rules.count_service_rows ? rows() : nLinhas - nSemCodigo;
        add(step::Symbol{rules.finish(codigoCabecalho, pag, line_count, codigoLinhas)});
    }

    int rows() const { return nLinhas + nExtra; }
    bool page_full() const { return rows() == kRowsPerPage; }

    const GuiaSource& source;
    const WalkRules& rules;
    PagePlan plan;

    std::int32_t pag = 0;
    int lin = 0;
    std::int16_t nLinhas = 0;
    std::int32_t nExtra = 0;
    std::int16_t nSemCodigo = 0;
    std::int32_t yLinha = kFirstRowY;
    std::int32_t yServ = kFirstRowY;
    serv::Table servLinha;
    ServiceSlots cod{}, val{};
    std::int32_t nVal = 0, nCod = 0;
    std::int32_t codigoServ = 0, valorServ = 0;  // the code and value kept for the next service row
    bool jaImpresso = false;
    bool fim = false;
    int service_at = -1;  // the service of the line being walked, -1 between services
    std::string codigoCabecalho;
    std::string codigoLinhas;
    std::int32_t totalQuantidade = 0;
    std::string observacoes;
    // The service section of the current line's item, and how many services it counts.
    std::string Str_CodBarrasServEsp;
    std::int32_t Total_Se_CodBarras = 0;
};

void Planner::forgetPage()
{
    nSemCodigo = 0;
    nExtra = 0;
    nLinhas = 0;
    Total_Se_CodBarras = 0;
    codigoLinhas.clear();
    Str_CodBarrasServEsp.clear();
}

// A page turned in the middle of a line's services. Turns that count the page first write the
// next page's number into the finished page's symbol, as they always have.
void Planner::turnPage(bool count_first)
{
    if (count_first) ++pag;
    finishSymbol();
    if (!count_first) ++pag;
    forgetPage();
    newSheet();
    yLinha = kFirstRowY;
    pageTop();
    pageNumbers();
}

void Planner::serviceRow()
{
    add(step::ServiceRow{std::to_string(codigoServ), std::to_string(valorServ), yServ,
                         step::ServiceRow::Slots{val, cod, nVal, nCod}});
}

void Planner::printServices()
{
    const serv::Table& services = servLinha;
    const auto fresh_slots = [&] {
        cod = {};
        val = {};
    };

    if (services.empty()) {
        if (page_full()) turnPage(false);
        return;
    }
    for (int i = 0; i < services.row_count(); ++i) {
        service_at = i;
        const std::string code(services.text(serv::CodServEsp, i));
        const Cell& value_cell = services.at(serv::Valor, i);
        const std::string value(value_cell ? std::string_view(*value_cell) : std::string_view());
        const bool without_value = text::require_cell_number(value_cell) == 0;
        const auto keep = [&] {
            valorServ = text::require_cell_int32(value_cell);
            codigoServ = text::require_cell_int32(services.at(serv::CodServEsp, i));
        };

        if (without_value) {
            ++nVal;
            slot(cod, nVal) = code;
            slot(val, nVal) = value;
            keep();
            ++nCod;
            // Three services without a value fill a row.
            if (nVal == 3) {
                serviceRow();
                ++nExtra;
                yServ += kRowPitch;
                yLinha += kRowPitch;
                nCod = 0;
                fresh_slots();
                nVal = 0;
                if (page_full()) turnPage(true);
            }
        } else {
            // A service with a value after those without: they go out first, and a service of
            // another code takes a row of its own.
            if (nVal >= 1 && slot(val, nVal) == "0") {
                serviceRow();
                yServ += kRowPitch;
                if (slot(cod, 1) != code) {
                    add(step::ServiceRow{code, value, yServ, std::nullopt});
                    yServ += kRowPitch;
                    yLinha += kRowPitch;
                    ++nExtra;
                    jaImpresso = true;
                }
                nVal = 0;
                fresh_slots();
                if (page_full()) turnPage(true);
            }
            keep();
            ++nVal;
            ++nCod;
            slot(cod, nCod) = code;
            slot(val, nVal) = value;
            if (page_full()) turnPage(true);
        }

        const bool last = i == services.row_count() - 1;
        if (nVal > 0 && last) {
            if (!jaImpresso) {
                serviceRow();
                yServ += kRowPitch;
            }
            jaImpresso = false;
            if (page_full()) turnPage(false);
            nVal = 0;
            cod = {};
        }
    }
    service_at = -1;
}

void Planner::printLine()
{
    const int last = source.line_count() - 1;
    const guia::Table line = printed_line(source, lin);
    const auto f = [&](auto field) { return std::string(line.text(field, 0)); };
    const std::string product = f(guia::B_Produto);

    add(step::Line{lin, yLinha});
    const std::string campaign = rules.remarks ? f(guia::CodigoCampanha) : std::string();
    if (!campaign.empty()) observacoes += "Linha " + std::to_string(rows() + 1) + "- " + campaign + "; ";
    yLinha += kRowPitch;
    pageNumbers();

    servLinha = source.services(lin);
    // A "C25" line after these products is this line's service "25" in the symbol.
    if (rules.c25_rides_along && follows_with_c25(product) && lin < last &&
        source.line(lin + 1).text(guia::B_Produto, 0) == "C25") {
        Str_CodBarrasServEsp = "25" + pad_zero(source.line(lin + 1).text(guia::Escalao, 0), 7);
        ++Total_Se_CodBarras;
    }
    const serv::Table& services = servLinha;
    if (!services.empty()) {
        for (int i = 0; i < services.row_count(); ++i)
            Str_CodBarrasServEsp += item_servico(services.text(serv::CodServEsp, i), services.text(serv::Valor, i));
        Total_Se_CodBarras = services.row_count();
    }

    // The last row cannot take a line whose services need more than that row: it moves to the next page.
    if (!services.empty() && rows() == kRowsPerPage - 1 &&
        (services.row_count() > 3 || cls_ImpressaoA::CountSEspeciaisComValor(services) >= 2)) {
        add(step::EraseLastRow{});
        finishSymbol();
        forgetPage();
        yLinha = kFirstRowY;
        yServ = kFirstRowY;
        newSheet();
        ++pag;
        pageTop();
        add(step::Line{lin, yLinha});
        if (!campaign.empty()) observacoes += "Linha - 1 - " + campaign + "; ";
        yLinha += kRowPitch;
    }
    if (services.empty()) yServ += kRowPitch;

    printServices();

    ++nLinhas;
    if (!rules.c25_rides_along || product != "C25")
        codigoLinhas += rules.item(line, 0, Str_CodBarrasServEsp, Total_Se_CodBarras);
    else
        ++nSemCodigo;
    const std::string quantity = f(guia::D_Quantidade);
    const std::int64_t total =
        static_cast<std::int64_t>(totalQuantidade) + (quantity.empty() ? 0 : text::require_int32(quantity));
    if (total > std::numeric_limits<std::int32_t>::max() || total < std::numeric_limits<std::int32_t>::min())
        raise(RunTimeError::Overflow);
    totalQuantidade = static_cast<std::int32_t>(total);

    Str_CodBarrasServEsp.clear();
    Total_Se_CodBarras = 0;
    if (lin == last) fim = true;
    ++lin;
}

PagePlan Planner::run()
{
    try {
        const cab::Table& cab = source.header();
        if (source.line_count() == 0) raise(RunTimeError::TypeMismatch);  // no lines: nothing to walk
        while (!fim) {
            if (page_full()) finishSymbol();
            ++pag;
            codigoCabecalho = rules.head(cab, pag, plan.TotPaginas);
            if (plan.pages.empty() || (page_full() && pag > 1)) {
                nSemCodigo = 0;
                Total_Se_CodBarras = 0;
                codigoLinhas.clear();
                Str_CodBarrasServEsp.clear();
                newSheet();
                nExtra = 0;
            }
            pageTop();
            nLinhas = 0;
            cod = {};
            val = {};
            yServ = kFirstRowY;
            yLinha = kFirstRowY;
            if (pag == 1) lin = 0;

            const int lin_before = lin;
            while (lin < source.line_count() && rows() < kRowsPerPage) printLine();
            // Every page takes at least one line; a page that took none would come back for ever.
            if (lin == lin_before && !fim) throw std::logic_error("a page took no line");

            if (pag == plan.TotPaginas) {
                add(step::Total{totalQuantidade});
                totalQuantidade = 0;
            }
            pageNumbers();
            if (rules.remarks) add(step::Remarks{std::string(cab.text(cab::Obs, 0)) + "\r\n" + observacoes});
        }
        finishSymbol();
    } catch (const std::exception& e) {
        plan.failure = e.what();
        if (lin < source.line_count()) plan.failure_line = lin;
        if (service_at >= 0) plan.failure_service = service_at;
    }
    plan.pag = pag;
    return std::move(plan);
}

}  // namespace

std::int32_t forecast_pages(const GuiaSource& source)
{
    std::int16_t pages = source.line_count() > 0 ? 1 : 0;
    try {
        std::int16_t rows = 0, semValor = 0, comValor = 0;
        for (int line = 0; line < source.line_count(); ++line) {
            ++rows;
            const serv::Table services = source.services(line);
            for (int s = 0; s < services.row_count(); ++s) {
                const bool without_value = text::require_cell_number(services.at(serv::Valor, s)) == 0;
                ++(without_value ? semValor : comValor);
                // The fourth service, or the second with a value, needs a row of its own.
                if (semValor + comValor == 4 || comValor == 2) {
                    ++rows;
                    semValor = without_value ? 1 : 0;
                    comValor = without_value ? 0 : 1;
                }
            }
            if (rows > kRowsPerPage) {
                ++pages;
                rows -= kRowsPerPage;
            }
        }
    } catch (const std::exception&) {
        // The forecast counts what it could; the walk meets the fault itself.
    }
    return pages;
}

DryRun dry_run_pages(const GuiaSource& source)
{
    PagePlan walk = Planner(source, kDatabaseWalk, 0).run();
    return {walk.pag, std::move(walk.failure)};
}

PagePlan plan_pages(const GuiaSource& source, Edition edition)
{
    if (edition == Edition::Database) return Planner(source, kDatabaseWalk, dry_run_pages(source).pages).run();
    return Planner(source, kArrayWalk, forecast_pages(source)).run();
}

}  // namespace nimbara::printing
