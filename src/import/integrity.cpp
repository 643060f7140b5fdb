#include "import/integrity.hpp"

#include <strings.h>

#include <cmath>
#include <set>

#include "import/column_values.hpp"
#include "import/procedure_run.hpp"

namespace nimbara::import {
namespace {

using Key = std::vector<std::string>;

bool same_name(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// The source field a target column is read from, or -1 when it is made rather than read.
int field_of(const TableCopy& table, std::string_view column)
{
    for (const Column& c : table.columns)
        if (same_name(c.name, column)) return c.from == From::Field || c.from == From::ClientOf ? c.field : -1;
    return -1;
}

// A key value as text, so that 17 and 17.0 and "17" (a SQLite file may hold any of them) meet.
std::string key_text(const platform::OldValue& value)
{
    if (const auto* d = std::get_if<double>(&value); d && std::isfinite(*d) && *d == std::trunc(*d) && std::abs(*d) < 9e18)
        return std::to_string(static_cast<std::int64_t>(*d));
    if (const auto* s = std::get_if<std::string>(&value)) return *s;
    return shown(value);
}

// How a table's rows name their parents, by source field; -1 where the layout has no such field.
struct Links {
    int own[2] = {-1, -1};     // the fields of the row's own key that children name
    int client = -1;           // the client's key (Id_Cliente, or Cod_Cliente where it was the key)
    int contract = -1;         // with `client`, the contract
    int guia = -1, line = -1;  // N_Req and N_Linha of the parent Guia or line
};

enum Role { Clients, Contracts, Guias, Lines, Services };

Links links_of(Role role, const TableCopy& table)
{
    Links l;
    switch (role) {
    case Clients: {
        // The oldest layout numbers its clients on the way in and names them by Cod_Cliente.
        const int id = field_of(table, "Id_Cliente");
        l.own[0] = id >= 0 ? id : field_of(table, "Cod_Cliente");
        break;
    }
    case Contracts:
        l.client = field_of(table, "Id_Cliente");
        l.own[0] = l.client;
        l.own[1] = field_of(table, "Cod_Contrato");
        break;
    case Guias:
        l.own[0] = field_of(table, "N_Req");
        l.client = field_of(table, "Id_Cliente");
        l.contract = field_of(table, "Cod_Contrato");
        break;
    case Lines:
        l.own[0] = l.guia = field_of(table, "N_Req");
        l.own[1] = field_of(table, "N_Linha");
        break;
    case Services:
        l.guia = field_of(table, "N_Req");
        l.line = field_of(table, "N_Linha");
        break;
    }
    return l;
}

class Checker {
public:
    Checker(const platform::OldDatabase& source, Integrity& found) : source_(source), found_(found) {}

    void check(Role role, const TableCopy& table)
    {
        std::unique_ptr<platform::OldTableReader> reader;
        try {
            reader = source_.open_table(table.source);
        } catch (const std::exception& e) {
            throw CopyFailed(e.what());
        }
        names_ = reader->column_names();
        table_ = &table;
        Links l = links_of(role, table);
        // A layout shorter than the procedure expects is the copy's to report, with its columns.
        for (int* f : {&l.own[0], &l.own[1], &l.client, &l.contract, &l.guia, &l.line})
            if (*f >= static_cast<int>(names_.size())) *f = -1;
        keyed_[role] = l.own[0] >= 0 && (l.own[1] >= 0 || role == Clients || role == Guias);
        std::int64_t rows = 0;
        platform::OldRow row;
        while (true) {
            try {
                if (!reader->next(row)) break;
            } catch (const std::exception& e) {
                throw CopyFailed(std::string(table.source) + " after " + std::to_string(rows) + " rows: " + e.what());
            }
            ++rows;
            check_texts(row);
            check_parents(role, l, row);
            if (keyed_[role]) keys_[role].insert(key(row, l.own[0], l.own[1]));
        }
    }

private:
    Key key(const platform::OldRow& row, int a, int b = -1) const
    {
        Key k{key_text(row[static_cast<std::size_t>(a)])};
        if (b >= 0) k.push_back(key_text(row[static_cast<std::size_t>(b)]));
        return k;
    }

    std::string named(const platform::OldRow& row, int a, int b = -1) const
    {
        std::string text = names_[static_cast<std::size_t>(a)] + " " + shown(row[static_cast<std::size_t>(a)]);
        if (b >= 0) text += ", " + names_[static_cast<std::size_t>(b)] + " " + shown(row[static_cast<std::size_t>(b)]);
        return text;
    }

    // "TBL_CAB, row N_Req 17", as the copy names a row.
    std::string where(const platform::OldRow& row) const
    {
        std::string key;
        for (int f = 0; f < table_->key_fields && f < static_cast<int>(row.size()); ++f)
            key += (key.empty() ? "" : ", ") + names_[static_cast<std::size_t>(f)] + " " +
                   shown(row[static_cast<std::size_t>(f)]);
        return std::string(table_->source) + ", row " + key;
    }

    void check_parents(Role role, const Links& l, const platform::OldRow& row)
    {
        const auto missing = [&](Role parent, int a, int b, const char* what, const char* in) {
            if (a < 0 || !keyed_[parent]) return;
            if (!keys_[parent].contains(key(row, a, b)))
                found_.orphans.push_back(where(row) + ": its " + what + " (" + named(row, a, b) + ") is not in " + in);
        };
        switch (role) {
        case Clients: break;
        case Contracts: missing(Clients, l.client, -1, "client", "TBL_CLIENTE"); break;
        case Guias:
            if (l.client >= 0 && keyed_[Clients] && !keys_[Clients].contains(key(row, l.client))) {
                missing(Clients, l.client, -1, "client", "TBL_CLIENTE");
                break;  // its contract cannot be there either
            }
            if (l.contract >= 0) missing(Contracts, l.client, l.contract, "contract", "TBL_CONTRATO");
            break;
        case Lines: missing(Guias, l.guia, -1, "Guia", "TBL_CAB"); break;
        case Services:
            if (l.line >= 0) missing(Lines, l.guia, l.line, "line", "TBL_LINHA");
            break;
        }
    }

    void check_texts(const platform::OldRow& row)
    {
        for (std::size_t i = 0; i < row.size(); ++i) {
            const auto* text = std::get_if<std::string>(&row[i]);
            if (!text || text->find('\0') == std::string::npos) continue;
            if (found_.damaged.size() < Integrity::kShown)
                found_.damaged.push_back(where(row) + ", column " + names_[i] +
                                         ": its text holds NUL characters, as a damaged page leaves");
            ++found_.damaged_count;
        }
    }

    const platform::OldDatabase& source_;
    Integrity& found_;
    const TableCopy* table_ = nullptr;
    std::vector<std::string> names_;
    std::set<Key> keys_[5];
    bool keyed_[5] = {};  // whether the table's rows could be told by their key
};

}  // namespace

Integrity check_integrity(const Procedure& procedure, const platform::OldDatabase& source)
{
    Integrity found;
    Checker checker(source, found);
    for (std::size_t i = 0; i < procedure.tables.size() && i < 5; ++i)
        checker.check(static_cast<Role>(i), procedure.tables[i]);
    return found;
}

std::string refusal(const Integrity& found, const std::string& file, bool keeping_orphans)
{
    std::vector<std::string> shown_rows = found.damaged;
    std::int64_t total = found.damaged_count;
    if (!keeping_orphans) {
        for (std::size_t i = 0; i < found.orphans.size() && shown_rows.size() < Integrity::kShown; ++i)
            shown_rows.push_back(found.orphans[i]);
        total += static_cast<std::int64_t>(found.orphans.size());
    }
    std::string text = file + " does not hang together: " + std::to_string(total) +
                       (total == 1 ? " row is" : " rows are") + " damaged or belong to nothing; nothing was imported";
    for (const auto& row : shown_rows) text += "\n  " + row;
    if (total > static_cast<std::int64_t>(shown_rows.size()))
        text += "\n  and " + std::to_string(total - static_cast<std::int64_t>(shown_rows.size())) + " more";
    if (!keeping_orphans && !found.orphans.empty() && found.damaged.empty())
        text += "\nRows that belong to nothing can be brought in all the same with keep-orphans (--keep-orphans).";
    return text;
}

}  // namespace nimbara::import
