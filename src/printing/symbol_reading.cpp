// A page's payload read back field by field, by the same tables of widths that write it.
#include <algorithm>
#include <array>
#include <functional>

#include "nimbara/guia_symbol.hpp"
#include "printing/barcode_payload.hpp"

namespace nimbara {
namespace {

using printing::ItemField;

constexpr std::size_t kArrayHead = 85;
constexpr std::size_t kDatabaseHead = 70;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_code_char(char c) { return is_digit(c) || (c >= 'A' && c <= 'Z'); }
bool is_printable(char c) { return c >= ' ' && c <= '~'; }

std::string without_zeros(std::string_view carried, std::string_view when_zero)
{
    const auto first = carried.find_first_not_of('0');
    return first == std::string_view::npos ? std::string(when_zero) : std::string(carried.substr(first));
}

// The payload's text with the position of each field, so that every refusal names where it stands.
class Cursor {
public:
    explicit Cursor(std::string_view text) : text_(text) {}

    std::size_t at() const { return at_; }
    std::size_t left() const { return text_.size() - at_; }
    void seek(std::size_t at) { at_ = at; }
    bool next_is(std::string_view what) const { return text_.substr(at_).starts_with(what); }

    [[noreturn]] void fail(std::size_t offset, const std::string& what) const
    {
        throw SymbolPayloadError(offset + 1, what);
    }

    std::string_view take(std::size_t width, std::string_view what, const std::function<bool(char)>& allowed,
                          std::string_view kind)
    {
        if (left() < width) fail(text_.size(), "the payload ends inside the " + std::string(what));
        const std::string_view field = text_.substr(at_, width);
        for (std::size_t i = 0; i < width; ++i)
            if (!allowed(field[i]))
                fail(at_ + i, "the " + std::string(what) + " holds '" + std::string(1, field[i]) + "' where " +
                                  std::string(kind) + " belongs");
        at_ += width;
        return field;
    }
    std::string_view digits(std::size_t width, std::string_view what) { return take(width, what, is_digit, "a digit"); }
    int number(std::size_t width, std::string_view what)
    {
        int n = 0;
        for (const char c : digits(width, what)) n = n * 10 + (c - '0');
        return n;
    }
    bool flag(std::string_view what)
    {
        return take(1, what, [](char c) { return c == 'S' || c == 'N'; }, "S or N") == "S";
    }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

void read_pages(Cursor& c, SymbolHead& head)
{
    const std::size_t at = c.at();
    head.page = c.number(2, "page number");
    head.pages = c.number(2, "number of pages");
    if (head.pages == 0) c.fail(at + 2, "the number of pages is 0");
    if (head.page == 0 || head.page > head.pages)
        c.fail(at, "page " + std::to_string(head.page) + " of " + std::to_string(head.pages));
}

void read_array_head(Cursor& c, SymbolHead& head)
{
    head.edition = SymbolEdition::Array;
    head.access = std::string(c.take(2, "access type", [](char ch) { return ch == 'C' || ch == 'R' || ch == 'O' || ch == 'P'; },
                                     "CR or OP"));
    if (head.access != "CR" && head.access != "OP") c.fail(0, "the head starts with neither CR nor OP");
    head.version = c.digits(6, "version");
    head.contract = without_zeros(c.digits(12, "contract code"), "0");
    head.client = without_zeros(c.digits(9, "client code"), "0");
    head.third_party = without_zeros(c.digits(8, "third party's code"), "0");
    head.day_code = c.digits(4, "day code");
    head.request_number = without_zeros(c.digits(4, "yearly request number"), "0");
    read_pages(c, head);
    const std::size_t flags = c.at();
    const bool one = c.flag("payment flag"), zero = c.flag("payment flag");
    head.credentialed = c.flag("credential flag");
    const bool two = c.flag("payment flag");
    if (one + zero + two > 1) c.fail(flags, "more than one payment is marked");
    if (one) head.payment = "1";
    if (zero) head.payment = "0";
    if (two) head.payment = "2";
    head.credential_number = without_zeros(c.digits(7, "credential number"), "0");
    if (c.digits(10, "zeros after the credential") != "0000000000")
        c.fail(c.at() - 10, "the ten characters after the credential are not all 0");
    head.commitment = without_zeros(c.digits(15, "commitment number"), "");
}

void read_database_head(Cursor& c, SymbolHead& head)
{
    head.edition = SymbolEdition::Database;
    head.access = c.take(4, "edition mark", is_code_char, "CR01");
    head.contract = without_zeros(c.digits(12, "contract code"), "0");
    head.client = without_zeros(c.digits(9, "client code"), "0");
    head.third_party = without_zeros(c.digits(8, "third party's code"), "0");
    head.day_code = c.digits(4, "day code");
    head.request_number = without_zeros(c.digits(4, "request number"), "0");
    read_pages(c, head);
    const std::size_t flags = c.at();
    const bool one = c.flag("payment flag"), two = c.flag("payment flag");
    if (one && two) c.fail(flags, "more than one payment is marked");
    if (one) head.payment = "1";
    if (two) head.payment = "2";
    head.credentialed = c.flag("credential flag");
    head.credential_number = without_zeros(c.digits(7, "credential number"), "0");
    if (c.digits(15, "closing zeros") != std::string(15, '0')) c.fail(c.at() - 15, "the head's last 15 characters are not all 0");
}

// The key the Guia file gives the field an item carries.
std::string_view file_key(guia::Field field)
{
    for (const auto& f : printing::kItemFields)
        if (f.field == field) return f.name;
    return {};
}

// One-digit codes the rules write as "0", "01", "02"...; the others stay the digit they are.
bool coded_digit(guia::Field field)
{
    return field == guia::E_Velocidade || field == guia::Formato || field == guia::Desconto ||
           field == guia::Entrega_Sampling || field == guia::CodAmbitoDist;
}

bool free_text(guia::Field field)
{
    return field == guia::CodigoCampanha || field == guia::caracte || field == guia::refClie;
}

std::string file_value(const ItemField& f, std::string_view carried)
{
    if (f.digit) return coded_digit(f.field) && carried != "0" ? "0" + std::string(carried) : std::string(carried);
    if (f.field == guia::A_Zona_Taxacao || f.field == guia::B_Produto) return std::string(carried);
    return without_zeros(carried, free_text(f.field) ? "" : "0");
}

std::string_view take_field(Cursor& c, const ItemField& f, std::size_t line)
{
    const std::string what = std::string(file_key(f.field)) + " of item " + std::to_string(line);
    if (free_text(f.field)) return c.take(static_cast<std::size_t>(f.width), what, is_printable, "printable text");
    if (f.field == guia::B_Produto) return c.take(3, what, is_code_char, "a capital or a digit");
    return c.digits(static_cast<std::size_t>(f.width), what);
}

void read_services(Cursor& c, SymbolLine& line, int count, std::size_t item)
{
    for (int i = 0; i < count; ++i) {
        const std::string what = "service " + std::to_string(i + 1) + " of item " + std::to_string(item);
        const std::string code(c.digits(printing::kServiceCodeWidth, what + "'s code"));
        const std::string value = without_zeros(c.digits(printing::kServiceValueWidth, what + "'s value"), "0");
        line.services.push_back({code, value});
    }
}

// The database edition's item: counts are exact, so items follow one another until the text ends.
SymbolLine read_database_item(Cursor& c, std::size_t item)
{
    SymbolLine line;
    for (std::size_t i = 0; i < printing::kItemFieldsDb.size(); ++i) {
        if (i == printing::kPreTratamentoAfter) {
            const std::size_t at = c.at();
            const char pre = c.take(1, "pre-treatment of item " + std::to_string(item),
                                    [](char ch) { return ch == ' ' || ch == '1' || ch == '2'; }, "blank, 1 or 2")[0];
            const std::string_view product = line.value("B_Produto");
            const bool takes_none = printing::pre_tratamento_db(product, Cell(std::string("1"))) == " ";
            if (takes_none != (pre == ' '))
                c.fail(at, "the pre-treatment of item " + std::to_string(item) + " does not suit product " + std::string(product));
            line.fields.emplace_back("PreTratamento", pre == '2' ? "1" : pre == '1' ? "0" : "");
        }
        const auto& f = printing::kItemFieldsDb[i];
        line.fields.emplace_back(file_key(f.field), file_value(f, take_field(c, f, item)));
    }
    read_services(c, line, c.number(2, "service count of item " + std::to_string(item)), item);
    return line;
}

bool c25_may_ride(std::string_view product) { return product == "C03" || product == "C05" || product == "C50"; }

// The headless edition's items. A C25 line riding along makes its carrier's service count one short
// when the carrier has services of its own, so both readings are tried and the one that ends the
// payload exactly with the stated number of items is kept.
class ArrayItems {
public:
    ArrayItems(Cursor& c, int count) : c_(c), count_(count) {}

    std::vector<SymbolLine> read()
    {
        if (!from(1)) {
            // No reading fits: read once more the plain way to name where it breaks.
            c_.seek(start_);
            for (int i = 1; i <= count_; ++i) plain(i);
            c_.fail(c_.at(), "characters follow the last of the " + std::to_string(count_) + " items");
        }
        return lines_;
    }

    void mark_start() { start_ = c_.at(); }

private:
    SymbolLine plain(int item)
    {
        SymbolLine line;
        for (const auto& f : printing::kItemFields)
            line.fields.emplace_back(f.name, file_value(f, take_field(c_, f, static_cast<std::size_t>(item))));
        const int n = c_.number(2, "service count of item " + std::to_string(item));
        read_services(c_, line, n, static_cast<std::size_t>(item));
        return line;
    }

    bool from(int item)
    {
        if (item > count_) return c_.left() == 0;
        const std::size_t at = c_.at();
        SymbolLine line;
        int n = 0;
        try {
            for (const auto& f : printing::kItemFields)
                line.fields.emplace_back(f.name, file_value(f, take_field(c_, f, static_cast<std::size_t>(item))));
            n = c_.number(2, "service count");
        } catch (const SymbolPayloadError&) {
            c_.seek(at);
            return false;
        }
        const std::size_t services_at = c_.at();
        // The readings: the count as it stands, and one more service when a C25 rides first.
        std::vector<int> readings{n};
        if (c25_may_ride(line.value("B_Produto")) && n >= 1 && c_.next_is("25")) readings.push_back(n + 1);
        for (const int services : readings) {
            c_.seek(services_at);
            SymbolLine candidate = line;
            try {
                read_services(c_, candidate, services, static_cast<std::size_t>(item));
            } catch (const SymbolPayloadError&) {
                continue;
            }
            const std::size_t mark = lines_.size();
            append(std::move(candidate));
            if (from(item + 1)) return true;
            lines_.resize(mark);
        }
        c_.seek(at);
        return false;
    }

    // The line, and a C25 line after it when its first service is the one riding along.
    void append(SymbolLine line)
    {
        if (c25_may_ride(line.value("B_Produto")) && !line.services.empty() && line.services.front().CodServEsp == "25") {
            SymbolLine c25;
            c25.fields = {{"B_Produto", "C25"}, {"Escalao", line.services.front().Valor}};
            c25.rides_along = true;
            line.services.erase(line.services.begin());
            lines_.push_back(std::move(line));
            lines_.push_back(std::move(c25));
            return;
        }
        lines_.push_back(std::move(line));
    }

    Cursor& c_;
    int count_;
    std::size_t start_ = 0;
    std::vector<SymbolLine> lines_;
};

}  // namespace

SymbolPayloadError::SymbolPayloadError(std::size_t position, const std::string& what)
    : std::runtime_error("position " + std::to_string(position) + ": " + what), position_(position)
{
}

std::string_view SymbolLine::value(std::string_view key) const
{
    for (const auto& [k, v] : fields)
        if (k == key) return v;
    return {};
}

std::string SymbolLine::service_list() const
{
    if (services.empty()) return "0";
    std::string list;
    for (const auto& s : services) list += (list.empty() ? "" : ",") + s.CodServEsp;
    return list;
}

SymbolPayload read_symbol_payload(std::string_view text)
{
    Cursor c(text);
    SymbolPayload payload;
    const bool database = text.starts_with("CR01");
    if (database)
        read_database_head(c, payload.head);
    else
        read_array_head(c, payload.head);
    const std::size_t head_size = database ? kDatabaseHead : kArrayHead;
    const std::size_t page_at = database ? 41 : 45;
    payload.head.identity = std::string(text.substr(0, page_at)) + std::string(text.substr(page_at + 2, head_size - page_at - 2));
    payload.line_count = c.number(2, "line count");
    if (database) {
        for (std::size_t item = 1; c.left() > 0; ++item) payload.lines.push_back(read_database_item(c, item));
        if (payload.lines.size() > static_cast<std::size_t>(payload.line_count))
            c.fail(head_size, "the line count " + std::to_string(payload.line_count) + " is below the " +
                                  std::to_string(payload.lines.size()) + " items that follow");
    } else {
        ArrayItems items(c, payload.line_count);
        items.mark_start();
        payload.lines = items.read();
    }
    return payload;
}

std::vector<std::pair<std::string, std::string>> head_fields(const SymbolHead& head)
{
    std::vector<std::pair<std::string, std::string>> out;
    const bool array = head.edition == SymbolEdition::Array;
    if (array && head.access == "OP") out.emplace_back("cb_TipoAcesso", "2");
    out.emplace_back("cb_CodContrato", head.contract);
    out.emplace_back("cb_CodCliente", head.client);
    out.emplace_back("cb_CodTerceiro", head.third_party);
    out.emplace_back("cb_Drqjul", head.day_code);
    out.emplace_back(array ? "cb_IDReqAnual" : "cb_N_Req", head.request_number);
    if (head.payment) out.emplace_back("cb_Pagamento", *head.payment);
    out.emplace_back("cb_JppCredenciado", head.credentialed ? "1" : "0");
    out.emplace_back("cb_NCredencial", head.credential_number);
    if (array) out.emplace_back("cb_NCompromisso", head.commitment);
    return out;
}

}  // namespace nimbara
