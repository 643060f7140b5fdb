#include "db_validation/line_check.hpp"

#include <vector>

#include "db_validation/service_rules.hpp"

namespace nimbara::db_validation {
namespace {

ErrorArray error(std::int32_t number, const char* text) { return {number, std::string(text)}; }

}  // namespace

ValidationResult validate_table_line(const RuleTables& rules, const TableLine& line)
{
    const auto active = rules.active_rules(line.product);
    if (active.empty()) return error(-1, "Não Existem Regras de Validação");

    std::vector<const TableRule*> candidates;
    candidates.reserve(active.size());
    for (const auto& rule : active) candidates.push_back(&rule);
    // Strikes out the rules that fail the test; answers whether any is left.
    const auto keep_if = [&](auto&& test) {
        std::erase_if(candidates, [&](const TableRule* r) { return !test(*r); });
        return !candidates.empty();
    };
    const auto code_pass = [&](Dimension d, std::string_view code) {
        return keep_if([&](const TableRule& r) { return r.accepts(d, code); });
    };
    if (!code_pass(Dimension::Zone, line.zone)) return error(-2, "Erro na Zona de Taxação");
    if (!keep_if([&](const TableRule& r) { return r.accepts_weight(line.weight); }))
        return error(-3, "Erro na Validação do Peso");
    if (!code_pass(Dimension::Speed, line.speed)) return error(-4, "Erro na Velocidade");
    if (!code_pass(Dimension::Format, line.format)) return error(-5, "Erro no Formato");
    // Whatever the line says, a rule without a pre-treatment row is struck out here.
    if (!keep_if([](const TableRule& r) { return r.pre_treatment; })) return error(-6, "Erro no Pre-tratamento");
    if (!code_pass(Dimension::Discount, line.discount)) return error(-7, "Erro no Desconto");
    if (!code_pass(Dimension::Scope, line.scope)) return error(-8, "Erro no Ambito da Distribuição");
    if (candidates.size() != 1) return error(-9, "Existem diversas regras de validação de serviços");

    if (line.services) {
        if (auto refused = DoValServEsp(*candidates.front(), *line.services)) return ErrorArray{-10, std::move(*refused)};
    }
    ProductServiceVerdict verdict = DoValServEspByProduto(line.product, line.zone, line.services);
    if (verdict.code <= -1 && verdict.code >= -8) return ErrorArray{-10 + verdict.code, std::move(verdict.list)};
    return std::nullopt;
}

}  // namespace nimbara::db_validation
