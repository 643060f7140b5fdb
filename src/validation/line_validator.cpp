#include "validation/line_validator.hpp"

#include <array>
#include <bit>
#include <vector>

#include "foundation/text.hpp"
#include "validation/service_rules.hpp"

namespace nimbara::validation {
namespace {

constexpr std::string_view kReadError = "Ocorreu um erro na leitura do XML";

LineVerdict fail(std::int32_t number, std::string_view text) { return {number, text, {}, nullptr}; }

bool is_c38_or_c39(std::string_view product) { return product == "C38" || product == "C39"; }

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

enum class PreTreatment { NotSelected, Selected, NoNumber };

// The pre-treatment read as a 16-bit number. Plain digits, as lines carry them, are read on the spot;
// any other text takes the general conversion, which answers alike for digits.
PreTreatment pre_treatment_of(std::string_view text)
{
    bool digits = !text.empty() && text.size() <= 4;
    int value = 0;
    for (std::size_t i = 0; digits && i < text.size(); ++i) {
        digits = text[i] >= '0' && text[i] <= '9';
        value = value * 10 + (text[i] - '0');
    }
    if (!digits) {
        const auto number = text::to_int16(text);
        if (!number) return PreTreatment::NoNumber;
        value = *number;
    }
    return value > 0 ? PreTreatment::Selected : PreTreatment::NotSelected;
}

// The line's services split at the commas, kept on the stack for the usual handful.
class SplitServices {
public:
    explicit SplitServices(std::string_view text)
    {
        if (text.empty()) return;  // no list at all, which is not an empty list
        // Codes are a few characters long: a plain scan beats a search call per code.
        std::size_t start = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != ',') continue;
            add(text.substr(start, i - start));
            start = i + 1;
        }
        add(text.substr(start));
        present_ = true;
    }

    Services services() const
    {
        if (!present_) return std::nullopt;
        if (!more_.empty()) return std::span<const std::string_view>(more_);
        return std::span<const std::string_view>(few_.codes.data(), count_);
    }
    // Each service's key, in the same order.
    std::span<const CodeKey> keys() const
    {
        if (!more_keys_.empty()) return more_keys_;
        return {few_keys_.data(), count_};
    }

private:
    void add(std::string_view code)
    {
        if (count_ < few_.codes.size()) {
            few_.codes[count_] = code;
            few_keys_[count_++] = key_or_long(code);
            return;
        }
        if (more_.empty()) {
            more_.assign(few_.codes.begin(), few_.codes.end());
            more_keys_.assign(few_keys_.begin(), few_keys_.end());
        }
        more_.push_back(code);
        more_keys_.push_back(key_or_long(code));
    }

    // Left unset until a code is added: a line is split once per check, and clearing eight codes
    // first would cost as much as splitting them.
    union Few {
        Few() {}
        std::array<std::string_view, 8> codes;
    } few_;
    std::array<CodeKey, 8> few_keys_;  // likewise unset: plain integers are not cleared
    std::size_t count_ = 0;
    std::vector<std::string_view> more_;
    std::vector<CodeKey> more_keys_;
    bool present_ = false;
};

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

LineVerdict check_line(const RuleIndex& index, const LineInput& line)
{
    const PreTreatment pre_treatment = pre_treatment_of(line.pre_treatment);
    if (pre_treatment == PreTreatment::NoNumber) return fail(-100, kReadError);

    const RuleIndex::Product* product = index.product(line.product);
    if (product == nullptr) return fail(-100, kReadError);

    RuleSet alive = product->all & index.accepting(*product, Dimension::Zone, line.zone);
    if (alive == 0) return fail(-2, "Erro na Zona de Taxação");

    if (product->walks_weight_rows) {
        // The walk may answer an error of its own, which ends the pass at once.
        for (RuleSet bits = alive; bits != 0; bits &= bits - 1) {
            const int i = std::countr_zero(bits);
            const WeightVerdict v = DoValPeso(index, *product->rules[static_cast<std::size_t>(i)], line.weight,
                                              line.zone, line.product);
            if (v.passes) continue;
            if (v.code >= -4 && v.code <= -1) return fail(weight_error_number(v.code), weight_error_text(v.code));
            alive &= ~(RuleSet{1} << i);
        }
    } else {
        alive &= product->holding_weight(line.weight);
    }
    if (alive == 0) return fail(-3, "Erro na Validação do Peso");

    alive &= index.accepting(*product, Dimension::Speed, line.speed);
    if (alive == 0) return fail(-4, "Erro na Velocidade");

    alive &= index.accepting(*product, Dimension::Format, line.format);
    if (alive == 0) return fail(-5, "Erro no Formato");

    if (pre_treatment == PreTreatment::Selected) {
        alive &= product->pre_treatment;
        if (alive == 0) return fail(-6, "Erro no Pre-tratamento");
    }

    alive &= index.accepting(*product, Dimension::Discount, line.discount);
    if (alive == 0) return fail(-7, "Erro no Desconto");

    alive &= index.accepting(*product, Dimension::Scope, line.scope);
    if (alive == 0) return fail(-8, "Erro no Ambito da Distribuição");

    alive &= index.accepting(*product, Dimension::Sampling, line.sampling.empty() ? std::string_view("0") : line.sampling);
    if (alive == 0) return fail(-21, "Erro na Entrega Sampling");

    // Exactly one rule must stand; clearing the lowest bit must leave nothing.
    if ((alive & (alive - 1)) != 0) return fail(-9, "Existem diversas regras de validação de serviços");
    const IndexedRule& rule = *product->rules[static_cast<std::size_t>(std::countr_zero(alive))];

    const SplitServices split(line.services);
    const Services services = split.services();
    if (services && !admits_all_services(rule, *services, split.keys())) return {-10, {}, {}, &rule};

    const ProductServiceVerdict verdict = DoValServEspByProduto(product->service_family, line.zone, services);
    if (verdict.code <= -1 && verdict.code >= -9) return {product_service_error_number(verdict.code), {}, verdict.list, nullptr};
    return {};
}

ErrorArray LineVerdict::error(const LineInput& line) const
{
    if (!text.empty()) return {number, std::string(text)};
    if (rule != nullptr) {
        const SplitServices split(line.services);
        return {number, DoValServEsp(*rule, *split.services()).value_or(ListArray{})};
    }
    return {number, ListArray(codes.begin(), codes.end())};
}

ValidationResult validate_line(const RuleIndex& index, const LineInput& line)
{
    const LineVerdict verdict = check_line(index, line);
    if (verdict.passes()) return std::nullopt;
    return verdict.error(line);
}

}  // namespace nimbara::validation
