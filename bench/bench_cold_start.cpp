// `nimbara print` of the bundled Guia from a cold start, as a user runs it: a new process with its own
// loading and relocation, the Guia validated, reported and printed (standard faces, a PDF per copy)
// into an empty folder. Reports the median wall time and the peak resident memory of the process.
//
// Today's figure is the program as it was before cairo, pango, libpq and libmdb moved into modules.
// Set NIMBARA_TODAY_PROGRAM to a program built from that state, and each iteration runs it too,
// alternately with the built one, so that both see the same load; without it, today's figure as this
// benchmark measured it on 24 November 2026 (the shared machine at load 1.1, 200 runs) stands in.
// The processor time is reported beside the wall time, as the machine's load moves the one and not
// the other.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "program_run.hpp"

namespace {

constexpr double kTodayWallMs = 35.4;
constexpr double kTodayPeakMb = 17.8;

using nimbara::bench::ProgramRun;

ProgramRun print_once(const std::string& program, const std::string& guia, const std::filesystem::path& folder)
{
    return nimbara::bench::run_program({program, "print", guia}, folder);
}

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

void empty(const std::filesystem::path& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder)) std::filesystem::remove(entry.path());
}

void BM_ColdPrint(benchmark::State& state)
{
    const std::string program = NIMBARA_CLI, guia = NIMBARA_SOURCE_DIR "/examples/valid-guia.json";
    const char* today_program = std::getenv("NIMBARA_TODAY_PROGRAM");
    const auto folder = std::filesystem::temp_directory_path() / ("nimbara-cold-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    std::vector<double> walls, cpus, peaks, today_walls, today_peaks;
    try {
        for (auto _ : state) {
            const ProgramRun run = print_once(program, guia, folder);
            state.SetIterationTime(run.wall_ms / 1000);
            walls.push_back(run.wall_ms), cpus.push_back(run.cpu_ms), peaks.push_back(run.peak_mb);
            state.PauseTiming();
            empty(folder);
            if (today_program) {
                const ProgramRun today = print_once(today_program, guia, folder);
                today_walls.push_back(today.wall_ms), today_peaks.push_back(today.peak_mb);
                empty(folder);
            }
            state.ResumeTiming();
        }
    } catch (const std::exception& e) {
        state.SkipWithError(e.what());
    }
    std::filesystem::remove_all(folder);
    if (walls.empty()) return;
    const double today_wall = today_program ? median(today_walls) : kTodayWallMs;
    const double today_peak = today_program ? median(today_peaks) : kTodayPeakMb;
    state.counters["wall ms"] = median(walls);
    state.counters["cpu ms"] = median(cpus);
    state.counters["peak MB"] = median(peaks);
    state.counters["today wall ms"] = today_wall;
    state.counters["today peak MB"] = today_peak;
    state.counters["wall ratio"] = today_wall / median(walls);
    state.counters["peak ratio"] = today_peak / median(peaks);
    double load = 0;
    ::getloadavg(&load, 1);
    state.SetLabel(std::string(today_program ? "today's: run alongside" : "today's: measured 2026-11-24") +
                   ", load " + std::to_string(load).substr(0, 4));
}
BENCHMARK(BM_ColdPrint)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace

BENCHMARK_MAIN();
