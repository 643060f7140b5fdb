// Reading old Jet files: every row of every table streamed as typed values, in rows a second, and the
// heap that the reading holds at its peak, for a small file and a big one: the peak should not grow
// with the file.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "platform/jet_source.hpp"

namespace {

const std::filesystem::path kFixtures = NIMBARA_SOURCE_DIR "/../shared/fixtures/jet";
constexpr const char* kFiles[] = {"v0512.mdb", "big-0514.mdb"};

// The heap is looked at every so many rows, often enough to see a table held whole and seldom enough
// not to weigh on the figure.
constexpr std::int64_t kHeapLookEvery = 256;

void BM_JetReadAll(benchmark::State& state)
{
    const auto file = kFixtures / kFiles[state.range(0)];
    if (!std::filesystem::exists(file)) {
        state.SkipWithError(("the Jet fixture " + file.string() + " is absent").c_str());
        return;
    }
    const auto heap_before = ::mallinfo2().uordblks;
    std::size_t heap_peak = heap_before;
    std::int64_t rows = 0;
    for (auto _ : state) {
        const auto db = nimbara::platform::open_jet_database(file);
        for (const auto& table : db->table_names()) {
            const auto reader = db->open_table(table);
            for (nimbara::platform::OldRow row; reader->next(row);) {
                benchmark::DoNotOptimize(row.data());
                if (++rows % kHeapLookEvery == 0) heap_peak = std::max(heap_peak, ::mallinfo2().uordblks);
            }
        }
    }
    state.SetLabel(kFiles[state.range(0)]);
    state.SetItemsProcessed(rows);
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
    state.counters["peak_heap_KiB"] = static_cast<double>(heap_peak - heap_before) / 1024.0;
}
// Wall time, since reading the file is part of the work.
BENCHMARK(BM_JetReadAll)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
