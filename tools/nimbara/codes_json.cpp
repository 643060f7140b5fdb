#include "codes_json.hpp"

#include <algorithm>
#include <stdexcept>

#include "nimbara/catalogue_codes.hpp"

namespace nimbara::cli {
namespace {

struct Kind {
    std::string name;
    CodeKind kind;
    std::string field;  // the key of a product line in the Guia file
};

const std::vector<Kind>& kinds()
{
    static const std::vector<Kind> k = {
        {"zone", CodeKind::Zone, "A_Zona_Taxacao"},       {"product", CodeKind::Product, "B_Produto"},
        {"speed", CodeKind::Speed, "E_Velocidade"},       {"format", CodeKind::Format, "Formato"},
        {"discount", CodeKind::Discount, "Desconto"},     {"scope", CodeKind::Scope, "CodAmbitoDist"},
        {"pretreatment", CodeKind::PreTreatment, "PreTratamento"},
        {"sampling", CodeKind::Sampling, "Entrega_Sampling"},
        {"service", CodeKind::Service, "ListaServesp"},   {"weight", CodeKind::Weight, "Escalao"},
    };
    return k;
}

}  // namespace

std::vector<std::string> code_kind_names()
{
    std::vector<std::string> names;
    for (const auto& k : kinds()) names.push_back(k.name);
    return names;
}

nlohmann::ordered_json codes_document(const std::vector<std::string>& wanted, const std::optional<std::string>& product)
{
    if (product && !CatalogueHasProduct(*product))
        throw std::runtime_error("product \"" + *product + "\" has no active rule in the catalogue, so no line of it "
                                 "can pass (nimbara codes product lists the products)");
    const std::optional<std::string_view> of = product ? std::optional<std::string_view>(*product) : std::nullopt;
    nlohmann::ordered_json document = {{"status", 0}, {"product", product ? nlohmann::ordered_json(*product) : nullptr}};
    document["kinds"] = nlohmann::ordered_json::array();
    for (const auto& kind : kinds()) {
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), kind.name) == wanted.end()) continue;
        nlohmann::ordered_json entry = {{"kind", kind.name}, {"field", kind.field}};
        if (kind.kind == CodeKind::Weight) {
            entry["unit"] = "grams";
            entry["steps"] = nlohmann::ordered_json::array();
            for (const auto& step : CatalogueWeightSteps(of))
                entry["steps"].push_back({{"product", step.product}, {"above", step.above}, {"up_to", step.up_to}});
        } else {
            entry["codes"] = nlohmann::ordered_json::array();
            for (const auto& code : CatalogueCodes(kind.kind, of))
                entry["codes"].push_back({{"code", code.code}, {"designation", code.designation}});
        }
        document["kinds"].push_back(std::move(entry));
    }
    return document;
}

}  // namespace nimbara::cli
