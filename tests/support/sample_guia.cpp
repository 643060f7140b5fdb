#include "support/sample_guia.hpp"

namespace nimbara::testing {

GuiaArrays sample_guia()
{
    GuiaArrays g;
    const auto cab = [&](auto field, const char* v) { g.arrCabecalho.set(field, 0, std::string(v)); };
    g.arrCabecalho.ensure_rows(2);
    cab(cab::N_Req, "1027");
    cab(cab::CodCliente, "456");
    cab(cab::CodContrato, "123");
    cab(cab::CodCredencial, "77");
    cab(cab::Nome, "Papelaria Horizonte, Lda.");
    cab(cab::NContribuinte, "501234567");
    cab(cab::Morada, "Rua das Flores, 12");
    cab(cab::CodPostal, "1000-100");
    cab(cab::DesigPostal, "LISBOA");
    cab(cab::Obs, "Entrega na loja");
    cab(cab::JppCredenciado, "0");
    cab(cab::Pagamento, "1");
    cab(cab::NCredencial, "77");
    cab(cab::Drqjul, "5123");
    cab(cab::DataRequisicao, "2025-05-03");
    cab(cab::NDoc, "2025/1027");
    cab(cab::IDReqAnual, "7");
    cab(cab::TipoAcesso, "0");
    const char* params[] = {"3", "0", "16", "0", "2", "0", "0", "0", "1", "0", "0", "0"};
    for (const auto f : param::Table::fields()) g.arrParametros.set(f, 0, std::string(params[static_cast<int>(f)]));
    return g;
}

int add_line(GuiaArrays& g, const LineShape& l)
{
    const int row = g.arrGuia.add_row();
    const auto set = [&](auto field, const std::string& v) { g.arrGuia.set(field, row, v); };
    set(guia::A_Zona_Taxacao, l.zone);
    set(guia::B_Produto, l.product);
    set(guia::E_Velocidade, "0");
    set(guia::D_Quantidade, l.quantity);
    set(guia::N_Linha, std::to_string(row + 1));
    set(guia::Formato, l.format);
    set(guia::PreTratamento, "1");
    set(guia::Desconto, "0");
    set(guia::CodAmbitoDist, "0");
    set(guia::ListaServesp, "0");
    set(guia::Escalao, l.weight);
    set(guia::Vexora, "0");
    set(guia::Entrega_Sampling, "0");
    set(guia::TaxEsp_Semana, "1");
    set(guia::TaxEsp_Quantidade, l.tax_quantity);
    set(guia::N_Req, "1027");
    if (l.campaign) set(guia::CodigoCampanha, *l.campaign);
    set(guia::DivisaoRemetente, "0");
    return row + 1;
}

void add_service(GuiaArrays& g, int line, const std::string& code, const std::string& value)
{
    const int row = g.arrServEsp.add_row();
    g.arrServEsp.set(serv::N_Linha, row, std::to_string(line));
    g.arrServEsp.set(serv::CodServEsp, row, code);
    g.arrServEsp.set(serv::Valor, row, value);
}

}  // namespace nimbara::testing
