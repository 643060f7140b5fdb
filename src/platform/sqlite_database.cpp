#include "platform/sqlite_database.hpp"

#include <sqlite3.h>

#include <cctype>
#include <map>
#include <memory>
#include <string>

#include "platform/sql_text.hpp"

namespace nimbara::platform {
namespace {

// How long a writer waits for another station's transaction before it gives up.
constexpr int kBusyTimeoutMs = 60000;

struct CloseDb {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
struct Finalize {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

// Statements prepared once are kept for their next use; this many at most, which the component's
// few dozen statement texts never reach unless a host builds many of its own.
constexpr std::size_t kCachedStatements = 128;

// A kept statement in use: reset when done, so that it holds no read snapshot or lock meanwhile.
class InUse {
public:
    explicit InUse(sqlite3_stmt* s) : s_(s) {}
    ~InUse()
    {
        sqlite3_reset(s_);
        sqlite3_clear_bindings(s_);
    }
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;
    sqlite3_stmt* get() const { return s_; }

private:
    sqlite3_stmt* s_;
};

// The kind of a column from its declared type; a column without one (an expression such as SUM or
// MAX) takes the kind of the value stored.
enum class Declared { None, Number, Text, YesNo, Date };

Declared declared_kind(const char* decltype_text)
{
    if (!decltype_text) return Declared::None;
    std::string t = decltype_text;
    for (char& c : t) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const auto has = [&](const char* word) { return t.find(word) != std::string::npos; };
    if (has("BOOL")) return Declared::YesNo;
    if (has("DATE") || has("TIME")) return Declared::Date;
    if (has("CHAR") || has("TEXT") || has("CLOB")) return Declared::Text;
    if (has("INT") || has("REAL") || has("DOUB") || has("FLOA") || has("NUM") || has("DEC")) return Declared::Number;
    return Declared::None;
}

class SqliteDatabase final : public Database {
public:
    explicit SqliteDatabase(sqlite3* db) : db_(db) {}

    using Database::execute;
    using Database::open;

    StoreKind kind() const override { return StoreKind::SQLite; }

    std::int64_t execute(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        std::int64_t changed = 0;
        {
            const InUse stmt(prepare(sql, values).stmt.get());
            while (step(stmt.get(), sql)) {
            }
            changed = sqlite3_changes64(db_.get());
        }
        if (changes_schema(sql)) cache_.clear();
        return changed;
    }

    Recordset open(std::string_view sql, std::span<const FieldValue> values = {}) override
    {
        std::vector<std::string> names;
        std::vector<std::vector<FieldValue>> rows;
        stream(sql, values,
               {.columns = [&](std::span<const std::string> n) { names.assign(n.begin(), n.end()); },
                .row = [&](std::span<FieldValue> v) {
                    rows.emplace_back(std::make_move_iterator(v.begin()), std::make_move_iterator(v.end()));
                }});
        return Recordset(std::move(names), std::move(rows));
    }

    void stream(std::string_view sql, std::span<const FieldValue> values, const RowSink& sink) override
    {
        Kept& kept = prepare(sql, values);
        const InUse stmt(kept.stmt.get());
        sink.columns(kept.names);
        std::vector<FieldValue> row(kept.kinds.size());
        while (step(stmt.get(), sql)) {
            for (std::size_t c = 0; c < row.size(); ++c) row[c] = read(stmt.get(), static_cast<int>(c), kept.kinds[c]);
            sink.row(row);
        }
    }

    bool has_table(std::string_view name) override
    {
        auto rs = open("SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND lower(name) = lower(?)",
                       {FieldValue(name)});
        return rs.RecordCount() > 0;
    }

    std::string year_of(std::string_view e) const override
    {
        return "CAST(strftime('%Y', " + std::string(e) + ") AS INTEGER)";
    }
    std::string month_of(std::string_view e) const override
    {
        return "CAST(strftime('%m', " + std::string(e) + ") AS INTEGER)";
    }
    std::string date_text(std::string_view e, DateText layout) const override
    {
        constexpr const char* patterns[] = {"'%Y-%m-%d'", "'%d/%m/%Y'", "'%d-%m-%Y'"};
        return "strftime(" + std::string(patterns[static_cast<int>(layout)]) + ", " + std::string(e) + ")";
    }
    std::string_view boolean_literal(bool v) const override { return v ? "1" : "0"; }

private:
    void begin(TransactionMode mode) override
    {
        // Every writing transaction takes the write lock at once: two numbering transactions then
        // cannot both read the same maximum, and two writers never deadlock on upgrading a read
        // lock, which SQLite answers with an immediate failure instead of waiting. A reading one
        // holds its snapshot, and its lock is taken once rather than for every query.
        execute(mode == TransactionMode::Reading ? "BEGIN" : "BEGIN IMMEDIATE");
    }
    void commit() override { execute("COMMIT"); }
    void rollback() noexcept override { sqlite3_exec(db_.get(), "ROLLBACK", nullptr, nullptr, nullptr); }

    [[noreturn]] void fail(std::string_view sql) const
    {
        throw DatabaseError(std::string(sqlite3_errmsg(db_.get())) + " (in: " + std::string(sql) + ")");
    }

    // A statement prepared once, with its columns' names and kinds, which it keeps for every run.
    struct Kept {
        Statement stmt;
        std::vector<std::string> names;
        std::vector<Declared> kinds;
    };

    Kept& prepare(std::string_view sql, std::span<const FieldValue> values)
    {
        auto kept = cache_.find(sql);
        if (kept == cache_.end()) {
            sqlite3_stmt* raw = nullptr;
            if (sqlite3_prepare_v2(db_.get(), sql.data(), static_cast<int>(sql.size()), &raw, nullptr) != SQLITE_OK)
                fail(sql);
            Kept fresh{Statement(raw), {}, {}};
            for (int c = 0; c < sqlite3_column_count(raw); ++c) {
                fresh.names.emplace_back(sqlite3_column_name(raw, c));
                fresh.kinds.push_back(declared_kind(sqlite3_column_decltype(raw, c)));
            }
            if (cache_.size() >= kCachedStatements) cache_.clear();
            kept = cache_.emplace(std::string(sql), std::move(fresh)).first;
        }
        sqlite3_stmt* raw = kept->second.stmt.get();
        if (sqlite3_bind_parameter_count(raw) != static_cast<int>(values.size()))
            throw DatabaseError("the statement takes " + std::to_string(sqlite3_bind_parameter_count(raw)) +
                                " values, " + std::to_string(values.size()) + " given (in: " + std::string(sql) + ")");
        try {
            for (std::size_t i = 0; i < values.size(); ++i) bind(raw, static_cast<int>(i) + 1, values[i], sql);
        } catch (...) {
            sqlite3_clear_bindings(raw);
            throw;
        }
        return kept->second;
    }

    void bind(sqlite3_stmt* s, int at, const FieldValue& value, std::string_view sql) const
    {
        const auto& v = value.alternatives();
        int rc = SQLITE_OK;
        if (std::holds_alternative<std::monostate>(v))
            rc = sqlite3_bind_null(s, at);
        else if (const auto* i = std::get_if<std::int64_t>(&v))
            rc = sqlite3_bind_int64(s, at, *i);
        else if (const auto* d = std::get_if<double>(&v))
            rc = sqlite3_bind_double(s, at, *d);
        else if (const auto* b = std::get_if<bool>(&v))
            rc = sqlite3_bind_int(s, at, *b ? 1 : 0);
        else {
            const std::string text = value.text();  // text as it is, dates in their ISO form
            rc = sqlite3_bind_text(s, at, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        }
        if (rc != SQLITE_OK) fail(sql);
    }

    // One step: true while rows come.
    bool step(sqlite3_stmt* s, std::string_view sql) const
    {
        const int rc = sqlite3_step(s);
        if (rc == SQLITE_ROW) return true;
        if (rc == SQLITE_DONE) return false;
        fail(sql);
    }

    static FieldValue read(sqlite3_stmt* s, int c, Declared declared)
    {
        const int type = sqlite3_column_type(s, c);
        if (type == SQLITE_NULL) return {};
        const auto text = [&] {
            return std::string(reinterpret_cast<const char*>(sqlite3_column_text(s, c)), sqlite3_column_bytes(s, c));
        };
        switch (declared) {
        case Declared::YesNo: return FieldValue(sqlite3_column_int64(s, c) != 0);
        case Declared::Date:
            if (type == SQLITE_TEXT) {
                try {
                    return FieldValue(Timestamp::parse(text()));
                } catch (const std::invalid_argument&) {
                    return FieldValue(text());  // a text that is no date stays what it is
                }
            }
            break;
        case Declared::Text: return FieldValue(text());
        default: break;
        }
        if (type == SQLITE_INTEGER) return FieldValue(static_cast<std::int64_t>(sqlite3_column_int64(s, c)));
        if (type == SQLITE_FLOAT) return FieldValue(sqlite3_column_double(s, c));
        return FieldValue(text());
    }

    std::unique_ptr<sqlite3, CloseDb> db_;  // declared first: closed after the statements are finalized
    std::map<std::string, Kept, std::less<>> cache_;
};

}  // namespace

std::shared_ptr<Database> open_sqlite(const std::filesystem::path& file, OpenMode mode)
{
    const std::string name = file.string();
    std::error_code ec;
    if (mode == OpenMode::Existing && !std::filesystem::exists(file, ec))
        throw DatabaseError("the database file " + name + " does not exist");
    if (std::filesystem::is_directory(file, ec)) throw DatabaseError(name + " is a folder, not a database file");
    sqlite3* raw = nullptr;
    const int flags = SQLITE_OPEN_READWRITE | (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
    const int rc = sqlite3_open_v2(name.c_str(), &raw, flags, nullptr);
    std::unique_ptr<sqlite3, CloseDb> db(raw);
    if (rc != SQLITE_OK)
        throw DatabaseError("cannot open the database file " + name + ": " + (raw ? sqlite3_errmsg(raw) : "out of memory"));
    if (sqlite3_db_readonly(raw, "main") == 1) throw DatabaseError("the database file " + name + " is read-only");
    sqlite3_busy_timeout(raw, kBusyTimeoutMs);
    sqlite3_extended_result_codes(raw, 0);
    // Reading the schema is where a file that is no SQLite database shows itself. Pages are read
    // through a mapping of the file rather than copied into a cache of this connection's own, which
    // halves the time of a long listing. None of this writes to the file.
    const auto run = [&](const char* sql, int (*each)(void*, int, char**, char**), void* into) {
        char* message = nullptr;
        if (sqlite3_exec(raw, sql, each, into, &message) == SQLITE_OK) return;
        std::string why = message ? message : sqlite3_errmsg(raw);
        sqlite3_free(message);
        throw DatabaseError("cannot use " + name + ": " + why);
    };
    run("PRAGMA synchronous=NORMAL; PRAGMA mmap_size=268435456;", nullptr, nullptr);
    struct Seen {
        int tables = 0;
        bool ours = false;
    } seen;
    run("SELECT lower(name) FROM sqlite_master WHERE type IN ('table', 'view')",
        [](void* into, int, char** value, char**) {
            auto& s = *static_cast<Seen*>(into);
            ++s.tables;
            s.ours = s.ours || (value[0] && std::string_view(value[0]) == "schema_version");
            return 0;
        },
        &seen);
    // The WAL journal is written into the file: only a database of ours takes it, or an empty one
    // that is about to become ours. Any other file is left exactly as it was.
    if (seen.ours || (mode == OpenMode::Create && seen.tables == 0)) run("PRAGMA journal_mode=WAL;", nullptr, nullptr);
    return std::make_shared<SqliteDatabase>(db.release());
}

}  // namespace nimbara::platform
