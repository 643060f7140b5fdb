#pragma once
// The four field-numbered tables of a headless Guia (header, lines, special services, parameters):
// a fixed number of fields, rows that only grow, and cells that are empty or hold text.
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbara {

// An empty cell (std::nullopt) is a state of its own, distinct from the empty text.
using Cell = std::optional<std::string>;

class FieldTable {
public:
    explicit FieldTable(int field_count) : fields_(field_count) {}

    int field_count() const { return fields_; }
    int row_count() const { return static_cast<int>(cells_.size()) / fields_; }
    // No rows at all is the state of a member that was never filled.
    bool empty() const { return cells_.empty(); }

    // Grows to at least `rows` rows, keeping what is stored; new cells are empty.
    void ensure_rows(int rows)
    {
        if (rows > row_count()) cells_.resize(static_cast<std::size_t>(rows) * fields_);
    }
    // Adds one empty row and answers its number.
    int add_row()
    {
        ensure_rows(row_count() + 1);
        return row_count() - 1;
    }
    void clear() { cells_.clear(); }

    // Reading outside the stored rows gives an empty cell, as an unfilled member reads.
    const Cell& at(int field, int row) const
    {
        static const Cell none;
        if (field < 0 || field >= fields_ || row < 0 || row >= row_count()) return none;
        return cells_[index(field, row)];
    }
    // The cell's text, or the empty text for an empty cell.
    std::string_view text(int field, int row) const
    {
        const Cell& c = at(field, row);
        return c ? std::string_view(*c) : std::string_view();
    }
    // Writing grows the table to hold the row.
    void set(int field, int row, Cell value)
    {
        ensure_rows(row + 1);
        cells_[index(field, row)] = std::move(value);
    }

    friend bool operator==(const FieldTable&, const FieldTable&) = default;

private:
    std::size_t index(int field, int row) const { return static_cast<std::size_t>(row) * fields_ + field; }

    int fields_;
    std::vector<Cell> cells_;
};

// Field numbers of arrCabecalho (22 fields; only row 0 is used; 20 and 21 stay empty).
namespace cab {
enum Field : int {
    N_Req, CodTerceiro, CodCliente, CodContrato, CodCredencial, Nome, NContribuinte, Morada, CodPostal,
    DesigPostal, Obs, JppCredenciado, Pagamento, NCredencial, Drqjul, DataRequisicao, NDoc, IDReqAnual,
    NCompromisso, TipoAcesso
};
inline constexpr int kFields = 22;
}  // namespace cab

// Field numbers of arrGuia (21 fields, one row per product line; field 5 is never filled).
namespace guia {
enum Field : int {
    A_Zona_Taxacao = 0, B_Produto = 1, E_Velocidade = 2, D_Quantidade = 3, N_Linha = 4, Unused5 = 5,
    Formato = 6, PreTratamento = 7, Desconto = 8, CodAmbitoDist = 9, ListaServesp = 10, Escalao = 11,
    Vexora = 12, Entrega_Sampling = 13, TaxEsp_Semana = 14, TaxEsp_Quantidade = 15, N_Req = 16,
    CodigoCampanha = 17, DivisaoRemetente = 18, caracte = 19, refClie = 20
};
inline constexpr int kFields = 21;
}  // namespace guia

// Field numbers of arrServEsp (3 fields, one row per special service of a line).
namespace serv {
enum Field : int { N_Linha = 0, CodServEsp = 1, Valor = 2 };
inline constexpr int kFields = 3;
}  // namespace serv

// Field numbers of arrParametros (12 fields; readers use row 0 only).
namespace param {
enum Field : int {
    VCod2DFonteSize, vCod2DRatio, vCod2DNColunas, vCod2DNLinhas, vCod2DErroLevel, vCod2DPDFMode,
    VCod2DTruncatedRuncated, vCod2DApplyTilde, vGuiaNVias, vGuiaMargensTopo, vGuiaMargensEsquerda, vCodTerceiro
};
inline constexpr int kFields = 12;
}  // namespace param

// The four tables as the façade owns them and the printing class receives them.
struct GuiaArrays {
    FieldTable arrCabecalho{cab::kFields};
    FieldTable arrGuia{guia::kFields};
    FieldTable arrServEsp{serv::kFields};
    FieldTable arrParametros{param::kFields};

    friend bool operator==(const GuiaArrays&, const GuiaArrays&) = default;
};

}  // namespace nimbara
