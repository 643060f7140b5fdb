#include "document/validation_report.hpp"

#include <algorithm>
#include <optional>
#include <variant>

#include "foundation/cell_values.hpp"
#include "foundation/list_helpers.hpp"
#include "validation/guia_rules.hpp"
#include "validation/line_validator.hpp"
#include "document/possible_values_of_line.hpp"
#include "validation/possible_values.hpp"

namespace nimbara::document {
namespace {

constexpr std::string_view kBreak = "\r\n";

void add_line(std::string& out, std::string_view label, std::string_view value)
{
    out += label;
    out += value;
    out += kBreak;
}

// One row of arrGuia, read the way the report's calls read it.
class Row {
public:
    Row(const guia::Table& lines, int row) : lines_(lines), row_(row) {}

    std::string_view text(guia::Field field) const { return lines_.text(field, row_); }

    // A field passed as a 32-bit number: an empty cell is 0, text that is no number ends the report.
    std::int32_t number(guia::Field field) const
    {
        // Weight steps are plain digits, read on the spot; any other text takes the general conversion.
        const std::string_view digits = text(field);
        if (!digits.empty() && digits.size() <= 9 &&
            std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
            std::int32_t value = 0;
            for (const char c : digits) value = value * 10 + (c - '0');
            return value;
        }
        if (const auto value = cell_int32(lines_.at(field, row_))) return *value;
        throw ReportFailure("line " + std::to_string(row_ + 1) + ": field " + std::to_string(static_cast<int>(field)) + " (\"" +
                            std::string(text(field)) + "\") is no 32-bit number");
    }

    // The pre-treatment as the line validator reads a number: an empty cell is 0.
    std::string_view pre_treatment() const
    {
        return lines_.at(guia::PreTratamento, row_) ? text(guia::PreTratamento) : std::string_view("0");
    }

private:
    const guia::Table& lines_;
    int row_;
};

ValidationResult validate_line(const Row& r, const validation::RuleCatalogue& catalogue)
{
    return validation::validate_line(
        catalogue.index(),
        {r.text(guia::B_Produto), r.text(guia::A_Zona_Taxacao), r.number(guia::Escalao), r.text(guia::E_Velocidade),
         r.text(guia::Formato), r.pre_treatment(), r.text(guia::Desconto), r.text(guia::CodAmbitoDist),
         r.text(guia::Entrega_Sampling), r.text(guia::ListaServesp)});
}

// The service errors whose description is a fixed text instead of their list of codes.
std::optional<std::string_view> replaced_description(std::int32_t number)
{
    switch (number) {
    case -10: return "Servicos Especiais Errados";
    case -11: return "Servicos Especiais Errados por Produtos - C06 ou C20";
    case -12: return "Servicos Especiais Errados por Produtos - C10";
    case -13: return "Servicos Especiais Errados por Produtos - E02";
    case -14: return "Servicos Especiais Errados por Produtos - E01 Nacional";
    case -15: return "Servicos Especiais Errados por Produtos - E01 Internacional";
    case -16: return "Servicos Especiais Errados por Produtos - C24";
    default: return std::nullopt;
    }
}

// The product-service errors explain themselves in a sentence; it ends without a line break.
std::optional<std::string_view> sentence(std::int32_t number)
{
    switch (number) {
    case -11: return "Para o serviço escolhido, precisa de ter o serviço 6 - Serviço Especial de Registo.";
    case -12: return "Para o serviço escolhido, precisa de ter 1 - Registo de Saco.";
    case -13: return "Os serviços 3 - Entrega ao Domicilio e 11 - Domicilio Pós-Laboral,\r\n"
                     "não são admitidos em simultâneo.";
    case -14: return "Os serviços 2 - Aviso Recepção ou 4 - Contra Reembolso,\r\n"
                     "só são admitidos para o Serviço Nacional.";
    case -15: return "O serviço 3 - Entrega ao Domicílio,\r\n"
                     "só é admitido para o Serviço Nacional.";
    case -16: return "Para ter 2 - Aviso Recepção,\r\n"
                     "precisa de ter 6 - Serviço Especial de Registo.";
    case -22: return "Para ter 10 - Entrega ao próprio, precisa de ter 2 - Aviso de Recepção. ";
    case -23: return "Para ter 7 - Valor Declarado , precisa de ter 10 - Entrega ao próprio. ";
    case -24: return "O serviço 4 - Contra Reembolso e 5 - Contra Reembolso em Numerario ,\r\n"
                     "não podem coexistir.";
    default: return std::nullopt;
    }
}

// The report's question for a failed line, from the cells of its row.
std::optional<validation::PossibleValues> possible_values(std::int32_t number, const Row& r,
                                                          const validation::RuleCatalogue& catalogue)
{
    FailedLine line{r.text(guia::B_Produto), r.text(guia::A_Zona_Taxacao), r.text(guia::E_Velocidade),
                    r.text(guia::Formato),   r.text(guia::PreTratamento),  r.text(guia::Desconto),
                    r.text(guia::Escalao),   0,
                    [&r] { return r.number(guia::CodAmbitoDist); }};
    // The weight is read only by the questions that take it, as a weight that is no number ends the report.
    if (number == -4 || number == -5 || number == -6 || number == -7 || number == -8 || number == -10)
        line.weight = r.number(guia::Escalao);
    return possible_values_of_line(number, line, catalogue);
}

void open_listing(std::string& out)
{
    out += kBreak;
    add_line(out, "Valores Possiveis: ", "");
}

// The sentence of a service error, or the values that would have been accepted.
AcceptedValues accepted_values(std::int32_t number, const Row& r, const validation::RuleCatalogue& catalogue)
{
    AcceptedValues accepted;
    if (const auto s = sentence(number)) {
        accepted.sentence = *s;
        return accepted;
    }
    const auto values = possible_values(number, r, catalogue);
    if (!values) return accepted;
    // A failed answer lists nothing, as an empty one does.
    if (const auto* rows = std::get_if<std::vector<validation::CodeLabel>>(&*values)) accepted.values = *rows;
    accepted.ranges = is_weight_error(number);
    return accepted;
}

void append_listing(std::string& out, const AcceptedValues& accepted)
{
    if (!accepted.sentence.empty()) {
        open_listing(out);
        out += accepted.sentence;
        return;
    }
    // An empty answer leaves the listing out, heading included.
    if (accepted.values.empty()) return;
    open_listing(out);
    for (const auto& v : accepted.values) {
        add_line(out, accepted.ranges ? "Minimo = " : "Codigo = ", v.code);
        add_line(out, accepted.ranges ? "Maximo = " : "Designacao = ", v.label);
    }
}

std::string description_text(const ErrorArray& e)
{
    if (const auto replaced = replaced_description(e.number)) return std::string(*replaced);
    if (const auto* list = std::get_if<ListArray>(&e.description)) return GlobalFrameWork::Array2String(*list);
    return std::get<std::string>(e.description);
}

void append_line_block(std::string& out, const Row& r, int row, const ErrorArray& e, const AcceptedValues& accepted)
{
    out += kBreak;
    add_line(out, "Ordem Insercao = ", std::to_string(row + 1));
    add_line(out, "Linha = ", r.text(guia::N_Linha));
    add_line(out, "Produto = ", r.text(guia::B_Produto));
    add_line(out, "Erro ID = ", std::to_string(e.number));
    add_line(out, "Descricao = ", description_text(e));
    if (const auto* list = std::get_if<ListArray>(&e.description))
        add_line(out, "Servicos Especiais Errados = ", GlobalFrameWork::Array2String(*list));
    append_listing(out, accepted);
    add_line(out, "------", "");
}

}  // namespace

ValidationReport build_validation_report(const GuiaArrays& guia, const validation::RuleCatalogue& catalogue)
{
    const cab::Table& header = guia.arrCabecalho;
    const guia::Table& lines = guia.arrGuia;
    if (header.empty()) throw ReportFailure("the Guia has lines but no header");

    ValidationReport report;
    std::string& out = report.text;
    add_line(out, "Numero Documento = ", header.text(cab::NDoc, 0));
    add_line(out, "Codigo Cliente = ", header.text(cab::CodCliente, 0));
    out += kBreak;
    add_line(out, "Validacao do Produto", "");

    // Every line is judged; a bad line stops nothing.
    for (int row = 0; row < lines.row_count(); ++row) {
        const Row r(lines, row);
        if (const auto error = validate_line(r, catalogue)) {
            report.errors = true;
            auto accepted = accepted_values(error->number, r, catalogue);
            append_line_block(out, r, row, *error, accepted);
            LineError line{row, std::string(r.text(guia::N_Linha)), *error};
            line.weight_steps = accepted.ranges;
            for (const auto& v : accepted.values) line.possible_values.push_back({v.code, v.label});
            report.line_errors.push_back(std::move(line));
            report.accepted.push_back(std::move(accepted));
        }
    }
    if (report.errors) return report;

    out += kBreak;
    add_line(out, "Validacao da Guia", "");
    if (const auto error = validation::DoValidaGuia(lines, header)) {
        report.errors = true;
        add_line(out, "Erro ID = ", std::to_string(error->number));
        // Guia errors share numbers with the service errors but always carry their own text.
        add_line(out, "Descricao = ", std::get<std::string>(error->description));
        out += kBreak;
        report.guia_error = error;
    }
    return report;
}

}  // namespace nimbara::document
