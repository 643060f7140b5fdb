// `nimbara check-lines` end to end, as a user runs it: ten million lines judged by a process of its
// own, read from a file named on the command line and from a pipe this benchmark feeds, the answers
// written to /dev/null. Reports lines a second of wall time and of the process's processor time.
//
// Today's figure is the program as the batch first stood. Set NIMBARA_TODAY_PROGRAM to such a
// program and each iteration runs it too, on the same input, so that both see the same load;
// without it, the figure measured when the work began (1.6 million lines a second from a pipe)
// stands in.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "program_run.hpp"

namespace {

constexpr std::size_t kLines = 10'000'000;
constexpr double kTodayPipeLinesPerSecond = 1.6e6;

// The example batch repeated: lines that pass and lines failing at several stages.
const std::string& batch()
{
    static const std::string text = [] {
        std::ifstream in(NIMBARA_SOURCE_DIR "/examples/lines.tsv");
        std::vector<std::string> rows;
        for (std::string row; std::getline(in, row);)
            if (!row.empty() && row.front() != '#') rows.push_back(row + '\n');
        std::string out;
        for (std::size_t i = 0; i < kLines; ++i) out += rows[i % rows.size()];
        return out;
    }();
    return text;
}

void feed(int fd)
{
    const std::string& text = batch();
    for (std::size_t done = 0; done < text.size();) {
        const ::ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return;  // the program ended early; its exit status tells
        done += static_cast<std::size_t>(n);
    }
}

void BM_CheckLinesProgram(benchmark::State& state, bool from_pipe)
{
    const auto folder = std::filesystem::temp_directory_path() / ("nimbara-lines-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto file = (folder / "lines.tsv").string();
    if (!from_pipe) std::ofstream(file, std::ios::binary) << batch();
    batch();  // made before the clock runs
    const char* today_program = std::getenv("NIMBARA_TODAY_PROGRAM");
    const auto run = [&](const std::string& program) {
        return from_pipe ? nimbara::bench::run_program({program, "check-lines"}, folder, feed)
                         : nimbara::bench::run_program({program, "check-lines", file}, folder);
    };
    double wall = 0, cpu = 0, today_wall = 0;
    try {
        for (auto _ : state) {
            const auto r = run(NIMBARA_CLI);
            state.SetIterationTime(r.wall_ms / 1000);
            wall += r.wall_ms, cpu += r.cpu_ms;
            if (today_program) {
                state.PauseTiming();
                today_wall += run(today_program).wall_ms;
                state.ResumeTiming();
            }
        }
    } catch (const std::exception& e) {
        state.SkipWithError(e.what());
    }
    std::filesystem::remove_all(folder);
    const double lines = static_cast<double>(kLines * state.iterations());
    state.SetItemsProcessed(static_cast<std::int64_t>(lines));
    state.counters["lines/s of cpu"] = lines / (cpu / 1000);
    if (today_program)
        state.counters["ratio to today"] = today_wall / wall;
    else if (from_pipe)
        state.counters["ratio to today"] = lines / (wall / 1000) / kTodayPipeLinesPerSecond;
    double load = 0;
    ::getloadavg(&load, 1);
    state.SetLabel(std::string(today_program ? "today's: run alongside" : "today's: 1.6M/s from a pipe") + ", load " +
                   std::to_string(load).substr(0, 4));
}
BENCHMARK_CAPTURE(BM_CheckLinesProgram, file, false)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK_CAPTURE(BM_CheckLinesProgram, pipe, true)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
