#pragma once
// The database as the component sees it: run a statement with bound values, open a result, and
// transactions that roll back unless committed. Two stores stand behind it (an SQLite file and a
// PostgreSQL server); everything above this header is written once for both.
//
// Statements mark their values with "?" and never carry a value in their text. Table and column
// names are never quoted, so both stores compare them without regard to case.
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// Where a streamed query hands its result: the column names once, then each row as it is read.
// The row's values may be moved from; they are overwritten by the next row.
struct RowSink {
    std::function<void(std::span<const std::string> names)> columns;
    std::function<void(std::span<FieldValue> values)> row;
};

// A store's failure, with the store's own message.
class NIMBARA_API DatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An object has no connection to work on: none was opened for it (the ini file gives no connection
// string, or the store it names cannot be opened), so nothing it was asked to write was written. The
// entity writes that otherwise answer 0 and keep their failure in LastError() raise this one, as a
// host that trusts their 0 would otherwise lose the write without a sign.
class NIMBARA_API ConnectionError : public DatabaseError {
public:
    using DatabaseError::DatabaseError;
};

// The failure of a statement run through execute_queued, named by the label it was queued with,
// wherever it shows.
class NIMBARA_API QueuedStatementFailed : public DatabaseError {
public:
    using DatabaseError::DatabaseError;
};

enum class StoreKind { SQLite, PostgreSQL };

// How a date is written as text: YYYY-MM-DD, DD/MM/YYYY or DD-MM-YYYY.
enum class DateText { Iso, DaySlashed, DayDashed };

// How a transaction begins. `Numbering` serialises the writers that take new numbers, so that two
// stations never read the same maximum: the whole file on SQLite, one advisory lock on PostgreSQL.
// `Reading` reads several queries from one state of the database, without blocking writers (a
// Guia is never read with half of another station's save); nothing may be written in it.
enum class TransactionMode { Ordinary, Numbering, Reading };

class NIMBARA_API Database {
public:
    virtual ~Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    virtual StoreKind kind() const = 0;

    // Runs one statement; answers the number of rows it changed.
    virtual std::int64_t execute(std::string_view sql, std::span<const FieldValue> values = {}) = 0;
    std::int64_t execute(std::string_view sql, std::initializer_list<FieldValue> values)
    {
        return execute(sql, std::span<const FieldValue>(values.begin(), values.size()));
    }

    // Runs a statement whose count of changed rows the caller does not need. Inside a transaction, a
    // store on a server may send it together with the statements that follow, so that a save of many
    // rows waits for the server once rather than once a row; its failure then shows at the next
    // statement, query or commit on this connection, and the transaction rolls back as a whole.
    // Its failure is a QueuedStatementFailed whose message begins with `label` (a row of an import,
    // say), so that it names what failed wherever it shows.
    virtual void execute_queued(std::string_view sql, std::span<const FieldValue> values, std::string_view label);
    void execute_queued(std::string_view sql, std::span<const FieldValue> values)
    {
        execute_queued(sql, values, {});
    }
    void execute_queued(std::string_view sql, std::initializer_list<FieldValue> values)
    {
        execute_queued(sql, std::span<const FieldValue>(values.begin(), values.size()), {});
    }

    // Runs a query and reads its whole result.
    virtual Recordset open(std::string_view sql, std::span<const FieldValue> values = {}) = 0;
    Recordset open(std::string_view sql, std::initializer_list<FieldValue> values)
    {
        return open(sql, std::span<const FieldValue>(values.begin(), values.size()));
    }

    // Runs a query and hands its rows over one at a time, so that a result too long to hold (a whole
    // listing) is never held. The sink must not run statements on this database meanwhile: the
    // store is still reading.
    virtual void stream(std::string_view sql, std::span<const FieldValue> values, const RowSink& sink) = 0;

    // Whether a table or view of that name exists, without regard to case.
    virtual bool has_table(std::string_view name) = 0;

    // The dialect's spellings of the few expressions that differ between the stores.
    virtual std::string year_of(std::string_view expression) const = 0;
    virtual std::string month_of(std::string_view expression) const = 0;
    // A date as text in one of the layouts the listings show.
    virtual std::string date_text(std::string_view expression, DateText layout) const = 0;
    // The literal of a yes/no value inside a statement (in a view, say, where nothing is bound).
    virtual std::string_view boolean_literal(bool value) const = 0;

    // Whether a transaction is open on this connection.
    bool in_transaction() const { return depth_ > 0; }

protected:
    Database() = default;

private:
    friend class Transaction;
    virtual void begin(TransactionMode mode) = 0;
    virtual void commit() = 0;
    virtual void rollback() noexcept = 0;

    int depth_ = 0;
    bool doomed_ = false;  // an inner transaction rolled back: the outer one may not commit
};

// One transaction, rolled back at destruction unless committed. Transactions nest: an inner one
// joins the outer (its mode is that of the outer), and an inner one left uncommitted dooms the
// whole, so that a save of a Guia with its lines either happens entirely or not at all.
class NIMBARA_API Transaction {
public:
    explicit Transaction(Database& db, TransactionMode mode = TransactionMode::Ordinary);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    // Throws DatabaseError when the store refuses, or when an inner transaction was rolled back.
    void commit();

private:
    Database& db_;
    bool outermost_;
    bool done_ = false;
};

// Whether a missing SQLite file may be created (only `db init` does so).
enum class OpenMode { Existing, Create };

// Opens a store from a connection string:
//   Provider=Microsoft.Jet.OLEDB.4.0;Data Source = PATH   (PATH is an SQLite file)
//   sqlite:PATH
//   postgresql://...   a libpq URI
//   postgresql:KEY=VALUE ...   libpq key=value pairs
// Throws DatabaseError naming the string or the store's complaint: a malformed string, a missing,
// read-only or foreign file, an unreachable server.
NIMBARA_API std::shared_ptr<Database> OpenDatabase(std::string_view conn, OpenMode mode = OpenMode::Existing);

// The SQLite file a connection string names; nothing for a PostgreSQL or malformed string.
NIMBARA_API std::optional<std::string> SqliteFileOf(std::string_view conn);

// The network file system that holds `file` (or, for a file not made yet, its folder): "nfs",
// "cifs", "smb2", "9p", "fuse.sshfs" and the like; nothing when it is local or cannot be told. A
// SQLite file there is unsafe with the WAL journal, whose shared memory only works among the
// processes of one machine.
NIMBARA_API std::optional<std::string> NetworkFileSystemOf(const std::string& file);

}  // namespace nimbara
