#include "capi/outcome.hpp"

#include "nimbara/line_batch.hpp"

namespace nimbara::capi {

nimbara_outcome::Error outcome_error(const ErrorArray& error, std::int32_t row, std::string line)
{
    nimbara_outcome::Error e;
    e.row = row;
    e.line = std::move(line);
    e.number = error.number;
    e.is_list = error.holds_list();
    // The batch's text minus its number: the description, a list joined with ",".
    const std::string text = batch_result_text(error);
    e.description = text.substr(text.find('\t') + 1);
    return e;
}

nimbara_outcome outcome_of(const document::ValidationReport& report)
{
    nimbara_outcome outcome;
    for (std::size_t i = 0; i < report.line_errors.size(); ++i) {
        const LineError& l = report.line_errors[i];
        auto e = outcome_error(l.error, l.row, l.N_Linha);
        if (i < report.accepted.size()) {
            const auto& accepted = report.accepted[i];
            e.ranges = accepted.ranges;
            e.sentence = accepted.sentence;
            for (const auto& v : accepted.values) e.possible.push_back({v.code, v.label});
        }
        outcome.errors.push_back(std::move(e));
    }
    if (report.guia_error) outcome.errors.push_back(outcome_error(*report.guia_error, -1, ""));
    return outcome;
}

nimbara_status hand_out(nimbara_outcome outcome, nimbara_outcome** out)
{
    required(out, "outcome");
    const bool passed = outcome.errors.empty();
    *out = new nimbara_outcome(std::move(outcome));
    return passed ? NIMBARA_OK : NIMBARA_FAILED_VALIDATION;
}

}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

void nimbara_outcome_destroy(nimbara_outcome* outcome) { delete outcome; }

int nimbara_outcome_passed(const nimbara_outcome* outcome) { return outcome != nullptr && outcome->errors.empty(); }

size_t nimbara_outcome_error_count(const nimbara_outcome* outcome) { return outcome ? outcome->errors.size() : 0; }

nimbara_status nimbara_outcome_error(const nimbara_outcome* outcome, size_t index, nimbara_error_info* info)
{
    return guarded([&] {
        const auto& errors = required(outcome, "outcome").errors;
        if (index >= errors.size())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "error " + std::to_string(index) + " of " +
                                                    std::to_string(errors.size()));
        const auto& e = errors[index];
        nimbara_error_info filled{};
        filled.row = e.row;
        filled.line = e.line.c_str();
        filled.line_size = e.line.size();
        filled.number = e.number;
        filled.description = e.description.c_str();
        filled.description_size = e.description.size();
        filled.is_list = e.is_list;
        filled.ranges = e.ranges;
        filled.possible_count = e.possible.size();
        filled.sentence = e.sentence.c_str();
        filled.sentence_size = e.sentence.size();
        sized_out(filled, info, "info");
    });
}

nimbara_status nimbara_outcome_possible(const nimbara_outcome* outcome, size_t index, size_t value, const char** code,
                                        size_t* code_size, const char** label, size_t* label_size)
{
    return guarded([&] {
        const auto& errors = required(outcome, "outcome").errors;
        if (index >= errors.size() || value >= errors[index].possible.size())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "no possible value " + std::to_string(value) + " of error " +
                                                    std::to_string(index));
        const auto& p = errors[index].possible[value];
        required(code, "code") = p.code.c_str();
        required(label, "label") = p.label.c_str();
        if (code_size) *code_size = p.code.size();
        if (label_size) *label_size = p.label.size();
    });
}

}
