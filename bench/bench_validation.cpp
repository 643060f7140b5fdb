// Validation throughput: the indexed line validator against the straightforward way of assembling and
// parsing the rule documents at every check, on the same mix of lines; the check-lines batch over a
// million of those lines against reading, judging and answering one line at a time; and a whole Guia
// judged and reported in memory.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "document/validation_report.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/line_batch.hpp"
#include "support/literal_validator.hpp"
#include "validation/line_validator.hpp"
#include "validation/possible_values.hpp"
#include "validation/rule_catalogue.hpp"

namespace {

using nimbara::validation::LineInput;

// Valid lines and lines failing at every stage of the elimination, in a fixed order.
const std::vector<LineInput>& line_mix()
{
    static const std::vector<LineInput> mix = {
        {"C01", "01", 50, "0", "02", "1", "0", "0", "0", "0"},             // passes, rule 1
        {"C13", "01", 50, "0", "03", "1", "02", "0", "0", "02,10"},        // passes with services
        {"P01", "53", 30, "0", "03", "9", "0", "0", "0", "0,0"},           // passes, rule 132
        {"E01", "27", 1000, "0", "0", "0", "0", "0", "0", "02"},           // passes
        {"X99", "01", 50, "0", "02", "1", "0", "0", "0", "0"},             // -100 unknown product
        {"C01", "99", 50, "0", "02", "1", "0", "0", "0", "0"},             // -2 zone
        {"C01", "01", 0, "0", "02", "1", "0", "0", "0", "0"},              // -3 weight
        {"C01", "01", 50, "02", "02", "1", "0", "0", "0", "0"},            // -4 speed
        {"C01", "01", 50, "0", "04", "1", "0", "0", "0", "0"},             // -5 format
        {"C20", "01", 100, "0", "0", "1", "0", "0", "0", "0"},             // -6 pre-treatment
        {"C01", "01", 50, "0", "02", "1", "02", "0", "0", "0"},            // -7 discount
        {"C01", "01", 50, "0", "02", "1", "0", "02", "0", "0"},            // -8 scope
        {"C01", "01", 50, "0", "02", "1", "0", "0", "01", "0"},            // -21 sampling
        {"C01", "01", 50, "0", "02", "1", "0", "0", "0", "0,02,07"},       // -10 services
        {"C24", "01", 10, "01", "01", "1", "0", "0", "0", "02"},           // -16 product services
        {"C13", "01", 50, "0", "03", "1", "02", "0", "0", "04,05"},        // -24
    };
    return mix;
}

// The verdict as the line batch and the report take it: the error referred to, not yet copied out.
void BM_ValidateLine(benchmark::State& state)
{
    const auto& mix = line_mix();
    const auto& index = nimbara::validation::RuleCatalogue::compiled().index();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(nimbara::validation::check_line(index, mix[i]));
        i = i + 1 == mix.size() ? 0 : i + 1;  // a division here would cost a fair share of a line
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_ValidateLine);

// The public operation, which hands each error out as an error array of its own.
void BM_ValidateLineFacade(benchmark::State& state)
{
    const auto& mix = line_mix();
    const nimbara::cls_ValProdutosA validator;
    std::size_t i = 0;
    for (auto _ : state) {
        const auto& l = mix[i++ % mix.size()];
        benchmark::DoNotOptimize(validator.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format,
                                                           l.pre_treatment, l.discount, l.scope, l.sampling, l.services));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_ValidateLineFacade);

void BM_ValidateLineLiteral(benchmark::State& state)
{
    const auto& mix = line_mix();
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(nimbara::testing::literal_validate_line(mix[i++ % mix.size()]));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_ValidateLineLiteral);

// What ImprimeGuia asks after a failed line: one call of each possible-value procedure with the
// line's fields. Items are single calls, so the time per item bounds each procedure's time.
void BM_PossibleValues(benchmark::State& state)
{
    namespace nv = nimbara::validation;
    const LineInput& l = line_mix()[8];  // fails on the format
    for (auto _ : state) {
        benchmark::DoNotOptimize(nv::GetPossibleValues_ZonaTaxacao(l.product));
        benchmark::DoNotOptimize(nv::GetPossibleValues_Peso(l.product, l.zone));
        benchmark::DoNotOptimize(nv::GetPossibleValues_Velocidade(l.product, l.zone, l.weight));
        benchmark::DoNotOptimize(nv::GetPossibleValues_Formato(l.product, l.zone, l.speed, l.weight));
        benchmark::DoNotOptimize(nv::GetPossibleValues_PreTratamento(l.product, l.zone, l.speed, l.format, l.weight));
        benchmark::DoNotOptimize(
            nv::GetPossibleValues_Desconto(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight));
        benchmark::DoNotOptimize(
            nv::GetPossibleValues_AmbitoDistribuicao(l.product, l.zone, l.speed, l.format, l.pre_treatment, l.weight));
        benchmark::DoNotOptimize(nv::GetPossibleValues_AmostraDireta(l.product, l.zone, l.speed, l.format,
                                                                     l.pre_treatment, l.scope, l.weight));
        benchmark::DoNotOptimize(nv::GetPossibleValues_ServicosEspeciais(l.product, l.zone, l.speed, l.format,
                                                                         l.pre_treatment, l.discount, l.weight));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * 9);
}
BENCHMARK(BM_PossibleValues);

// A million lines of the mix as check-lines reads them.
const std::string& batch_text()
{
    static const std::string text = [] {
        std::string out;
        const auto& mix = line_mix();
        for (std::size_t i = 0; i < 1'000'000; ++i) {
            const LineInput& l = mix[i % mix.size()];
            for (const auto field : {l.product, l.zone}) (out += field) += '\t';
            out += std::to_string(l.weight);
            for (const auto field : {l.speed, l.format, l.pre_treatment, l.discount, l.scope, l.sampling, l.services})
                (out += '\t') += field;
            out += '\n';
        }
        return out;
    }();
    return text;
}

// Takes the answers and keeps only their count, so that the batch's own cost is what is measured.
class DiscardBuffer : public std::streambuf {
protected:
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
};

// Reads a text in place, so that no copy of the input is measured with the batch.
class ViewBuffer : public std::streambuf {
public:
    explicit ViewBuffer(const std::string& text)
    {
        char* begin = const_cast<char*>(text.data());  // only ever read
        setg(begin, begin, begin + text.size());
    }
};

struct ViewStream : std::istream {
    explicit ViewStream(const std::string& text) : std::istream(nullptr), buffer(text) { rdbuf(&buffer); }
    ViewBuffer buffer;
};

void run_batch(benchmark::State& state, const std::function<std::unique_ptr<std::istream>()>& open)
{
    batch_text();  // made once, before the clock runs
    DiscardBuffer discard;
    std::ostream out(&discard), err(&discard);
    std::size_t lines = 0;
    for (auto _ : state) {
        const auto in = open();
        lines += nimbara::check_line_batch(*in, out, err, "batch").lines;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(lines));
}

// check-lines over a million lines held in memory.
void BM_CheckLines(benchmark::State& state)
{
    run_batch(state, [] { return std::make_unique<ViewStream>(batch_text()); });
}
BENCHMARK(BM_CheckLines)->Unit(benchmark::kMillisecond);

// The same lines from a file, as `nimbara check-lines FILE` reads them.
void BM_CheckLinesFile(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() / ("nimbara-bench-lines-" + std::to_string(::getpid()));
    std::ofstream(path, std::ios::binary) << batch_text();
    run_batch(state, [&] { return std::make_unique<std::ifstream>(path, std::ios::binary); });
    std::filesystem::remove(path);
}
BENCHMARK(BM_CheckLinesFile)->Unit(benchmark::kMillisecond);

// The batch the straightforward way, as it first stood: a line read, judged through the public
// operation and answered at a time.
void BM_CheckLinesLineByLine(benchmark::State& state)
{
    DiscardBuffer discard;
    std::ostream out(&discard);
    const nimbara::cls_ValProdutosA validator;
    std::size_t lines = 0;
    batch_text();
    for (auto _ : state) {
        ViewStream in(batch_text());
        std::string line;
        std::vector<std::string_view> f;
        while (std::getline(in, line)) {
            ++lines;
            f.clear();
            for (std::size_t start = 0;;) {
                const auto tab = line.find('\t', start);
                f.emplace_back(std::string_view(line).substr(start, tab == std::string::npos ? tab : tab - start));
                if (tab == std::string::npos) break;
                start = tab + 1;
            }
            const auto r = validator.DoValidaProduto(f[0], f[1], *nimbara::read_weight(f[2]), f[3], f[4], f[5], f[6],
                                                     f[7], f[8], f[9]);
            std::string answer = "0";
            if (r) {
                answer = std::to_string(r->number) + '\t';
                if (const auto* list = std::get_if<nimbara::ListArray>(&r->description)) {
                    for (std::size_t i = 0; i < list->size(); ++i) answer += (i ? "," : "") + (*list)[i];
                } else {
                    answer += std::get<std::string>(r->description);
                }
            }
            out << answer << '\n';
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(lines));
}
BENCHMARK(BM_CheckLinesLineByLine)->Unit(benchmark::kMillisecond);

// Prints the usual table, then each fast way's speed as a multiple of its straightforward baseline's.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const auto& run : runs) {
            const auto it = run.counters.find("items_per_second");
            if (it != run.counters.end() && run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                rates_[run.run_name.function_name] = it->second.value;
            else if (it != run.counters.end() && run.run_type == Run::RT_Iteration && !rates_.contains(run.run_name.function_name))
                rates_[run.run_name.function_name] = it->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        const std::pair<const char*, const char*> pairs[] = {
            {"BM_ValidateLine", "BM_ValidateLineLiteral"},
            {"BM_ValidateLineFacade", "BM_ValidateLineLiteral"},
            {"BM_CheckLines", "BM_CheckLinesLineByLine"},
        };
        for (const auto& [fast, slow] : pairs) {
            const auto f = rates_.find(fast), s = rates_.find(slow);
            if (f == rates_.end() || s == rates_.end() || s->second <= 0) continue;
            std::cout << fast << " against " << slow << ": " << static_cast<long long>(f->second) << " against "
                      << static_cast<long long>(s->second) << " items a second, " << f->second / s->second << "x\n";
        }
    }

private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

// A whole Guia judged and its report built in memory: twelve lines (one printed page), two of which
// fail, so the report carries two blocks with their listings. Items are Guias.
namespace {

nimbara::GuiaArrays twelve_line_guia()
{
    nimbara::cls_ValProdutosA g;
    (void)g.PreencheCabecalho("7", "", "456", "", "", "Ana", "", "", "", "", "", "", "", "", "", "", "2026/7", "", "", "0");
    const auto add = [&](std::string_view zone, std::string_view product, std::string_view weight,
                         std::string_view format, std::string_view discount, std::string_view services,
                         std::string_view pre = "1") {
        (void)g.PreencheProduto(zone, product, "0", "300", "1", services, "0", weight, format, pre, discount, "", "", "0", "",
                          "", "", "", "", "");
    };
    for (int i = 0; i < 5; ++i) add("01", "C01", std::to_string(10 + i * 20), "02", "0", "0");
    add("01", "C01", "0", "02", "0", "0");             // fails on the weight: ranges listed
    for (int i = 0; i < 3; ++i) add("01", "C13", "50", "03", "02", "02,10");
    add("01", "C01", "50", "02", "0", "0,02,07");      // fails on its services: allowed ones listed
    add("01", "C03", "100", "0", "0", "0");
    add("27", "E01", "1000", "0", "0", "02", "0");
    return g.arrays();
}

void BM_ValidateGuia(benchmark::State& state)
{
    const nimbara::GuiaArrays guia = twelve_line_guia();
    const std::string report = nimbara::document::build_validation_report(guia).text;
    int blocks = 0;
    for (auto at = report.find("Ordem Insercao"); at != std::string::npos; at = report.find("Ordem Insercao", at + 1))
        ++blocks;
    if (guia.arrGuia.row_count() != 12 || blocks != 2) {
        state.SkipWithError("the sample Guia is not the twelve lines with two failing ones it should be");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(nimbara::document::build_validation_report(guia));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
    state.SetLabel("Guias");
}
BENCHMARK(BM_ValidateGuia);

}  // namespace
