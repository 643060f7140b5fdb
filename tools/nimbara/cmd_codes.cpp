// nimbara codes [KIND...] [--product P]: the codes a product line may carry, from the compiled-in
// rule catalogue (no database), with their designations; with --product, only those its rules accept.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "commands.hpp"
#include "json_output.hpp"
#include "nimbara/catalogue_codes.hpp"
#include "option_checks.hpp"

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

struct CodesOptions {
    std::vector<std::string> kinds;
    std::string product;
    bool json = false;
};

int codes(const CodesOptions& o, std::ostream& out)
{
    const std::optional<std::string_view> product =
        o.product.empty() ? std::nullopt : std::optional<std::string_view>(o.product);
    if (product && !CatalogueHasProduct(*product))
        throw std::runtime_error("product \"" + o.product + "\" has no active rule in the catalogue, so no line of it "
                                 "can pass (nimbara codes product lists the products)");
    nlohmann::ordered_json document = {{"status", 0}, {"product", product ? nlohmann::ordered_json(o.product) : nullptr}};
    document["kinds"] = nlohmann::ordered_json::array();
    bool first = true;
    for (const auto& kind : kinds()) {
        if (!o.kinds.empty() && std::find(o.kinds.begin(), o.kinds.end(), kind.name) == o.kinds.end()) continue;
        nlohmann::ordered_json entry = {{"kind", kind.name}, {"field", kind.field}};
        if (!o.json) {
            out << (first ? "" : "\n") << kind.name << " (" << kind.field
                << (kind.kind == CodeKind::Weight ? ", grams" : "") << ")"
                << (product ? " for product " + o.product : std::string()) << ":\n";
        }
        first = false;
        if (kind.kind == CodeKind::Weight) {
            entry["unit"] = "grams";
            entry["steps"] = nlohmann::ordered_json::array();
            for (const auto& step : CatalogueWeightSteps(product)) {
                entry["steps"].push_back({{"product", step.product}, {"above", step.above}, {"up_to", step.up_to}});
                if (!o.json)
                    out << "  " << step.product << "  above " << step.above << ", up to " << step.up_to << '\n';
            }
        } else {
            entry["codes"] = nlohmann::ordered_json::array();
            for (const auto& code : CatalogueCodes(kind.kind, product)) {
                entry["codes"].push_back({{"code", code.code}, {"designation", code.designation}});
                if (!o.json)
                    out << "  " << code.code << std::string(code.code.size() < 4 ? 5 - code.code.size() : 1, ' ')
                        << (code.designation.empty() && code.code == "0" ? "(not applicable)" : code.designation) << '\n';
            }
        }
        document["kinds"].push_back(std::move(entry));
    }
    if (o.json) write_json(out, document);
    return 0;
}

}  // namespace

void register_codes(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("codes", "List the codes a product line may carry, from the compiled-in rule "
                                            "catalogue (no database), with their designations");
    auto o = std::make_shared<CodesOptions>();
    std::vector<std::string> names;
    for (const auto& k : kinds()) names.push_back(k.name);
    cmd->add_option("KIND", o->kinds, "The kinds of code to list (default: all)")->check(one_of(names));
    cmd->add_option("--product", o->product, "Only the codes the active rules of this product accept (e.g. C01)");
    cmd->add_flag("--json", o->json, "Write the lists as one JSON document");
    cmd->footer("Code \"0\" means the dimension does not apply to the line; an empty sampling delivery counts as "
                "\"0\". A weight (Escalao, grams) passes a step when it is above the step's first number and up to "
                "its second. Pre-treatment 1 stands for any whole number above 0.\n"
                "Exit status: 0 listed, 2 an unknown kind or a product without an active rule.\nExamples:\n"
                "  nimbara codes zone --product C01\n  nimbara codes service weight --product C06\n"
                "  nimbara codes product --json");
    cmd->callback([o, &status] {
        try {
            status = codes(*o, std::cout);
        } catch (const std::exception& e) {
            std::cerr << "nimbara codes: " << e.what() << '\n';
            if (o->json) write_json(std::cout, refusal_json("nimbara codes", e.what()));
            status = 2;
        }
    });
}

}  // namespace nimbara::cli
