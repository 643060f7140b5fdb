#include <strings.h>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"

namespace nimbara {

Recordset::Recordset(std::vector<std::string> names, std::vector<std::vector<FieldValue>> rows)
    : open_(true), names_(std::move(names)), rows_(std::move(rows))
{
}

void Recordset::Close()
{
    if (!open_) throw DatabaseError("Operation is not allowed when the object is closed.");
    open_ = false;
    rows_.clear();
    names_.clear();
    at_ = 0;
}

std::int64_t Recordset::RecordCount() const
{
    if (!open_) throw DatabaseError("Operation is not allowed when the object is closed.");
    return static_cast<std::int64_t>(rows_.size());
}

bool Recordset::IsBOF() const { return RecordCount() == 0; }

bool Recordset::IsEOF() const { return at_ >= static_cast<std::size_t>(RecordCount()); }

void Recordset::MoveFirst()
{
    RecordCount();  // a closed recordset refuses
    at_ = 0;
}

void Recordset::MoveNext()
{
    if (IsEOF()) throw DatabaseError("Either BOF or EOF is True, or the current record has been deleted.");
    ++at_;
}

std::size_t Recordset::FieldCount() const
{
    RecordCount();
    return names_.size();
}

const std::string& Recordset::FieldName(std::size_t position) const
{
    if (position >= FieldCount())
        throw DatabaseError("Item cannot be found in the collection corresponding to the requested name or ordinal: " +
                            std::to_string(position));
    return names_[position];
}

std::size_t Recordset::position_of(std::string_view name) const
{
    for (std::size_t i = 0; i < names_.size(); ++i)
        if (names_[i].size() == name.size() && ::strncasecmp(names_[i].data(), name.data(), name.size()) == 0)
            return i;
    throw DatabaseError("Item cannot be found in the collection corresponding to the requested name or ordinal: " +
                        std::string(name));
}

const std::vector<FieldValue>& Recordset::current() const
{
    if (IsEOF()) throw DatabaseError("Either BOF or EOF is True, or the current record has been deleted.");
    return rows_[at_];
}

Field Recordset::Fields(std::string_view name) const
{
    const auto i = position_of(name);
    return {names_[i], current()[i]};
}

Field Recordset::Fields(std::size_t position) const
{
    const FieldValue& value = (*this)[position];
    return {names_[position], value};
}

const FieldValue& Recordset::operator[](std::string_view name) const
{
    const auto i = position_of(name);
    return current()[i];
}

const FieldValue& Recordset::operator[](std::size_t position) const
{
    if (position >= FieldCount())
        throw DatabaseError("Item cannot be found in the collection corresponding to the requested name or ordinal: " +
                            std::to_string(position));
    return current()[position];
}

}  // namespace nimbara
