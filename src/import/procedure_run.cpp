#include "import/procedure_run.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "entities/stored_values.hpp"
#include "import/column_values.hpp"
#include "import/integrity.hpp"

namespace nimbara::import {
namespace {

std::string insert_statement(const TableCopy& table)
{
    std::string names, marks;
    for (const auto& c : table.columns) {
        names += (names.empty() ? "" : ", ") + std::string(c.name);
        marks += marks.empty() ? "?" : ", ?";
    }
    return "INSERT INTO " + std::string(table.target) + " (" + names + ") VALUES (" + marks + ")";
}

// What the numbering columns carry from one row to the next.
struct Numbering {
    std::int64_t every_other = 0;
    int year = 0;
    std::int64_t in_year = 0;
};

class TableCopier {
public:
    TableCopier(const TableCopy& table, const platform::OldTableReader& reader, Database& target, Numbering& numbering)
        : table_(table), names_(reader.column_names()), target_(target), numbering_(numbering),
          sql_(insert_statement(table)), values_(table.columns.size())
    {
        for (const auto& c : table.columns) columns_.emplace_back(c.name);
        for (const auto& c : table.columns)
            for (int f : {c.field, c.field2})
                if (f >= static_cast<int>(names_.size()))
                    throw CopyFailed(std::string(table.source) + " has " + std::to_string(names_.size()) +
                                     " columns, but column " + c.name + " of " + table.target +
                                     " is read from position " + std::to_string(f + 1));
    }

    void copy(const platform::OldRow& row)
    {
        for (std::size_t i = 0; i < table_.columns.size(); ++i) {
            const Column& c = table_.columns[i];
            try {
                values_[i] = value(c, row);
            } catch (const QueuedStatementFailed& e) {
                throw CopyFailed(e.what());  // an earlier row's insert, which names its row
            } catch (const std::exception& e) {
                throw CopyFailed(where(row) + ", column " + c.name + source_name(c) + ": " + e.what());
            }
        }
        // Through the gate every store shares, so that nothing is stored that the program cannot read back.
        try {
            entities::check_row(table_.target, where(row), columns_, values_);
        } catch (const entities::StoredValueRefused& e) {
            throw CopyFailed(e.what());
        }
        // Sent with the rows that follow on a server; a failure names its own row when it shows.
        try {
            target_.execute_queued(sql_, values_, where(row));
        } catch (const QueuedStatementFailed& e) {
            throw CopyFailed(e.what());
        } catch (const std::exception& e) {
            throw CopyFailed(where(row) + ": " + e.what());
        }
    }

private:
    FieldValue value(const Column& c, const platform::OldRow& row)
    {
        const auto at = [&](int f) -> const platform::OldValue& { return row[static_cast<std::size_t>(f)]; };
        switch (c.from) {
        case From::Field: return column_value(at(c.field), c.kind);
        case From::Constant: return column_value(std::string(c.constant), c.kind);
        case From::OneOrZero: {
            const FieldValue yes = column_value(at(c.field), Kind::YesNo);
            return column_value(std::string(yes.yes_no() ? "1" : "0"), c.kind);
        }
        case From::NoApostrophe: {
            FieldValue v = column_value(at(c.field), c.kind);
            if (v.is_null()) return v;
            std::string text = v.text();
            std::replace(text.begin(), text.end(), '\'', ' ');
            return text;
        }
        case From::ZeroWhenEmpty: {
            const FieldValue v = column_value(at(c.field), c.kind);
            return v.is_null() || v.text().empty() ? FieldValue("0") : v;
        }
        case From::EveryOther:
            // The old counter was 16 bits wide.
            numbering_.every_other += 2;
            return column_value(numbering_.every_other, Kind::Short);
        case From::ClientOf: {
            const Recordset rs = target_.open("SELECT Id_Cliente FROM Tbl_Cliente WHERE Cod_Cliente = ?",
                                              {column_value(at(c.field), Kind::Long)});
            // A client number the clients do not hold gives 0, as the look-up left the id.
            return rs.IsEOF() ? FieldValue(0) : rs[std::size_t{0}];
        }
        case From::NextNumber: {
            const Recordset rs = target_.open("SELECT COUNT(*) FROM Tbl_Cab WHERE Cod_Cliente = ? AND Cod_Contrato = ?",
                                              {column_value(at(c.field), Kind::Long),
                                               column_value(at(c.field2), Kind::Long)});
            return rs[std::size_t{0}].integer() + 1;
        }
        case From::YearCount: {
            const int year = column_value(at(c.field), Kind::Date).date().year;
            if (year != numbering_.year) {
                numbering_.year = year;
                numbering_.in_year = 1;
            }
            return numbering_.in_year++;
        }
        }
        throw CopyFailed("unknown value source");
    }

    std::string source_name(const Column& c) const
    {
        if (c.field < 0) return "";
        return " (from " + names_[static_cast<std::size_t>(c.field)] + ")";
    }

    // "TBL_CAB, row N_Req 17"
    std::string where(const platform::OldRow& row) const
    {
        std::string key;
        for (int f = 0; f < table_.key_fields && f < static_cast<int>(row.size()); ++f)
            key += (key.empty() ? "" : ", ") + names_[static_cast<std::size_t>(f)] + " " +
                   shown(row[static_cast<std::size_t>(f)]);
        return std::string(table_.source) + ", row " + key;
    }

    const TableCopy& table_;
    const std::vector<std::string>& names_;
    Database& target_;
    Numbering& numbering_;
    std::string sql_;
    std::vector<FieldValue> values_;
    std::vector<std::string_view> columns_;
};

// Tables whose numbering needs the old ORDER BY (in the kept versions only) are read whole and sorted
// on this key; every other table streams in its stored order.
std::int64_t order_of(const platform::OldRow& row, int field)
{
    return column_value(row[static_cast<std::size_t>(field)], Kind::Long).integer();
}

std::int64_t copy_table(const TableCopy& table, const platform::OldDatabase& source, Database& target,
                        Numbering& numbering, const CancelCheck& cancelled)
{
    std::unique_ptr<platform::OldTableReader> reader;
    try {
        reader = source.open_table(table.source);
    } catch (const std::exception& e) {
        throw CopyFailed(e.what());
    }
    TableCopier copier(table, *reader, target, numbering);
    std::int64_t rows = 0;
    platform::OldRow row;
    const auto next = [&] {
        try {
            return reader->next(row);
        } catch (const std::exception& e) {
            throw CopyFailed(std::string(table.source) + " after " + std::to_string(rows) + " rows: " + e.what());
        }
    };
    if (table.sorted_by < 0) {
        while (next()) {
            if (cancelled && cancelled()) throw ImportCancelled();
            copier.copy(row);
            ++rows;
        }
        return rows;
    }
    std::vector<platform::OldRow> all;
    while (next()) all.push_back(row);
    try {
        std::stable_sort(all.begin(), all.end(), [&](const auto& a, const auto& b) {
            return order_of(a, table.sorted_by) < order_of(b, table.sorted_by);
        });
    } catch (const ValueRefused& e) {
        throw CopyFailed(std::string(table.source) + ", the order of its rows: " + e.what());
    }
    for (const auto& r : all) {
        if (cancelled && cancelled()) throw ImportCancelled();
        copier.copy(r);
        ++rows;
    }
    return rows;
}

}  // namespace

void delete_data(Database& target)
{
    for (const char* table : kDataTables) target.execute("DELETE FROM " + std::string(table));
}

RunResult run_procedure(const Procedure& procedure, const platform::OldDatabase& source, Database& target,
                        const std::function<void(int)>& progress, bool keep_orphans, const CancelCheck& cancelled)
{
    Integrity found = check_integrity(procedure, source);
    if (!found.damaged.empty() || (!found.orphans.empty() && !keep_orphans))
        throw CopyFailed(refusal(found, source.file().string(), keep_orphans));
    RunResult result;
    result.orphans = std::move(found.orphans);
    std::optional<Transaction> transaction;
    try {
        transaction.emplace(target);
    } catch (const DatabaseError& e) {
        throw CopyFailed(std::string("beginning the import's transaction on the target: ") + e.what());
    }
    try {
        delete_data(target);
        if (procedure.withdraws_e03) {
            target.execute("UPDATE Tbl_B_Produto SET Activo = ? WHERE Codigo = ?", {false, "E03"});
            target.execute("UPDATE tbl_Validacao SET Activo = ? WHERE Cod_Produto = ?", {false, "E03"});
        }
    } catch (const DatabaseError& e) {
        throw CopyFailed(std::string("emptying the target: ") + e.what());
    }
    TableCounts& counts = result.counts;
    Numbering numbering;
    for (std::size_t i = 0; i < procedure.tables.size(); ++i) {
        counts[i] = copy_table(procedure.tables[i], source, target, numbering, cancelled);
        progress(procedure.tables[i].progress);
    }
    // The last rows sent ahead on a server show their failure at the next statement; when the caller
    // holds the transaction (a dry run, say) the commit below is not that statement, so a query is.
    try {
        target.open("SELECT COUNT(*) FROM Tbl_Cliente WHERE 1 = 0");
    } catch (const QueuedStatementFailed& e) {
        throw CopyFailed(e.what());
    } catch (const DatabaseError& e) {
        throw CopyFailed(std::string("finishing the copy: ") + e.what());
    }
    try {
        transaction->commit();
    } catch (const DatabaseError& e) {
        throw CopyFailed(std::string("committing the import: ") + e.what());
    }
    return result;
}

}  // namespace nimbara::import
