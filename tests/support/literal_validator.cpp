#include "support/literal_validator.hpp"

#include <pugixml.hpp>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/list_helpers.hpp"
#include "foundation/text.hpp"
#include "nimbara/GlobalXML.hpp"
#include "validation/service_rules.hpp"

namespace nimbara::testing {
namespace {

using Candidates = std::vector<std::optional<std::string>>;
struct ReadFailure {};
struct Raise {};

// The rows of a document as the constants the old program appended, ten to a statement.
const std::vector<std::string>& row_constants(std::string_view function)
{
    static std::map<std::string, std::vector<std::string>, std::less<>> cache;
    if (auto it = cache.find(function); it != cache.end()) return it->second;
    const std::string_view text = *GlobalXML::document(function);
    std::vector<std::string> rows;
    std::size_t pos = std::string_view("<LIST>").size();
    while (true) {
        const auto end = text.find("</ITEM>", pos);
        if (end == std::string_view::npos) break;
        rows.emplace_back(text.substr(pos, end + 7 - pos));
        pos = end + 7;
    }
    rows.back() += "</LIST>";
    return cache.emplace(std::string(function), std::move(rows)).first->second;
}

std::string assemble(std::string_view function)
{
    const auto& rows = row_constants(function);
    std::string text = "<LIST>";
    for (std::size_t i = 0; i < rows.size(); i += 10) {
        std::string statement;
        for (std::size_t j = i; j < std::min(rows.size(), i + 10); ++j) statement += rows[j];
        text += statement;
    }
    return text::to_upper(text);
}

struct Document { pugi::xml_document dom; pugi::xpath_node_set items; };

void load(Document& doc, std::string_view function)
{
    const std::string text = assemble(function);
    if (!doc.dom.load_buffer(text.data(), text.size())) throw ReadFailure{};
    doc.items = doc.dom.select_nodes("LIST/ITEM");
}

std::string tag(const pugi::xpath_node& node, const char* name) { return node.node().child(name).text().get(); }

Candidates getIDCodValidacao(std::string_view product)
{
    Document doc;
    load(doc, "getXML_getIDCodValidacao");
    Candidates out;
    for (const auto& item : doc.items)
        if (tag(item, "CODPRODUTO") == product && tag(item, "ACTIVO") == "TRUE") out.emplace_back(tag(item, "CODVALIDACAO"));
    return out;
}

bool has_row(std::string_view function, const char* value_tag, const std::string& id, std::string_view value)
{
    try {
        Document doc;
        load(doc, function);
        for (const auto& item : doc.items)
            if (tag(item, "CODVALIDACAO") == id && tag(item, value_tag) == value) return true;
    } catch (const ReadFailure&) {
    }
    return false;
}

bool has_pre_treatment(const std::string& id)
{
    Document doc;
    load(doc, "getXML_DoValPreTratamento");
    for (const auto& item : doc.items)
        if (tag(item, "CODVALIDACAO") == id) return true;
    return false;
}

bool DoValPeso(const std::string& id, std::int32_t weight, std::string_view zone, std::string_view product, int& code)
{
    Document doc;
    load(doc, "getXML_DoValPeso");
    bool result = false;
    for (const auto& item : doc.items) {
        const std::string row_product = tag(item, "CODPRODUTO");
        const long min = std::stol(tag(item, "CESCALAOMIN"));
        const long max = std::stol(tag(item, "CESCALAOMAX"));
        if (row_product != "C38" && row_product != "C39") {
            if (tag(item, "CODVALIDACAO") == id && min < weight && max >= weight) return true;
        } else if (product == "C38") {
            result = true;
            if (zone == "01" && weight != 0) { code = -1; return false; }
            if (zone == "04" && min >= weight) { code = -2; return false; }
            if (zone == "04" && weight > max) { code = -4; return false; }
        } else if (product == "C39") {
            result = true;
            if (zone == "01" && weight != 0) { code = -3; return false; }
        }
    }
    return result;
}

GlobalFrameWork::OptionalList DoValServEsp(const std::string& id, const GlobalFrameWork::OptionalList& services)
{
    GlobalFrameWork::StrikeList copy(services->begin(), services->end());
    Document doc;
    load(doc, "getXML_DoValServEsp");
    for (const auto& item : doc.items) {
        if (tag(item, "CODVALIDACAO") != id) continue;
        const std::string code = tag(item, "CODSERVICOE");
        for (auto& s : copy)
            if (s.value_or("") == code) { s.reset(); break; }
    }
    return GlobalFrameWork::ArrayShrink(copy);
}

bool empty(const Candidates& c)
{
    for (const auto& e : c)
        if (e) return false;
    return true;
}

void prepare(std::optional<ErrorArray>& err, std::int32_t number, std::variant<std::string, ListArray> description)
{
    if (!err) err = ErrorArray{number, std::move(description)};
}

}  // namespace

ValidationResult literal_validate_line(const validation::LineInput& line)
{
    std::optional<ErrorArray> err;
    try {
        const auto services = GlobalFrameWork::String2Array(line.services);
        const auto pre = text::to_int16(line.pre_treatment);
        if (!pre) throw ReadFailure{};
        const bool pre_selected = *pre > 0;

        Candidates c = getIDCodValidacao(line.product);
        if (c.empty()) throw Raise{};

        const auto pass = [&](const char* function, const char* value_tag, std::string_view value, std::int32_t number,
                              const char* text) {
            for (auto& id : c)
                if (id && !has_row(function, value_tag, *id, value)) id.reset();
            if (empty(c)) { prepare(err, number, std::string(text)); throw Raise{}; }
        };

        pass("getXML_DoValZonaTaxacao", "CODZTAXACAO", line.zone, -2, "Erro na Zona de Taxação");
        for (auto& id : c) {
            if (!id) continue;
            int code = 0;
            if (!DoValPeso(*id, line.weight, line.zone, line.product, code)) {
                id.reset();
                static const char* texts[] = {"Escalao Tera de ser Zero - C38", "Escalao de Peso Deve ser Superior a Zero - C38",
                                              "Escalao Tera de ser Zero - C39", "Escalao de Peso Errado - C38"};
                if (code <= -1 && code >= -4) { prepare(err, -16 + code, std::string(texts[-code - 1])); throw Raise{}; }
            }
        }
        if (empty(c)) { prepare(err, -3, std::string("Erro na Validação do Peso")); throw Raise{}; }
        pass("getXML_DoValVelocidade", "CODVELOCIDADE", line.speed, -4, "Erro na Velocidade");
        pass("getXML_DoValFormato", "CODFORMATO", line.format, -5, "Erro no Formato");
        if (pre_selected) {
            for (auto& id : c)
                if (id && !has_pre_treatment(*id)) id.reset();
            if (empty(c)) { prepare(err, -6, std::string("Erro no Pre-tratamento")); throw Raise{}; }
        }
        pass("getXML_DoValDesconto", "CODDESCONTO", line.discount, -7, "Erro no Desconto");
        pass("getXML_DoValAmbitoDist", "CODDAMBITODIST", line.scope, -8, "Erro no Ambito da Distribuição");
        pass("getXML_DoValEntrega_Sampling", "CODDENTREGASAMPLING", line.sampling.empty() ? "0" : line.sampling, -21,
             "Erro na Entrega Sampling");

        const std::string* survivor = nullptr;
        int count = 0;
        for (const auto& id : c)
            if (id) { ++count; survivor = &*id; }
        if (count != 1) { prepare(err, -9, std::string("Existem diversas regras de validação de serviços")); throw Raise{}; }

        if (services) {
            if (auto refused = DoValServEsp(*survivor, services)) { prepare(err, -10, std::move(*refused)); throw Raise{}; }
        }
        std::vector<std::string_view> views;
        if (services) views.assign(services->begin(), services->end());
        const validation::Services span = services ? validation::Services(views) : std::nullopt;
        auto verdict = validation::DoValServEspByProduto(line.product, line.zone, span);
        if (verdict.code <= -1 && verdict.code >= -9) {
            prepare(err, verdict.code >= -6 ? verdict.code - 10 : verdict.code - 15, ListArray(verdict.list.begin(), verdict.list.end()));
            throw Raise{};
        }
        return std::nullopt;
    } catch (...) {
        prepare(err, -100, std::string("Ocorreu um erro na leitura do XML"));
        return err;
    }
}

}  // namespace nimbara::testing
