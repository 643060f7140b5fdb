#include "nimbara/line_batch.hpp"

#include <array>
#include <stdexcept>
#include <string_view>
#include <variant>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara {
namespace {

constexpr std::size_t kFields = 10;

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
    const cls_ValProdutosA validator;
    return check_line_batch(in, out, err, source, [&validator](const BatchRow& row) {
        const auto& f = row.fields;
        return validator.DoValidaProduto(f[0], f[1], row.weight, f[3], f[4], f[5], f[6], f[7], f[8], f[9]);
    });
}

BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source,
                              const BatchJudge& judge)
{
    BatchSummary summary;
    std::string line;
    std::vector<std::string_view> fields;
    while (std::getline(in, line)) {
        ++summary.lines;
        std::string_view row(line);
        if (!row.empty() && row.back() == '\r') row.remove_suffix(1);

        fields.clear();
        std::size_t start = 0;
        while (true) {
            const auto tab = row.find('\t', start);
            fields.push_back(row.substr(start, tab == std::string_view::npos ? tab : tab - start));
            if (tab == std::string_view::npos) break;
            start = tab + 1;
        }

        std::string reason;
        std::optional<std::int32_t> weight;
        if (fields.size() != kFields) {
            reason = "expected " + std::to_string(kFields) + " tab-separated fields, found " + std::to_string(fields.size());
        } else if (weight = read_weight(fields[2]); !weight) {
            reason = "weight \"" + std::string(fields[2]) + "\" is not a 32-bit whole number";
        }
        ValidationResult result;
        if (reason.empty()) {
            try {
                result = judge(BatchRow{fields, *weight});
            } catch (const std::invalid_argument& e) {
                reason = e.what();
            }
        }
        if (!reason.empty()) {
            ++summary.refused;
            out << '!' << reason << '\n';
            err << source << ':' << summary.lines << ": " << reason << '\n';
            continue;
        }
        out << batch_result_text(result) << '\n';
    }
    if (in.bad()) {
        summary.read_failed = true;
        err << source << ':' << summary.lines + 1 << ": the input could not be read; the batch ends here\n";
    }
    return summary;
}

}  // namespace nimbara
