#include "nimbara/cls_Guia.hpp"

#include <stdexcept>
#include <vector>

#include "entities/connection.hpp"
#include "entities/listing_order.hpp"
#include "foundation/text.hpp"

namespace nimbara {
namespace {

// Aliases are quoted so that both stores report them as written here.
constexpr const char* kLineColumns =
    "Tbl_Linha.N_Req AS \"Req1\", Tbl_Cab.N_Req2 AS \"Req2\", Tbl_Linha.N_Req AS \"Req\", "
    "Tbl_Cab.Id_Req_Anual AS \"Guia\", Tbl_Linha.N_Linha AS \"N_linha\", ";

constexpr const char* kLineColumnsAfterDate =
    "Tbl_Cliente.Cod_Cliente AS \"Cliente\", Tbl_Cliente.Nome AS \"Nome\", "
    "Tbl_Contrato.Cod_Contrato AS \"Contrato\", "
    "Tbl_E_Velocidade.Codigo || ' - ' || Tbl_E_Velocidade.Designacao AS \"Velocidade\", "
    "Tbl_B_Produto.Codigo || ' - ' || Tbl_B_Produto.Designacao AS \"Produto\", "
    "Tbl_A_ZonaTaxacao.Codigo || ' - ' || Tbl_A_ZonaTaxacao.Designacao AS \"Zona\", "
    "Tbl_Linha.C_Escalao AS \"Peso\", "
    "Tbl_F_Formato.Codigo || ' - ' || Tbl_F_Formato.Designacao AS \"Formato\", "
    "Tbl_N_AmbitoDistribuicao.Codigo || ' - ' || Tbl_N_AmbitoDistribuicao.Designacao AS \"Ambito\", "
    "Tbl_Linha.D_Quantidade AS \"Quantidade\", Tbl_Linha.CodigoCampanha AS \"CodigoCampanha\" ";

// Cross joins with their conditions in the WHERE clause mean inner joins on both stores, and make
// SQLite keep this order of tables, which follows the indexes from client to line: left to choose,
// on a database whose lines all share a few codes, it looped over every line for each client.
constexpr const char* kLineTables =
    "FROM Tbl_Cliente CROSS JOIN Tbl_Contrato CROSS JOIN Tbl_Cab CROSS JOIN Tbl_Linha "
    "CROSS JOIN Tbl_A_ZonaTaxacao CROSS JOIN Tbl_B_Produto CROSS JOIN Tbl_E_Velocidade CROSS JOIN Tbl_F_Formato "
    "CROSS JOIN Tbl_N_AmbitoDistribuicao";

constexpr const char* kLineJoins[] = {
    "Tbl_Contrato.Id_Cliente = Tbl_Cliente.Id_Cliente",
    "Tbl_Cab.Cod_Contrato = Tbl_Contrato.Cod_Contrato",
    "Tbl_Cab.Id_Cliente = Tbl_Contrato.Id_Cliente",
    "Tbl_Linha.N_Req = Tbl_Cab.N_Req",
    "Tbl_A_ZonaTaxacao.Codigo = Tbl_Linha.A_Zona_Taxacao",
    "Tbl_B_Produto.Codigo = Tbl_Linha.B_Produto",
    "Tbl_E_Velocidade.Codigo = Tbl_Linha.E_Velocidade",
    "Tbl_F_Formato.Codigo = Tbl_Linha.F_Formato",
    "Tbl_N_AmbitoDistribuicao.Codigo = Tbl_Linha.N_Ambito_Distrib",
};

// The amount is kept in cents as text; a comma goes before its last two digits, and an amount of
// one digit is read as cents (the old expression failed on it).
constexpr const char* kAmount =
    "CASE WHEN length(Tbl_Linha_ServicoEspecial.Valor) >= 2 "
    "THEN substr(Tbl_Linha_ServicoEspecial.Valor, 1, length(Tbl_Linha_ServicoEspecial.Valor) - 2) || ',' || "
    "substr(Tbl_Linha_ServicoEspecial.Valor, length(Tbl_Linha_ServicoEspecial.Valor) - 1) "
    "ELSE '0,' || substr('00' || Tbl_Linha_ServicoEspecial.Valor, length(Tbl_Linha_ServicoEspecial.Valor) + 1) "
    "END AS \"Valor\" ";

constexpr const char* kServicesOfLine =
    "FROM Tbl_I_ServicosEspeciais INNER JOIN Tbl_Linha_ServicoEspecial "
    "ON Tbl_I_ServicosEspeciais.Codigo = Tbl_Linha_ServicoEspecial.CodigoServicoEspecial "
    "WHERE Tbl_Linha_ServicoEspecial.N_Req = ? AND Tbl_Linha_ServicoEspecial.N_Linha = ? "
    "ORDER BY Tbl_Linha_ServicoEspecial.CodigoServicoEspecial";

// A filter's number, as the old statement took it pasted: blanks around it are allowed.
std::int32_t filter_number(const std::string& value, const char* what)
{
    if (auto n = text::parse_int32(text::trim(value))) return *n;
    throw std::invalid_argument("the " + std::string(what) + " \"" + value + "\" is no whole number");
}

bool given(const std::string& value) { return !value.empty() && value != "0"; }

std::string where(const std::vector<std::string>& conditions)
{
    std::string sql;
    for (std::size_t i = 0; i < conditions.size(); ++i) sql += (i ? " AND " : " WHERE ") + conditions[i];
    return sql;
}

std::optional<Recordset> unless_empty(Recordset rs)
{
    if (rs.RecordCount() > 0) return rs;
    return std::nullopt;
}

// Each query keeps its failure for LastError() and answers nothing, as the old traps did.
template <class F>
auto trapped(std::string& last_error, F&& query) -> decltype(query())
{
    try {
        auto result = query();
        last_error.clear();
        return result;
    } catch (const std::exception& e) {
        last_error = e.what();
        return {};
    }
}

// A year, or a month of a year, is a range of dates, which the date indexes serve; a month
// without a year (or out of the calendar) is compared as a number.
void date_filter(const Database& db, std::optional<std::int32_t> year, std::optional<std::int32_t> month,
                 std::vector<std::string>& conditions, std::vector<FieldValue>& values)
{
    const bool calendar_year = year && *year >= 1 && *year <= 9998;
    const bool calendar_month = month && *month >= 1 && *month <= 12;
    if (calendar_year) {
        const int first = calendar_month ? *month : 1;
        conditions.emplace_back("Tbl_Cab.D_Req >= ? AND Tbl_Cab.D_Req < ?");
        values.emplace_back(Timestamp{*year, first, 1});
        values.emplace_back(!calendar_month || first == 12 ? Timestamp{*year + 1, 1, 1} : Timestamp{*year, first + 1, 1});
    } else if (year) {
        conditions.emplace_back(db.year_of("Tbl_Cab.D_Req") + " = ?");
        values.emplace_back(*year);
    }
    if (month && !(calendar_year && calendar_month)) {
        conditions.emplace_back(db.month_of("Tbl_Cab.D_Req") + " = ?");
        values.emplace_back(*month);
    }
}

}  // namespace

cls_Guia::cls_Guia() : myConn(entities::connection_from_ini()) {}
cls_Guia::cls_Guia(std::shared_ptr<Database> db) : myConn(std::move(db)) {}

std::optional<Recordset> cls_Guia::getRSAno()
{
    return trapped(last_error_, [&]() -> std::optional<Recordset> {
        Database& db = entities::require(myConn);
        const std::string year = db.year_of("Tbl_Cab.D_Req");
        return unless_empty(db.open("SELECT DISTINCT " + year + " AS \"Ano\" FROM Tbl_Cab ORDER BY 1 DESC"));
    });
}

std::optional<Recordset> cls_Guia::getRSClientes(const std::string& strAno)
{
    return trapped(last_error_, [&]() -> std::optional<Recordset> {
        Database& db = entities::require(myConn);
        std::vector<std::string> conditions = {"Tbl_Cab.Cod_Cliente = Tbl_Cliente.Cod_Cliente"};
        std::vector<FieldValue> values;
        date_filter(db, filter_number(strAno, "year"), std::nullopt, conditions, values);
        std::string sql = "SELECT Tbl_Cab.Cod_Cliente AS \"Cod_Cliente\", Tbl_Cliente.Nome AS \"Nome\" "
                          "FROM Tbl_Cab, Tbl_Cliente";
        return unless_empty(
            db.open(sql + where(conditions) + " GROUP BY Tbl_Cab.Cod_Cliente, Tbl_Cliente.Nome ORDER BY Tbl_Cab.Cod_Cliente", values));
    });
}

std::optional<Recordset> cls_Guia::getRSNomesClientes(const std::string& /*NCliente*/)
{
    return trapped(last_error_, [&]() -> std::optional<Recordset> {
        return unless_empty(entities::require(myConn).open(
            "SELECT Id_Cliente AS \"Id_Cliente\", Cod_Cliente AS \"Cod_Cliente\", Nome AS \"Nome\" FROM Tbl_Cliente "
            "ORDER BY Id_Cliente"));
    });
}

std::optional<Recordset> cls_Guia::getRSServEsp(std::int32_t lngNReq, std::int32_t lngNLinha)
{
    auto rs = trapped(last_error_, [&]() -> std::optional<Recordset> {
        return entities::require(myConn).open(
            std::string("SELECT Tbl_Linha_ServicoEspecial.CodigoServicoEspecial AS \"CodigoServicoEspecial1\", "
                        "Tbl_Linha_ServicoEspecial.CodigoServicoEspecial AS \"CodigoServicoEspecial\", "
                        "Tbl_I_ServicosEspeciais.Designacao AS \"Designacao\", ") +
                kAmount + kServicesOfLine,
            {lngNReq, lngNLinha});
    });
    if (rs && rs->RecordCount() < 1) return getRSServEspEmpty();
    return rs;
}

std::optional<Recordset> cls_Guia::getRSServEspEmpty()
{
    return trapped(last_error_, [&]() -> std::optional<Recordset> {
        return entities::require(myConn).open(
            "SELECT '0' AS \"CodigoServicoEspecial1\", '' AS \"CodigoServicoEspecial\", '' AS \"Designacao\", "
            "'' AS \"Valor\" WHERE EXISTS (SELECT 1 FROM Tbl_Linha_ServicoEspecial)");
    });
}

std::string cls_Guia::getRSServEspExport(std::int32_t lngNReq, std::int32_t lngNLinha, const std::string& strSep)
{
    return trapped(last_error_, [&]() -> std::string {
        Recordset rs = entities::require(myConn).open(
            std::string("SELECT Tbl_Linha_ServicoEspecial.CodigoServicoEspecial AS \"CodigoServicoEspecial\", "
                        "Tbl_I_ServicosEspeciais.Designacao AS \"Designacao\", ") +
                kAmount + kServicesOfLine,
            {lngNReq, lngNLinha});
        std::string out;
        if (rs.RecordCount() == 0) {
            out = " ";
            for (int i = 0; i < 5; ++i) out += strSep + " ";
            return out;
        }
        for (; !rs.IsEOF(); rs.MoveNext())
            out += rs[0].text() + " - " + rs[1].text() + strSep + rs[2].text() + strSep;
        return out;
    });
}

namespace {

struct Query {
    std::string sql;
    std::vector<FieldValue> values;
};

// The listing's statement under the filters and the order; throws naming a refused word or filter.
Query guia_lines_query(const Database& db, const std::string& strAno, const std::string& strMes,
                       const std::string& strCliente, const std::string& strOrder)
{
    std::vector<std::string> conditions(std::begin(kLineJoins), std::end(kLineJoins));
    Query q;
    if (given(strCliente)) {
        conditions.emplace_back("Tbl_Cliente.Cod_Cliente = ?");
        q.values.emplace_back(filter_number(strCliente, "client number"));
    }
    const std::optional<std::int32_t> year =
        strAno.empty() ? std::nullopt : std::optional(filter_number(strAno, "year"));
    const std::optional<std::int32_t> month =
        given(strMes) ? std::optional(filter_number(strMes, "month")) : std::nullopt;
    date_filter(db, year, month, conditions, q.values);
    q.sql = std::string("SELECT ") + kLineColumns + db.date_text("Tbl_Cab.D_Req", DateText::DaySlashed) + " AS \"Data\", " +
            kLineColumnsAfterDate + kLineTables;
    q.sql += where(conditions);
    // The lines of one Guia come in their order whatever order was asked for.
    if (strOrder.empty())
        q.sql += " ORDER BY Tbl_Cliente.Cod_Cliente ASC, Tbl_Cab.N_req2 ASC";
    else
        q.sql += " ORDER BY " + entities::listing_order_columns(strOrder) + ", Tbl_Cliente.Cod_Cliente ASC";
    q.sql += ", Tbl_Linha.N_Req, Tbl_Linha.N_Linha";
    return q;
}

}  // namespace

std::optional<Recordset> cls_Guia::getRSGuia(const std::string& strAno, const std::string& strMes,
                                             const std::string& strCliente, const std::string& strOrder,
                                             std::int16_t* erro)
{
    auto rs = trapped(last_error_, [&]() -> std::optional<Recordset> {
        Database& db = entities::require(myConn);
        const Query q = guia_lines_query(db, strAno, strMes, strCliente, strOrder);
        return db.open(q.sql, q.values);
    });
    if (!rs) {
        if (erro) *erro = 1;
        return rs;
    }
    if (rs->RecordCount() < 1) return getRSGuiaEmpty();
    return rs;
}

bool cls_Guia::StreamGuiaLines(const std::string& strAno, const std::string& strMes, const std::string& strCliente,
                               const std::string& strOrder, const RowSink& sink)
{
    return trapped(last_error_, [&] {
        Database& db = entities::require(myConn);
        const Query q = guia_lines_query(db, strAno, strMes, strCliente, strOrder);
        db.stream(q.sql, q.values, sink);
        return true;
    });
}

std::optional<Recordset> cls_Guia::getRSGuiaEmpty()
{
    return trapped(last_error_, [&]() -> std::optional<Recordset> {
        return entities::require(myConn).open(
            "SELECT '0' AS \"Req1\", '1' AS \"Req2\", '' AS \"Req\", '' AS \"N_linha\", '' AS \"Data\", "
            "'' AS \"Cliente\", '' AS \"Nome\", '' AS \"Contrato\", '' AS \"Velocidade\", '' AS \"Produto\", "
            "'' AS \"Zona\", '' AS \"Peso\", '' AS \"Formato\", '' AS \"Ambito\", '' AS \"Quantidade\" "
            "WHERE EXISTS (SELECT 1 FROM Tbl_Linha)");
    });
}

std::string cls_Guia::Replace(const std::string& sIn, const std::string& sFind, const std::string& sReplace,
                              std::int32_t nStart, std::int32_t nCount, CompareMode bCompare)
{
    if (sFind == sReplace || sFind.empty()) return sIn;
    if (nStart < 1) throw std::invalid_argument("Invalid procedure call or argument");
    // Upper-casing keeps the length of every letter, so positions found in the folded copies hold.
    const auto fold = [&](const std::string& s) { return bCompare == CompareMode::Text ? text::to_upper(s) : s; };
    std::string out = sIn;
    std::string folded = fold(out);
    const std::string find = fold(sFind);
    const std::string replacement_folded = fold(sReplace);
    std::int32_t count = 0;
    std::size_t at = folded.find(find, static_cast<std::size_t>(nStart - 1));
    while (at != std::string::npos) {
        out.replace(at, sFind.size(), sReplace);
        folded.replace(at, find.size(), replacement_folded);
        if (++count == nCount) break;
        at = folded.find(find, at + sReplace.size());
    }
    return out;
}

}  // namespace nimbara
