// The cost of the C interface: the lines of examples/lines.tsv judged one at a time through the C++
// façade and through nimbara_check_line, in one run, and the C call's time as a share over the C++
// one (the goal: at most 10% over). Then the batch call a Python host makes (nimbara_check_lines,
// one crossing for a whole batch) beside the C++ batch it wraps. Items are lines.
#include <benchmark/benchmark.h>

#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/line_batch.hpp"
#include "nimbara/nimbara.h"

namespace {

struct Row {
    std::vector<std::string> f;
    std::int32_t weight = 0;
};

const std::vector<Row>& rows()
{
    static const std::vector<Row> all = [] {
        std::vector<Row> out;
        std::ifstream in(NIMBARA_SOURCE_DIR "/examples/lines.tsv");
        for (std::string line; std::getline(in, line);) {
            Row r;
            std::istringstream fields(line);
            for (std::string field; std::getline(fields, field, '\t');) r.f.push_back(field);
            r.f.resize(10);
            const auto weight = nimbara::read_weight(r.f[2]);
            if (!weight) continue;
            r.weight = *weight;
            out.push_back(std::move(r));
        }
        return out;
    }();
    return all;
}

void BM_LineCpp(benchmark::State& state)
{
    const nimbara::cls_ValProdutosA facade;
    const auto& all = rows();
    std::size_t i = 0;
    for (auto _ : state) {
        const Row& r = all[i++ % all.size()];
        const auto f = r.f.data();
        benchmark::DoNotOptimize(facade.DoValidaProduto(f[0], f[1], r.weight, f[3], f[4], f[5], f[6], f[7], f[8], f[9]));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_LineCpp);

void BM_LineCApi(benchmark::State& state)
{
    nimbara_validator* validator = nullptr;
    if (nimbara_validator_create(&validator) != NIMBARA_OK) {
        state.SkipWithError(nimbara_last_error());
        return;
    }
    std::vector<nimbara_line> lines;
    for (const Row& r : rows()) {
        const auto& f = r.f;
        nimbara_line l{};
        l.struct_size = sizeof l;
        l.produto = f[0].data(), l.produto_size = f[0].size();
        l.zona = f[1].data(), l.zona_size = f[1].size();
        l.peso = r.weight;
        l.velocidade = f[3].data(), l.velocidade_size = f[3].size();
        l.formato = f[4].data(), l.formato_size = f[4].size();
        l.pre_tratamento = f[5].data(), l.pre_tratamento_size = f[5].size();
        l.desconto = f[6].data(), l.desconto_size = f[6].size();
        l.ambito = f[7].data(), l.ambito_size = f[7].size();
        l.amostra = f[8].data(), l.amostra_size = f[8].size();
        l.servicos = f[9].data(), l.servicos_size = f[9].size();
        lines.push_back(l);
    }
    std::size_t i = 0;
    int32_t number = 0;
    for (auto _ : state) {
        // The number alone, as the C++ call above hands out its error without copying it to the host.
        benchmark::DoNotOptimize(nimbara_check_line(validator, &lines[i++ % lines.size()], &number, nullptr, nullptr));
    }
    nimbara_validator_destroy(validator);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}
BENCHMARK(BM_LineCApi);

const std::string& batch()
{
    static const std::string text = [] {
        std::ifstream in(NIMBARA_SOURCE_DIR "/examples/lines.tsv");
        const std::string once((std::istreambuf_iterator<char>(in)), {});
        std::string out;
        while (out.size() < (8u << 20)) out += once;
        return out;
    }();
    return text;
}

std::size_t batch_lines() { return static_cast<std::size_t>(std::count(batch().begin(), batch().end(), '\n')); }

void BM_BatchCpp(benchmark::State& state)
{
    for (auto _ : state) {
        std::istringstream in(batch());
        std::ostringstream out, err;
        benchmark::DoNotOptimize(nimbara::check_line_batch(in, out, err, "batch"));
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * batch_lines()));
}
BENCHMARK(BM_BatchCpp)->Unit(benchmark::kMillisecond);

void BM_BatchCApi(benchmark::State& state)
{
    nimbara_validator* validator = nullptr;
    nimbara_validator_create(&validator);
    for (auto _ : state) {
        char* results = nullptr;
        size_t size = 0;
        nimbara_check_lines(validator, batch().data(), batch().size(), &results, &size, nullptr);
        nimbara_free(results);
    }
    nimbara_validator_destroy(validator);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * batch_lines()));
}
BENCHMARK(BM_BatchCApi)->Unit(benchmark::kMillisecond);

// The usual table, then each C call's time per line over its C++ twin's.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const auto& run : runs) {
            const auto it = run.counters.find("items_per_second");
            if (it == run.counters.end()) continue;
            // The median of repetitions when there are any, else the one run.
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                rates_[run.run_name.function_name] = it->second.value;
            else if (run.run_type == Run::RT_Iteration && !rates_.contains(run.run_name.function_name))
                rates_[run.run_name.function_name] = it->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        const std::pair<const char*, const char*> pairs[] = {{"BM_LineCApi", "BM_LineCpp"}, {"BM_BatchCApi", "BM_BatchCpp"}};
        for (const auto& [c, cpp] : pairs) {
            const auto a = rates_.find(c), b = rates_.find(cpp);
            if (a == rates_.end() || b == rates_.end() || a->second <= 0) continue;
            const double over = (b->second / a->second - 1.0) * 100.0;
            std::cout << c << ": " << static_cast<long long>(a->second) << " lines a second against "
                      << static_cast<long long>(b->second) << " through C++: " << over
                      << "% more time a line (goal: at most 10%)\n";
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
