#include "db_validation/guia_checks.hpp"

#include <string>

#include "entities/working_table.hpp"

namespace nimbara::db_validation {
namespace {

// Each check catches its own failures: a minimum that cannot be read counts as failed, an insert
// check that cannot be read as passed.

bool is_guia_mista(Database& db, std::int32_t n_req, const char* product)
{
    return !db.open("SELECT B_Produto FROM Tbl_Temp_Val_Guia WHERE N_Req = ? AND B_Produto = ? AND "
                    "A_Zona_Taxacao = '01'",
                    {n_req, product})
                .IsEOF();
}

// True unless the product's lines in the whole table add up to less than the minimum; `lower`
// is the comparison the sum must pass first (">= 0" or "> 0").
bool sum_reaches(Database& db, const char* product, int minimum, const char* lower)
{
    return db.open(std::string("SELECT B_Produto, SUM(D_Quantidade) AS Soma FROM Tbl_Temp_Val_Guia "
                               "WHERE B_Produto = ? GROUP BY B_Produto HAVING SUM(D_Quantidade) ") +
                       lower + " AND SUM(D_Quantidade) < ?",
                   {product, minimum})
        .IsEOF();
}

bool DoValDM(Database& db, const char* product, int minimum)
{
    try {
        return sum_reaches(db, product, minimum, "> 0");
    } catch (const std::exception&) {
        return false;
    }
}

bool DoValEdicaoPostal(Database& db, std::int32_t n_req, const char* product, int minimum)
{
    try {
        return !is_guia_mista(db, n_req, product) || sum_reaches(db, product, minimum, ">= 0");
    } catch (const std::exception&) {
        return false;
    }
}

// 0, or -3 for an insert without a carrier before it, -2 for one that differs from its carrier. The
// duplicate inserts' -1 (error -5) has no check here that could give it.
int DoValEncartes(Database& db, std::int32_t n_req)
{
    try {
        Recordset rs = db.open("SELECT B_Produto, A_Zona_Taxacao, E_Velocidade, D_Quantidade FROM Tbl_Temp_Val_Guia "
                               "WHERE N_Req = ? ORDER BY N_Linha",
                               {n_req});
        if (rs.IsEOF()) return 0;
        if (rs["B_Produto"].text() == "C25") return -3;
        std::string product, zone, speed;
        double quantity = 0;
        for (; !rs.IsEOF(); rs.MoveNext()) {
            const std::string this_product = rs["B_Produto"].text();
            const std::string this_zone = rs["A_Zona_Taxacao"].text();
            const std::string this_speed = rs["E_Velocidade"].text();
            const double this_quantity = rs["D_Quantidade"].number();
            if (this_product == "C25") {
                if (product != "C05" && product != "C03" && product != "C50") return -3;
                if (this_zone != zone || this_speed != speed || this_quantity != quantity) return -2;
            }
            product = this_product;
            zone = this_zone;
            speed = this_speed;
            quantity = this_quantity;
        }
        return 0;
    } catch (const std::exception&) {
        return 0;
    }
}

struct Minimum {
    const char* product;
    int minimum;
    std::int32_t number;
    const char* text;
};

constexpr Minimum kMinimums[] = {
    {"C07", 100, -2, "Erro Minimo de 100 Objectos"},
    {"C21", 100, -3, "Erro Minimo de 100 Objectos"},
    {"C22", 250, -4, "Erro Minimo de 250 Objectos"},
    {"C23", 100, -7, "Erro Minimo de 100 Objectos"},
};

}  // namespace

ValidationResult validate_table_guia(Database& db, std::int32_t n_req)
{
    // Outside a transaction the connection's own table is made if missing, so that a connection that
    // copied nothing in reads an empty table; inside one (which may be read-only) the table this
    // connection filled is there already.
    if (!db.in_transaction()) entities::prepare_working_table(db);
    if (!DoValEdicaoPostal(db, n_req, "C03", 500)) return ErrorArray{-1, std::string("Erro Minimo de 500 Objectos")};
    for (const auto& m : kMinimums)
        if (!DoValDM(db, m.product, m.minimum)) return ErrorArray{m.number, std::string(m.text)};
    switch (DoValEncartes(db, n_req)) {
    case -3: return ErrorArray{-8, std::string("Erro Não Existem Produtos Associados ao C25")};
    case -2: return ErrorArray{-6, std::string("Erro Validação")};
    default: return std::nullopt;
    }
}

}  // namespace nimbara::db_validation
