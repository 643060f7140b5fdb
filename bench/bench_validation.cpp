// Validation throughput: the indexed line validator against the straightforward way of assembling and
// parsing the rule documents at every check, on the same mix of lines.
#include <benchmark/benchmark.h>

#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "support/literal_validator.hpp"
#include "validation/line_validator.hpp"
#include "validation/possible_values.hpp"

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

void BM_ValidateLine(benchmark::State& state)
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
BENCHMARK(BM_ValidateLine);

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

// Prints the usual table, then the indexed validator's speed as a multiple of the literal one's.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const auto& run : runs) {
            const auto it = run.counters.find("items_per_second");
            if (it != run.counters.end()) rates_[run.benchmark_name()] = it->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        const auto fast = rates_.find("BM_ValidateLine"), slow = rates_.find("BM_ValidateLineLiteral");
        if (fast != rates_.end() && slow != rates_.end() && slow->second > 0)
            std::cout << "lines per second: indexed " << static_cast<long long>(fast->second) << ", literal "
                      << static_cast<long long>(slow->second) << ", ratio " << fast->second / slow->second << "x\n";
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
