// A printed Guia taken in at the counter: found, compared with what is stored, marked received.
#include "nimbara/guia_reception.hpp"

#include <algorithm>
#include <cctype>

#include "nimbara/guia_store.hpp"

namespace nimbara {
namespace {

constexpr std::string_view kReceivedPrefix = "Recolhida em ";

bool all_digits(std::string_view s)
{
    return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// A value as the symbol would carry it: numbers without padding zeros, nothing as 0, yes as 1.
std::string carried(std::string_view value)
{
    while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
    while (!value.empty() && value.back() == ' ') value.remove_suffix(1);
    if (value.empty()) return "0";
    if (all_digits(value)) {
        const auto first = value.find_first_not_of('0');
        return first == std::string_view::npos ? "0" : std::string(value.substr(first));
    }
    std::string lower(value);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (lower == "true" || lower == "-1") return "1";
    if (lower == "false") return "0";
    return std::string(value);
}

template <class Args, std::size_t N>
std::string member(const Args& args, const std::array<FieldName<Args>, N>& fields, std::string_view key)
{
    for (const auto& f : fields)
        if (f.name == key) return args.*(f.member);
    return {};
}

class Comparison {
public:
    explicit Comparison(std::vector<FieldDifference>& out) : out_(out) {}

    void field(const std::string& place, std::string_view paper, std::string_view stored)
    {
        if (carried(paper) != carried(stored)) out_.push_back({place, std::string(paper), std::string(stored)});
    }
    void fact(const std::string& place, std::string paper, std::string stored)
    {
        out_.push_back({place, std::move(paper), std::move(stored)});
    }

private:
    std::vector<FieldDifference>& out_;
};

void compare_head(Comparison& c, const SymbolHead& head, const GuiaCabecalho& stored)
{
    for (const auto& [key, value] : head_fields(head)) {
        // The access type and the payment have readings of their own below.
        if (key == "cb_TipoAcesso" || key == "cb_Pagamento") continue;
        c.field("/cabecalho/" + key, value, member(stored, kCabecalhoFields, key));
    }
    const std::string payment = carried(stored.cb_Pagamento);
    if (head.payment) {
        c.field("/cabecalho/cb_Pagamento", *head.payment, stored.cb_Pagamento);
    } else if (payment == "0" || payment == "1" || payment == "2") {
        // The flags marked none of the payments the edition marks; the stored one is among them.
        if (head.edition == SymbolEdition::Array || payment != "0")
            c.fact("/cabecalho/cb_Pagamento", "none marked", stored.cb_Pagamento);
    }
}

void compare_line(Comparison& c, const std::string& place, const SymbolLine& paper, const GuiaProduto& stored,
                  const std::vector<const GuiaServico*>& services, SymbolEdition edition)
{
    for (const auto& [key, value] : paper.fields) {
        std::string stored_value = member(stored, kProdutoFields, key);
        // The symbol carries nothing for the products that take no pre-treatment.
        if (key == "PreTratamento" && value.empty()) continue;
        if (key == "PreTratamento") stored_value = carried(stored_value) == "0" ? "0" : "1";
        // The headless edition prints and carries format 07 of a C07 line as 01.
        if (key == "Formato" && edition == SymbolEdition::Array && stored.B_Produto == "C07" && carried(stored_value) == "7")
            stored_value = "01";
        c.field(place + "/" + key, value, stored_value);
    }
    if (paper.rides_along) return;
    const std::size_t n = std::min(paper.services.size(), services.size());
    for (std::size_t i = 0; i < n; ++i) {
        const std::string at = place + "/servicos/" + std::to_string(i);
        c.field(at + "/CodServEsp", paper.services[i].CodServEsp, services[i]->CodServEsp);
        c.field(at + "/Valor", paper.services[i].Valor, services[i]->Valor);
    }
    if (paper.services.size() != services.size())
        c.fact(place + "/servicos", std::to_string(paper.services.size()) + " services",
               std::to_string(services.size()) + " services");
}

std::string received_time(const std::string& state)
{
    return state.starts_with(kReceivedPrefix) ? state.substr(kReceivedPrefix.size()) : std::string();
}

std::optional<std::int64_t> number(const std::string& text)
{
    if (!all_digits(text) || text.size() > 15) return std::nullopt;
    return std::stoll(text);
}

// The stored Guia the paper names: same client, contract and number, and a date of the same day code.
std::optional<std::int32_t> find_stored(const std::shared_ptr<Database>& db, const SymbolHead& head)
{
    const auto client = number(head.client), contract = number(head.contract), request = number(head.request_number);
    if (!client || !contract || !request) return std::nullopt;
    const std::string by = head.edition == SymbolEdition::Array ? "Id_Req_Anual" : "N_Req";
    Recordset rs = db->open("SELECT N_Req FROM Tbl_Cab WHERE Cod_Cliente = ? AND Cod_Contrato = ? AND " + by +
                                " = ? ORDER BY N_Req",
                            {*client, *contract, *request});
    std::vector<std::int32_t> candidates;
    for (; !rs.IsEOF(); rs.MoveNext()) candidates.push_back(static_cast<std::int32_t>(rs["N_Req"].integer()));
    for (const std::int32_t n_req : candidates)
        if (load_guia_file(db, n_req).cabecalho.cb_Drqjul == head.day_code) return n_req;
    return std::nullopt;
}

}  // namespace

std::vector<FieldDifference> compare_with_stored(const AssembledGuia& paper, const GuiaFile& stored)
{
    std::vector<FieldDifference> out;
    Comparison c(out);
    compare_head(c, paper.head, stored.cabecalho);
    const std::size_t n = std::min(paper.lines.size(), stored.produtos.size());
    for (std::size_t i = 0; i < n; ++i) {
        std::vector<const GuiaServico*> services;
        for (const auto& s : stored.servicos)
            if (carried(s.N_Linha) == carried(stored.produtos[i].N_Linha)) services.push_back(&s);
        compare_line(c, "/produtos/" + std::to_string(i), paper.lines[i], stored.produtos[i], services, paper.head.edition);
    }
    if (paper.lines.size() != stored.produtos.size())
        c.fact("/produtos", std::to_string(paper.lines.size()) + " lines", std::to_string(stored.produtos.size()) + " lines");
    return out;
}

std::string reception_state(const Timestamp& when) { return std::string(kReceivedPrefix) + when.text(); }

GuiaReception receive_guia(const std::shared_ptr<Database>& db, const AssembledGuia& paper, const Timestamp& now)
{
    Transaction transaction(*db);
    const auto n_req = find_stored(db, paper.head);
    if (!n_req) throw GuiaNotStoredError("no stored Guia of client " + paper.head.client + ", contract " + paper.head.contract +
                                         (paper.head.edition == SymbolEdition::Array ? ", yearly number " : ", request number ") +
                                         paper.head.request_number + " and day code " + paper.head.day_code);
    // Taking the row's write lock first, so that two counters receiving the same Guia at once are
    // served one after the other.
    db->execute("UPDATE Tbl_Cab SET Recolhido = Recolhido WHERE N_Req = ?", {*n_req});
    GuiaReception reception;
    reception.N_Req = *n_req;
    reception.differences = compare_with_stored(paper, load_guia_file(db, *n_req));
    Recordset state = db->open("SELECT Recolhido, Situacao FROM Tbl_Cab WHERE N_Req = ?", {*n_req});
    if (!state["Recolhido"].is_null() && state["Recolhido"].yes_no()) {
        reception.outcome = ReceptionOutcome::AlreadyReceived;
        reception.received_at = received_time(state["Situacao"].is_null() ? std::string() : state["Situacao"].text());
        return reception;
    }
    if (!reception.differences.empty()) return reception;
    db->execute("UPDATE Tbl_Cab SET Recolhido = ?, Situacao = ? WHERE N_Req = ?", {true, reception_state(now), *n_req});
    transaction.commit();
    reception.outcome = ReceptionOutcome::Received;
    reception.received_at = now.text();
    return reception;
}

}  // namespace nimbara
