#include "entities/schema_tables.hpp"

#include <algorithm>
#include <cctype>
#include <span>
#include <stdexcept>
#include <string_view>

namespace nimbara::entities {
namespace {

// Types as both stores spell them. Texts carry the width of the register; yes/no are booleans and
// dates timestamps (SQLite keeps them as ISO text).
constexpr const char* kLong = "INTEGER";
constexpr const char* kShort = "SMALLINT";
constexpr const char* kYesNo = "BOOLEAN";
constexpr const char* kDate = "TIMESTAMP";
constexpr const char* kCode = "VARCHAR(10)";
constexpr const char* kShortText = "VARCHAR(50)";
constexpr const char* kName = "VARCHAR(100)";
constexpr const char* kLongText = "VARCHAR(255)";
// Remarks were memo fields: the old files hold some of more than twenty thousand characters.
constexpr const char* kMemo = "TEXT";

struct Column {
    const char* name;
    const char* type;
};

struct Table {
    const char* name;
    std::vector<Column> columns;
    const char* key;  // the primary key's columns, or nullptr where the register names none
    // Kept in the order of its key on SQLite, where rows read by their key's first columns are then
    // found in the key's tree itself rather than by a seek from it.
    bool clustered = false;
};

std::vector<Column> reference_columns(bool with_activo, const char* code_type = kCode)
{
    std::vector<Column> c = {{"Codigo", code_type}, {"Designacao", kName}};
    if (with_activo) c.insert(c.end(), {{"Activo", kYesNo}, {"Observacoes", kLongText}});
    return c;
}

std::vector<Column> rule_dimension(const char* column, const char* type = kCode)
{
    return {{"CodValidacao", kLong}, {column, type}};
}

const std::vector<Table>& tables()
{
    static const std::vector<Table> t = {
        {"Tbl_Cliente",
         {{"Id_Cliente", kLong}, {"Cod_Cliente", kLong}, {"Nome", kName}, {"iTipoCliente", kShort},
          {"Morada", kLongText}, {"Localidade", kName}, {"Cod_Postal", kShortText}, {"Desig_Postal", kName},
          {"NContribuinte", kShortText}, {"Observacoes", kMemo}, {"IAcessoRede", kShort}},
         "Id_Cliente"},
        {"Tbl_Contrato",
         {{"Id_Cliente", kLong}, {"Cod_Cliente", kLong}, {"Cod_Contrato", kLong}, {"Designacao", kName},
          {"JPP_Credenciado", kYesNo}, {"Cod_Credencial", kShortText}, {"Validacao", kShortText},
          {"Descricao", kLongText}, {"bActivo", kYesNo}, {"dDataActividade", kDate}},
         "Id_Cliente, Cod_Contrato"},
        {"Tbl_Cab",
         {{"N_Req", kLong}, {"N_Req2", kLong}, {"Id_Req_Anual", kLong}, {"Id_Cliente", kLong},
          {"Cod_Cliente", kLong}, {"Cod_Contrato", kLong}, {"CodigoTerceiro", kShortText}, {"N_Pag", kLong},
          {"D_Req", kDate}, {"Pagamento", kShort}, {"Credenciado", kYesNo}, {"N_Credencial", kShortText},
          {"Recolhido", kYesNo}, {"Situacao", kShortText}, {"Ficheiro", kLongText}, {"Observacoes", kMemo},
          {"nCompromisso", kShortText}},
         "N_Req"},
        {"Tbl_Linha",
         {{"N_Req", kLong}, {"N_Linha", kShort}, {"A_Zona_Taxacao", kCode}, {"B_Produto", kCode},
          {"C_Escalao", kLong}, {"D_Quantidade", kLong}, {"E_Velocidade", kCode}, {"F_Formato", kCode},
          {"G_Pre_Tratamento", kShort}, {"H_Descontos", kCode}, {"I_Servicos_Especiais", kLongText},
          {"KM_Vexora", kShortText}, {"K_Entrega_Sampling", kCode}, {"L_TaxEsp_Semana", kShort},
          {"M_TaxEsp_Quantidade", kShort}, {"N_Ambito_Distrib", kCode}, {"LinhaContinuacao", kShortText},
          {"O_Divisao_Remetente", kShortText}, {"CodigoCampanha", kShortText}, {"Q_Conteudo", kCode},
          {"P_RefCliente", kShortText}},
         "N_Req, N_Linha", true},
        {"Tbl_Linha_ServicoEspecial",
         {{"N_Req", kLong}, {"N_Linha", kShort}, {"CodigoServicoEspecial", kCode}, {"Valor", kShortText}},
         "N_Req, N_Linha, CodigoServicoEspecial", true},
        {"Tbl_Temp_Val_Guia",
         {{"N_Req", kLong}, {"A_Zona_Taxacao", kCode}, {"B_Produto", kCode}, {"E_Velocidade", kCode},
          {"D_Quantidade", kLong}, {"N_Linha", kShort}, {"O_Divisao_Remetente", kShortText},
          {"Q_Conteudo", kCode}, {"P_RefCliente", kShortText}, {"G_PreTratamento", kShort}},
         nullptr},
        // The settings are texts, as every writer treated them.
        {"Tbl_Parametro",
         {{"Cod2DFonteSize", kShortText}, {"Cod2DRatio", kShortText}, {"Cod2DNColunas", kShortText},
          {"Cod2DNLinhas", kShortText}, {"Cod2DErroLevel", kShortText}, {"Cod2DPDFMode", kShortText},
          {"Cod2DTruncated", kShortText}, {"Cod2DApplyTilde", kShortText}, {"GuiaNVias", kShortText},
          {"GuiaMargensTopo", kShortText}, {"GuiaMargensEsquerda", kShortText}, {"CodTerceiro", kShortText}},
         nullptr},
        // Read by position: the order of the columns is part of the format.
        {"TAB_CONFIG",
         {{"config_id", kLong}, {"NColunas", kShort}, {"NLinhas", kShort}, {"ErroLevel", kShort},
          {"PDFMode", kShortText}, {"Ratio", kShort}, {"FonteSize", kShort}, {"Truncated", kShortText},
          {"ApplyTilde", kShortText}},
         "config_id"},
        {"Tbl_A_ZonaTaxacao", reference_columns(true), "Codigo"},
        {"Tbl_B_Produto", reference_columns(true), "Codigo"},
        {"Tbl_E_Velocidade", reference_columns(true), "Codigo"},
        {"Tbl_F_Formato", reference_columns(true), "Codigo"},
        {"Tbl_H_Descontos", reference_columns(true), "Codigo"},
        {"Tbl_I_ServicosEspeciais", reference_columns(true), "Codigo"},
        {"Tbl_N_AmbitoDistribuicao", reference_columns(true), "Codigo"},
        {"Tbl_K_EntregaSampling", reference_columns(true), "Codigo"},
        {"Tbl_Q_Conteudo", reference_columns(true), "Codigo"},
        {"Tbl_P_RefCliente", reference_columns(false, kShortText), "Codigo"},
        {"Tbl_PreTratamento", reference_columns(true), "Codigo"},
        {"tbl_Validacao",
         {{"CodValidacao", kLong}, {"Cod_Produto", kCode}, {"Activo", kYesNo}, {"C_Escalao_Min", kLong},
          {"C_Escalao_Max", kLong}},
         "CodValidacao"},
        {"tbl_Val_ZTaxacao", rule_dimension("CodZtaxacao"), "CodValidacao, CodZtaxacao"},
        {"tbl_Val_Velocidade", rule_dimension("CodVelocidade"), "CodValidacao, CodVelocidade"},
        {"tbl_Val_Formato", rule_dimension("CodFormato"), "CodValidacao, CodFormato"},
        {"tbl_Val_PreTratamento", rule_dimension("Pre_Tratamento", kShort), "CodValidacao, Pre_Tratamento"},
        {"tbl_Val_Desconto", rule_dimension("CodDesconto"), "CodValidacao, CodDesconto"},
        {"tbl_Val_AmbitoDist", rule_dimension("CodAmbitoDist"), "CodValidacao, CodAmbitoDist"},
        {"tbl_Val_ServicoE", rule_dimension("CodServicoE"), "CodValidacao, CodServicoE"},
        {"schema_version", {{"version", kLong}}, nullptr},
        {"tbl_Val_Versao", {{"Contador", kLong}}, nullptr},
        // The web server's accounts and what they did; the password is an Argon2id string.
        {"Tbl_Utilizador", {{"Nome", kShortText}, {"Papel", kCode}, {"Senha", kLongText}, {"Criado", kDate}}, "Nome"},
        {"Tbl_Auditoria", {{"Quando", kDate}, {"Utilizador", kShortText}, {"Accao", kShortText}, {"Objecto", kMemo}},
         nullptr},
    };
    return t;
}

// What the listing, numbering and validation queries look up besides the keys.
constexpr const char* kIndexes[] = {
    "CREATE INDEX ix_Cliente_Cod ON Tbl_Cliente (Cod_Cliente)",
    "CREATE INDEX ix_Cab_Cliente ON Tbl_Cab (Id_Cliente, N_Req2)",
    "CREATE INDEX ix_Cab_Contrato ON Tbl_Cab (Id_Cliente, Cod_Contrato)",
    "CREATE INDEX ix_Cab_Data ON Tbl_Cab (D_Req)",
    "CREATE INDEX ix_Temp_NReq ON Tbl_Temp_Val_Guia (N_Req)",
    "CREATE INDEX ix_Validacao_Produto ON tbl_Validacao (Cod_Produto, Activo)",
};

// The lines with the designation of each code, for the printing: a code the lists lack keeps its
// line, with a null designation.
constexpr const char* kView =
    "CREATE VIEW Query_ParteVariavel AS SELECT "
    "L.N_Req, L.N_Linha, L.A_Zona_Taxacao, L.B_Produto, L.C_Escalao, L.D_Quantidade, L.E_Velocidade, "
    "L.F_Formato, L.G_Pre_Tratamento, L.H_Descontos, L.K_Entrega_Sampling, L.L_TaxEsp_Semana, "
    "L.M_TaxEsp_Quantidade, L.N_Ambito_Distrib, L.O_Divisao_Remetente, L.CodigoCampanha, L.Q_Conteudo, "
    "L.P_RefCliente, "
    "Z.Designacao AS Desig_Zona_Taxacao, P.Designacao AS Desig_Produto, V.Designacao AS Desig_Velocidade, "
    "F.Designacao AS Desig_Formato, D.Designacao AS Desig_Descontos, S.Designacao AS Desig_Entrega_Sampling, "
    "A.Designacao AS Desig_Ambito_Distrib, C.Designacao AS Desig_Conteudo "
    "FROM Tbl_Linha L "
    "LEFT JOIN Tbl_A_ZonaTaxacao Z ON Z.Codigo = L.A_Zona_Taxacao "
    "LEFT JOIN Tbl_B_Produto P ON P.Codigo = L.B_Produto "
    "LEFT JOIN Tbl_E_Velocidade V ON V.Codigo = L.E_Velocidade "
    "LEFT JOIN Tbl_F_Formato F ON F.Codigo = L.F_Formato "
    "LEFT JOIN Tbl_H_Descontos D ON D.Codigo = L.H_Descontos "
    "LEFT JOIN Tbl_K_EntregaSampling S ON S.Codigo = L.K_Entrega_Sampling "
    "LEFT JOIN Tbl_N_AmbitoDistribuicao A ON A.Codigo = L.N_Ambito_Distrib "
    "LEFT JOIN Tbl_Q_Conteudo C ON C.Codigo = L.Q_Conteudo";

// The view's columns as it names them, in its order.
constexpr const char* kViewColumns[] = {
    "N_Req", "N_Linha", "A_Zona_Taxacao", "B_Produto", "C_Escalao", "D_Quantidade", "E_Velocidade", "F_Formato",
    "G_Pre_Tratamento", "H_Descontos", "K_Entrega_Sampling", "L_TaxEsp_Semana", "M_TaxEsp_Quantidade",
    "N_Ambito_Distrib", "O_Divisao_Remetente", "CodigoCampanha", "Q_Conteudo", "P_RefCliente", "Desig_Zona_Taxacao",
    "Desig_Produto", "Desig_Velocidade", "Desig_Formato", "Desig_Descontos", "Desig_Entrega_Sampling",
    "Desig_Ambito_Distrib", "Desig_Conteudo"};

bool same_name(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

bool has_designation(const Table& t) { return t.columns.size() >= 2 && std::string_view(t.columns[1].name) == "Designacao"; }

std::string create_table(const Table& t, StoreKind kind)
{
    std::string sql = "CREATE TABLE " + std::string(t.name) + " (";
    for (std::size_t i = 0; i < t.columns.size(); ++i)
        sql += std::string(i ? ", " : "") + t.columns[i].name + " " + t.columns[i].type;
    if (t.key) sql += ", PRIMARY KEY (" + std::string(t.key) + ")";
    return sql + (t.clustered && kind == StoreKind::SQLite ? ") WITHOUT ROWID" : ")");
}

// The declared type read back: the register's few spellings above.
ColumnType type_of(std::string_view declared)
{
    using Kind = ColumnType::Kind;
    if (declared == kLong) return {Kind::Long};
    if (declared == kShort) return {Kind::Short};
    if (declared == kYesNo) return {Kind::YesNo};
    if (declared == kDate) return {Kind::Date};
    std::size_t width = 0;
    if (declared.starts_with("VARCHAR("))
        for (char c : declared.substr(8)) {
            if (c < '0' || c > '9') break;
            width = width * 10 + static_cast<std::size_t>(c - '0');
        }
    return {Kind::Text, width};
}

}  // namespace

std::optional<ColumnType> column_type(std::string_view table, std::string_view column)
{
    for (const auto& t : tables()) {
        if (!same_name(t.name, table)) continue;
        for (const auto& c : t.columns) {
            if (!same_name(c.name, column)) continue;
            ColumnType type = type_of(c.type);
            for (std::string_view keys = t.key ? t.key : ""; !keys.empty();) {
                const auto comma = keys.find(',');
                std::string_view name = keys.substr(0, comma);
                while (name.starts_with(' ')) name.remove_prefix(1);
                type.in_key = type.in_key || same_name(name, column);
                keys = comma == std::string_view::npos ? std::string_view() : keys.substr(comma + 1);
            }
            return type;
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<std::string> schema_statements(const Database& db)
{
    std::vector<std::string> statements;
    for (const auto& t : tables()) statements.push_back(create_table(t, db.kind()));
    statements.emplace_back(kView);
    statements.insert(statements.end(), std::begin(kIndexes), std::end(kIndexes));
    // The listings and the printing join each line to the designations of its codes: read from the
    // index alone, a code costs one seek instead of two.
    for (const auto& t : tables())
        if (has_designation(t))
            statements.push_back("CREATE INDEX ix_" + std::string(t.name) + "_Designacao ON " + t.name +
                                 " (Codigo, Designacao)");
    // Keyed by the year itself, so that a client's highest number of the year is one seek however
    // many Guias the year holds; the numbering query names the year by the same expression.
    statements.push_back("CREATE INDEX ix_Cab_Cliente_Ano ON Tbl_Cab (Id_Cliente, (" + db.year_of("D_Req") +
                         "), Id_Req_Anual)");
    return statements;
}

std::string working_table_statement()
{
    // Temporary on both stores: each connection gets its own, emptied when it closes, and the
    // unqualified name finds it before the shared table of the same name.
    for (const auto& t : tables())
        if (std::string_view(t.name) == "Tbl_Temp_Val_Guia")
            return "CREATE TEMPORARY TABLE IF NOT EXISTS" + create_table(t, StoreKind::PostgreSQL).substr(12);
    return {};
}

std::vector<std::string> access_table_statements()
{
    std::vector<std::string> statements;
    for (const auto& t : tables())
        if (std::string_view(t.name) == "Tbl_Utilizador" || std::string_view(t.name) == "Tbl_Auditoria")
            statements.push_back("CREATE TABLE IF NOT EXISTS" + create_table(t, StoreKind::PostgreSQL).substr(12));
    statements.emplace_back("CREATE INDEX IF NOT EXISTS ix_Auditoria_Quando ON Tbl_Auditoria (Quando)");
    return statements;
}

std::vector<std::string> statistics_statements()
{
    std::vector<std::string> statements;
    for (const auto& t : tables())
        if (has_designation(t)) statements.push_back("ANALYZE " + std::string(t.name));
    return statements;
}

std::string spelled(std::string_view expression, std::string_view name)
{
    return std::string(expression) + " AS \"" + std::string(name) + "\"";
}

std::string spelled_list(std::initializer_list<std::string_view> columns)
{
    std::string list;
    for (const std::string_view column : columns) {
        const auto dot = column.rfind('.');
        list += (list.empty() ? "" : ", ") + spelled(column, dot == std::string_view::npos ? column : column.substr(dot + 1));
    }
    return list;
}

std::string spelled_columns(std::string_view table, std::string_view qualifier)
{
    const std::string prefix = qualifier.empty() ? std::string() : std::string(qualifier) + ".";
    std::string list;
    const auto add = [&](std::string_view name) { list += (list.empty() ? "" : ", ") + spelled(prefix + std::string(name), name); };
    if (same_name(table, "Query_ParteVariavel")) {
        for (const char* name : kViewColumns) add(name);
        return list;
    }
    for (const auto& t : tables()) {
        if (!same_name(t.name, table)) continue;
        for (const auto& c : t.columns) add(c.name);
        return list;
    }
    throw std::invalid_argument("no table " + std::string(table) + " in the register");
}

const std::vector<std::string>& schema_table_names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> n;
        for (const auto& t : tables()) n.emplace_back(t.name);
        n.emplace_back("Query_ParteVariavel");
        return n;
    }();
    return names;
}

}  // namespace nimbara::entities
