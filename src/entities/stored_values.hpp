#pragma once
// The one gate for what is stored: every value bound for a column of the register is checked against
// what the program's readers accept, the same on both stores, before it is written. The entities and
// the import call it; each names the place (a file's key, a row, an entity's key) in its own terms.
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "nimbara/Database.hpp"

namespace nimbara::entities {

// A value the gate refused; the text names the place, the column and the reason.
class StoredValueRefused : public DatabaseError {
public:
    using DatabaseError::DatabaseError;
};

// Why `value` may not be stored in `column` of `table`, or nothing when it may: text that is not
// UTF-8, holds a NUL or is wider than the column; a whole number outside the column's width, or no
// whole number; a date that is no real date or lies outside the years 1900 to 9999; an amount that is
// not digits; a key left empty; a contract without its code.
std::optional<std::string> refusal(std::string_view table, std::string_view column, const FieldValue& value);

// Checks a row about to be written, `columns[i]` taking `values[i]`: throws StoredValueRefused
// "PLACE: Table.Column: reason" for the first value refused.
void check_row(std::string_view table, std::string_view place, std::span<const std::string_view> columns,
               std::span<const FieldValue> values);
inline void check_row(std::string_view table, std::string_view place, std::initializer_list<std::string_view> columns,
                      std::span<const FieldValue> values)
{
    check_row(table, place, std::span<const std::string_view>(columns.begin(), columns.size()), values);
}

}  // namespace nimbara::entities
