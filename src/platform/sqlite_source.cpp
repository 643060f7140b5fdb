#include "platform/sqlite_source.hpp"

#include <sqlite3.h>
#include <strings.h>

#include <cstdio>
#include <cstring>
#include <fstream>

namespace nimbara::platform {
namespace {

struct CloseDb {
    void operator()(sqlite3* db) const { sqlite3_close_v2(db); }
};
struct Finalize {
    void operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }
};
using Connection = std::shared_ptr<sqlite3>;
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

enum class Declared { Plain, YesNo, Date };

Declared declared_as(const char* type)
{
    if (!type) return Declared::Plain;
    if (strcasestr(type, "BOOL")) return Declared::YesNo;
    if (strcasestr(type, "DATE") || strcasestr(type, "TIME")) return Declared::Date;
    return Declared::Plain;
}

// "YYYY-MM-DD" or "YYYY-MM-DD HH:MM:SS" (or with a "T" between); nothing else is a date.
std::optional<OldDateTime> parse_date(const std::string& s)
{
    OldDateTime d;
    int n = 0;
    char sep = 0;
    const bool date_only = std::sscanf(s.c_str(), "%4d-%2d-%2d%n", &d.year, &d.month, &d.day, &n) == 3 &&
                           n == static_cast<int>(s.size());
    const bool with_time = !date_only &&
                           std::sscanf(s.c_str(), "%4d-%2d-%2d%c%2d:%2d:%2d%n", &d.year, &d.month, &d.day, &sep,
                                       &d.hour, &d.minute, &d.second, &n) == 7 &&
                           n == static_cast<int>(s.size()) && (sep == ' ' || sep == 'T');
    if ((date_only || with_time) && d.month >= 1 && d.month <= 12 && d.day >= 1 && d.day <= 31) return d;
    return std::nullopt;
}

std::string quoted_name(std::string_view name)
{
    std::string q = "\"";
    for (char c : name) q += c == '"' ? std::string("\"\"") : std::string(1, c);
    return q + "\"";
}

class SqliteTableReader final : public OldTableReader {
public:
    SqliteTableReader(Connection db, std::string file, std::string table)
        : db_(std::move(db)), file_(std::move(file)), table_(std::move(table))
    {
        const std::string sql = "SELECT * FROM " + quoted_name(table_);
        sqlite3_stmt* raw = nullptr;
        if (sqlite3_prepare_v2(db_.get(), sql.c_str(), -1, &raw, nullptr) != SQLITE_OK)
            throw OldDatabaseError(file_ + ": table " + table_ + " cannot be read: " + sqlite3_errmsg(db_.get()));
        stmt_.reset(raw);
        const int count = sqlite3_column_count(raw);
        for (int i = 0; i < count; ++i) {
            columns_.emplace_back(sqlite3_column_name(raw, i));
            declared_.push_back(declared_as(sqlite3_column_decltype(raw, i)));
        }
    }

    const std::string& table_name() const override { return table_; }
    const std::vector<std::string>& column_names() const override { return columns_; }

    bool next(OldRow& row) override
    {
        const int rc = sqlite3_step(stmt_.get());
        if (rc == SQLITE_DONE) return false;
        if (rc != SQLITE_ROW)
            throw OldDatabaseError(file_ + ": table " + table_ + " cannot be read: " + sqlite3_errmsg(db_.get()));
        row.resize(columns_.size());
        for (std::size_t i = 0; i < columns_.size(); ++i) row[i] = value(static_cast<int>(i));
        return true;
    }

private:
    OldValue value(int i) const
    {
        sqlite3_stmt* s = stmt_.get();
        const int type = sqlite3_column_type(s, i);
        if (type == SQLITE_NULL) return std::monostate{};
        const Declared declared = declared_[static_cast<std::size_t>(i)];
        if (declared == Declared::YesNo && type == SQLITE_INTEGER) return sqlite3_column_int64(s, i) != 0;
        if (type == SQLITE_INTEGER) return static_cast<std::int64_t>(sqlite3_column_int64(s, i));
        if (type == SQLITE_FLOAT) return sqlite3_column_double(s, i);
        if (type == SQLITE_TEXT) {
            std::string text(reinterpret_cast<const char*>(sqlite3_column_text(s, i)),
                             static_cast<std::size_t>(sqlite3_column_bytes(s, i)));
            if (declared != Declared::Date) return text;
            if (auto date = parse_date(text)) return *date;
            throw OldDatabaseError(file_ + ": table " + table_ + ", column " + columns_[static_cast<std::size_t>(i)] +
                                   ": \"" + text + "\" is not a date");
        }
        throw OldDatabaseError(file_ + ": table " + table_ + ", column " + columns_[static_cast<std::size_t>(i)] +
                               " holds binary data, which no old table had");
    }

    Connection db_;
    std::string file_;
    std::string table_;
    Statement stmt_;
    std::vector<std::string> columns_;
    std::vector<Declared> declared_;
};

class SqliteSource final : public OldDatabase {
public:
    SqliteSource(std::filesystem::path file, Connection db) : file_(std::move(file)), db_(std::move(db))
    {
        sqlite3_stmt* raw = nullptr;
        const char* sql = "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%' ORDER BY rowid";
        if (sqlite3_prepare_v2(db_.get(), sql, -1, &raw, nullptr) != SQLITE_OK)
            throw OldDatabaseError(file_.string() + " is not a readable SQLite database: " + sqlite3_errmsg(db_.get()));
        Statement stmt(raw);
        int rc;
        while ((rc = sqlite3_step(raw)) == SQLITE_ROW)
            tables_.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(raw, 0)));
        if (rc != SQLITE_DONE)
            throw OldDatabaseError(file_.string() + " is not a readable SQLite database: " + sqlite3_errmsg(db_.get()));
    }

    const std::filesystem::path& file() const override { return file_; }
    std::vector<std::string> table_names() const override { return tables_; }

    std::optional<std::string> find_table(std::string_view name) const override
    {
        for (const auto& t : tables_)
            if (t.size() == name.size() && strncasecmp(t.data(), name.data(), name.size()) == 0) return t;
        return std::nullopt;
    }

    std::unique_ptr<OldTableReader> open_table(std::string_view name) const override
    {
        const auto stored = find_table(name);
        if (!stored) throw OldDatabaseError(file_.string() + " has no table " + std::string(name));
        return std::make_unique<SqliteTableReader>(db_, file_.string(), *stored);
    }

private:
    std::filesystem::path file_;
    Connection db_;
    std::vector<std::string> tables_;
};

}  // namespace

bool is_sqlite_file(const std::filesystem::path& file)
{
    static constexpr char kHeader[] = "SQLite format 3";  // with its terminating zero, 16 bytes
    char head[sizeof kHeader] = {};
    std::ifstream in(file, std::ios::binary);
    return in.read(head, sizeof head) && std::memcmp(head, kHeader, sizeof kHeader) == 0;
}

std::unique_ptr<OldDatabase> open_sqlite_source(const std::filesystem::path& file)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) throw OldDatabaseError(file.string() + " does not exist");
    if (std::filesystem::file_size(file, ec) == 0) throw OldDatabaseError(file.string() + " is empty");
    if (!is_sqlite_file(file)) throw OldDatabaseError(file.string() + " is not a SQLite database file");
    sqlite3* raw = nullptr;
    const int rc = sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READONLY, nullptr);
    Connection db(raw, CloseDb{});
    if (rc != SQLITE_OK)
        throw OldDatabaseError(file.string() + " cannot be opened: " + (raw ? sqlite3_errmsg(raw) : "out of memory"));
    return std::make_unique<SqliteSource>(file, std::move(db));
}

}  // namespace nimbara::platform
