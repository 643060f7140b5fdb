#include "printing/barcode_payload.hpp"

#include <algorithm>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "nimbara/version.hpp"
#include "printing/page.hpp"

namespace nimbara::printing {
namespace {

std::string pad_number(std::int32_t n, int width) { return pad_zero(std::to_string(n), width); }

// A one-digit field: the cell as a 16-bit integer written as text, which must be one character.
template <class Table>
std::string digit(const Table& table, typename Table::field_type field, int row)
{
    return item_digit(table.at(field, row));
}

template <class Table>
std::string padded(const Table& table, typename Table::field_type field, int row, int width)
{
    return pad_zero(table.text(field, row), width);
}

char yes_no(bool yes) { return yes ? 'S' : 'N'; }

}  // namespace

std::string item_digit(const Cell& cell)
{
    if (!cell || cell->empty()) return "0";
    return pad_number(text::require_int16(*cell), 1);
}

std::string pad_zero(std::string_view value, int width)
{
    const auto length = static_cast<int>(chars::length(value));
    if (length > width) raise(RunTimeError::InvalidProcedureCall);
    std::string out(static_cast<std::size_t>(width - length), '0');
    out += value;
    return out;
}

std::string codigo_cabecalho(const cab::Table& cab, std::int32_t pag, std::int32_t TotPaginas)
{
    if (cab.empty()) raise(RunTimeError::TypeMismatch);
    std::string head;
    head.reserve(95);
    // Any other access type leaves the head two characters short.
    const double access = text::require_cell_number(cab.at(cab::TipoAcesso, 0));
    if (access == 0 || access == 1) head += "CR";
    if (access == 2) head += "OP";
    head += pad_number(kVersionMajor, 2);
    head += pad_number(kVersionMinor, 2);
    head += pad_number(kVersionRevision, 2);
    head += padded(cab, cab::CodContrato, 0, head_width(cab::CodContrato));
    head += padded(cab, cab::CodCliente, 0, head_width(cab::CodCliente));
    const Cell& third = cab.at(cab::CodTerceiro, 0);
    head += pad_zero(third ? std::string_view(*third) : "0", head_width(cab::CodTerceiro));
    head += cab.text(cab::Drqjul, 0);  // the Julian date goes in as it stands, four characters
    head += padded(cab, cab::IDReqAnual, 0, head_width(cab::IDReqAnual));
    head += pad_number(pag, 2);
    head += pad_number(TotPaginas, 2);
    const double payment = text::require_cell_number(cab.at(cab::Pagamento, 0));
    head += yes_no(payment == 1);
    head += yes_no(payment == 0);
    head += yes_no(cab.text(cab::JppCredenciado, 0) == "1");
    head += yes_no(payment == 2);
    head += padded(cab, cab::NCredencial, 0, head_width(cab::NCredencial));
    head += "0000000000";
    head += padded(cab, cab::NCompromisso, 0, head_width(cab::NCompromisso));
    // Fields 20 and 21 are built and then cut off by the finish.
    head += yes_no(text::require_cell_number(cab.at(cab::Unused20, 0)) == 0);
    head += padded(cab, cab::Unused21, 0, 9);
    return head;
}

std::string codigo_cabecalho_db(const cab::Table& cab, std::int32_t pag, std::int32_t TotPaginas)
{
    if (cab.empty()) raise(RunTimeError::TypeMismatch);
    std::string head = "CR01";
    head.reserve(70);
    head += padded(cab, cab::CodContrato, 0, kHeadFieldsDb[0].width);
    head += padded(cab, cab::CodCliente, 0, kHeadFieldsDb[1].width);
    const Cell& third = cab.at(cab::CodTerceiro, 0);
    head += pad_zero(third ? std::string_view(*third) : "0", kHeadFieldsDb[2].width);
    head += cab.text(cab::Drqjul, 0);
    head += padded(cab, cab::N_Req, 0, kHeadFieldsDb[3].width);
    head += pad_number(pag, 2);
    head += pad_number(TotPaginas, 2);
    const double payment = text::require_cell_number(cab.at(cab::Pagamento, 0));
    head += yes_no(payment == 1);
    head += yes_no(payment == 2);
    head += yes_no(as_boolean(cab.text(cab::JppCredenciado, 0)));
    head += padded(cab, cab::NCredencial, 0, kHeadFieldsDb[4].width);
    head += std::string(15, '0');
    return head;
}

std::string pre_tratamento_db(std::string_view product, const Cell& G_Pre_Tratamento)
{
    static constexpr std::array<std::string_view, 9> kWithout = {"C10", "C20", "C30", "C36", "E01",
                                                                  "E04", "E05", "E06", "E07"};
    if (std::find(kWithout.begin(), kWithout.end(), product) != kWithout.end()) return " ";
    return G_Pre_Tratamento && !G_Pre_Tratamento->empty() && as_boolean(*G_Pre_Tratamento) ? "2" : "1";
}

std::string item_linha_db(const guia::Table& g, int row, std::string_view Str_CodBarrasServEsp,
                          std::int32_t Total_Se_CodBarras)
{
    std::string item;
    item.reserve(31 + Str_CodBarrasServEsp.size());
    for (std::size_t i = 0; i < kItemFieldsDb.size(); ++i) {
        if (i == kPreTratamentoAfter)
            item += pre_tratamento_db(g.text(guia::B_Produto, row), g.at(guia::PreTratamento, row));
        const auto& f = kItemFieldsDb[i];
        item += f.digit ? digit(g, f.field, row) : padded(g, f.field, row, f.width);
    }
    item += pad_number(Total_Se_CodBarras, 2);
    item += Str_CodBarrasServEsp;
    return item;
}

std::string item_servico(std::string_view code, std::string_view value)
{
    return pad_zero(code, kServiceCodeWidth) + pad_zero(value, kServiceValueWidth);
}

std::string item_linha(const guia::Table& g, int row, std::string_view Str_CodBarrasServEsp,
                       std::int32_t Total_Se_CodBarras)
{
    std::string item;
    item.reserve(55 + Str_CodBarrasServEsp.size());
    for (const auto& f : kItemFields) item += f.digit ? digit(g, f.field, row) : padded(g, f.field, row, f.width);
    item += pad_number(Total_Se_CodBarras, 2);
    item += Str_CodBarrasServEsp;
    return item;
}

std::string finish_payload(std::string& codigoCabecalho, std::int32_t pag, std::int32_t line_count,
                           std::string_view codigoLinhas)
{
    const std::string resto = chars::mid(codigoCabecalho, 48, 38);
    codigoCabecalho = chars::left(codigoCabecalho, 45) + pad_number(pag, 2) + resto;
    std::string payload = codigoCabecalho;
    payload += pad_number(line_count, 2);
    payload += codigoLinhas;
    return payload;
}

std::string finish_payload_db(std::string& codigoCabecalho, std::int32_t pag, std::int32_t line_count,
                              std::string_view codigoLinhas)
{
    codigoCabecalho = chars::left(codigoCabecalho, 41) + pad_number(pag, 2) + chars::right(codigoCabecalho, 27);
    std::string payload = codigoCabecalho;
    payload += pad_number(line_count, 2);
    payload += codigoLinhas;
    return payload;
}

}  // namespace nimbara::printing
