#pragma once
// The four field-numbered tables of a headless Guia (header, lines, special services, parameters):
// a fixed number of fields, rows that only grow, and cells that are empty or hold text.
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/export.hpp"

namespace nimbara {

// An empty cell (std::nullopt) is a state of its own, distinct from the empty text.
using Cell = std::optional<std::string>;

// A table of `Fields` fields named by the enumeration `Field`, so that a field of one table cannot
// address another. Rows only grow; reading outside them gives an empty cell, writing outside the
// fields or before row 0 throws std::out_of_range.
template <class Field, int Fields>
class FieldTable {
public:
    using field_type = Field;

    static constexpr int field_count() { return Fields; }
    int row_count() const { return static_cast<int>(cells_.size()) / Fields; }
    // No rows at all is the state of a member that was never filled.
    bool empty() const { return cells_.empty(); }

    // Every field of a row, in field order, for walks over whole rows.
    static constexpr std::array<Field, Fields> fields()
    {
        std::array<Field, Fields> all{};
        for (int i = 0; i < Fields; ++i) all[static_cast<std::size_t>(i)] = static_cast<Field>(i);
        return all;
    }

    // Grows to at least `rows` rows, keeping what is stored; new cells are empty.
    void ensure_rows(int rows)
    {
        if (rows > row_count()) cells_.resize(static_cast<std::size_t>(rows) * Fields);
    }
    // Adds one empty row and answers its number.
    int add_row()
    {
        ensure_rows(row_count() + 1);
        return row_count() - 1;
    }
    void clear() { cells_.clear(); }

    // Reading outside the stored rows gives an empty cell, as an unfilled member reads.
    const Cell& at(Field field, int row) const
    {
        static const Cell none;
        if (!holds(field) || row < 0 || row >= row_count()) return none;
        return cells_[index(field, row)];
    }
    // The cell's text, or the empty text for an empty cell.
    std::string_view text(Field field, int row) const
    {
        const Cell& c = at(field, row);
        return c ? std::string_view(*c) : std::string_view();
    }
    // Writing grows the table to hold the row.
    void set(Field field, int row, Cell value)
    {
        if (!holds(field) || row < 0) throw std::out_of_range("no cell (" + std::to_string(static_cast<int>(field)) +
                                                              ", " + std::to_string(row) + ") in this table");
        ensure_rows(row + 1);
        cells_[index(field, row)] = std::move(value);
    }

    friend bool operator==(const FieldTable&, const FieldTable&) = default;

private:
    static constexpr bool holds(Field field) { return static_cast<int>(field) >= 0 && static_cast<int>(field) < Fields; }
    static std::size_t index(Field field, int row)
    {
        return static_cast<std::size_t>(row) * Fields + static_cast<std::size_t>(field);
    }

    std::vector<Cell> cells_;
};

// Field numbers of arrCabecalho (22 fields; only row 0 is used; 20 and 21 stay empty).
namespace cab {
enum class Field : int {
    N_Req, CodTerceiro, CodCliente, CodContrato, CodCredencial, Nome, NContribuinte, Morada, CodPostal,
    DesigPostal, Obs, JppCredenciado, Pagamento, NCredencial, Drqjul, DataRequisicao, NDoc, IDReqAnual,
    NCompromisso, TipoAcesso, Unused20, Unused21
};
using enum Field;
inline constexpr int kFields = 22;
using Table = FieldTable<Field, kFields>;
}  // namespace cab

// Field numbers of arrGuia (21 fields, one row per product line; field 5 is never filled).
namespace guia {
enum class Field : int {
    A_Zona_Taxacao = 0, B_Produto = 1, E_Velocidade = 2, D_Quantidade = 3, N_Linha = 4, Unused5 = 5,
    Formato = 6, PreTratamento = 7, Desconto = 8, CodAmbitoDist = 9, ListaServesp = 10, Escalao = 11,
    Vexora = 12, Entrega_Sampling = 13, TaxEsp_Semana = 14, TaxEsp_Quantidade = 15, N_Req = 16,
    CodigoCampanha = 17, DivisaoRemetente = 18, caracte = 19, refClie = 20
};
using enum Field;
inline constexpr int kFields = 21;
using Table = FieldTable<Field, kFields>;
}  // namespace guia

// Field numbers of arrServEsp (3 fields, one row per special service of a line).
namespace serv {
enum class Field : int { N_Linha = 0, CodServEsp = 1, Valor = 2 };
using enum Field;
inline constexpr int kFields = 3;
using Table = FieldTable<Field, kFields>;
}  // namespace serv

// Field numbers of arrParametros (12 fields; readers use row 0 only).
namespace param {
enum class Field : int {
    VCod2DFonteSize, vCod2DRatio, vCod2DNColunas, vCod2DNLinhas, vCod2DErroLevel, vCod2DPDFMode,
    VCod2DTruncatedRuncated, vCod2DApplyTilde, vGuiaNVias, vGuiaMargensTopo, vGuiaMargensEsquerda, vCodTerceiro
};
using enum Field;
inline constexpr int kFields = 12;
using Table = FieldTable<Field, kFields>;
}  // namespace param

// The four tables as the façade owns them and the printing class receives them.
struct GuiaArrays {
    cab::Table arrCabecalho;
    guia::Table arrGuia;
    serv::Table arrServEsp;
    param::Table arrParametros;

    friend bool operator==(const GuiaArrays&, const GuiaArrays&) = default;
};

namespace GlobalXML {
// The special services of one line: the rows of arrServEsp whose line number equals `lngLinha`, in
// table order, as a new table; no row at all when the line has none.
NIMBARA_API serv::Table getArrServEspByLinha(const serv::Table& arrServEsp, std::int32_t lngLinha);
}  // namespace GlobalXML

}  // namespace nimbara
