// The page driver of the array edition: walks the Guia's lines into pages of twelve rows, with the
// rows their special services need, turns the pages and gives each page its symbol.
#include <limits>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"

#include "nimbara/cls_ImpressaoA.hpp"
#include "printing/barcode_payload.hpp"

namespace nimbara {
namespace {

constexpr int kRowsPerPage = 12;
constexpr std::int32_t kFirstRowY = 42;  // 42.5 rounded half to even, as the row's y always was
constexpr std::int32_t kRowPitch = 6;

template <class Table>
std::string text_or(const Table& t, typename Table::field_type field, int row, std::string_view if_empty)
{
    const Cell& c = t.at(field, row);
    return std::string(c ? std::string_view(*c) : if_empty);
}

// A slot of the service rows; the old arrays had eleven, and a count past them stopped the copy.
std::string& slot(cls_ImpressaoA::ServiceSlots& slots, std::int32_t index)
{
    if (index < 0 || index >= static_cast<std::int32_t>(slots.size())) raise(RunTimeError::SubscriptOutOfRange);
    return slots[static_cast<std::size_t>(index)];
}

bool follows_with_c25(std::string_view product)
{
    return product == "C03" || product == "C05" || product == "C50";
}

}  // namespace

// The working state of one copy.
struct cls_ImpressaoA::Via {
    std::int32_t pag = 0;
    std::int32_t TotPaginas = 0;
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
    std::string codigoCabecalho;
    std::string codigoLinhas;
    std::int32_t totalQuantidade = 0;
    std::string observacoes;
    std::int32_t DuplOrig = 0;
    std::string dtRequisicao;

    int rows() const { return nLinhas + nExtra; }
    bool page_full() const { return rows() == kRowsPerPage; }
};

std::int32_t cls_ImpressaoA::Calcula_TotalidadePaginas(std::int32_t /*varNReq*/)
{
    const guia::Table& g = arrays.arrGuia;
    std::int16_t pages = g.row_count() > 0 ? 1 : 0;
    try {
        std::int16_t rows = 0, semValor = 0, comValor = 0;
        for (int line = 0; line < g.row_count(); ++line) {
            ++rows;
            const serv::Table services =
                GlobalXML::getArrServEspByLinha(arrays.arrServEsp, text::require_cell_int32(g.at(guia::N_Linha, line)));
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
        // The forecast counts what it could; the page driver meets the fault itself.
    }
    return pages;
}

std::string cls_ImpressaoA::Apaga_RegsUltima_linha(PageSurface& impressora)
{
    auto& s = impressora;
    s.setFillColor(kBlack);
    s.setFontName("Times New Roman");
    s.setFontSize(8);
    s.setFontBold(true);
    s.setFillColor(kBlack);
    // The columns of an earlier layout of the row; the blanks erase where the printer paints the
    // text's background, and the last characters of an empty text draw nothing.
    constexpr double y = 108 + 0.5;
    for (const double x : {10.6, 41.8, 47.8, 60.0, 201.5, 102.0}) printAt(s, x, y, "  ");
    for (const double x : {77.5, 90.0, 114.0, 176.5, 188.5, 224.0, 236.6, 248.2}) printAt(s, x, y, "");
    return {};
}

void cls_ImpressaoA::detailOfLine(PageSurface& s, int row, std::int32_t y)
{
    const guia::Table& g = arrays.arrGuia;
    const auto f = [&](auto field) { return std::string(g.text(field, row)); };
    PrintaParteDetail(s, f(guia::A_Zona_Taxacao), f(guia::B_Produto), f(guia::Escalao), f(guia::D_Quantidade),
                      f(guia::E_Velocidade), f(guia::Formato), f(guia::PreTratamento), f(guia::Desconto),
                      f(guia::Vexora), f(guia::Entrega_Sampling), f(guia::TaxEsp_Semana), f(guia::TaxEsp_Quantidade),
                      f(guia::DivisaoRemetente), f(guia::caracte), f(guia::refClie), y);
}

void cls_ImpressaoA::pageTop(Via& via, PageSurface& s, const FormImpressao& imagens)
{
    PrintaParteFixaGuiaExp(s, imagens, via.DuplOrig, via.dtRequisicao);
    const cab::Table& cab = arrays.arrCabecalho;
    if (!cab.empty()) {
        const auto f = [&](auto field) { return std::string(cab.text(field, 0)); };
        const std::string postal = chars::left(f(cab::CodPostal), 4) + " - " + chars::right(f(cab::CodPostal), 3) +
                                   " " + f(cab::DesigPostal);
        ImprimeHeaderFooter(s, text_or(cab, cab::CodTerceiro, 0, "0"), f(cab::CodCliente), f(cab::CodContrato),
                            f(cab::CodCredencial), f(cab::Nome), text_or(cab, cab::NContribuinte, 0, "0"),
                            f(cab::Morada), postal, f(cab::Obs), f(cab::JppCredenciado), f(cab::Pagamento));
    }
    paintLogo(s, imagens);
}

void cls_ImpressaoA::finishSymbol(Via& via, PageSurface& s)
{
    PrintCreatedPDF(s, printing::finish_payload(via.codigoCabecalho, via.pag, via.nLinhas - via.nSemCodigo,
                                                via.codigoLinhas));
}

void cls_ImpressaoA::forgetPage(Via& via)
{
    via.nSemCodigo = 0;
    via.nExtra = 0;
    via.nLinhas = 0;
    Total_Se_CodBarras = 0;
    via.codigoLinhas.clear();
    Str_CodBarrasServEsp.clear();
}

// A page turned in the middle of a line's services. Turns that count the page first write the
// next page's number into the finished page's symbol, as they always have.
void cls_ImpressaoA::turnPage(Via& via, PageSurface& s, const FormImpressao& imagens, bool count_first)
{
    if (count_first) ++via.pag;
    finishSymbol(via, s);
    if (!count_first) ++via.pag;
    forgetPage(via);
    s.NewPage();
    via.yLinha = kFirstRowY;
    pageTop(via, s, imagens);
    const cab::Table& cab = arrays.arrCabecalho;
    Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, via.pag, via.TotPaginas,
                       std::string(cab.text(cab::NCompromisso, 0)));
}

void cls_ImpressaoA::printServices(Via& via, PageSurface& s, const FormImpressao& imagens)
{
    const serv::Table& services = via.servLinha;
    const auto fresh_slots = [&] {
        via.cod = {};
        via.val = {};
    };
    const auto service_row = [&] {
        PrintaSEParteDetail(s, std::to_string(via.codigoServ), std::to_string(via.valorServ), via.yServ, &via.val,
                            via.nVal, via.nCod, &via.cod);
    };

    if (services.empty()) {
        if (via.page_full()) turnPage(via, s, imagens, false);
        return;
    }
    for (int i = 0; i < services.row_count(); ++i) {
        const std::string code(services.text(serv::CodServEsp, i));
        const Cell& value_cell = services.at(serv::Valor, i);
        const std::string value(value_cell ? std::string_view(*value_cell) : std::string_view());
        const bool without_value = text::require_cell_number(value_cell) == 0;
        const auto keep = [&] {
            via.valorServ = text::require_cell_int32(value_cell);
            via.codigoServ = text::require_cell_int32(services.at(serv::CodServEsp, i));
        };

        if (without_value) {
            ++via.nVal;
            slot(via.cod, via.nVal) = code;
            slot(via.val, via.nVal) = value;
            keep();
            ++via.nCod;
            // Three services without a value fill a row.
            if (via.nVal == 3) {
                service_row();
                ++via.nExtra;
                via.yServ += kRowPitch;
                via.yLinha += kRowPitch;
                via.nCod = 0;
                fresh_slots();
                via.nVal = 0;
                if (via.page_full()) turnPage(via, s, imagens, true);
            }
        } else {
            // A service with a value after those without: they go out first, and a service of
            // another code takes a row of its own.
            if (via.nVal >= 1 && slot(via.val, via.nVal) == "0") {
                service_row();
                via.yServ += kRowPitch;
                if (slot(via.cod, 1) != code) {
                    PrintaSEParteDetail(s, code, value, via.yServ);
                    via.yServ += kRowPitch;
                    via.yLinha += kRowPitch;
                    ++via.nExtra;
                    via.jaImpresso = true;
                }
                via.nVal = 0;
                fresh_slots();
                if (via.page_full()) turnPage(via, s, imagens, true);
            }
            keep();
            ++via.nVal;
            ++via.nCod;
            slot(via.cod, via.nCod) = code;
            slot(via.val, via.nVal) = value;
            if (via.page_full()) turnPage(via, s, imagens, true);
        }

        const bool last = i == services.row_count() - 1;
        if (via.nVal > 0 && last) {
            if (!via.jaImpresso) {
                service_row();
                via.yServ += kRowPitch;
            }
            via.jaImpresso = false;
            if (via.page_full()) turnPage(via, s, imagens, false);
            via.nVal = 0;
            via.cod = {};
        }
    }
}

void cls_ImpressaoA::printLine(Via& via, PageSurface& s, const FormImpressao& imagens)
{
    guia::Table& g = arrays.arrGuia;
    const int lin = via.lin;
    const int last = g.row_count() - 1;
    const cab::Table& cab = arrays.arrCabecalho;
    const auto f = [&](auto field) { return std::string(g.text(field, lin)); };
    const std::string product = f(guia::B_Produto);

    // Format "07" of product "C07" prints and encodes as "01"; the table gets its own value back.
    const bool swap_format = product == "C07" && f(guia::Formato) == "07";
    struct FormatBack {
        guia::Table& g;
        int row;
        bool active;
        ~FormatBack()
        {
            if (active) g.set(guia::Formato, row, std::string("07"));
        }
    } format_back{g, lin, swap_format};
    if (swap_format) g.set(guia::Formato, lin, std::string("01"));

    detailOfLine(s, lin, via.yLinha);
    const std::string campaign = f(guia::CodigoCampanha);
    if (!campaign.empty())
        via.observacoes += "Linha " + std::to_string(via.rows() + 1) + "- " + campaign + "; ";
    via.yLinha += kRowPitch;
    Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, via.pag, via.TotPaginas,
                       std::string(cab.text(cab::NCompromisso, 0)));

    via.servLinha = GlobalXML::getArrServEspByLinha(arrays.arrServEsp, text::require_cell_int32(g.at(guia::N_Linha, lin)));
    // A "C25" line after these products is this line's service "25" in the symbol.
    if (follows_with_c25(product) && lin < last && g.text(guia::B_Produto, lin + 1) == "C25") {
        Str_CodBarrasServEsp = "25" + printing::pad_zero(g.text(guia::Escalao, lin + 1), 7);
        ++Total_Se_CodBarras;
    }
    const serv::Table& services = via.servLinha;
    if (!services.empty()) {
        for (int i = 0; i < services.row_count(); ++i)
            Str_CodBarrasServEsp += printing::item_servico(services.text(serv::CodServEsp, i), services.text(serv::Valor, i));
        Total_Se_CodBarras = services.row_count();
    }

    // The last row cannot take a line whose services need more than that row: it moves to the next page.
    if (!services.empty() && via.rows() == kRowsPerPage - 1 &&
        (services.row_count() > 3 || CountSEspeciaisComValor(services) >= 2)) {
        Apaga_RegsUltima_linha(s);
        finishSymbol(via, s);
        forgetPage(via);
        via.yLinha = kFirstRowY;
        via.yServ = kFirstRowY;
        s.NewPage();
        ++via.pag;
        pageTop(via, s, imagens);
        detailOfLine(s, lin, via.yLinha);
        if (!campaign.empty()) via.observacoes += "Linha - 1 - " + campaign + "; ";
        via.yLinha += kRowPitch;
    }
    if (services.empty()) via.yServ += kRowPitch;

    printServices(via, s, imagens);

    ++via.nLinhas;
    if (product != "C25")
        via.codigoLinhas += printing::item_linha(g, lin, Str_CodBarrasServEsp, Total_Se_CodBarras);
    else
        ++via.nSemCodigo;
    const std::string quantity = f(guia::D_Quantidade);
    const std::int64_t total = static_cast<std::int64_t>(via.totalQuantidade) +
                               (quantity.empty() ? 0 : text::require_int32(quantity));
    if (total > std::numeric_limits<std::int32_t>::max() || total < std::numeric_limits<std::int32_t>::min())
        raise(RunTimeError::Overflow);
    via.totalQuantidade = static_cast<std::int32_t>(total);

    Str_CodBarrasServEsp.clear();
    Total_Se_CodBarras = 0;
    if (lin == last) via.fim = true;
    ++via.lin;
}

void cls_ImpressaoA::Imprime_Parte_Variavel(const std::string& /*varCodCliente*/, std::int32_t varNReq,
                                            std::int16_t /*N_Via*/, PageSurface& impressora2,
                                            const FormImpressao& imagens, double TopY_, double LeftX_,
                                            std::int32_t DuplOrig, const std::string& dtRequisicao,
                                            const std::string& /*NGUIA*/)
{
    auto& s = impressora2;
    SetPageOffsets(LeftX_, TopY_);
    Via via;
    via.DuplOrig = DuplOrig;
    via.dtRequisicao = dtRequisicao;
    try {
        via.TotPaginas = Calcula_TotalidadePaginas(varNReq);
        const cab::Table& cab = arrays.arrCabecalho;
        const guia::Table& g = arrays.arrGuia;
        if (g.empty()) raise(RunTimeError::TypeMismatch);  // no lines: nothing to walk
        while (!via.fim) {
            if (via.page_full()) finishSymbol(via, s);
            ++via.pag;
            via.codigoCabecalho = printing::codigo_cabecalho(cab, via.pag, via.TotPaginas);
            if (via.page_full() && via.pag > 1) {
                via.nSemCodigo = 0;
                Total_Se_CodBarras = 0;
                via.codigoLinhas.clear();
                Str_CodBarrasServEsp.clear();
                s.NewPage();
                via.nExtra = 0;
            }
            pageTop(via, s, imagens);
            via.nLinhas = 0;
            via.cod = {};
            via.val = {};
            via.yServ = kFirstRowY;
            via.yLinha = kFirstRowY;
            if (via.pag == 1) via.lin = 0;

            const int lin_before = via.lin;
            while (via.lin < g.row_count() && via.rows() < kRowsPerPage) printLine(via, s, imagens);
            // Every page takes at least one line; a page that took none would come back for ever.
            if (via.lin == lin_before && !via.fim) throw std::logic_error("a page took no line");

            if (via.pag == via.TotPaginas) {
                const std::string total = std::to_string(via.totalQuantidade);
                double x = 99.5;
                for (std::int32_t p = 1; p <= static_cast<std::int32_t>(total.size()); ++p, x -= 4.0) {
                    s.setCurrentX(twipsX(x));
                    s.setCurrentY(twipsY(115));
                    s.Print(ValorAlinhado(total, 1, p));
                }
                via.totalQuantidade = 0;
            }
            Imprime_NumPaginas(std::string(cab.text(cab::IDReqAnual, 0)), s, via.pag, via.TotPaginas,
                               std::string(cab.text(cab::NCompromisso, 0)));
            ReimprimirObservacoes(s, std::string(cab.text(cab::Obs, 0)) + "\r\n" + via.observacoes);
        }
        finishSymbol(via, s);
        Total_Se_CodBarras = 0;
        via.codigoLinhas.clear();
        Str_CodBarrasServEsp.clear();
        s.EndDoc();
    } catch (const std::exception& e) {
        WriteLog(std::string("Imprime_Parte_Variavel-Erro:") + e.what());
        Total_Se_CodBarras = 0;
        Str_CodBarrasServEsp.clear();
        // The job ends in any case, so that the pages already drawn come out.
        guarded("Imprime_Parte_Variavel", [&] { s.EndDoc(); });
    }
}

}  // namespace nimbara
