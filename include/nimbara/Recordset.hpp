#pragma once
// The result of a query as the component's hosts read it: fields by name (without regard to case)
// and by position, Null distinct from the empty text, a record count, BOF/EOF and forward moves.
// The whole result is read when the query runs, so a recordset outlives nothing but itself.
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "nimbara/export.hpp"

namespace nimbara {

// A date and time to the second; a date alone has midnight.
struct NIMBARA_API Timestamp {
    int year = 1899, month = 12, day = 30, hour = 0, minute = 0, second = 0;

    // "YYYY-MM-DD HH:MM:SS", the form both stores read.
    std::string text() const;
    // Reads "YYYY-MM-DD", "YYYY-MM-DD HH:MM[:SS[.fff]]" or with a "T" between; throws
    // std::invalid_argument naming the text otherwise.
    static Timestamp parse(std::string_view text);
    // The host's clock, local time.
    static Timestamp now();
    auto operator<=>(const Timestamp&) const = default;
};

enum class ValueKind { Null, Number, Text, YesNo, Date };

// One value of a field or of a bound parameter; it keeps its kind, whichever store it came from.
class NIMBARA_API FieldValue {
public:
    FieldValue() = default;  // Null
    FieldValue(std::nullptr_t) {}
    FieldValue(int v) : v_(std::int64_t{v}) {}
    FieldValue(std::int64_t v) : v_(v) {}
    FieldValue(double v) : v_(v) {}
    FieldValue(bool v) : v_(v) {}
    FieldValue(std::string v) : v_(std::move(v)) {}
    FieldValue(std::string_view v) : v_(std::string(v)) {}
    FieldValue(const char* v) : v_(std::string(v)) {}
    FieldValue(Timestamp v) : v_(v) {}

    ValueKind kind() const;
    bool is_null() const { return kind() == ValueKind::Null; }

    // The value as text: numbers in their shortest form, yes/no as "True"/"False", dates as
    // Timestamp::text; Null is the empty text (test is_null() where the two differ).
    std::string text() const;
    // The value as a number; text must be one. Throws std::invalid_argument("Type mismatch")
    // for Null or text that is no number.
    double number() const;
    std::int64_t integer() const;
    // Yes/no; a number is true when not 0. Throws std::invalid_argument for anything else.
    bool yes_no() const;
    // A date; text in a form Timestamp::parse reads is accepted.
    Timestamp date() const;

    // The alternatives, for the stores that bind them.
    const auto& alternatives() const { return v_; }
    bool operator==(const FieldValue&) const = default;

private:
    std::variant<std::monostate, std::int64_t, double, std::string, bool, Timestamp> v_;
};

// A field of the current record: its name as the store reports it, and its value.
struct NIMBARA_API Field {
    std::string Name;
    FieldValue Value;
};

class NIMBARA_API Recordset {
public:
    // The state of a closed recordset and of an open one, as the old result objects numbered them.
    static constexpr int adStateClosed = 0;
    static constexpr int adStateOpen = 1;

    Recordset() = default;  // closed
    Recordset(std::vector<std::string> names, std::vector<std::vector<FieldValue>> rows);

    int State() const { return open_ ? adStateOpen : adStateClosed; }
    void Close();

    std::int64_t RecordCount() const;
    // EOF is a macro of the C library, so the two positions read IsBOF and IsEOF. Both are true on
    // an empty result.
    bool IsBOF() const;
    bool IsEOF() const;
    void MoveFirst();
    void MoveNext();

    std::size_t FieldCount() const;
    // A field's name, which is known without a current record.
    const std::string& FieldName(std::size_t position) const;
    // Throws DatabaseError for an unknown name, a position out of range, no current record or a
    // closed recordset.
    Field Fields(std::string_view name) const;
    Field Fields(std::size_t position) const;
    const FieldValue& operator[](std::string_view name) const;
    const FieldValue& operator[](std::size_t position) const;

private:
    std::size_t position_of(std::string_view name) const;
    const std::vector<FieldValue>& current() const;

    bool open_ = false;
    std::vector<std::string> names_;
    std::vector<std::vector<FieldValue>> rows_;
    std::size_t at_ = 0;
};

}  // namespace nimbara
