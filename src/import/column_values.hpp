#pragma once
// A source value made into what a target column takes. The old statements pasted values as text
// and let the database read them; bound values must have the column's kind, and a value that has
// none (a Null where a number stands, a text that is no number) is refused with the reason.
#include <stdexcept>
#include <string>

#include "import/mappings.hpp"
#include "nimbara/Recordset.hpp"
#include "platform/old_database.hpp"

namespace nimbara::import {

// Why a value cannot stand in its column.
class ValueRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Null becomes the empty text in a text column, as the old quoted statement stored it, and stays
// Null in a bare text column; any other kind needs a value.
FieldValue column_value(const platform::OldValue& value, Kind kind);

// The value as a message shows it: texts in double quotes, Null as Null.
std::string shown(const platform::OldValue& value);

}  // namespace nimbara::import
