#include "db_validation/line_check.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "db_validation/service_rules.hpp"

namespace nimbara::db_validation {
namespace {

constexpr std::size_t kMaxRulesOnStack = 64;

ErrorArray error(std::int32_t number, const char* text) { return {number, std::string(text)}; }

// The surviving candidates, kept on the stack for the usual handful of rules a product has.
class Candidates {
public:
    explicit Candidates(std::span<const TableRule> rules)
    {
        if (rules.size() > kMaxRulesOnStack) heap_.resize(rules.size());
        for (std::size_t i = 0; i < rules.size(); ++i) at(i) = &rules[i];
        count_ = rules.size();
    }

    // Strikes out the rules that fail the test; answers whether any is left.
    template <class Test>
    bool keep_if(Test&& test)
    {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < count_; ++i)
            if (test(*at(i))) at(kept++) = at(i);
        count_ = kept;
        return count_ > 0;
    }

    std::size_t size() const { return count_; }
    const TableRule& front() { return *at(0); }

private:
    const TableRule*& at(std::size_t i) { return heap_.empty() ? stack_[i] : heap_[i]; }

    std::array<const TableRule*, kMaxRulesOnStack> stack_{};
    std::vector<const TableRule*> heap_;
    std::size_t count_ = 0;
};

}  // namespace

ValidationResult validate_table_line(const RuleTables& rules, const TableLine& line)
{
    const auto active = rules.active_rules(line.product);
    if (active.empty()) return error(-1, "Não Existem Regras de Validação");

    Candidates candidates(active);
    const auto code_pass = [&](Dimension d, std::string_view code) {
        return candidates.keep_if([&](const TableRule& r) { return r.accepts(d, code); });
    };
    if (!code_pass(Dimension::Zone, line.zone)) return error(-2, "Erro na Zona de Taxação");
    if (!candidates.keep_if([&](const TableRule& r) { return r.accepts_weight(line.weight); }))
        return error(-3, "Erro na Validação do Peso");
    if (!code_pass(Dimension::Speed, line.speed)) return error(-4, "Erro na Velocidade");
    if (!code_pass(Dimension::Format, line.format)) return error(-5, "Erro no Formato");
    // Whatever the line says, a rule without a pre-treatment row is struck out here.
    if (!candidates.keep_if([](const TableRule& r) { return r.pre_treatment; }))
        return error(-6, "Erro no Pre-tratamento");
    if (!code_pass(Dimension::Discount, line.discount)) return error(-7, "Erro no Desconto");
    if (!code_pass(Dimension::Scope, line.scope)) return error(-8, "Erro no Ambito da Distribuição");
    if (candidates.size() != 1) return error(-9, "Existem diversas regras de validação de serviços");

    if (line.services) {
        if (auto refused = DoValServEsp(candidates.front(), *line.services)) return ErrorArray{-10, std::move(*refused)};
    }
    ProductServiceVerdict verdict = DoValServEspByProduto(line.product, line.zone, line.services);
    if (verdict.code <= -1 && verdict.code >= -8) return ErrorArray{-10 + verdict.code, std::move(verdict.list)};
    return std::nullopt;
}

}  // namespace nimbara::db_validation
