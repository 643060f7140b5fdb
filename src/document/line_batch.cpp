#include "nimbara/line_batch.hpp"

#include <array>
#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "document/possible_values_of_line.hpp"
#include "nimbara/guia_file.hpp"
#include "validation/line_validator.hpp"
#include "validation/rule_catalogue.hpp"

namespace nimbara {
namespace {

constexpr std::size_t kFields = 10;
// Answers are handed on in blocks of about this size, not line by line.
constexpr std::size_t kAnswerBlock = 1 << 16;

class Batch {
public:
    // Without a judge, lines go to the compiled-in rules by the shortest way, with nothing allocated.
    Batch(std::ostream& err, const std::string& source, BatchSummary& summary, const BatchJudge* judge,
          const BatchResultSink* sink = nullptr)
        : index_(validation::RuleCatalogue::compiled().index()), judge_(judge), sink_(sink), err_(err),
          source_(source), summary_(summary)
    {
        answers_.reserve(kAnswerBlock + 256);
    }

    // Judges one input line, its line break already taken off.
    void judge(std::string_view row)
    {
        ++summary_.lines;
        if (!row.empty() && row.back() == '\r') row.remove_suffix(1);

        // Fields are short: one plain scan of the line beats a search call per field.
        std::array<std::string_view, kFields> fields;
        std::size_t count = 0, start = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (row[i] != '\t') continue;
            if (count < kFields) fields[count] = row.substr(start, i - start);
            ++count;
            start = i + 1;
        }
        if (count < kFields) fields[count] = row.substr(start);
        ++count;
        if (count != kFields)
            return refuse("expected " + std::to_string(kFields) + " tab-separated fields, found " + std::to_string(count));
        const auto weight = read_weight(fields[2]);
        if (!weight) return refuse("weight \"" + std::string(fields[2]) + "\" is not a 32-bit whole number");

        if (judge_) {
            ValidationResult result;
            try {
                result = (*judge_)(BatchRow{fields, *weight});
            } catch (const std::invalid_argument& e) {
                return refuse(e.what());
            }
            if (sink_) return (*sink_)({summary_.lines, std::move(result), {}, false, std::nullopt});
            answers_ += batch_result_text(result);
            answers_ += '\n';
            return;
        }
        const validation::LineInput line{fields[0], fields[1], *weight,    fields[3], fields[4],
                                         fields[5], fields[6], fields[7], fields[8], fields[9]};
        if (sink_) return hand_on(line, fields);
        answer(validation::check_line(index_, line), line);
    }

    std::string& answers() { return answers_; }

private:
    void answer(const validation::LineVerdict& verdict, const validation::LineInput& line)
    {
        if (verdict.passes()) {
            answers_ += "0\n";
            return;
        }
        std::array<char, 16> number;
        const auto end = std::to_chars(number.data(), number.data() + number.size(), verdict.number).ptr;
        answers_.append(number.data(), end);
        answers_ += '\t';
        if (!verdict.text.empty()) {
            answers_ += verdict.text;
        } else if (verdict.rule != nullptr) {
            join(std::get<ListArray>(verdict.error(line).description));
        } else {
            join(verdict.codes);
        }
        answers_ += '\n';
    }

    // The verdict with what the report would list as possible for the failing field.
    void hand_on(const validation::LineInput& line, const std::array<std::string_view, kFields>& fields)
    {
        BatchLineResult r{summary_.lines, validation::validate_line(index_, line), {}, false, std::nullopt};
        if (r.result) {
            const document::FailedLine failed{fields[0], fields[1], fields[3], fields[4], fields[5], fields[6],
                                              fields[2], line.weight, [&fields] {
                                                  const auto scope = read_weight(fields[7]);
                                                  if (!scope) throw std::invalid_argument("no number");
                                                  return *scope;
                                              }};
            try {
                r.possible_values = document::possible_value_rows(
                    document::possible_values_of_line(r.result->number, failed, validation::RuleCatalogue::compiled()));
                r.weight_steps = document::is_weight_error(r.result->number);
            } catch (const std::invalid_argument&) {
                // A scope that is no number asks no question: the line's values stay unlisted.
            }
        }
        (*sink_)(r);
    }

    template <class Codes>
    void join(const Codes& codes)
    {
        for (std::size_t i = 0; i < codes.size(); ++i) {
            if (i > 0) answers_ += ',';
            answers_ += codes[i];
        }
    }

    void refuse(const std::string& reason)
    {
        ++summary_.refused;
        if (sink_) (*sink_)({summary_.lines, std::nullopt, {}, false, reason});
        answers_ += '!';
        answers_ += reason;
        answers_ += '\n';
        err_ << source_ << ':' << summary_.lines << ": " << reason << '\n';
    }

    const validation::RuleIndex& index_;
    const BatchJudge* judge_;
    const BatchResultSink* sink_;
    std::ostream& err_;
    const std::string& source_;
    BatchSummary& summary_;
    std::string answers_;
};

BatchSummary run_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source,
                       const BatchJudge* judge, const BatchResultSink* sink = nullptr)
{
    BatchSummary summary;
    Batch batch(err, source, summary, judge, sink);
    std::string& answers = batch.answers();
    std::string partial;  // the start of a line whose break has not been read yet
    std::array<char, 1 << 16> chunk;

    // Waits for at least one byte, then takes whatever else has arrived, so that a batch typed or
    // piped line by line is answered as it comes while a file is read in large blocks.
    while (in.peek() != std::istream::traits_type::eof()) {
        std::streamsize got = in.readsome(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        // A stream without a buffer of its own tells of nothing waiting; it is read a byte at a time.
        if (got <= 0) got = in.read(chunk.data(), 1) ? 1 : 0;
        if (got <= 0) break;
        std::string_view rest(chunk.data(), static_cast<std::size_t>(got));
        for (auto brk = rest.find('\n'); brk != std::string_view::npos; brk = rest.find('\n')) {
            if (partial.empty()) {
                batch.judge(rest.substr(0, brk));
            } else {
                partial.append(rest.substr(0, brk));
                batch.judge(partial);
                partial.clear();
            }
            rest.remove_prefix(brk + 1);
        }
        partial.append(rest);

        const bool waiting = in.rdbuf()->in_avail() <= 0;
        if (answers.size() >= kAnswerBlock || waiting) {
            out.write(answers.data(), static_cast<std::streamsize>(answers.size()));
            answers.clear();
            if (waiting) out.flush();  // the next read may wait: whoever feeds us sees the answers so far
        }
    }
    if (in.bad()) {
        summary.read_failed = true;
    } else if (!partial.empty()) {
        batch.judge(partial);  // the last line may end without a break
    }
    out.write(answers.data(), static_cast<std::streamsize>(answers.size()));
    if (summary.read_failed)
        err << source << ':' << summary.lines + 1 << ": the input could not be read; the batch ends here\n";
    return summary;
}

}  // namespace

std::string batch_result_text(const ValidationResult& result)
{
    if (!result) return "0";
    const ErrorArray& e = *result;
    std::string out = std::to_string(e.number) + '\t';
    if (const auto* list = std::get_if<ListArray>(&e.description)) {
        for (std::size_t i = 0; i < list->size(); ++i) out += (i ? "," : "") + (*list)[i];
    } else {
        out += std::get<std::string>(e.description);
    }
    return out;
}

BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source)
{
    return run_batch(in, out, err, source, nullptr);
}

BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source,
                              const BatchJudge& judge)
{
    return run_batch(in, out, err, source, &judge);
}

BatchSummary check_line_batch(std::istream& in, const BatchResultSink& sink, std::ostream& err,
                              const std::string& source, const BatchJudge* judge)
{
    // The text answers stay empty: every row went to the sink.
    std::ostream none{nullptr};
    return run_batch(in, none, err, source, judge, &sink);
}

}  // namespace nimbara
