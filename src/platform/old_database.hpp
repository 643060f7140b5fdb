#pragma once
// An old database read as a source: its tables found by name, each streamed row by row as typed
// values in the table's own column order, so that a mapping can read a row's fields by position.
// A Jet file (jet_source.hpp) or a SQLite file (sqlite_source.hpp) stands behind it.
#include <compare>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace nimbara::platform {

// A stored date and time to the second, with no time zone: old files knew none.
struct OldDateTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;

    friend auto operator<=>(const OldDateTime&, const OldDateTime&) = default;
};

// "YYYY-MM-DD HH:MM:SS", the form in which messages and tests show a date.
std::string to_string(const OldDateTime& value);

// One stored value. std::monostate is Null, which is never the empty text; integers of every width
// come as std::int64_t, text as UTF-8.
using OldValue = std::variant<std::monostate, std::int64_t, double, std::string, bool, OldDateTime>;
using OldRow = std::vector<OldValue>;

inline bool is_null(const OldValue& value) { return std::holds_alternative<std::monostate>(value); }

// A file that cannot be read as an old database, or a table or value that cannot be read from it;
// the message names the file, and the table and column where there is one.
class OldDatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One pass over a table's rows in the order in which they are stored. Only the current row is held,
// so memory does not grow with the table.
class OldTableReader {
public:
    virtual ~OldTableReader() = default;

    // The table's name as stored.
    virtual const std::string& table_name() const = 0;
    virtual const std::vector<std::string>& column_names() const = 0;

    // Puts the next row's values into `row`, one per column in column order, and answers true;
    // answers false after the last row. Throws OldDatabaseError when a value cannot be read.
    virtual bool next(OldRow& row) = 0;
};

class OldDatabase {
public:
    virtual ~OldDatabase() = default;

    virtual const std::filesystem::path& file() const = 0;

    // The names of the data tables as stored, system tables left out.
    virtual std::vector<std::string> table_names() const = 0;

    // The stored name of the table called `name` without regard to case, or nothing.
    virtual std::optional<std::string> find_table(std::string_view name) const = 0;

    // A reader over that table from its first row. Readers are independent of each other and of this
    // object's lifetime. Throws OldDatabaseError naming the table and the file when there is no such table.
    virtual std::unique_ptr<OldTableReader> open_table(std::string_view name) const = 0;
};

// Opens an old database of either kind: a SQLite file by its header, anything else as a Jet file.
// Throws OldDatabaseError naming the file when it is missing, empty or neither.
std::unique_ptr<OldDatabase> open_old_database(const std::filesystem::path& file);

}  // namespace nimbara::platform
