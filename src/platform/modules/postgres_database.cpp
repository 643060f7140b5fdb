#include "platform/postgres_database.hpp"

#include <libpq-fe.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/sql_text.hpp"

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

std::string trimmed(std::string message)
{
    while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
    return message;
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

// How many statements wait in the queue at most before their answers are read.
constexpr std::size_t kMostQueued = 256;

class PostgresDatabase final : public Database {
public:
    explicit PostgresDatabase(PGconn* c) : conn_(c) {}

    using Database::execute;
    using Database::execute_queued;
    using Database::open;

    StoreKind kind() const override { return StoreKind::PostgreSQL; }

    std::int64_t execute(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        const auto r = run(sql, values);
        const char* n = PQcmdTuples(r.get());
        return *n ? std::stoll(n) : 0;
    }

    void execute_queued(std::string_view sql, std::span<const FieldValue> values, std::string_view label) override
    {
        if (!in_transaction() || changes_schema(sql)) {
            Database::execute_queued(sql, values, label);
            return;
        }
        if (!pipelined_) {
            if (PQenterPipelineMode(conn_.get()) != 1)
                throw DatabaseError("cannot queue statements: " + trimmed(PQerrorMessage(conn_.get())));
            pipelined_ = true;
        }
        send(sql, values);
        queued_.push_back({std::string(sql), std::string(label)});
        // The server's answers wait in its send buffer until they are read: read them now and then.
        if (queued_.size() >= kMostQueued) flush();
    }

    Recordset open(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        const auto r = run(sql, values);
        const int columns = PQnfields(r.get());
        const int count = PQntuples(r.get());
        std::vector<std::vector<FieldValue>> rows(count);
        for (int i = 0; i < count; ++i) {
            rows[i].reserve(columns);
            for (int c = 0; c < columns; ++c) rows[i].push_back(read(r.get(), i, c));
        }
        return Recordset(names_of(r.get()), std::move(rows));
    }

    void stream(std::string_view sql, std::span<const FieldValue> values, const RowSink& sink) override
    {
        flush();
        send(sql, values);
        // One result a row; the first names the columns, and an empty result comes as the last alone.
        PQsetSingleRowMode(conn_.get());
        bool named = false;
        std::vector<FieldValue> row;
        std::optional<DatabaseError> failure;
        while (Result r{PQgetResult(conn_.get())}) {
            const auto status = PQresultStatus(r.get());
            if (failure) continue;  // the rest of the results are read, so the connection is free again
            if (status != PGRES_SINGLE_TUPLE && status != PGRES_TUPLES_OK) {
                failure.emplace(error_of(r.get(), sql));
                continue;
            }
            try {
                if (!named) {
                    sink.columns(names_of(r.get()));
                    named = true;
                }
                if (status == PGRES_TUPLES_OK) continue;
                row.resize(PQnfields(r.get()));
                for (int c = 0; c < PQnfields(r.get()); ++c) row[c] = read(r.get(), 0, c);
                sink.row(row);
            } catch (const std::exception& e) {
                failure.emplace(e.what());
            }
        }
        if (failure) throw *failure;
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
    std::string date_text(std::string_view e, DateText layout) const override
    {
        constexpr const char* patterns[] = {"'YYYY-MM-DD'", "'DD/MM/YYYY'", "'DD-MM-YYYY'"};
        return "to_char(" + std::string(e) + ", " + patterns[static_cast<int>(layout)] + ")";
    }
    std::string_view boolean_literal(bool v) const override { return v ? "TRUE" : "FALSE"; }

private:
    void begin(TransactionMode mode) override
    {
        execute(mode == TransactionMode::Reading ? "BEGIN ISOLATION LEVEL REPEATABLE READ, READ ONLY" : "BEGIN");
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
    void rollback() noexcept override
    {
        try {
            flush();
        } catch (const DatabaseError&) {
            // The failure of a queued statement is what is being rolled back.
        }
        PQclear(PQexec(conn_.get(), "ROLLBACK"));
    }

    // Marks the end of the queued statements and reads their answers; the first failure is thrown
    // once every answer is read, so that the connection is ready for the rollback.
    void flush()
    {
        if (!pipelined_) return;
        std::deque<Queued> queued = std::move(queued_);
        queued_.clear();
        pipelined_ = false;
        std::optional<QueuedStatementFailed> failure;
        if (PQpipelineSync(conn_.get()) != 1) {
            failure.emplace("cannot send the queued statements: " + trimmed(PQerrorMessage(conn_.get())));
        } else {
            // Each statement's answer ends with a null result; two in a row mean the connection is gone.
            for (bool after_end = false;;) {
                const Result r{PQgetResult(conn_.get())};
                if (!r) {
                    if (after_end) {
                        failure.emplace("the connection to the PostgreSQL server was lost: " +
                                        trimmed(PQerrorMessage(conn_.get())));
                        break;
                    }
                    after_end = true;
                    continue;
                }
                after_end = false;
                const auto status = PQresultStatus(r.get());
                if (status == PGRES_PIPELINE_SYNC) break;
                const Queued statement = queued.empty() ? Queued{} : std::move(queued.front());
                if (!queued.empty()) queued.pop_front();
                if (!failure && status == PGRES_FATAL_ERROR) {
                    const std::string why = error_of(r.get(), statement.sql).what();
                    failure.emplace(statement.label.empty() ? why : statement.label + ": " + why);
                }
            }
        }
        PQexitPipelineMode(conn_.get());
        // A statement prepared in an aborted queue may not exist on the server.
        if (failure)
            for (const auto& key : unconfirmed_) prepared_.erase(key);
        unconfirmed_.clear();
        if (failure) throw *failure;
    }

    // Sends a statement with its values, prepared on the server the first time its text and value
    // types are seen, so that later runs skip the parsing and planning.
    void send(std::string_view sql, std::span<const FieldValue> values)
    {
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
        const int n = static_cast<int>(values.size());
        const int sent = changes_schema(sql)
                             ? PQsendQueryParams(conn_.get(), numbered_marks(sql).c_str(), n, types.data(),
                                                 pointers.data(), nullptr, nullptr, 0)
                             : PQsendQueryPrepared(conn_.get(), prepared(sql, types).c_str(), n, pointers.data(),
                                                   nullptr, nullptr, 0);
        if (!sent) throw DatabaseError(trimmed(PQerrorMessage(conn_.get())) + " (in: " + std::string(sql) + ")");
    }

    // Runs a statement and answers its result.
    Result run(std::string_view sql, std::span<const FieldValue> values)
    {
        flush();
        send(sql, values);
        Result last;
        while (Result r{PQgetResult(conn_.get())}) last = std::move(r);
        const auto status = last ? PQresultStatus(last.get()) : PGRES_FATAL_ERROR;
        if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) throw error_of(last.get(), sql);
        // A changed table may change what a kept statement answers: those are prepared again.
        if (changes_schema(sql) && !prepared_.empty()) {
            Result(PQexec(conn_.get(), "DEALLOCATE ALL"));
            prepared_.clear();
        }
        return last;
    }

    // The name of the server's statement for this text and these value types, prepared if new.
    const std::string& prepared(std::string_view sql, const std::vector<::Oid>& types)
    {
        std::string key(sql);
        for (const ::Oid t : types) key += ',' + std::to_string(t);
        if (const auto kept = prepared_.find(key); kept != prepared_.end()) return kept->second;
        std::string name = "nimbara_" + std::to_string(++prepared_count_);
        const std::string text = numbered_marks(sql);
        const int n = static_cast<int>(types.size());
        if (pipelined_) {
            // Prepared in the queue, ahead of its first run; its answer is read with the others.
            if (!PQsendPrepare(conn_.get(), name.c_str(), text.c_str(), n, types.data()))
                throw DatabaseError(trimmed(PQerrorMessage(conn_.get())) + " (in: " + std::string(sql) + ")");
            queued_.push_back({std::string(sql), {}});
            unconfirmed_.push_back(key);
        } else {
            const Result r(PQprepare(conn_.get(), name.c_str(), text.c_str(), n, types.data()));
            if (!r || PQresultStatus(r.get()) != PGRES_COMMAND_OK) throw error_of(r.get(), sql);
        }
        return prepared_.emplace(std::move(key), std::move(name)).first->second;
    }

    DatabaseError error_of(const PGresult* r, std::string_view sql) const
    {
        return DatabaseError(trimmed(r ? PQresultErrorMessage(r) : PQerrorMessage(conn_.get())) + " (in: " +
                             std::string(sql) + ")");
    }

    static std::vector<std::string> names_of(const PGresult* r)
    {
        std::vector<std::string> names;
        for (int c = 0; c < PQnfields(r); ++c) names.emplace_back(PQfname(r, c));
        return names;
    }

    std::unique_ptr<PGconn, Finish> conn_;
    std::unordered_map<std::string, std::string> prepared_;  // text and value types -> statement name
    std::uint64_t prepared_count_ = 0;
    // Statements sent in the queue whose answers are not read yet, in order, for naming a failure.
    bool pipelined_ = false;
    struct Queued {
        std::string sql;
        std::string label;
    };
    std::deque<Queued> queued_;
    std::vector<std::string> unconfirmed_;  // keys of prepared_ made in the current queue
};

void ignore_notice(void*, const char*) {}

Database* connect(const std::string& conninfo)
{
    std::unique_ptr<PGconn, Finish> conn(PQconnectdb(conninfo.c_str()));
    if (!conn) throw DatabaseError("cannot reach the PostgreSQL server: out of memory");
    if (PQstatus(conn.get()) != CONNECTION_OK) {
        throw DatabaseError("cannot reach the PostgreSQL server: " + trimmed(PQerrorMessage(conn.get())));
    }
    PQsetNoticeProcessor(conn.get(), ignore_notice, nullptr);
    if (PQsetClientEncoding(conn.get(), "UTF8") != 0)
        throw DatabaseError("the PostgreSQL server does not speak UTF-8: " + std::string(PQerrorMessage(conn.get())));
    return new PostgresDatabase(conn.release());
}

}  // namespace
}  // namespace nimbara::platform

nimbara::Database* nimbara_postgres_open(const std::string& conninfo) { return nimbara::platform::connect(conninfo); }
