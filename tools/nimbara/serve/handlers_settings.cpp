// The print and barcode settings: shown, changed, and previewed on a sample form before saving.
#include "db_command.hpp"
#include "guia_command.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "nimbara/PdfSurface.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "settings_json.hpp"

namespace nimbara::serve {
namespace {

using nlohmann::ordered_json;

// {"settings": {NAME: VALUE or {"value": VALUE}}}: the shape GET answers is taken back as it is.
std::vector<std::pair<std::string, std::string>> settings_in(const ApiRequest& request)
{
    const auto body = json_body(request);
    for (const auto& [key, value] : body.items())
        if (key != "settings") throw InputError(422, "body: unknown key \"" + key + "\"", "/" + key);
    if (!body.contains("settings") || !body["settings"].is_object())
        throw InputError(422, "body: /settings: expected an object of settings by name", "/settings");
    std::vector<std::pair<std::string, std::string>> assignments;
    for (const auto& [name, given] : body["settings"].items()) {
        const std::string place = "/settings/" + name;
        const ordered_json* value = &given;
        if (given.is_object()) {
            for (const auto& [key, ignored] : given.items())
                if (key != "value" && key != "set") throw InputError(422, "body: unknown key \"" + key + "\"", place + "/" + key);
            if (!given.contains("value")) throw InputError(422, "body: " + place + ": the value is missing", place + "/value");
            value = &given["value"];
        }
        if (value->is_string())
            assignments.emplace_back(name, value->get<std::string>());
        else if (value->is_number_integer())
            assignments.emplace_back(name, value->dump());
        else
            throw InputError(422, "body: " + place + ": expected text or a whole number", place);
    }
    return assignments;
}

// The refusals of save_settings name the setting they are about.
void save(const ApiRequest& request, const std::vector<std::pair<std::string, std::string>>& assignments)
{
    try {
        cli::save_settings(request.db, assignments);
    } catch (const cli::FieldError& e) {
        throw InputError(422, e.what(), "/settings/" + e.field());
    } catch (const cli::CommandError& e) {
        std::string field = "/settings";
        for (const auto& [name, value] : assignments)
            if (std::string(e.what()).find(name) != std::string::npos) field = "/settings/" + name;
        throw InputError(422, e.what(), field);
    }
}

// A Guia of one line that passes, so that the preview shows the form as a real one prints.
void fill_sample(cls_ValProdutosA& guia, const ordered_json& settings)
{
    GuiaCabecalho h;
    h.cb_N_Req = "1", h.cb_CodCliente = "1", h.cb_CodContrato = "1", h.cb_Nome = "Cliente de exemplo";
    h.cb_NContribuinte = "500000000", h.cb_Morada = "Rua do Exemplo, 1", h.cb_CodPostal = "1000-001";
    h.cb_DesigPostal = "LISBOA", h.cb_JppCredenciado = "0", h.cb_Pagamento = "1", h.cb_CodTerceiro = "0";
    h.cb_DataRequisicao = "2026-01-02", h.cb_NDoc = "2026/1", h.cb_IDReqAnual = "1", h.cb_TipoAcesso = "0";
    GuiaProduto p;
    p.N_Linha = "1", p.A_Zona_Taxacao = "01", p.B_Produto = "C01", p.E_Velocidade = "0", p.D_Quantidade = "300";
    p.Escalao = "50", p.Formato = "02", p.PreTratamento = "1", p.Desconto = "0", p.CodAmbitoDist = "0";
    p.ListaServesp = "0", p.Entrega_Sampling = "0", p.TaxEsp_Quantidade = "300", p.TaxEsp_Semana = "1", p.N_Req = "1";
    std::vector<std::string> v;
    for (const auto& [name, s] : settings.items()) v.push_back(s["value"].get<std::string>());
    if (guia.PreencheCabecalho(h) != 0 || guia.PreencheProduto(p) ||
        guia.PreencheParametros(v.at(0), v.at(1), v.at(2), v.at(3), v.at(4), v.at(5), v.at(6), v.at(7), v.at(8), v.at(9),
                                v.at(10), v.at(11)))
        throw InputError(422, "the sample form does not take these settings: " +
                                  (guia.LastError() ? guia.LastError()->cause : std::string("refused")),
                         "/settings");
}

}  // namespace

ApiResponse get_settings(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        return json_response(200, {{"status", 0}, {"settings", cli::settings_json(request.db)}});
    });
}

ApiResponse put_settings(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const auto assignments = settings_in(request);
        save(request, assignments);
        auto response = json_response(200, {{"status", 0}, {"settings", cli::settings_json(request.db)}});
        std::string what;
        for (const auto& [name, value] : assignments) what += (what.empty() ? "" : ", ") + name + "=" + value;
        response.audit = AuditEntry{"settings", what};
        return response;
    });
}

// The settings are checked and saved as PUT would, inside a transaction that is rolled back: the
// preview uses exactly what a save would keep, and keeps nothing.
ApiResponse preview_settings(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const auto assignments = settings_in(request);
        ordered_json settings;
        {
            Transaction unsaved(*request.db);
            save(request, assignments);
            settings = cli::settings_json(request.db);
        }
        cls_ValProdutosA guia;
        fill_sample(guia, settings);
        std::string pdf;
        auto surface = std::make_shared<PdfSurface>([&pdf](int, std::string bytes) { pdf += bytes; });
        surface->BeginBatch();
        guia.setPrinter(surface);
        guia.setPrintLog(cli::default_print_log());
        const GuiaOutcome outcome = guia.ImprimeGuiaOutcome(true);
        surface->EndBatch();
        if (outcome.failure || !outcome.print_failures.empty() || pdf.empty())
            throw InputError(422, "the sample form did not print with these settings: " +
                                      (outcome.failure ? outcome.failure->cause
                                                       : outcome.print_failures.empty() ? std::string("no page came out")
                                                                                        : outcome.print_failures.front()),
                             "/settings");
        return ApiResponse{200, "application/pdf", std::move(pdf), {}, std::nullopt};
    });
}

}  // namespace nimbara::serve
