#include "support/per_check_twin.hpp"

#include <algorithm>
#include <optional>
#include <vector>

#include "foundation/text.hpp"

namespace nimbara::testing {
namespace {

bool found(Database& db, const std::string& sql, std::initializer_list<FieldValue> values)
{
    return !db.open(sql, values).IsEOF();
}

bool in(const ListArray& s, const char* code) { return std::find(s.begin(), s.end(), code) != s.end(); }

// The hand-written service rules: code and list, or nothing.
std::optional<ErrorArray> product_services(const TwinLine& l)
{
    const ListArray& s = l.services;
    const auto p = l.product;
    if (p == "C24" && in(s, "02") && !in(s, "06")) return ErrorArray{-16, ListArray{"06"}};
    if ((p == "C06" || p == "C6" || p == "C20") && (in(s, "02") || in(s, "04")) && !in(s, "06"))
        return ErrorArray{-11, ListArray{"06"}};
    if (p == "C10" && (in(s, "02") || in(s, "04")) && !in(s, "01")) return ErrorArray{-12, ListArray{"01"}};
    if ((p == "E2" || p == "E02") && in(s, "03") && in(s, "11")) return ErrorArray{-13, ListArray{"03", "11"}};
    if ((p == "E1" || p == "E01") && !s.empty()) {
        const auto first = text::to_number(s.front());
        const auto zone = text::to_number(l.zone);
        if (!first || !zone || *first == 0) return std::nullopt;  // a failed reading lets the line pass
        if (*zone >= 17 && *zone <= 26 && !in(s, "03") && !in(s, "13")) return ErrorArray{-14, ListArray{"03", "13"}};
        if (*zone >= 27 && *zone <= 33 && !in(s, "02") && !in(s, "04") && !in(s, "13"))
            return ErrorArray{-15, ListArray{"02", "13"}};
    }
    return std::nullopt;
}

ErrorArray error(int number, const char* text) { return {number, std::string(text)}; }

}  // namespace

ValidationResult per_check_validate_line(Database& db, const TwinLine& l)
{
    std::vector<std::int64_t> candidates;
    for (Recordset rs = db.open("SELECT tbl_Validacao.CodValidacao FROM tbl_Validacao WHERE "
                                "tbl_Validacao.Cod_Produto = ? AND tbl_Validacao.Activo = ?",
                                {l.product, true});
         !rs.IsEOF(); rs.MoveNext())
        candidates.push_back(rs[std::size_t{0}].integer());
    if (candidates.empty()) return error(-1, "Não Existem Regras de Validação");

    const auto pass = [&](auto&& check) {
        std::erase_if(candidates, [&](std::int64_t id) { return !check(id); });
        return !candidates.empty();
    };
    const auto code_check = [&](const char* table, const char* column, const std::string& code) {
        return [&db, table, column, &code](std::int64_t id) {
            return found(db, std::string("SELECT ") + column + " FROM " + table + " WHERE CodValidacao = ? AND " +
                                 column + " = ?",
                         {id, code});
        };
    };
    if (!pass(code_check("tbl_Val_ZTaxacao", "CodZtaxacao", l.zone))) return error(-2, "Erro na Zona de Taxação");
    if (!pass([&](std::int64_t id) {
            return found(db, "SELECT CodValidacao FROM tbl_Validacao WHERE CodValidacao = ? AND "
                             "(C_Escalao_Min <= ? AND C_Escalao_Max >= ?)",
                         {id, l.weight, l.weight});
        }))
        return error(-3, "Erro na Validação do Peso");
    if (!pass(code_check("tbl_Val_Velocidade", "CodVelocidade", l.speed))) return error(-4, "Erro na Velocidade");
    if (!pass(code_check("tbl_Val_Formato", "CodFormato", l.format))) return error(-5, "Erro no Formato");
    if (!pass([&](std::int64_t id) {
            return found(db, "SELECT Pre_Tratamento FROM tbl_Val_PreTratamento WHERE CodValidacao = ?", {id});
        }))
        return error(-6, "Erro no Pre-tratamento");
    if (!pass(code_check("tbl_Val_Desconto", "CodDesconto", l.discount))) return error(-7, "Erro no Desconto");
    if (!pass(code_check("tbl_Val_AmbitoDist", "CodAmbitoDist", l.scope)))
        return error(-8, "Erro no Ambito da Distribuição");
    if (candidates.size() != 1) return error(-9, "Existem diversas regras de validação de serviços");

    if (!l.services.empty()) {
        std::vector<std::optional<std::string>> left(l.services.begin(), l.services.end());
        for (Recordset rs = db.open("SELECT CodServicoE FROM tbl_Val_ServicoE WHERE CodValidacao = ?", {candidates[0]});
             !rs.IsEOF(); rs.MoveNext()) {
            const auto hit = std::find(left.begin(), left.end(), rs[std::size_t{0}].text());
            if (hit != left.end()) hit->reset();
        }
        // What is left, joined with a comma only once some text stands, and split again.
        std::string joined;
        for (const auto& e : left)
            if (e) joined += (joined.empty() ? "" : ",") + *e;
        if (!joined.empty()) {
            ListArray refused;
            std::size_t start = 0;
            for (auto comma = joined.find(','); ; comma = joined.find(',', start)) {
                refused.push_back(joined.substr(start, comma - start));
                if (comma == std::string::npos) break;
                start = comma + 1;
            }
            return ErrorArray{-10, refused};
        }
    }
    if (auto e = product_services(l)) return e;
    return std::nullopt;
}

}  // namespace nimbara::testing
