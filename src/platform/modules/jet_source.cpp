#include "platform/jet_source.hpp"

// libmdb's header includes glib inside its extern "C" block, which C++ refuses; included first, glib
// makes that inner include empty.
#include <glib.h>
#include <mdbtools.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <mutex>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/jet_values.hpp"

namespace nimbara::platform {
namespace {

struct HandleCloser {
    void operator()(MdbHandle* mdb) const { mdb_close(mdb); }
};
using Handle = std::unique_ptr<MdbHandle, HandleCloser>;

struct TableFreer {
    void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using TableDef = std::unique_ptr<MdbTableDef, TableFreer>;

// libmdb tells its troubles on standard error in its own words, without the file's name ("offset N is
// beyond EOF", "Oops! didn't get a full page"), also on the way to a reading that succeeds. Its calls
// run with that stream sent into a file of ours: what it said joins our message when the reading
// fails, and is dropped when it does not.
int chatter_sink()
{
    static const int fd = ::memfd_create("nimbara-libmdb", MFD_CLOEXEC);
    return fd;
}

class Chatter {
public:
    // " (libmdb: offset 8192 is beyond EOF)", or nothing when it said nothing. Called while its
    // calls are muffled, it hears what they said so far.
    std::string told() const
    {
        const_cast<Chatter*>(this)->listen();
        return first_.empty() ? std::string() : " (libmdb: " + first_ + ")";
    }

    // Takes what was said into the sink, and empties it.
    void listen()
    {
        std::fflush(stderr);
        const off_t size = ::lseek(chatter_sink(), 0, SEEK_CUR);
        if (size <= 0) return;
        std::array<char, 512> text{};
        const ssize_t n = ::pread(chatter_sink(), text.data(), text.size(), 0);
        if (n > 0) heard(std::string_view(text.data(), static_cast<std::size_t>(n)));
        if (::ftruncate(chatter_sink(), 0) == 0) ::lseek(chatter_sink(), 0, SEEK_SET);
    }

private:
    void heard(std::string_view text)
    {
        if (!first_.empty()) return;
        const auto end = text.find('\n');
        first_ = text.substr(0, end);
        while (!first_.empty() && (first_.back() == '\r' || first_.back() == ' ')) first_.pop_back();
        if (first_.size() > 200) first_.resize(200);
    }
    std::string first_;
};

// Standard error sent into a memory file for as long as the object lives, one thread at a time; a
// call made inside another's lifetime on the same thread is simply within it.
class Muffled {
public:
    explicit Muffled(Chatter& chatter) : chatter_(chatter), lock_(mutex())
    {
        if (depth()++ > 0 || sink() < 0) return;
        std::fflush(stderr);
        saved_ = ::dup(STDERR_FILENO);
        if (saved_ >= 0 && ::dup2(sink(), STDERR_FILENO) < 0) {
            ::close(saved_);
            saved_ = -1;
        }
    }
    ~Muffled()
    {
        --depth();
        if (saved_ < 0) return;
        std::fflush(stderr);
        ::dup2(saved_, STDERR_FILENO);
        ::close(saved_);
        chatter_.listen();
    }
    Muffled(const Muffled&) = delete;
    Muffled& operator=(const Muffled&) = delete;

private:
    static std::recursive_mutex& mutex()
    {
        static std::recursive_mutex m;
        return m;
    }
    static int& depth()
    {
        thread_local int d = 0;
        return d;
    }
    static int sink() { return chatter_sink(); }

    Chatter& chatter_;
    std::lock_guard<std::recursive_mutex> lock_;
    int saved_ = -1;
};

constexpr int kRowOffsetMask = 0x1FFF;  // the row offset table keeps flags above the offset

std::string name_of(const std::filesystem::path& file) { return "Jet file \"" + file.string() + "\""; }

bool same_name(std::string_view a, std::string_view b)
{
    const auto lower = [](unsigned char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : char(c); };
    return std::ranges::equal(a, b, [&](char x, char y) { return lower(x) == lower(y); });
}

// libmdb answers a bad file with a null handle and a line on standard error; looking at the file first
// lets the refusal say what is wrong with it.
void check_file(const std::filesystem::path& file)
{
    std::error_code ec;
    const auto status = std::filesystem::status(file, ec);
    if (!std::filesystem::exists(status)) throw OldDatabaseError(name_of(file) + " does not exist");
    if (!std::filesystem::is_regular_file(status)) throw OldDatabaseError(name_of(file) + " is not a file");
    std::ifstream in(file, std::ios::binary);
    if (!in) throw OldDatabaseError(name_of(file) + " cannot be read");
    std::array<char, 19> head{};
    in.read(head.data(), head.size());
    if (in.gcount() == 0) throw OldDatabaseError(name_of(file) + " is empty");
    const std::string_view signature(head.data() + 4, 15);
    if (in.gcount() < std::streamsize(head.size()) || (signature != "Standard Jet DB" && signature != "Standard ACE DB"))
        throw OldDatabaseError(name_of(file) + " is not a Jet database file");
}

Handle open_handle(const std::filesystem::path& file, Chatter& chatter)
{
    check_file(file);
    const Muffled muffled(chatter);
    Handle mdb(mdb_open(file.c_str(), MDB_NOFLAGS));
    if (!mdb) throw OldDatabaseError(name_of(file) + " cannot be opened as a Jet database" + chatter.told());
    if (!mdb_read_catalog(mdb.get(), MDB_TABLE))
        throw OldDatabaseError(name_of(file) + ": its list of tables cannot be read" + chatter.told());
    return mdb;
}

std::vector<MdbCatalogEntry*> user_tables(MdbHandle* mdb)
{
    std::vector<MdbCatalogEntry*> tables;
    for (guint i = 0; i < mdb->catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
        if (entry->object_type == MDB_TABLE && mdb_is_user_table(entry)) tables.push_back(entry);
    }
    return tables;
}

// The name of a stored type that has no value kind here, or nothing for the types that have one.
const char* unreadable_type(int type)
{
    switch (type) {
    case MDB_BOOL: case MDB_BYTE: case MDB_INT: case MDB_LONGINT: case MDB_COMPLEX: case MDB_MONEY:
    case MDB_FLOAT: case MDB_DOUBLE: case MDB_DATETIME: case MDB_TEXT: case MDB_MEMO:
        return nullptr;
    case MDB_BINARY: return "binary";
    case MDB_OLE: return "OLE object";
    case MDB_REPID: return "replication ID";
    case MDB_NUMERIC: return "decimal";
    default: return "unknown";
    }
}

// The bytes a value of a fixed-width type takes; 0 for texts and memos.
int width(int type)
{
    switch (type) {
    case MDB_BYTE: return 1;
    case MDB_INT: return 2;
    case MDB_LONGINT: case MDB_COMPLEX: case MDB_FLOAT: return 4;
    case MDB_MONEY: case MDB_DOUBLE: case MDB_DATETIME: return 8;
    default: return 0;
    }
}

class JetTableReader final : public OldTableReader {
public:
    JetTableReader(std::filesystem::path file, Handle mdb, MdbCatalogEntry& entry, Chatter chatter)
        : file_(std::move(file)), mdb_(std::move(mdb)), chatter_(std::move(chatter)), name_(entry.object_name)
    {
        std::error_code ec;
        file_size_ = std::filesystem::file_size(file_, ec);
        const Muffled muffled(chatter_);
        table_.reset(mdb_read_table(&entry));
        if (!table_ || !mdb_read_columns(table_.get())) throw failure("its columns cannot be read");
        for (guint i = 0; i < table_->num_cols; ++i) {
            const auto& column = this->column(i);
            if (const char* type = unreadable_type(column.col_type))
                throw OldDatabaseError(where(column) + ": values of type " + type + " cannot be read");
            columns_.emplace_back(column.name);
        }
        fields_.resize(table_->num_cols);
        mdb_rewind_table(table_.get());
    }

    const std::string& table_name() const override { return name_; }
    const std::vector<std::string>& column_names() const override { return columns_; }

    bool next(OldRow& row) override
    {
        // libmdb starts the last page over when asked again after the end.
        if (finished_) return false;
        const Muffled muffled(chatter_);
        if (!mdb_fetch_row(table_.get())) {
            finished_ = true;
            // libmdb ends a table quietly at a page it cannot read, so a cut file would pass for a short table.
            if (rows_read_ != table_->num_rows)
                throw failure("only " + std::to_string(rows_read_) + " of its " + std::to_string(table_->num_rows) +
                              " rows can be read");
            return false;
        }
        ++rows_read_;
        // The fetch has cracked the row, but what it leaves behind shows a Null and an empty text
        // alike; cracking it again gives each field's own null flag and place on the page.
        int start = 0;
        std::size_t size = 0;
        if (mdb_find_row(mdb_.get(), int(table_->cur_row) - 1, &start, &size) != 0 ||
            mdb_crack_row(table_.get(), start & kRowOffsetMask, size, fields_.data()) < 0)
            throw failure("a row cannot be read");
        row.resize(columns_.size());
        for (const MdbField& field : fields_) {
            const auto index = static_cast<guint>(field.colnum);
            row[index] = value(column(index), field);
        }
        return true;
    }

private:
    const MdbColumn& column(guint index) const { return *static_cast<MdbColumn*>(g_ptr_array_index(table_->columns, index)); }

    std::string where(const MdbColumn& column) const
    {
        return name_of(file_) + ", table " + name_ + ", column " + column.name;
    }
    OldDatabaseError failure(const std::string& what) const
    {
        return OldDatabaseError(name_of(file_) + ", table " + name_ + ": " + what + chatter_.told());
    }

    std::span<const unsigned char> stored(const MdbField& field) const
    {
        return {mdb_->pg_buf + field.start, static_cast<std::size_t>(field.siz)};
    }

    std::string text(std::span<const unsigned char> bytes) const
    {
        return mdb_->f->jet_version == MDB_VER_JET3 ? jet::cp1252_to_utf8(bytes) : jet::jet4_text_to_utf8(bytes);
    }

    OldValue value(const MdbColumn& column, const MdbField& field) const
    {
        // A yes/no value is kept in the row's null mask: a set bit is yes, and it is never Null.
        if (column.col_type == MDB_BOOL) return field.is_null == 0;
        if (field.is_null) return std::monostate{};
        // A damaged row may place a value beyond its page, or make it narrower than its type.
        const auto page_size = static_cast<long>(mdb_->fmt->pg_size);
        if (field.start < 0 || field.siz < width(column.col_type) || long{field.start} + long{field.siz} > page_size)
            throw OldDatabaseError(where(column) + ": a value lies outside its page (a damaged row)" + chatter_.told());
        unsigned char* page = mdb_->pg_buf;
        switch (column.col_type) {
        case MDB_BYTE:
            return std::int64_t{page[field.start]};
        case MDB_INT:
            return std::int64_t{static_cast<std::int16_t>(mdb_get_int16(page, field.start))};
        case MDB_LONGINT:
        case MDB_COMPLEX:
            return std::int64_t{static_cast<std::int32_t>(mdb_get_int32(page, field.start))};
        case MDB_MONEY: {
            std::int64_t units = 0;  // ten-thousandths, little-endian
            for (int i = 7; i >= 0; --i) units = std::int64_t(std::uint64_t(units) << 8 | page[field.start + i]);
            return double(units) / 10000.0;
        }
        case MDB_FLOAT:
            return double{mdb_get_single(page, field.start)};
        case MDB_DOUBLE:
            return mdb_get_double(page, field.start);
        case MDB_DATETIME: {
            const double serial = mdb_get_double(page, field.start);
            if (const auto date = jet::date_time_from_serial(serial)) return *date;
            throw OldDatabaseError(where(column) + ": the date serial " + std::to_string(serial) + " is outside the years 100 to 9999");
        }
        case MDB_TEXT:
            return text(stored(field));
        default:  // MDB_MEMO; the constructor let no other type through
            return text(memo(column, field));
        }
    }

    // A memo's field holds its length and flags and then either the text itself or the place of the
    // first of its pages; reading them here, not through libmdb's text form, brings the text whole.
    std::vector<unsigned char> memo(const MdbColumn& column, const MdbField& field) const
    {
        const auto bytes = stored(field);
        if (bytes.size() < MDB_MEMO_OVERHEAD) return {};
        const auto length_and_flags = static_cast<std::uint32_t>(mdb_get_int32(mdb_->pg_buf, field.start));
        if (length_and_flags & 0x80000000u) return {bytes.begin() + MDB_MEMO_OVERHEAD, bytes.end()};
        const bool one_page = (length_and_flags & 0x40000000u) != 0;
        if (!one_page && (length_and_flags & 0xFF000000u) != 0)
            throw OldDatabaseError(where(column) + ": a memo is stored in a form this reader does not know");
        const std::size_t length = length_and_flags & 0x3FFFFFFFu;
        if (length > file_size_)
            throw OldDatabaseError(where(column) + ": a memo states a length of " + std::to_string(length) +
                                   " bytes, more than the whole file holds (a damaged row)");
        std::vector<unsigned char> text;
        text.reserve(length);
        auto page_row = static_cast<int>(mdb_get_int32(mdb_->pg_buf, field.start + 4));
        // Each further page starts with the place of the next; a damaged chain must not loop for ever.
        for (std::size_t pages = 0; text.size() < length; ++pages) {
            void* buffer = nullptr;
            int start = 0;
            std::size_t size = 0;
            if (pages > length || mdb_find_pg_row(mdb_.get(), page_row, &buffer, &start, &size) != 0 ||
                (!one_page && size < 4) || start < 0 || std::size_t(start) + size > std::size_t(mdb_->fmt->pg_size))
                throw OldDatabaseError(where(column) + ": a page of a memo cannot be read" + chatter_.told());
            const auto* row = static_cast<const unsigned char*>(buffer) + start;
            if (one_page) {
                text.assign(row, row + size);
                break;
            }
            page_row = static_cast<int>(mdb_get_int32(buffer, start));
            text.insert(text.end(), row + 4, row + size);
            if (page_row == 0) break;
        }
        if (text.size() < length)
            throw OldDatabaseError(where(column) + ": a memo is shorter than its stated length" + chatter_.told());
        text.resize(length);
        return text;
    }

    std::filesystem::path file_;
    Handle mdb_;
    Chatter chatter_;
    std::uintmax_t file_size_ = 0;
    TableDef table_;  // after the handle, so that it is freed first
    std::string name_;
    std::vector<std::string> columns_;
    std::vector<MdbField> fields_;
    std::size_t rows_read_ = 0;
    bool finished_ = false;
};

class JetDatabase final : public OldDatabase {
public:
    explicit JetDatabase(std::filesystem::path file) : file_(std::move(file))
    {
        Chatter chatter;
        const Handle mdb = open_handle(file_, chatter);
        for (const MdbCatalogEntry* entry : user_tables(mdb.get())) tables_.emplace_back(entry->object_name);
    }

    const std::filesystem::path& file() const override { return file_; }
    std::vector<std::string> table_names() const override { return tables_; }

    std::optional<std::string> find_table(std::string_view name) const override
    {
        const auto found = std::ranges::find_if(tables_, [&](const std::string& t) { return same_name(t, name); });
        if (found == tables_.end()) return std::nullopt;
        return *found;
    }

    // Each reader has a handle of its own, since a handle reads through one page buffer.
    std::unique_ptr<OldTableReader> open_table(std::string_view name) const override
    {
        Chatter chatter;
        Handle mdb = open_handle(file_, chatter);
        for (MdbCatalogEntry* entry : user_tables(mdb.get()))
            if (same_name(entry->object_name, name))
                return std::make_unique<JetTableReader>(file_, std::move(mdb), *entry, std::move(chatter));
        throw OldDatabaseError(name_of(file_) + " has no table " + std::string(name));
    }

private:
    std::filesystem::path file_;
    std::vector<std::string> tables_;
};

}  // namespace
}  // namespace nimbara::platform

nimbara::platform::OldDatabase* nimbara_jet_open(const std::filesystem::path& file)
{
    return new nimbara::platform::JetDatabase(file);
}
