#include "validation/possible_values.hpp"

#include "rules/possible_value_key.hpp"

#include <array>
#include <initializer_list>
#include <optional>


namespace nimbara::validation {
namespace {

using rules::PossibleValueTable;

struct Filter {
    const char* tag;
    std::string_view value;
};

enum class LabelRule {
    Tag,           // the label tag as it stands
    VazioForZero,  // "Vazio" for code "0", else the label tag
    Selection,     // code and label from whether PRETRATAMENTO reads "TRUE"
};

// The question's table and its rows by product.
struct Source {
    const PossibleValueTable& doc;
    const RowsByProduct& by_product;
};

Source source(const RuleCatalogue& catalogue, rules::PossibleValueKey key)
{
    return {catalogue.possible_values(key), catalogue.rows_by_product(key)};
}

struct Query {
    Source source;
    std::string_view product;
    std::initializer_list<Filter> filters;  // besides the product
    std::optional<std::int32_t> weight;     // the half-open test, where the procedure takes a weight
    bool min_only = false;                  // the bent test: only the minimum is compared
    const char* code_tag;
    const char* label_tag;
    LabelRule rule = LabelRule::Tag;
};

// Walks the product's rows in document order, taking every row whose filter tags equal their
// arguments and whose range holds the weight. A tag a row lacks reads as the empty text, and as 0
// where a bound is read. The bounds of every row are read before the filters decide, so a bound
// that is no number anywhere in the document fails every call that takes a weight.
PossibleValues walk(const Query& q)
{
    if (q.weight && q.source.by_product.bounds_unreadable()) return PossibleValuesFailed{};
    const PossibleValueTable& doc = q.source.doc;
    const auto text = [&doc](std::size_t row, std::optional<std::size_t> column) -> std::string_view {
        if (!column) return {};
        return doc.cell(row, *column).value_or(std::string_view{});
    };

    std::array<std::pair<std::optional<std::size_t>, std::string_view>, 8> filters;  // the procedures pass at most five
    std::size_t filter_count = 0;
    for (const auto& f : q.filters) filters[filter_count++] = {doc.column(f.tag), f.value};
    const auto code_column = doc.column(q.code_tag), label_column = doc.column(q.label_tag);

    std::vector<CodeLabel> out;
    for (const std::uint32_t row : q.source.by_product.rows(q.product)) {
        if (q.weight) {
            const auto [min, max] = doc.bounds[row];
            const bool in_range = q.min_only ? *min <= *q.weight : *min < *q.weight && *max >= *q.weight;
            if (!in_range) continue;
        }
        bool taken = true;
        for (std::size_t f = 0; f < filter_count && taken; ++f) taken = text(row, filters[f].first) == filters[f].second;
        if (!taken) continue;

        const std::string_view code = text(row, code_column);
        switch (q.rule) {
        case LabelRule::Tag: out.push_back({std::string(code), std::string(text(row, label_column))}); break;
        case LabelRule::VazioForZero:
            out.push_back({std::string(code), code == "0" ? "Vazio" : std::string(text(row, label_column))});
            break;
        case LabelRule::Selection:
            // The document holds pre-treatment codes, never the word, so every row reads as not selected.
            out.push_back(code == "TRUE" ? CodeLabel{"1", "Seleccionar"} : CodeLabel{"0", "Não Seleccionar"});
            break;
        }
    }
    return out;
}

// The discount codes of a document, with rule A's labels, for the line's leading fields.
PossibleValues discount_codes(Source document, std::string_view product, std::string_view zone,
                              std::string_view speed, std::string_view format, std::string_view pre_treatment,
                              std::int32_t weight)
{
    return walk({document, product,
                 {{"CODZTAXACAO", zone},
                  {"CODVELOCIDADE", speed},
                  {"CODFORMATO", format},
                  {"PRETRATAMENTO", pre_treatment}},
                 weight, false, "CODDESCONTO", "DESIGNACAO", LabelRule::VazioForZero});
}

}  // namespace

PossibleValues GetPossibleValues_ZonaTaxacao(std::string_view product, const RuleCatalogue& catalogue)
{
    return walk({source(catalogue, rules::PossibleValueKey::ZonaTaxacao), product, {}, std::nullopt, false,
                 "CODZTAXACAO", "DESIGNACAO"});
}

PossibleValues GetPossibleValues_Peso(std::string_view product, std::string_view zone, const RuleCatalogue& catalogue)
{
    return walk({source(catalogue, rules::PossibleValueKey::Peso), product, {{"CODZTAXACAO", zone}},
                 std::nullopt, false, "CESCALAOMIN", "CESCALAOMAX"});
}

PossibleValues GetPossibleValues_Velocidade(std::string_view product, std::string_view zone, std::int32_t weight,
                                            const RuleCatalogue& catalogue)
{
    // For products C38 and C10 only the minimum is compared with the weight.
    return walk({source(catalogue, rules::PossibleValueKey::Velocidade), product, {{"CODZTAXACAO", zone}},
                 weight, product == "C38" || product == "C10", "CODVELOCIDADE", "DESIGNACAO"});
}

PossibleValues GetPossibleValues_Formato(std::string_view product, std::string_view zone, std::string_view speed,
                                         std::int32_t weight, const RuleCatalogue& catalogue)
{
    return walk({source(catalogue, rules::PossibleValueKey::Formato), product,
                 {{"CODZTAXACAO", zone}, {"CODVELOCIDADE", speed}}, weight, false, "CODFORMATO", "DESIGNACAO",
                 LabelRule::VazioForZero});
}

PossibleValues GetPossibleValues_PreTratamento(std::string_view product, std::string_view zone, std::string_view speed,
                                               std::string_view format, std::int32_t weight,
                                               const RuleCatalogue& catalogue)
{
    return walk({source(catalogue, rules::PossibleValueKey::PreTratamento), product,
                 {{"CODZTAXACAO", zone}, {"CODVELOCIDADE", speed}, {"CODFORMATO", format}}, weight, false,
                 "PRETRATAMENTO", "PRETRATAMENTO", LabelRule::Selection});
}

PossibleValues GetPossibleValues_Desconto(std::string_view product, std::string_view zone, std::string_view speed,
                                          std::string_view format, std::string_view pre_treatment, std::int32_t weight,
                                          const RuleCatalogue& catalogue)
{
    return discount_codes(source(catalogue, rules::PossibleValueKey::Desconto), product, zone, speed, format,
                          pre_treatment, weight);
}

PossibleValues GetPossibleValues_AmbitoDistribuicao(std::string_view product, std::string_view zone,
                                                    std::string_view speed, std::string_view format,
                                                    std::string_view pre_treatment, std::int32_t weight,
                                                    const RuleCatalogue& catalogue)
{
    // Reads the discount tag of its own document, so it lists discount codes: that is how it has always answered.
    return discount_codes(source(catalogue, rules::PossibleValueKey::AmbitoDistribuicao), product, zone, speed, format,
                          pre_treatment, weight);
}

PossibleValues GetPossibleValues_AmostraDireta(std::string_view product, std::string_view zone, std::string_view speed,
                                               std::string_view format, std::string_view pre_treatment,
                                               std::string_view scope, std::int32_t weight,
                                               const RuleCatalogue& catalogue)
{
    // The sampling document stands shifted, with delivery labels where a minimum belongs, so the
    // bound of its first labelled row fails this call whatever the arguments.
    return walk({source(catalogue, rules::PossibleValueKey::EntregaSampling), product,
                 {{"CODZTAXACAO", zone},
                  {"CODVELOCIDADE", speed},
                  {"CODFORMATO", format},
                  {"PRETRATAMENTO", pre_treatment},
                  {"CODAMBITODIST", scope}},
                 weight, false, "CODENTREGASAMPLING", "DESIGNACAO", LabelRule::VazioForZero});
}

PossibleValues GetPossibleValues_ServicosEspeciais(std::string_view product, std::string_view zone,
                                                   std::string_view speed, std::string_view format,
                                                   std::string_view pre_treatment, std::string_view discount,
                                                   std::int32_t weight, const RuleCatalogue& catalogue)
{
    return walk({source(catalogue, rules::PossibleValueKey::ServicosEspeciais), product,
                 {{"CODZTAXACAO", zone},
                  {"CODVELOCIDADE", speed},
                  {"CODFORMATO", format},
                  {"PRETRATAMENTO", pre_treatment},
                  {"CODDESCONTO", discount}},
                 weight, false, "CODSERVICOE", "DESIGNACAO", LabelRule::VazioForZero});
}

}  // namespace nimbara::validation
