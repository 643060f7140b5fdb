// The import of the big old file (big-0514.mdb, about 102,000 rows) into a new SQLite file and into
// PostgreSQL (when scripts/with-postgres names a server): rows a second and the heap held at the peak,
// by the import as it runs (bound values, one prepared form per table) beside the old way, one
// statement built as text per row, on the same target and the same transaction.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "import/column_values.hpp"
#include "import/mappings.hpp"
#include "import/procedure_run.hpp"
#include "nimbara/Schema.hpp"
#include "platform/old_database.hpp"

namespace {

using namespace nimbara;

const std::filesystem::path kBig = NIMBARA_SOURCE_DIR "/../shared/fixtures/jet/big-0514.mdb";
constexpr std::int64_t kHeapLookEvery = 512;

std::string literal(const FieldValue& v)
{
    switch (v.kind()) {
    case ValueKind::Null: return "NULL";
    case ValueKind::Number: return v.text();
    case ValueKind::YesNo: return v.yes_no() ? "TRUE" : "FALSE";
    case ValueKind::Date: return "'" + v.text() + "'";
    case ValueKind::Text: break;
    }
    std::string q = "'";
    for (char c : v.text()) q += c == '\'' ? std::string("''") : std::string(1, c);
    return q + "'";
}

// The old way: each row's statement written out as text, values pasted (quotes doubled, so that the
// figure is not lost to a failure), on one transaction.
std::int64_t import_as_text(const import::Procedure& p, const platform::OldDatabase& source, Database& target,
                            std::size_t& heap_peak)
{
    Transaction t(target);
    import::delete_data(target);
    std::int64_t rows = 0;
    for (const auto& table : p.tables) {
        std::string names;
        for (const auto& c : table.columns) names += (names.empty() ? "" : ", ") + std::string(c.name);
        const auto reader = source.open_table(table.source);
        for (platform::OldRow row; reader->next(row);) {
            std::string sql = "INSERT INTO " + std::string(table.target) + " (" + names + ") VALUES (";
            for (std::size_t i = 0; i < table.columns.size(); ++i) {
                const auto& c = table.columns[i];
                const FieldValue v = c.from == import::From::Constant
                                         ? import::column_value(std::string(c.constant), c.kind)
                                         : import::column_value(row[static_cast<std::size_t>(c.field)], c.kind);
                sql += (i ? ", " : "") + literal(v);
            }
            target.execute(sql + ")");
            if (++rows % kHeapLookEvery == 0) heap_peak = std::max(heap_peak, ::mallinfo2().uordblks);
        }
    }
    t.commit();
    return rows;
}

// A new empty target on one store, removed afterwards; nothing when the store is not there.
class Target {
public:
    explicit Target(bool postgres)
    {
        const std::string pid = std::to_string(::getpid());
        if (!postgres) {
            folder_ = std::filesystem::temp_directory_path() / ("nimbara-bench-import-" + pid);
            std::filesystem::create_directories(folder_);
            conn_ = "sqlite:" + (folder_ / "target.db").string();
            return;
        }
        const char* server = std::getenv("NIMBARA_TEST_PG");
        if (!server) return;
        admin_ = std::string("postgresql:") + server;
        name_ = "nimbara_bench_import_" + pid;
        OpenDatabase(admin_)->execute("CREATE DATABASE " + name_);
        conn_ = admin_ + " dbname=" + name_;  // the last dbname given is the one libpq takes
    }
    ~Target()
    {
        if (!folder_.empty()) std::filesystem::remove_all(folder_);
        if (!name_.empty()) OpenDatabase(admin_)->execute("DROP DATABASE IF EXISTS " + name_);
    }
    const std::string& conn() const { return conn_; }

private:
    std::filesystem::path folder_;
    std::string admin_, name_, conn_;
};

void BM_ImportBig(benchmark::State& state)
{
    const bool postgres = state.range(0) == 1;
    const bool as_text = state.range(1) == 1;
    state.SetLabel(std::string(postgres ? "PostgreSQL" : "SQLite") +
                   (as_text ? ", text per row" : ", bound"));
    if (!std::filesystem::exists(kBig)) {
        state.SkipWithError(("the Jet fixture " + kBig.string() + " is absent").c_str());
        return;
    }
    const Target target(postgres);  // outlives the connection below, so that PostgreSQL can drop it
    if (target.conn().empty()) {
        state.SkipWithError("no PostgreSQL server: run through scripts/with-postgres");
        return;
    }
    const auto db = OpenDatabase(target.conn(), OpenMode::Create);
    CreateSchema(*db);
    const auto& procedure = *import::find_procedure("DoImportDadosTo050314");
    std::int64_t rows = 0;
    const auto heap_before = ::mallinfo2().uordblks;
    std::size_t heap_peak = heap_before;
    for (auto _ : state) {
        const auto source = platform::open_old_database(kBig);
        if (as_text) {
            rows += import_as_text(procedure, *source, *db, heap_peak);
        } else {
            const auto counts = import::run_procedure(procedure, *source, *db, [&](int) {
                heap_peak = std::max(heap_peak, ::mallinfo2().uordblks);
            });
            for (auto n : counts.counts) rows += n;
        }
        heap_peak = std::max(heap_peak, ::mallinfo2().uordblks);
    }
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
    state.counters["peak_heap_KiB"] = static_cast<double>(heap_peak - heap_before) / 1024.0;
}
// Wall time: the store's own work is the point. A few runs only: each is a whole import.
BENCHMARK(BM_ImportBig)
    ->ArgsProduct({{0, 1}, {0, 1}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
