// Saving and loading Guias on each store, beside the bare inserts of the same Guia (the store's
// limit) and the old way of one connection per object and one
// transaction per statement; line validation against the rule tables, beside one query per check;
// the browse listing over a generated database of 100,000 Guias with ten lines each; a stored Guia
// printed by the database edition. The PostgreSQL
// runs need the server of scripts/with-postgres (NIMBARA_TEST_PG), as `make bench` starts it;
// without one they say so and are skipped.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>

#include "nimbara/FormImpressao.hpp"
#include "nimbara/PdfSurface.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/cls_Guia.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "nimbara/cls_ValProdutos.hpp"
#include "support/per_check_twin.hpp"
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

// The limit of a save on the store: the same inserts as a save of a Guia with its lines and services
// (header, twelve lines, two services a line, values bound, statements kept prepared by the store),
// in one transaction a Guia, numbered by a counter of the loop, with no objects around them.
void BM_SaveGuiaLimit(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    const Recordset highest = db->open("SELECT MAX(N_Req) FROM Tbl_Cab");
    std::int32_t n_req = static_cast<std::int32_t>(highest[std::size_t{0}].is_null() ? 0 : highest[std::size_t{0}].integer()) +
                         1000000;
    const auto sample = nimbara::testing::new_guia(nullptr, 1, kLines, kServices);
    for (auto _ : state) {
        ++n_req;
        Transaction t(*db);
        db->execute_queued("INSERT INTO Tbl_Cab (N_Req, Id_Cliente, Cod_Cliente, Cod_Contrato, D_Req, Pagamento, "
                           "Credenciado, N_Credencial, Recolhido, Situacao, Ficheiro, Observacoes, N_Req2, Id_Req_Anual, "
                           "nCompromisso, CodigoTerceiro) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                           {n_req, 1, 1001, 1, sample->vDReq, sample->vPagamento, false, "0", false, "", "", "", n_req,
                            n_req, "", "0"});
        for (std::size_t i = 1; i <= sample->mColLinha.Count(); ++i) {
            const cls_Guia_Linha& l = sample->mColLinha.Item(i);
            db->execute_queued(
                "INSERT INTO Tbl_Linha (N_Req, N_Linha, A_Zona_Taxacao, B_Produto, C_Escalao, D_Quantidade, "
                "E_Velocidade, F_Formato, G_Pre_Tratamento, H_Descontos, K_Entrega_Sampling, L_TaxEsp_Semana, "
                "M_TaxEsp_Quantidade, N_Ambito_Distrib, CodigoCampanha, O_Divisao_Remetente, Q_Conteudo, P_RefCliente) "
                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                {n_req, l.vNLinha, l.vA_Zona_Taxacao, l.vB_Produto, l.vC_Escalao, l.vD_Quantidade, l.vE_Velocidade,
                 l.vF_Formato, l.vG_Pre_Tratamento, l.vH_Descontos, l.vK_Entrega_Sampling, l.vL_TaxEsp_Semana,
                 l.vM_TaxaEsp_Quantidade, l.vN_Ambito_Distrib, l.vCodigo_Campanha, l.vO_Divisao_Remetente, "12",
                 l.vRefCli});
            for (std::size_t s = 1; s <= l.mColSEspecial.Count(); ++s) {
                const cls_Guia_SEspecial& e = l.mColSEspecial.Item(s);
                db->execute_queued("INSERT INTO Tbl_Linha_ServicoEspecial (N_Req, N_Linha, CodigoServicoEspecial, Valor) "
                                   "VALUES (?, ?, ?, ?)",
                                   {n_req, e.vNLinha, e.vCodigoServicoEspecial, e.vValor});
            }
        }
        t.commit();
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

constexpr int kClients = 1000;
constexpr int kGuias = 100000;
constexpr int kLinesPerGuia = 10;

// The generated database, made once per run and removed at exit.
class ListingDatabase {
public:
    static ListingDatabase& get()
    {
        static ListingDatabase instance;
        return instance;
    }
    const std::shared_ptr<Database>& db() const { return db_; }
    ~ListingDatabase()
    {
        db_.reset();
        std::error_code ec;
        std::filesystem::remove_all(folder_, ec);
    }

private:
    ListingDatabase()
        : folder_(std::filesystem::temp_directory_path() / ("nimbara-bench-db-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(folder_);
        db_ = OpenDatabase("sqlite:" + (folder_ / "listing.db").string(), OpenMode::Create);
        CreateSchema(*db_);
        // Generated by the store itself, in one transaction: a row at a time would take minutes.
        Transaction t(*db_);
        const std::string numbers = "WITH RECURSIVE seq(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM seq WHERE n < ?) ";
        db_->execute(numbers +
                         "INSERT INTO Tbl_Cliente (Id_Cliente, Cod_Cliente, Nome) "
                         "SELECT n, 1000 + n, 'Cliente ' || n FROM seq",
                     {kClients});
        db_->execute(numbers +
                         "INSERT INTO Tbl_Contrato (Id_Cliente, Cod_Cliente, Cod_Contrato, Designacao, bActivo) "
                         "SELECT n, 1000 + n, 1, 'Contrato', 1 FROM seq",
                     {kClients});
        // Guia n belongs to client n mod 1000 (plus one) and is dated n mod 730 days into 2023.
        db_->execute(numbers +
                         "INSERT INTO Tbl_Cab (N_Req, N_Req2, Id_Req_Anual, Id_Cliente, Cod_Cliente, Cod_Contrato, "
                         "D_Req) SELECT n, n / ? + 1, n / ? + 1, n % ? + 1, 1000 + n % ? + 1, 1, "
                         "datetime('2023-01-01 09:00:00', '+' || (n % 730) || ' days') FROM seq",
                     {kGuias, kClients, kClients, kClients, kClients});
        db_->execute(numbers +
                         "INSERT INTO Tbl_Linha (N_Req, N_Linha, A_Zona_Taxacao, B_Produto, C_Escalao, D_Quantidade, "
                         "E_Velocidade, F_Formato, N_Ambito_Distrib, CodigoCampanha) "
                         "SELECT Tbl_Cab.N_Req, seq.n, '01', 'C01', 20 * seq.n, 100, '0', '01', '0', '' "
                         "FROM Tbl_Cab, seq",
                     {kLinesPerGuia});
        t.commit();
        db_->execute("ANALYZE");
    }

    std::filesystem::path folder_;
    std::shared_ptr<Database> db_;
};

double peak_rss_mb()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

void BM_ListGuias(benchmark::State& state, const std::string& year, const std::string& month,
                  const std::string& client)
{
    cls_Guia guia(ListingDatabase::get().db());
    std::int64_t rows = 0;
    for (auto _ : state) {
        auto rs = guia.getRSGuia(year, month, client, "");
        if (!rs) {
            state.SkipWithError(guia.LastError().c_str());
            return;
        }
        rows += rs->RecordCount();
    }
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
    state.counters["rows"] = static_cast<double>(rows / static_cast<std::int64_t>(state.iterations()));
    state.counters["peak_rss_MB"] = peak_rss_mb();
}

// The whole listing handed over row by row as the program writes it, never held.
void BM_StreamGuias(benchmark::State& state)
{
    cls_Guia guia(ListingDatabase::get().db());
    std::int64_t rows = 0;
    std::size_t text_bytes = 0;
    for (auto _ : state) {
        const bool ok = guia.StreamGuiaLines("", "0", "0", "",
                                             {.columns = [](std::span<const std::string>) {},
                                              .row = [&](std::span<FieldValue> values) {
                                                  ++rows;
                                                  text_bytes += values[7].text().size();
                                              }});
        if (!ok) {
            state.SkipWithError(guia.LastError().c_str());
            return;
        }
    }
    benchmark::DoNotOptimize(text_bytes);
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
    state.counters["rows"] = static_cast<double>(rows / static_cast<std::int64_t>(state.iterations()));
    state.counters["peak_rss_MB"] = peak_rss_mb();
}

// Lines for the validators: for each active rule, its first code in every dimension and a weight
// inside its range, with its first service; a few reach -9 or -6, most pass.
std::vector<nimbara::testing::TwinLine> rule_lines(Database& db)
{
    const auto first = [&](const char* table, const char* column, std::int64_t id) {
        const Recordset rs = db.open(std::string("SELECT ") + column + " FROM " + table + " WHERE CodValidacao = ? ORDER BY " +
                                         column,
                                     {id});
        return rs.IsEOF() ? std::string("0") : rs[std::size_t{0}].text();
    };
    std::vector<nimbara::testing::TwinLine> lines;
    for (Recordset rs = db.open("SELECT * FROM tbl_Validacao WHERE Activo = ? ORDER BY CodValidacao", {true}); !rs.IsEOF();
         rs.MoveNext()) {
        const std::int64_t id = rs["CodValidacao"].integer();
        nimbara::testing::TwinLine l;
        l.product = rs["Cod_Produto"].text();
        l.zone = first("tbl_Val_ZTaxacao", "CodZtaxacao", id);
        l.weight = static_cast<std::int32_t>((rs["C_Escalao_Min"].integer() + rs["C_Escalao_Max"].integer()) / 2);
        l.speed = first("tbl_Val_Velocidade", "CodVelocidade", id);
        l.format = first("tbl_Val_Formato", "CodFormato", id);
        l.pre_treatment = true;
        l.discount = first("tbl_Val_Desconto", "CodDesconto", id);
        l.scope = first("tbl_Val_AmbitoDist", "CodAmbitoDist", id);
        l.services = {first("tbl_Val_ServicoE", "CodServicoE", id)};
        lines.push_back(std::move(l));
    }
    return lines;
}

// One line a iteration, through the rules read into memory; the rule counter is asked every time.
// With `one_transaction` the lines are judged inside one reading transaction, as a host judging a Guia at
// once may: the counter's query then takes no file lock of its own on SQLite.
void BM_ValidateLineDb(benchmark::State& state, bool postgres, bool one_transaction)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    const auto lines = rule_lines(*db);
    cls_ValProdutos validator(db);
    std::optional<Transaction> transaction;
    if (one_transaction) transaction.emplace(*db, TransactionMode::Reading);
    std::size_t i = 0, passed = 0;
    for (auto _ : state) {
        const auto& l = lines[i++ % lines.size()];
        const auto r = validator.DoValidaProduto(l.product, l.zone, l.weight, l.speed, l.format, l.pre_treatment,
                                                 l.discount, l.scope, l.services);
        passed += !r;
        benchmark::DoNotOptimize(r);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["passed"] = static_cast<double>(passed) / static_cast<double>(state.iterations());
}

// The same lines, every check of every candidate rule a query of its own.
void BM_ValidateLineDbOldWay(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    const auto lines = rule_lines(*db);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(nimbara::testing::per_check_validate_line(*db, lines[i++ % lines.size()]));
    state.SetItemsProcessed(state.iterations());
}

// Prints the usual table, then each store's rates and the ratio against the old way.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const auto& run : runs) {
            // With repetitions, the mean stands for the runs; the other aggregates are no rates.
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "mean") continue;
            if (run.run_type == Run::RT_Iteration && run.repetitions > 1) continue;
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
        struct Measure { const char* what; const char* unit; };
        for (const char* store : {"SQLite", "PostgreSQL"})
            for (const auto& [what, unit] : {Measure{"SaveGuia", "Guias"}, Measure{"LoadGuia", "Guias"},
                                             Measure{"ValidateLineDb", "lines"}}) {
                const auto now = rates_.find(std::string("BM_") + what + "/" + store);
                const auto old = rates_.find(std::string("BM_") + what + "OldWay/" + store);
                if (now == rates_.end() || old == rates_.end() || old->second <= 0) continue;
                std::cout << what << " on " << store << ": " << static_cast<long long>(now->second) << " " << unit
                          << "/s, the old way " << static_cast<long long>(old->second) << " " << unit << "/s, ratio "
                          << now->second / old->second << "x\n";
            }
        // How near a save comes to what the store itself allows: the bare inserts of the same Guia.
        for (const char* store : {"SQLite", "PostgreSQL"}) {
            const auto now = rates_.find(std::string("BM_SaveGuia/") + store);
            const auto limit = rates_.find(std::string("BM_SaveGuiaLimit/") + store);
            if (now == rates_.end() || limit == rates_.end() || limit->second <= 0) continue;
            std::cout << "SaveGuia on " << store << ": " << static_cast<long long>(now->second)
                      << " Guias/s, the limit (the same inserts bare, one transaction a Guia) "
                      << static_cast<long long>(limit->second) << " Guias/s, ratio " << now->second / limit->second
                      << " of the limit\n";
        }
    }

private:
    std::map<std::string, double> rates_;
};

// The Guia of BM_PrintGuiaPdf (twelve lines, a service on every third) stored on the store in the
// place of whatever the other benchmarks numbered alike, with the print settings the page reads.
// The symbol holds the number in four digits.
constexpr std::int32_t kPrintNReq = 9999;

void store_print_guia(const std::shared_ptr<Database>& db)
{
    for (const char* table : {"Tbl_Linha_ServicoEspecial", "Tbl_Linha", "Tbl_Cab"})
        db->execute(std::string("DELETE FROM ") + table + " WHERE N_Req = ?", {kPrintNReq});
    cls_Parametro(db).DoSave();
    auto g = nimbara::testing::new_guia(db, 1, kLines, 0, kPrintNReq);
    for (int line : {2, 5, 8, 11}) g->mColLinha.Item(static_cast<std::size_t>(line)).AddSEspecial("04", 1250);
    g->DoSave();
}

// One copy of the stored Guia by the database edition, a print job a file, as BM_PrintGuiaPdf
// prints the same Guia from the in-memory tables: the reading of the Guia counts.
void BM_PrintGuiaDb(benchmark::State& state, bool postgres)
{
    if (!ready(state, postgres)) return;
    const auto db = OpenDatabase(store(postgres).conn());
    store_print_guia(db);
    const auto pdf = std::filesystem::temp_directory_path() / ("nimbara-bench-db-guia-" + std::to_string(::getpid()) + ".pdf");
    PdfSurface surface([&](int, int) { return pdf; });
    const auto& form = form_impressao();
    for (auto _ : state) {
        cls_Impressao printer(db);
        surface.setOrientation(printer::kLandscape);
        surface.setPaperSize(printer::kPaperA4);
        printer.Imprime_Parte_Variavel("", kPrintNReq, 0, surface, form, 0, 0, 0, "2025-05-03", "2025/1");
        if (!printer.log_entries().empty()) {
            state.SkipWithError(printer.log_entries().front().c_str());
            break;
        }
        std::filesystem::remove(pdf);
    }
    if (surface.page_count() != 1) state.SkipWithError("the Guia did not print on one page");
    state.SetItemsProcessed(state.iterations());
    state.counters["pages/s"] = benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
    std::filesystem::remove(pdf);
}

}  // namespace

int main(int argc, char** argv)
{
    for (const bool postgres : {false, true}) {
        const std::string store = postgres ? "/PostgreSQL" : "/SQLite";
        // Wall time: the server's work and the waits for the disk count, not only this process's.
        benchmark::RegisterBenchmark(("BM_SaveGuia" + store).c_str(), BM_SaveGuia, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_SaveGuiaLimit" + store).c_str(), BM_SaveGuiaLimit, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_SaveGuiaOldWay" + store).c_str(), BM_SaveGuiaOldWay, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_LoadGuia" + store).c_str(), BM_LoadGuia, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_LoadGuiaOldWay" + store).c_str(), BM_LoadGuiaOldWay, postgres)->UseRealTime();
        benchmark::RegisterBenchmark(("BM_ValidateLineDb" + store).c_str(), BM_ValidateLineDb, postgres, false)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("BM_ValidateLineDb" + store + "/one_transaction").c_str(), BM_ValidateLineDb,
                                     postgres, true)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("BM_ValidateLineDbOldWay" + store).c_str(), BM_ValidateLineDbOldWay, postgres)
            ->UseRealTime();
        benchmark::RegisterBenchmark(("BM_PrintGuiaDb" + store).c_str(), BM_PrintGuiaDb, postgres)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    // One client and one month: about forty lines, found through the indexes; then every line, in
    // the default order of client and Guia: a million rows read into the result.
    benchmark::RegisterBenchmark("BM_ListGuias/client_month", BM_ListGuias, "2024", "3", "1500")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    // Streamed before the whole listing is held, so that its peak memory is its own.
    benchmark::RegisterBenchmark("BM_ListGuias/all_streamed", BM_StreamGuias)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);
    benchmark::RegisterBenchmark("BM_ListGuias/all", BM_ListGuias, "", "0", "0")
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(3);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
