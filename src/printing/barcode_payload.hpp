#pragma once
// The text in a page's PDF417 symbol: a fixed-width head, the count of the page's lines and one
// item per line, all left-padded with "0". A value longer than its field is refused, and the page
// driver gives up the copy, as the counter could not read such a page.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::printing {

// The value behind width - length "0"s; a value longer than the field throws std::out_of_range.
std::string pad_zero(std::string_view value, int width);

// The head as the page loop builds it, 95 characters, page number and total pages included; the
// finish keeps 85 of them. Throws when the header was never filled or a field does not fit.
std::string codigo_cabecalho(const cab::Table& arrCabecalho, std::int32_t pag, std::int32_t TotPaginas);

// A field of a line's item: its place in the item, its width, and whether it is a one-digit code
// (the cell read as a 16-bit number); `name` is the fill argument that fills it.
struct ItemField {
    guia::Field field;
    std::string_view name;
    int width;
    bool digit;
};

inline constexpr std::array<ItemField, 16> kItemFields = {{
    {guia::A_Zona_Taxacao, "A_Zona_Taxacao", 2, false}, {guia::B_Produto, "B_Produto", 3, false},
    {guia::Escalao, "Escalao", 6, false},              {guia::D_Quantidade, "D_Quantidade", 7, false},
    {guia::E_Velocidade, "E_Velocidade", 1, true},      {guia::Formato, "Formato", 1, true},
    {guia::PreTratamento, "PreTratamento", 1, true},    {guia::Desconto, "Desconto", 1, true},
    {guia::Entrega_Sampling, "Entrega_Sampling", 1, true}, {guia::TaxEsp_Semana, "TaxEsp_Semana", 1, true},
    {guia::TaxEsp_Quantidade, "TaxEsp_Quantidade", 4, false}, {guia::CodAmbitoDist, "CodAmbitoDist", 1, true},
    {guia::CodigoCampanha, "CodigoCampanha", 13, false}, {guia::DivisaoRemetente, "DivisaoRemetente", 1, true},
    {guia::caracte, "caracte", 1, false},               {guia::refClie, "refClie", 9, false},
}};

// The header fields the head carries at fixed widths, with the fill argument that fills each.
struct HeadField {
    cab::Field field;
    std::string_view name;
    int width;
};

inline constexpr std::array<HeadField, 6> kHeadFields = {{
    {cab::CodContrato, "cb_CodContrato", 12}, {cab::CodCliente, "cb_CodCliente", 9},
    {cab::CodTerceiro, "cb_CodTerceiro", 8},  {cab::IDReqAnual, "cb_IDReqAnual", 4},
    {cab::NCredencial, "cb_NCredencial", 7},  {cab::NCompromisso, "cb_NCompromisso", 15},
}};

constexpr int head_width(cab::Field field)
{
    for (const auto& f : kHeadFields)
        if (f.field == field) return f.width;
    return 0;
}

// The database edition's head fields at fixed widths: the request number where the other edition
// has the yearly identifier, and no commitment.
inline constexpr std::array<HeadField, 5> kHeadFieldsDb = {{
    {cab::CodContrato, "Cod_Contrato", 12}, {cab::CodCliente, "Cod_Cliente", 9},
    {cab::CodTerceiro, "CodigoTerceiro", 8}, {cab::N_Req, "N_Req", 4},
    {cab::NCredencial, "N_Credencial", 7},
}};

// The database edition's item fields, in order; its pre-treatment character stands after the
// format, and no campaign, division, characteristic or reference follows.
inline constexpr std::array<ItemField, 11> kItemFieldsDb = {{
    {guia::A_Zona_Taxacao, "A_Zona_Taxacao", 2, false}, {guia::B_Produto, "B_Produto", 3, false},
    {guia::Escalao, "C_Escalao", 6, false},            {guia::D_Quantidade, "D_Quantidade", 7, false},
    {guia::E_Velocidade, "E_Velocidade", 1, true},     {guia::Formato, "F_Formato", 1, true},
    {guia::Desconto, "H_Descontos", 1, true},          {guia::Entrega_Sampling, "K_Entrega_Sampling", 1, true},
    {guia::TaxEsp_Semana, "L_TaxEsp_Semana", 1, true}, {guia::TaxEsp_Quantidade, "M_TaxEsp_Quantidade", 4, false},
    {guia::CodAmbitoDist, "N_Ambito_Distrib", 1, true},
}};
inline constexpr std::size_t kPreTratamentoAfter = 6;  // items of kItemFieldsDb before the character

// A one-digit field of an item: the cell as a 16-bit number written as text, which must be one
// character; a field left empty (no cell, or a stored empty text) is "0".
std::string item_digit(const Cell& cell);

// A service's code and value widths in its item.
inline constexpr int kServiceCodeWidth = 2;
inline constexpr int kServiceValueWidth = 7;

// One line's item: its fields at fixed widths and one-digit codes, then the service count and the
// service section the page driver gathered for it.
std::string item_linha(const guia::Table& arrGuia, int row, std::string_view Str_CodBarrasServEsp,
                       std::int32_t Total_Se_CodBarras);

// One service of the service section: its code in 2 characters, its value in 7.
std::string item_servico(std::string_view code, std::string_view value);

// The database edition's head, 70 characters: a fixed "CR01" in place of the access type and the
// version, the request number where the other edition has the yearly identifier, and no commitment.
std::string codigo_cabecalho_db(const cab::Table& cabecalho, std::int32_t pag, std::int32_t TotPaginas);

// The database edition's pre-treatment character: " " for the products that take none, else "2"
// for a pre-treated line and "1" otherwise.
std::string pre_tratamento_db(std::string_view product, const Cell& G_Pre_Tratamento);

// The database edition's item, 31 characters before the services: no campaign, division,
// characteristic or reference, and the pre-treatment as its character.
std::string item_linha_db(const guia::Table& line, int row, std::string_view Str_CodBarrasServEsp,
                          std::int32_t Total_Se_CodBarras);

// Writes the page number into the head (which keeps its first 45 characters and the 38 from
// position 48) and answers the payload: the head, the line count in 2, the items.
std::string finish_payload(std::string& codigoCabecalho, std::int32_t pag, std::int32_t line_count,
                           std::string_view codigoLinhas);
// The same for the database edition's head, which keeps its first 41 characters and its last 27.
std::string finish_payload_db(std::string& codigoCabecalho, std::int32_t pag, std::int32_t line_count,
                              std::string_view codigoLinhas);

}  // namespace nimbara::printing
