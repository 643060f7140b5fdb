#include "platform/postgres_database.hpp"

#include <libpq-fe.h>

#include <memory>
#include <string>
#include <vector>

namespace nimbara::platform {
namespace {

// Type numbers of the server's catalogue that the results carry.
enum TypeOid : ::Oid {
    kBool = 16, kInt8 = 20, kInt2 = 21, kInt4 = 23, kOid = 26, kFloat4 = 700, kFloat8 = 701, kNumeric = 1700,
    kDate = 1082, kTimestamp = 1114, kTimestampTz = 1184,
};

struct Finish {
    void operator()(PGconn* c) const { PQfinish(c); }
};
struct Clear {
    void operator()(PGresult* r) const { PQclear(r); }
};
using Result = std::unique_ptr<PGresult, Clear>;

// The statements of the component mark values with "?"; the server wants $1, $2 ... Marks inside
// quoted texts and names are left alone.
std::string numbered_marks(std::string_view sql)
{
    std::string out;
    out.reserve(sql.size() + 16);
    int n = 0;
    char quote = 0;
    for (const char c : sql) {
        if (quote) {
            if (c == quote) quote = 0;
            out.push_back(c);
        } else if (c == '\'' || c == '"') {
            quote = c;
            out.push_back(c);
        } else if (c == '?') {
            out += '$' + std::to_string(++n);
        } else {
            out.push_back(c);
        }
    }
    return out;
}

FieldValue read(const PGresult* r, int row, int col)
{
    if (PQgetisnull(r, row, col)) return {};
    const std::string text(PQgetvalue(r, row, col), PQgetlength(r, row, col));
    switch (PQftype(r, col)) {
    case kBool: return FieldValue(text == "t");
    case kInt2:
    case kInt4:
    case kInt8:
    case kOid: return FieldValue(static_cast<std::int64_t>(std::stoll(text)));
    case kFloat4:
    case kFloat8: return FieldValue(std::stod(text));
    case kNumeric:
        // A SUM over integers comes back as numeric: keep it whole when it is.
        if (text.find_first_of(".eE") == std::string::npos && text.size() < 19)
            return FieldValue(static_cast<std::int64_t>(std::stoll(text)));
        return FieldValue(std::stod(text));
    case kDate:
    case kTimestamp:
    case kTimestampTz: return FieldValue(Timestamp::parse(text));
    default: return FieldValue(text);
    }
}

class PostgresDatabase final : public Database {
public:
    explicit PostgresDatabase(PGconn* c) : conn_(c) {}

    using Database::execute;
    using Database::open;

    StoreKind kind() const override { return StoreKind::PostgreSQL; }

    std::int64_t execute(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        const auto r = run(sql, values);
        const char* n = PQcmdTuples(r.get());
        return *n ? std::stoll(n) : 0;
    }

    Recordset open(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        const auto r = run(sql, values);
        const int columns = PQnfields(r.get());
        const int count = PQntuples(r.get());
        std::vector<std::string> names;
        for (int c = 0; c < columns; ++c) names.emplace_back(PQfname(r.get(), c));
        std::vector<std::vector<FieldValue>> rows(count);
        for (int i = 0; i < count; ++i) {
            rows[i].reserve(columns);
            for (int c = 0; c < columns; ++c) rows[i].push_back(read(r.get(), i, c));
        }
        return Recordset(std::move(names), std::move(rows));
    }

    bool has_table(std::string_view name) override
    {
        auto rs = open("SELECT 1 FROM information_schema.tables WHERE table_schema = current_schema() "
                       "AND table_name = lower(?)",
                       {FieldValue(name)});
        return rs.RecordCount() > 0;
    }

    std::string year_of(std::string_view e) const override
    {
        return "CAST(EXTRACT(YEAR FROM " + std::string(e) + ") AS INTEGER)";
    }
    std::string month_of(std::string_view e) const override
    {
        return "CAST(EXTRACT(MONTH FROM " + std::string(e) + ") AS INTEGER)";
    }
    std::string date_text(std::string_view e) const override
    {
        return "to_char(" + std::string(e) + ", 'YYYY-MM-DD')";
    }
    std::string_view boolean_literal(bool v) const override { return v ? "TRUE" : "FALSE"; }

private:
    void begin(TransactionMode mode) override
    {
        execute("BEGIN");
        // One lock for every numbering transaction of the database, released at its end.
        if (mode == TransactionMode::Numbering) {
            try {
                open("SELECT pg_advisory_xact_lock(4711)");
            } catch (...) {
                rollback();
                throw;
            }
        }
    }
    void commit() override { execute("COMMIT"); }
    void rollback() noexcept override { PQclear(PQexec(conn_.get(), "ROLLBACK")); }

    Result run(std::string_view sql, std::span<const FieldValue> values)
    {
        const std::string text = numbered_marks(sql);
        std::vector<std::string> texts(values.size());
        std::vector<const char*> pointers(values.size());
        std::vector<::Oid> types(values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const auto& v = values[i];
            switch (v.kind()) {
            case ValueKind::Null: types[i] = 0; break;
            case ValueKind::Number:
                types[i] = std::holds_alternative<double>(v.alternatives()) ? kFloat8 : kInt8;
                break;
            case ValueKind::YesNo: types[i] = kBool; break;
            case ValueKind::Date: types[i] = kTimestamp; break;
            case ValueKind::Text: types[i] = 0; break;  // the server takes the column's type
            }
            if (!v.is_null()) {
                texts[i] = v.kind() == ValueKind::YesNo ? (v.yes_no() ? "true" : "false") : v.text();
                pointers[i] = texts[i].c_str();
            }
        }
        Result r(PQexecParams(conn_.get(), text.c_str(), static_cast<int>(values.size()),
                              types.data(), pointers.data(), nullptr, nullptr, 0));
        const auto status = r ? PQresultStatus(r.get()) : PGRES_FATAL_ERROR;
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
            std::string message = r ? PQresultErrorMessage(r.get()) : PQerrorMessage(conn_.get());
            while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
            throw DatabaseError(message + " (in: " + std::string(sql) + ")");
        }
        return r;
    }

    std::unique_ptr<PGconn, Finish> conn_;
};

void ignore_notice(void*, const char*) {}

}  // namespace

std::shared_ptr<Database> open_postgres(const std::string& conninfo)
{
    std::unique_ptr<PGconn, Finish> conn(PQconnectdb(conninfo.c_str()));
    if (!conn) throw DatabaseError("cannot reach the PostgreSQL server: out of memory");
    if (PQstatus(conn.get()) != CONNECTION_OK) {
        std::string message = PQerrorMessage(conn.get());
        while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
        throw DatabaseError("cannot reach the PostgreSQL server: " + message);
    }
    PQsetNoticeProcessor(conn.get(), ignore_notice, nullptr);
    if (PQsetClientEncoding(conn.get(), "UTF8") != 0)
        throw DatabaseError("the PostgreSQL server does not speak UTF-8: " + std::string(PQerrorMessage(conn.get())));
    return std::make_shared<PostgresDatabase>(conn.release());
}

}  // namespace nimbara::platform
