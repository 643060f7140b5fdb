#include "db_validation/rule_tables.hpp"

#include <algorithm>
#include <utility>

namespace nimbara::db_validation {
namespace {

struct DimensionTable {
    Dimension dimension;
    const char* table;
    const char* column;
};

constexpr DimensionTable kDimensionTables[] = {
    {Dimension::Zone, "tbl_Val_ZTaxacao", "CodZtaxacao"},
    {Dimension::Speed, "tbl_Val_Velocidade", "CodVelocidade"},
    {Dimension::Format, "tbl_Val_Formato", "CodFormato"},
    {Dimension::Discount, "tbl_Val_Desconto", "CodDesconto"},
    {Dimension::Scope, "tbl_Val_AmbitoDist", "CodAmbitoDist"},
};

std::optional<double> bound(const FieldValue& v)
{
    if (v.is_null()) return std::nullopt;
    try {
        return v.number();
    } catch (const std::exception&) {
        return std::nullopt;  // a bound that is no number compares with no weight
    }
}

// Calls `each(rule, value)` for every row of a dimension table whose rule is active; rows of rules
// that are not, or of no rule at all, are never consulted by the validation and are skipped.
template <class F>
void for_each_row(Database& db, const std::unordered_map<std::int64_t, TableRule*>& by_id, const char* table,
                  const char* column, F&& each)
{
    Recordset rs = db.open("SELECT CodValidacao, " + std::string(column) + " FROM " + table);
    for (; !rs.IsEOF(); rs.MoveNext()) {
        const FieldValue& id = rs[std::size_t{0}];
        if (id.is_null()) continue;
        const auto rule = by_id.find(id.integer());
        if (rule != by_id.end()) each(*rule->second, rs[std::size_t{1}]);
    }
}

}  // namespace

bool TableRule::accepts(Dimension d, std::string_view code) const
{
    const auto& codes = accepted[static_cast<std::size_t>(d)];
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

bool TableRule::accepts_weight(std::int32_t weight) const
{
    return min && max && *min <= weight && *max >= weight;
}

RuleTables RuleTables::read(Database& db)
{
    RuleTables tables;
    Recordset rs = db.open(
        "SELECT CodValidacao, Cod_Produto, C_Escalao_Min, C_Escalao_Max FROM tbl_Validacao WHERE Activo = ?", {true});
    for (; !rs.IsEOF(); rs.MoveNext()) {
        if (rs[std::size_t{0}].is_null() || rs[std::size_t{1}].is_null()) continue;  // matches no product
        TableRule rule;
        rule.id = rs[std::size_t{0}].integer();
        rule.min = bound(rs[std::size_t{2}]);
        rule.max = bound(rs[std::size_t{3}]);
        tables.products_[rs[std::size_t{1}].text()].push_back(std::move(rule));
    }

    // Pointers are taken once every vector has its final size.
    std::unordered_map<std::int64_t, TableRule*> by_id;
    for (auto& [product, rules] : tables.products_)
        for (auto& rule : rules) by_id.emplace(rule.id, &rule);

    for (const auto& d : kDimensionTables)
        for_each_row(db, by_id, d.table, d.column, [&](TableRule& rule, const FieldValue& code) {
            if (!code.is_null()) rule.accepted[static_cast<std::size_t>(d.dimension)].push_back(code.text());
        });
    for_each_row(db, by_id, "tbl_Val_PreTratamento", "Pre_Tratamento",
                 [](TableRule& rule, const FieldValue&) { rule.pre_treatment = true; });
    for_each_row(db, by_id, "tbl_Val_ServicoE", "CodServicoE", [](TableRule& rule, const FieldValue& code) {
        if (!code.is_null()) rule.services.push_back(code.text());
    });
    return tables;
}

std::span<const TableRule> RuleTables::active_rules(std::string_view product) const
{
    const auto found = products_.find(product);
    if (found == products_.end()) return {};
    return found->second;
}

}  // namespace nimbara::db_validation
