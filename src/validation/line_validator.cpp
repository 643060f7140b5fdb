#include "validation/line_validator.hpp"

#include <algorithm>
#include <bit>
#include <vector>

#include "foundation/text.hpp"
#include "validation/service_rules.hpp"

namespace nimbara::validation {
namespace {

constexpr std::string_view kReadError = "Ocorreu um erro na leitura do XML";

ErrorArray error(std::int32_t number, std::string_view text) { return {number, std::string(text)}; }

bool is_c38_or_c39(std::string_view product) { return product == "C38" || product == "C39"; }

// The surviving candidates as bits over the product's rules, in rule-list order.
class Candidates {
public:
    explicit Candidates(std::span<const IndexedRule* const> rules)
        : rules_(rules), alive_(rules.size() == 64 ? ~0ULL : (1ULL << rules.size()) - 1) {}

    bool empty() const { return alive_ == 0; }
    int count() const { return std::popcount(alive_); }
    const IndexedRule& only() const { return *rules_[static_cast<std::size_t>(std::countr_zero(alive_))]; }

    // Strikes out every surviving rule for which keep() is false.
    template <class Keep>
    void strike_unless(Keep keep)
    {
        for (std::uint64_t bits = alive_; bits != 0; bits &= bits - 1) {
            const int i = std::countr_zero(bits);
            if (!keep(*rules_[static_cast<std::size_t>(i)])) alive_ &= ~(1ULL << i);
        }
    }

    // Strikes out the rules that do not list the code in the dimension.
    void strike_unless_accepted(Dimension d, std::string_view code)
    {
        const auto key = code_key(code);
        const auto slot = static_cast<std::size_t>(d);
        strike_unless([&](const IndexedRule& r) {
            return key && std::find(r.accepted[slot].begin(), r.accepted[slot].end(), *key) != r.accepted[slot].end();
        });
    }

private:
    std::span<const IndexedRule* const> rules_;
    std::uint64_t alive_;
};

std::int32_t weight_error_number(int code) { return code - 16; }  // -1..-4 become -17..-20

std::string_view weight_error_text(int code)
{
    switch (code) {
    case -1: return "Escalao Tera de ser Zero - C38";
    case -2: return "Escalao de Peso Deve ser Superior a Zero - C38";
    case -3: return "Escalao Tera de ser Zero - C39";
    default: return "Escalao de Peso Errado - C38";
    }
}

// Product service codes -1..-6 map to -11..-16 and -7..-9 to -22..-24.
std::int32_t product_service_error_number(int code) { return code >= -6 ? code - 10 : code - 15; }

}  // namespace

WeightVerdict DoValPeso(const RuleIndex& index, const IndexedRule& rule, std::int32_t weight, std::string_view zone,
                        std::string_view product)
{
    if (!is_c38_or_c39(product)) {
        // The rule's own row is its product's, so the walk reduces to its half-open range.
        return {rule.weight_row && rule.min < weight && rule.max >= weight, 0};
    }
    bool result = false;
    for (const WeightRow& row : index.weight_rows()) {
        if (!is_c38_or_c39(row.product)) {
            if (row.id == rule.id && row.min < weight && row.max >= weight) return {true, 0};
        } else if (product == "C38") {
            result = true;
            if (zone == "01" && weight != 0) return {false, -1};
            if (zone == "04" && row.min >= weight) return {false, -2};
            if (zone == "04" && weight > row.max) return {false, -4};
        } else {
            result = true;
            if (zone == "01" && weight != 0) return {false, -3};
        }
    }
    return {result, 0};
}

ValidationResult validate_line(const RuleIndex& index, const LineInput& line)
{
    // Reused between calls so that splitting the services costs no allocation.
    thread_local std::vector<std::string_view> parts;
    Services services;
    if (!line.services.empty()) {
        parts.clear();
        std::size_t start = 0;
        while (true) {
            const auto comma = line.services.find(',', start);
            parts.push_back(line.services.substr(start, comma == std::string_view::npos ? comma : comma - start));
            if (comma == std::string_view::npos) break;
            start = comma + 1;
        }
        services = std::span<const std::string_view>(parts);
    }

    const auto pre_treatment = text::to_int16(line.pre_treatment);
    if (!pre_treatment) return error(-100, kReadError);

    const auto rules = index.active_rules(line.product);
    if (rules.empty()) return error(-100, kReadError);
    Candidates candidates(rules);

    candidates.strike_unless_accepted(Dimension::Zone, line.zone);
    if (candidates.empty()) return error(-2, "Erro na Zona de Taxação");

    std::optional<WeightVerdict> weight_failure;
    candidates.strike_unless([&](const IndexedRule& rule) {
        if (weight_failure) return true;  // an error code ends the pass at once
        const WeightVerdict v = DoValPeso(index, rule, line.weight, line.zone, line.product);
        if (!v.passes && v.code >= -4 && v.code <= -1) weight_failure = v;
        return v.passes;
    });
    if (weight_failure) return error(weight_error_number(weight_failure->code), weight_error_text(weight_failure->code));
    if (candidates.empty()) return error(-3, "Erro na Validação do Peso");

    candidates.strike_unless_accepted(Dimension::Speed, line.speed);
    if (candidates.empty()) return error(-4, "Erro na Velocidade");

    candidates.strike_unless_accepted(Dimension::Format, line.format);
    if (candidates.empty()) return error(-5, "Erro no Formato");

    if (*pre_treatment > 0) {
        // Only the presence of a pre-treatment row counts, whatever its value.
        candidates.strike_unless(
            [](const IndexedRule& r) { return !r.accepted[static_cast<std::size_t>(Dimension::PreTreatment)].empty(); });
        if (candidates.empty()) return error(-6, "Erro no Pre-tratamento");
    }

    candidates.strike_unless_accepted(Dimension::Discount, line.discount);
    if (candidates.empty()) return error(-7, "Erro no Desconto");

    candidates.strike_unless_accepted(Dimension::Scope, line.scope);
    if (candidates.empty()) return error(-8, "Erro no Ambito da Distribuição");

    candidates.strike_unless_accepted(Dimension::Sampling, line.sampling.empty() ? std::string_view("0") : line.sampling);
    if (candidates.empty()) return error(-21, "Erro na Entrega Sampling");

    if (candidates.count() != 1) return error(-9, "Existem diversas regras de validação de serviços");
    const IndexedRule& rule = candidates.only();

    if (services) {
        if (auto refused = DoValServEsp(rule, *services)) return ErrorArray{-10, std::move(*refused)};
    }

    ProductServiceVerdict verdict = DoValServEspByProduto(line.product, line.zone, services);
    if (verdict.code <= -1 && verdict.code >= -9)
        return ErrorArray{product_service_error_number(verdict.code), std::move(verdict.list)};
    return std::nullopt;
}

}  // namespace nimbara::validation
