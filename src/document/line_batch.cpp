#include "nimbara/line_batch.hpp"

#include <array>
#include <string_view>
#include <variant>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara {
namespace {

constexpr std::size_t kFields = 10;

std::string describe(const ErrorArray& e)
{
    std::string out = std::to_string(e.number) + '\t';
    if (const auto* list = std::get_if<ListArray>(&e.description)) {
        for (std::size_t i = 0; i < list->size(); ++i) out += (i ? "," : "") + (*list)[i];
    } else {
        out += std::get<std::string>(e.description);
    }
    return out;
}

}  // namespace

BatchSummary check_line_batch(std::istream& in, std::ostream& out, std::ostream& err, const std::string& source)
{
    const cls_ValProdutosA validator;
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
        if (!reason.empty()) {
            ++summary.refused;
            out << '!' << reason << '\n';
            err << source << ':' << summary.lines << ": " << reason << '\n';
            continue;
        }

        const auto result = validator.DoValidaProduto(fields[0], fields[1], *weight, fields[3], fields[4], fields[5],
                                                      fields[6], fields[7], fields[8], fields[9]);
        out << (result ? describe(*result) : std::string("0")) << '\n';
    }
    if (in.bad()) {
        summary.read_failed = true;
        err << source << ':' << summary.lines + 1 << ": the input could not be read; the batch ends here\n";
    }
    return summary;
}

}  // namespace nimbara
