#include "nimbara/cls_ValProdutos.hpp"

#include <stdexcept>

#include "db_validation/guia_checks.hpp"
#include "db_validation/line_check.hpp"
#include "db_validation/rule_cache.hpp"
#include "nimbara/mdl_Biz.hpp"

namespace nimbara {
namespace {

ErrorArray generic_error() { return {-100, std::string("Erro Genérico")}; }

}  // namespace

// As the old hosts expect, creation itself opens this thread's shared connection from the ini file.
cls_ValProdutos::cls_ValProdutos() { OpenConnection(); }
cls_ValProdutos::cls_ValProdutos(std::shared_ptr<Database> db) : db_(std::move(db)) {}

std::shared_ptr<Database> cls_ValProdutos::connection() const
{
    auto db = db_ ? db_ : gConn;
    if (!db) throw ConnectionError("no connection to the database");
    return db;
}

ValidationResult cls_ValProdutos::DoValidaProduto(std::string_view strIdProduto, std::string_view strCodZtaxacao,
                                                  std::int32_t lngPeso, std::string_view strVelocidade,
                                                  std::string_view strFormato, bool bolPreTratamento,
                                                  std::string_view strDesconto, std::string_view strCodAmbitoDist,
                                                  const ListArray& arrServEsp)
{
    try {
        const auto db = connection();
        const db_validation::RuleTables& rules = db_validation::RuleCache::of(db).current(db);
        return db_validation::validate_table_line(
            rules, {strIdProduto, strCodZtaxacao, lngPeso, strVelocidade, strFormato, bolPreTratamento, strDesconto,
                    strCodAmbitoDist, arrServEsp.empty() ? nullptr : &arrServEsp});
    } catch (const std::exception&) {
        return generic_error();
    }
}

ValidationResult cls_ValProdutos::DoValidaGuia(std::int32_t lngNGuia)
{
    try {
        return db_validation::validate_table_guia(*connection(), lngNGuia);
    } catch (const std::exception&) {
        return generic_error();
    }
}

void cls_ValProdutos::ValPreparaErro(ValidationResult& arrErr, std::int32_t lngErr,
                                     std::variant<std::string, ListArray> varDesc)
{
    if (!arrErr) arrErr = ErrorArray{lngErr, std::move(varDesc)};
}

}  // namespace nimbara
