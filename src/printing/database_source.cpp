#include "printing/database_source.hpp"

#include <array>
#include <stdexcept>
#include <utility>

#include "foundation/required_numbers.hpp"

namespace nimbara::printing {
namespace {

// The recordsets are read as text, as the page has always taken them; Null stays empty.
Cell cell_of(const FieldValue& value)
{
    if (value.is_null()) return std::nullopt;
    return value.text();
}

// The header query's columns by name, into the fields the page routines read.
constexpr std::array<std::pair<cab::Field, const char*>, 17> kHeaderColumns = {{
    {cab::N_Req, "N_Req"},
    {cab::CodTerceiro, "CodigoTerceiro"},
    {cab::CodCliente, "Cod_Cliente"},
    {cab::CodContrato, "Cod_Contrato"},
    {cab::CodCredencial, "N_Credencial"},
    {cab::Nome, "Nome"},
    {cab::NContribuinte, "NContribuinte"},
    {cab::Morada, "Morada"},
    {cab::CodPostal, "Cod_Postal"},
    {cab::DesigPostal, "Desig_Postal"},
    {cab::Obs, "Observacoes"},
    {cab::JppCredenciado, "Credenciado"},
    {cab::Pagamento, "Pagamento"},
    {cab::NCredencial, "N_Credencial"},
    {cab::Drqjul, "D_Req_Jul"},
    {cab::IDReqAnual, "Id_Req_Anual"},
    {cab::NCompromisso, "NCompromisso"},
}};

constexpr std::array<std::pair<guia::Field, const char*>, 15> kLineColumns = {{
    {guia::A_Zona_Taxacao, "A_Zona_Taxacao"},
    {guia::B_Produto, "B_Produto"},
    {guia::Escalao, "C_Escalao"},
    {guia::D_Quantidade, "D_Quantidade"},
    {guia::E_Velocidade, "E_Velocidade"},
    {guia::Formato, "F_Formato"},
    {guia::PreTratamento, "G_Pre_Tratamento"},
    {guia::Desconto, "H_Descontos"},
    {guia::Entrega_Sampling, "K_Entrega_Sampling"},
    {guia::TaxEsp_Semana, "L_TaxEsp_Semana"},
    {guia::TaxEsp_Quantidade, "M_TaxEsp_Quantidade"},
    {guia::CodAmbitoDist, "N_Ambito_Distrib"},
    {guia::N_Linha, "N_Linha"},
    {guia::N_Req, "N_Req"},
    {guia::DivisaoRemetente, "O_Divisao_Remetente"},
}};

}  // namespace

std::optional<cls_ParametroA> parameters_of(Recordset& p)
{
    if (p.State() != Recordset::adStateOpen || p.RecordCount() == 0) return std::nullopt;
    p.MoveFirst();
    const auto text = [&](const char* column) { return p[column].is_null() ? std::string() : p[column].text(); };
    cls_ParametroA out;
    out.VCod2DFonteSize = text("Cod2DFonteSize");
    out.vCod2DRatio = text("Cod2DRatio");
    out.vCod2DNColunas = text("Cod2DNColunas");
    out.vCod2DNLinhas = text("Cod2DNLinhas");
    out.vCod2DErroLevel = text("Cod2DErroLevel");
    out.vCod2DPDFMode = text("Cod2DPDFMode");
    out.vCod2DTruncated = text("Cod2DTruncated");
    out.vCod2DApplyTilde = text("Cod2DApplyTilde");
    out.vGuiaNVias = text("GuiaNVias");
    out.vGuiaMargensTopo = text("GuiaMargensTopo");
    out.vGuiaMargensEsquerda = text("GuiaMargensEsquerda");
    out.vCodTerceiro = text("CodTerceiro");
    return out;
}

SymbolSettings symbol_settings_of(Recordset& p)
{
    const auto parametros = parameters_of(p);
    if (!parametros) throw std::runtime_error("Tbl_Parametro has no row");
    return symbol_settings_of(*parametros);
}

DatabaseSource::DatabaseSource(cls_Impressao& printer, std::int32_t varNReq) : printer_(printer)
{
    Recordset cab;
    printer.Param_Cabecalho(varNReq, cab);
    if (cab.State() == Recordset::adStateOpen && cab.RecordCount() > 0) {
        cab.MoveFirst();
        for (const auto& [field, column] : kHeaderColumns) header_.set(field, 0, cell_of(cab[column]));
    }

    Recordset rows;
    printer.Param_Produto(varNReq, rows, 1);
    if (rows.State() != Recordset::adStateOpen) return;
    for (rows.MoveFirst(); !rows.IsEOF(); rows.MoveNext()) {
        guia::Table& line = lines_.emplace_back();
        for (const auto& [field, column] : kLineColumns) line.set(field, 0, cell_of(rows[column]));
    }
    for (const guia::Table& line : lines_) {
        auto& services = services_.emplace_back();
        std::int32_t n_linha = 0;
        try {
            n_linha = text::require_int32(line.text(guia::N_Linha, 0));
        } catch (const std::exception&) {
            continue;  // the walk meets the fault when it comes to the line
        }
        services.emplace();
        Recordset rs;
        std::string codes;
        printer.Param_ServicosEspeciais(varNReq, n_linha, codes, &rs, 1);
        if (rs.State() != Recordset::adStateOpen) continue;
        int row = 0;
        for (rs.MoveFirst(); !rs.IsEOF(); rs.MoveNext(), ++row) {
            services->set(serv::N_Linha, row, cell_of(rs["N_Linha"]));
            services->set(serv::CodServEsp, row, cell_of(rs["CodigoServicoEspecial"]));
            services->set(serv::Valor, row, cell_of(rs["Valor"]));
        }
    }
}

serv::Table DatabaseSource::services(int index) const
{
    const auto& services = services_.at(static_cast<std::size_t>(index));
    if (!services) throw std::invalid_argument("N_Linha of line " + std::to_string(index + 1) + " is no number");
    return *services;
}

std::optional<cls_ParametroA> DatabaseSource::parameters() const
{
    Recordset parametros;
    printer_.Param_Parametros(parametros);
    return parameters_of(parametros);
}

SymbolSettings DatabaseSource::symbol_settings() const
{
    Recordset parametros;
    printer_.Param_Parametros(parametros);
    return symbol_settings_of(parametros);
}

}  // namespace nimbara::printing
