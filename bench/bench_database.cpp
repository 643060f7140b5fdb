// Saving and loading Guias on each store, beside the old way of one connection per object and one
// transaction per statement. The PostgreSQL runs need the server of scripts/with-postgres
// (NIMBARA_TEST_PG), as `make bench` starts it; without one they say so and are skipped.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

#include "nimbara/Schema.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "support/sample_entities.hpp"

using namespace nimbara;

namespace {

constexpr int kLines = 12, kServices = 2;

// A fresh database with the schema and one client, removed at exit.
class BenchDatabase {
public:
    explicit BenchDatabase(bool postgres)
    {
        const std::string unique = std::to_string(::getpid());
        if (!postgres) {
            file_ = std::filesystem::temp_directory_path() / ("nimbara-bench-" + unique + ".db");
            conn_ = "sqlite:" + file_.string();
        } else {
            const char* server = std::getenv("NIMBARA_TEST_PG");
            if (!server || !*server) return;
            admin_ = std::string("postgresql:") + server;
            name_ = "nimbara_bench_" + unique;
            OpenDatabase(admin_)->execute("CREATE DATABASE " + name_);
            conn_ = admin_ + " dbname=" + name_;
        }
        const auto db = OpenDatabase(conn_, OpenMode::Create);
        CreateSchema(*db);
        nimbara::testing::store_client(db, 1);
    }
    ~BenchDatabase()
    {
        std::error_code ec;
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(file_.string() + suffix, ec);
        if (!name_.empty()) OpenDatabase(admin_)->execute("DROP DATABASE IF EXISTS " + name_ + " WITH (FORCE)");
    }
    bool available() const { return !conn_.empty(); }
    const std::string& conn() const { return conn_; }

private:
    std::filesystem::path file_;
    std::string conn_, admin_, name_;
};

BenchDatabase& store(bool postgres)
{
    static BenchDatabase sqlite(false), pg(true);
    return postgres ? pg : sqlite;
}

bool ready(benchmark::State& state, bool postgres)
{
    if (store(postgres).available()) return true;
    state.SkipWithError("NO POSTGRESQL SERVER: set NIMBARA_TEST_PG (run through scripts/with-postgres)");
    return false;
}

void BM_SaveGuia(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    for (auto _ : state) {
        auto g = nimbara::testing::new_guia(db, 1, kLines, kServices);
        if (!g->DoSaveNumerada()) state.SkipWithError(g->LastError().c_str());
    }
    state.SetItemsProcessed(state.iterations());
}

// Each object opens its own connection, the host numbers by SelectMax, and every statement is a
// transaction of its own.
void BM_SaveGuiaOldWay(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const std::string& conn = store(postgres).conn();
    for (auto _ : state) {
        cls_Guia_Cabecalho header(OpenDatabase(conn));
        header.vNReq = header.SelectMax() + 1;
        header.vNReq2 = header.SelectMax_PorCliente("1001") + 1;
        header.vNIDReqAnual = header.SelectMax_NReqAnual_PorCliente("1001") + 1;
        header.iId_Cliente = 1;
        header.vCodCliente = "1001";
        header.vCodContrato = "1";
        header.DoSave();
        const auto sample = nimbara::testing::new_guia(nullptr, 1, kLines, kServices, header.vNReq);
        for (std::size_t i = 1; i <= sample->mColLinha.Count(); ++i) {
            cls_Guia_Linha line(OpenDatabase(conn));
            line.CopyObject(sample->mColLinha.Item(i));
            line.mColSEspecial.Clear();
            line.DoSave();
            for (std::size_t s = 1; s <= sample->mColLinha.Item(i).mColSEspecial.Count(); ++s) {
                cls_Guia_SEspecial service(OpenDatabase(conn));
                const auto& from = sample->mColLinha.Item(i).mColSEspecial.Item(s);
                service.vNReq = header.vNReq;
                service.vNLinha = from.vNLinha;
                service.vCodigoServicoEspecial = from.vCodigoServicoEspecial;
                service.vValor = from.vValor;
                service.DoSave();
            }
        }
    }
    state.SetItemsProcessed(state.iterations());
}

// A stored Guia to load, saved once.
std::int32_t stored_guia(bool postgres)
{
    static std::map<bool, std::int32_t> numbers;
    auto& n = numbers[postgres];
    if (n == 0) {
        auto g = nimbara::testing::new_guia(OpenDatabase(store(postgres).conn()), 1, kLines, kServices);
        g->DoSaveNumerada();
        n = g->vNReq;
    }
    return n;
}

void BM_LoadGuia(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    const std::int32_t n = stored_guia(postgres);
    for (auto _ : state) {
        cls_Guia_Cabecalho g(db);
        g.SelectMe(n);
        benchmark::DoNotOptimize(g.mColLinha.Count());
    }
    state.SetItemsProcessed(state.iterations());
}

// The header, every line and every service opens a connection of its own.
void BM_LoadGuiaOldWay(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const std::string& conn = store(postgres).conn();
    const std::int32_t n = stored_guia(postgres);
    for (auto _ : state) {
        cls_Guia_Cabecalho g(OpenDatabase(conn));
        g.SelectMe(n);
        for (std::size_t i = 1; i <= g.mColLinha.Count(); ++i) {
            benchmark::DoNotOptimize(OpenDatabase(conn));
            for (std::size_t s = 1; s <= g.mColLinha.Item(i).mColSEspecial.Count(); ++s)
                benchmark::DoNotOptimize(OpenDatabase(conn));
        }
    }
    state.SetItemsProcessed(state.iterations());
}

// Prints the usual table, then each store's rates and the ratio against the old way.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const auto& run : runs) {
            const auto it = run.counters.find("items_per_second");
            std::string name = run.benchmark_name();
            if (const auto suffix = name.find("/real_time"); suffix != std::string::npos) name.erase(suffix);
            if (it != run.counters.end()) rates_[name] = it->second.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const char* store : {"SQLite", "PostgreSQL"})
            for (const char* what : {"SaveGuia", "LoadGuia"}) {
                const auto now = rates_.find(std::string("BM_") + what + "/" + store);
                const auto old = rates_.find(std::string("BM_") + what + "OldWay/" + store);
                if (now == rates_.end() || old == rates_.end() || old->second <= 0) continue;
                std::cout << what << " on " << store << ": " << static_cast<long long>(now->second)
                          << " Guias/s, the old way " << static_cast<long long>(old->second) << " Guias/s, ratio "
                          << now->second / old->second << "x\n";
            }
    }

private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv)
{
    for (const bool postgres : {false, true}) {
        const std::string store = postgres ? "/PostgreSQL" : "/SQLite";
        // Wall time: the server's work and the waits for the disk count, not only this process's.
        benchmark::RegisterBenchmark(("BM_SaveGuia" + store).c_str(), BM_SaveGuia, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_SaveGuiaOldWay" + store).c_str(), BM_SaveGuiaOldWay, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_LoadGuia" + store).c_str(), BM_LoadGuia, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_LoadGuiaOldWay" + store).c_str(), BM_LoadGuiaOldWay, postgres)->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
