// The C interface as a host in another language sees it: statuses and causes, ownership of what comes
// out, the same answers as the C++ API, printing to memory, and the database road with its import.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <cstring>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "import/old_sources.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/line_batch.hpp"
#include "nimbara/nimbara.h"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

namespace nimbara::testing {
namespace {

const std::filesystem::path kExamples = NIMBARA_SOURCE_DIR "/examples";

// Handles released as RAII releases them, so that a failed assertion leaks nothing.
struct Release {
    void operator()(nimbara_guia* p) const { nimbara_guia_destroy(p); }
    void operator()(nimbara_validator* p) const { nimbara_validator_destroy(p); }
    void operator()(nimbara_outcome* p) const { nimbara_outcome_destroy(p); }
    void operator()(nimbara_print_job* p) const { nimbara_print_job_destroy(p); }
    void operator()(nimbara_store* p) const { nimbara_store_destroy(p); }
    void operator()(nimbara_listing* p) const { nimbara_listing_destroy(p); }
    void operator()(nimbara_client* p) const { nimbara_client_destroy(p); }
    void operator()(char* p) const { nimbara_free(p); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

std::string owned_text(char* data, size_t size)
{
    const Owned<char> keep(data);
    return std::string(data, size);
}

Owned<nimbara_guia> guia_from(const std::filesystem::path& file)
{
    nimbara_guia* g = nullptr;
    const auto path = file.string();
    EXPECT_EQ(nimbara_guia_from_file(path.data(), path.size(), &g), NIMBARA_OK) << nimbara_last_error();
    return Owned<nimbara_guia>(g);
}

Owned<nimbara_validator> filled_with(const std::filesystem::path& file)
{
    nimbara_validator* v = nullptr;
    EXPECT_EQ(nimbara_validator_create(&v), NIMBARA_OK);
    Owned<nimbara_validator> owned(v);
    const auto guia = guia_from(file);
    EXPECT_EQ(nimbara_validator_fill(v, guia.get()), NIMBARA_OK) << nimbara_last_error();
    return owned;
}

nimbara_line line_of(const std::vector<std::string>& f, std::int32_t weight)
{
    nimbara_line l{};
    l.struct_size = sizeof l;
    l.produto = f[0].data(), l.produto_size = f[0].size();
    l.zona = f[1].data(), l.zona_size = f[1].size();
    l.peso = weight;
    l.velocidade = f[3].data(), l.velocidade_size = f[3].size();
    l.formato = f[4].data(), l.formato_size = f[4].size();
    l.pre_tratamento = f[5].data(), l.pre_tratamento_size = f[5].size();
    l.desconto = f[6].data(), l.desconto_size = f[6].size();
    l.ambito = f[7].data(), l.ambito_size = f[7].size();
    l.amostra = f[8].data(), l.amostra_size = f[8].size();
    l.servicos = f[9].data(), l.servicos_size = f[9].size();
    return l;
}

nimbara_error_info error_info(const nimbara_outcome* o, size_t i)
{
    nimbara_error_info info{};
    info.struct_size = sizeof info;
    EXPECT_EQ(nimbara_outcome_error(o, i, &info), NIMBARA_OK) << nimbara_last_error();
    return info;
}

TEST(CApi, VersionAndAbiAreTheBuilds)
{
    EXPECT_STREQ(nimbara_version(), "5.3.15");
    EXPECT_EQ(nimbara_abi_version(), NIMBARA_ABI_VERSION);
}

TEST(CApi, RefusalsAnswerTheirStatusAndNameTheCause)
{
    const Owned<nimbara_validator> empty([] {
        nimbara_validator* v = nullptr;
        nimbara_validator_create(&v);
        return v;
    }());
    const auto valid = guia_from(kExamples / "valid-guia.json");
    nimbara_guia* g = nullptr;
    nimbara_outcome* o = nullptr;
    nimbara_store* s = nullptr;
    int32_t number = 0;
    nimbara_line unsized{};
    const nimbara_field unknown{"Peso", 4, "1", 1};
    const nimbara_field bad_pre_treatment[] = {{"B_Produto", 9, "C01", 3}, {"PreTratamento", 13, "x", 1}};
    const std::string missing = (kExamples / "no-such-guia.json").string();
    struct Case {
        const char* what;
        std::function<nimbara_status()> call;
        nimbara_status status;
        const char* cause;
    } cases[] = {
        {"NULL validator", [&] { return nimbara_check_line(nullptr, &unsized, &number, nullptr, nullptr); },
         NIMBARA_BAD_ARGUMENT, "validator is NULL"},
        {"struct_size unset", [&] { return nimbara_check_line(empty.get(), &unsized, &number, nullptr, nullptr); },
         NIMBARA_BAD_ARGUMENT, "struct_size"},
        {"text NULL with a length", [&] { return nimbara_guia_from_json(nullptr, 3, &g); }, NIMBARA_BAD_ARGUMENT,
         "NULL with a length"},
        {"malformed JSON", [&] { return nimbara_guia_from_json("{\"cabecalho\": ", 14, &g); }, NIMBARA_BAD_ARGUMENT,
         "the Guia text"},
        {"unknown key", [&] { return nimbara_guia_from_json("{\"nope\": {}}", 12, &g); }, NIMBARA_BAD_ARGUMENT, "nope"},
        {"missing file", [&] { return nimbara_guia_from_file(missing.data(), missing.size(), &g); }, NIMBARA_NOT_FOUND,
         "no-such-guia.json"},
        {"unknown field", [&] { return nimbara_guia_fill(valid.get(), NIMBARA_PRODUTO, &unknown, 1); },
         NIMBARA_BAD_ARGUMENT, "\"Peso\" is not a field of produtos"},
        {"unknown section", [&] { return nimbara_guia_fill(valid.get(), static_cast<nimbara_section>(9), nullptr, 0); },
         NIMBARA_BAD_ARGUMENT, "section 9"},
        {"unknown section of a fill", [&] {
             return nimbara_validator_fill_fields(empty.get(), static_cast<nimbara_section>(-1), nullptr, 0);
         }, NIMBARA_BAD_ARGUMENT, "section -1"},
        {"unknown open mode", [&] {
             return nimbara_store_open("sqlite:x.db", 11, static_cast<nimbara_open_mode>(5), &s);
         }, NIMBARA_BAD_ARGUMENT, "open mode 5"},
        {"fill that answers -1",
         [&] { return nimbara_validator_fill_fields(empty.get(), NIMBARA_PRODUTO, bad_pre_treatment, 2); },
         NIMBARA_BAD_ARGUMENT, "PreencheProduto"},
        {"validate without lines", [&] { return nimbara_validator_validate(empty.get(), &o); }, NIMBARA_BAD_ARGUMENT,
         "no product line"},
        {"print without a Guia", [&] {
             nimbara_print_job* j = nullptr;
             return nimbara_validator_print_memory(empty.get(), &j);
         }, NIMBARA_BAD_ARGUMENT, "nothing to print"},
        {"store not ours", [&] { return nimbara_store_open("sqlite:/nonexistent/x.db", 24, NIMBARA_OPEN_EXISTING, &s); },
         NIMBARA_DATABASE, "/nonexistent/x.db"},
        {"empty connection", [&] { return nimbara_store_open("", 0, NIMBARA_OPEN_EXISTING, &s); }, NIMBARA_BAD_ARGUMENT,
         "empty"},
        {"error out of range", [&] {
             nimbara_error_info info{};
             info.struct_size = sizeof info;
             return nimbara_outcome_error(nullptr, 0, &info);
         }, NIMBARA_BAD_ARGUMENT, "outcome is NULL"},
    };
    char* before = nullptr;
    size_t before_size = 0;
    ASSERT_EQ(nimbara_guia_to_json(valid.get(), &before, &before_size), NIMBARA_OK);
    const std::string json_before = owned_text(before, before_size);
    for (const auto& c : cases) {
        EXPECT_EQ(c.call(), c.status) << c.what;
        EXPECT_NE(std::string(nimbara_last_error()).find(c.cause), std::string::npos)
            << c.what << ": " << nimbara_last_error();
    }
    EXPECT_EQ(g, nullptr);
    EXPECT_EQ(o, nullptr);
    EXPECT_EQ(s, nullptr);
    // A refused fill changed nothing.
    char* after = nullptr;
    size_t after_size = 0;
    ASSERT_EQ(nimbara_guia_to_json(valid.get(), &after, &after_size), NIMBARA_OK);
    EXPECT_EQ(owned_text(after, after_size), json_before);
    // Destroying nothing is allowed, as free(NULL) is.
    nimbara_guia_destroy(nullptr);
    nimbara_outcome_destroy(nullptr);
    nimbara_free(nullptr);
}

TEST(CApi, TheLastErrorIsEachThreadsOwn)
{
    nimbara_guia* g = nullptr;
    ASSERT_EQ(nimbara_guia_from_json("{\"mine\": {}}", 12, &g), NIMBARA_BAD_ARGUMENT);
    std::string theirs;
    std::thread other([&] {
        nimbara_guia* t = nullptr;
        nimbara_guia_from_json("{\"theirs\": {}}", 14, &t);
        theirs = nimbara_last_error();
    });
    other.join();
    EXPECT_NE(std::string(nimbara_last_error()).find("mine"), std::string::npos) << nimbara_last_error();
    EXPECT_NE(theirs.find("theirs"), std::string::npos) << theirs;
}

TEST(CApi, LinesAreJudgedAsTheCppFacadeJudgesThem)
{
    nimbara_validator* raw = nullptr;
    ASSERT_EQ(nimbara_validator_create(&raw), NIMBARA_OK);
    const Owned<nimbara_validator> v(raw);
    const cls_ValProdutosA facade;
    std::ifstream in(kExamples / "lines.tsv");
    std::string row;
    int judged = 0, failed = 0;
    while (std::getline(in, row)) {
        std::vector<std::string> f;
        std::istringstream fields(row);
        for (std::string field; std::getline(fields, field, '\t');) f.push_back(field);
        f.resize(10);
        const auto weight = read_weight(f[2]);
        if (!weight) continue;
        const nimbara_line line = line_of(f, *weight);
        int32_t number = 1;
        char* description = nullptr;
        size_t size = 0;
        const auto status = nimbara_check_line(v.get(), &line, &number, &description, &size);
        const auto expected = facade.DoValidaProduto(f[0], f[1], *weight, f[3], f[4], f[5], f[6], f[7], f[8], f[9]);
        ++judged;
        if (!expected) {
            EXPECT_EQ(status, NIMBARA_OK) << row;
            EXPECT_EQ(number, 0) << row;
            EXPECT_EQ(description, nullptr) << row;
            continue;
        }
        ++failed;
        EXPECT_EQ(status, NIMBARA_FAILED_VALIDATION) << row;
        EXPECT_EQ(number, expected->number) << row;
        const std::string text = batch_result_text(expected);
        EXPECT_EQ(owned_text(description, size), text.substr(text.find('\t') + 1)) << row;
    }
    EXPECT_GT(judged, failed);
    EXPECT_GT(failed, 0);
}

TEST(CApi, ABatchIsJudgedInOneCallAsCheckLinesJudgesIt)
{
    nimbara_validator* raw = nullptr;
    ASSERT_EQ(nimbara_validator_create(&raw), NIMBARA_OK);
    const Owned<nimbara_validator> v(raw);
    std::ifstream file(kExamples / "lines.tsv");
    const std::string batch = std::string(std::istreambuf_iterator<char>(file), {}) + "C01\t01\theavy\n";
    std::istringstream in(batch);
    std::ostringstream expected, messages;
    check_line_batch(in, expected, messages, "batch");

    char* results = nullptr;
    size_t size = 0, refused = 0;
    ASSERT_EQ(nimbara_check_lines(v.get(), batch.data(), batch.size(), &results, &size, &refused), NIMBARA_OK);
    EXPECT_EQ(owned_text(results, size), expected.str());
    EXPECT_EQ(refused, 1u);
}

TEST(CApi, AGuiasOutcomeNamesLinesAndWhatWouldHaveBeenAccepted)
{
    struct Case {
        const char* file;
        nimbara_status status;
    } cases[] = {{"valid-guia.json", NIMBARA_OK}, {"line-errors.json", NIMBARA_FAILED_VALIDATION},
                 {"guia-rule-error.json", NIMBARA_FAILED_VALIDATION}};
    for (const auto& c : cases) {
        const auto v = filled_with(kExamples / c.file);
        cls_ValProdutosA facade;
        ASSERT_FALSE(fill_guia(facade, read_guia_file(kExamples / c.file)));
        facade.setPrintingEnabled(false);
        const TempFolder reports(std::string("outcome-") + c.file);
        facade.setReportFolder(reports.path());
        const GuiaOutcome expected = facade.ImprimeGuiaOutcome(false);

        nimbara_outcome* raw = nullptr;
        ASSERT_EQ(nimbara_validator_validate(v.get(), &raw), c.status) << c.file << ": " << nimbara_last_error();
        const Owned<nimbara_outcome> o(raw);
        EXPECT_EQ(nimbara_outcome_passed(o.get()), c.status == NIMBARA_OK) << c.file;
        const size_t guia_errors = expected.guia_error ? 1 : 0;
        ASSERT_EQ(nimbara_outcome_error_count(o.get()), expected.line_errors.size() + guia_errors) << c.file;
        size_t with_values = 0;
        for (size_t i = 0; i < expected.line_errors.size(); ++i) {
            const auto info = error_info(o.get(), i);
            EXPECT_EQ(info.row, expected.line_errors[i].row) << c.file;
            EXPECT_EQ(std::string(info.line, info.line_size), expected.line_errors[i].N_Linha) << c.file;
            EXPECT_EQ(info.number, expected.line_errors[i].error.number) << c.file;
            if (info.possible_count > 0) {
                ++with_values;
                const char *code = nullptr, *label = nullptr;
                size_t code_size = 0, label_size = 0;
                ASSERT_EQ(nimbara_outcome_possible(o.get(), i, 0, &code, &code_size, &label, &label_size), NIMBARA_OK);
                EXPECT_GT(code_size, 0u) << c.file;
                EXPECT_EQ(nimbara_outcome_possible(o.get(), i, info.possible_count, &code, &code_size, &label,
                                                   &label_size),
                          NIMBARA_BAD_ARGUMENT);
            }
        }
        if (c.status == NIMBARA_FAILED_VALIDATION && !expected.line_errors.empty()) {
            EXPECT_GT(with_values, 0u) << c.file;
        }
        if (guia_errors) {
            const auto info = error_info(o.get(), expected.line_errors.size());
            EXPECT_EQ(info.row, -1);
            EXPECT_EQ(info.number, expected.guia_error->number);
        }
    }
}

TEST(CApi, AnOlderHostsSmallerStructIsFilledOnlyAsFarAsItReaches)
{
    const auto v = filled_with(kExamples / "line-errors.json");
    nimbara_outcome* raw = nullptr;
    ASSERT_EQ(nimbara_validator_validate(v.get(), &raw), NIMBARA_FAILED_VALIDATION);
    const Owned<nimbara_outcome> o(raw);
    nimbara_error_info info;
    std::memset(&info, 0x5a, sizeof info);
    info.struct_size = offsetof(nimbara_error_info, line);
    ASSERT_EQ(nimbara_outcome_error(o.get(), 0, &info), NIMBARA_OK);
    EXPECT_EQ(info.struct_size, offsetof(nimbara_error_info, line));
    EXPECT_EQ(info.row, error_info(o.get(), 0).row);
    const auto* untouched = reinterpret_cast<const unsigned char*>(&info.line);
    EXPECT_EQ(*untouched, 0x5a);
}

TEST(CApi, PrintingToMemoryGivesEachCopysPdfAndKeepsTheGuia)
{
    const auto v = filled_with(kExamples / "valid-guia.json");
    for (int round = 0; round < 2; ++round) {
        nimbara_print_job* raw = nullptr;
        ASSERT_EQ(nimbara_validator_print_memory(v.get(), &raw), NIMBARA_OK) << nimbara_last_error();
        const Owned<nimbara_print_job> job(raw);
        ASSERT_EQ(nimbara_print_job_count(job.get()), 1u);
        const char* data = nullptr;
        size_t size = 0;
        ASSERT_EQ(nimbara_print_job_item(job.get(), 0, &data, &size), NIMBARA_OK);
        const std::string pdf(data, size);
        EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
        EXPECT_NE(pdf.find("%%EOF", pdf.size() - 8), std::string::npos);
        EXPECT_EQ(nimbara_print_job_item(job.get(), 1, &data, &size), NIMBARA_BAD_ARGUMENT);
    }
    const TempFolder folder;
    const auto place = folder.path().string();
    nimbara_print_job* raw = nullptr;
    ASSERT_EQ(nimbara_validator_print_files(v.get(), place.data(), place.size(), &raw), NIMBARA_OK)
        << nimbara_last_error();
    const Owned<nimbara_print_job> job(raw);
    ASSERT_EQ(nimbara_print_job_count(job.get()), 1u);
    const char* path = nullptr;
    size_t size = 0;
    ASSERT_EQ(nimbara_print_job_item(job.get(), 0, &path, &size), NIMBARA_OK);
    EXPECT_EQ(std::filesystem::path(std::string(path, size)).parent_path(), folder.path());
    EXPECT_GT(std::filesystem::file_size(std::string(path, size)), 1000u);
}

TEST(CApi, ImprimeGuiaAnswersAsTheFacadeAndWritesItsReportWhereTold)
{
    const auto v = filled_with(kExamples / "line-errors.json");
    const TempFolder folder;
    const auto place = folder.path().string();
    ASSERT_EQ(nimbara_validator_set_report_folder(v.get(), place.data(), place.size()), NIMBARA_OK);
    char* answer = nullptr;
    size_t size = 0;
    ASSERT_EQ(nimbara_validator_imprime_guia(v.get(), 0, &answer, &size), NIMBARA_OK);
    const std::string text = owned_text(answer, size);
    EXPECT_NE(text.find("<ERRO_ID>-1</ERRO_ID><LOG_FILE>" + place), std::string::npos) << text;
}

// ---- The database road, on both stores ----------------------------------------------------------

class CApiStore : public ::testing::TestWithParam<Store> {
protected:
    void SetUp() override
    {
        if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
        std::string why_not;
        scratch = ScratchDatabase::make(GetParam(), why_not);
        if (!scratch) GTEST_SKIP() << why_not;
        nimbara_store* raw = nullptr;
        ASSERT_EQ(nimbara_store_open(scratch->conn().data(), scratch->conn().size(), NIMBARA_OPEN_CREATE, &raw),
                  NIMBARA_OK)
            << nimbara_last_error();
        store.reset(raw);
    }

    nimbara_status import(const std::string& file, nimbara_import_options* options, nimbara_import_counts* counts)
    {
        const auto path = (kJetFixtures / file).string();
        return nimbara_store_import(store.get(), path.data(), path.size(), "0514", 4, options, counts);
    }

    size_t listed_rows()
    {
        nimbara_listing* raw = nullptr;
        EXPECT_EQ(nimbara_store_list(store.get(), nullptr, &raw), NIMBARA_OK) << nimbara_last_error();
        const Owned<nimbara_listing> listing(raw);
        return nimbara_listing_row_count(listing.get());
    }

    std::unique_ptr<ScratchDatabase> scratch;
    Owned<nimbara_store> store;
};

INSTANTIATE_TEST_SUITE_P(Stores, CApiStore, kBothStores, store_name);

TEST_P(CApiStore, AnImportedGuiaIsListedLoadedSavedCheckedAndPrinted)
{
    std::vector<int> progress;
    nimbara_import_options options{};
    options.struct_size = sizeof options;
    options.progress = [](void* user, int value) { static_cast<std::vector<int>*>(user)->push_back(value); };
    options.user = &progress;
    nimbara_import_counts counts{};
    counts.struct_size = sizeof counts;
    ASSERT_EQ(import("v0514.mdb", &options, &counts), NIMBARA_OK) << nimbara_last_error();
    EXPECT_EQ(counts.clientes, 5);
    EXPECT_EQ(counts.guias, 12);
    ASSERT_FALSE(progress.empty());
    EXPECT_EQ(progress.back(), 100);

    // Listing: every line, then an order and a refused order word.
    nimbara_listing* raw = nullptr;
    nimbara_list_filter filter{};
    filter.struct_size = sizeof filter;
    filter.order = "guia desc", filter.order_size = 9;
    ASSERT_EQ(nimbara_store_list(store.get(), &filter, &raw), NIMBARA_OK) << nimbara_last_error();
    const Owned<nimbara_listing> listing(raw);
    EXPECT_EQ(nimbara_listing_row_count(listing.get()), static_cast<size_t>(counts.linhas));
    ASSERT_GT(nimbara_listing_column_count(listing.get()), 1u);
    const char* name = nullptr;
    size_t name_size = 0;
    ASSERT_EQ(nimbara_listing_column(listing.get(), 0, &name, &name_size), NIMBARA_OK);
    EXPECT_GT(name_size, 0u);
    filter.order = "guia; DROP TABLE Tbl_Cab", filter.order_size = 25;
    nimbara_listing* refused = nullptr;
    EXPECT_EQ(nimbara_store_list(store.get(), &filter, &refused), NIMBARA_BAD_ARGUMENT);
    EXPECT_NE(std::string(nimbara_last_error()).find("guia;"), std::string::npos) << nimbara_last_error();
    EXPECT_EQ(refused, nullptr);

    // The first stored Guia that prints (some imported ones carry texts the form cannot take), back
    // as a file, stored again under new numbers.
    const char* cell = nullptr;
    size_t cell_size = 0;
    int is_null = 1;
    size_t n_req_column = 0;
    for (size_t c = 0; c < nimbara_listing_column_count(listing.get()); ++c) {
        ASSERT_EQ(nimbara_listing_column(listing.get(), c, &name, &name_size), NIMBARA_OK);
        if (std::string(name, name_size) == "Req1") n_req_column = c;
    }
    int32_t stored = 0;
    size_t refused_prints = 0;
    for (size_t r = 0; r < nimbara_listing_row_count(listing.get()) && stored == 0; ++r) {
        ASSERT_EQ(nimbara_listing_cell(listing.get(), r, n_req_column, &cell, &cell_size, &is_null), NIMBARA_OK);
        const int32_t candidate = std::stoi(std::string(cell, cell_size));
        nimbara_print_job* job = nullptr;
        const auto status = nimbara_store_print(store.get(), candidate, nullptr, 0, &job);
        nimbara_print_job_destroy(job);
        if (status == NIMBARA_OK) {
            stored = candidate;
        } else {
            ++refused_prints;
            EXPECT_EQ(status, NIMBARA_BAD_ARGUMENT);
            EXPECT_NE(std::string(nimbara_last_error()).find("would not print whole"), std::string::npos);
        }
    }
    ASSERT_NE(stored, 0) << "no imported Guia prints";
    nimbara_guia* loaded_raw = nullptr;
    ASSERT_EQ(nimbara_store_load(store.get(), stored, &loaded_raw), NIMBARA_OK) << nimbara_last_error();
    const Owned<nimbara_guia> loaded(loaded_raw);
    int32_t n_req = 0, n_req2 = 0, yearly = 0;
    ASSERT_EQ(nimbara_store_save(store.get(), loaded.get(), &n_req, &n_req2, &yearly), NIMBARA_OK)
        << nimbara_last_error();
    EXPECT_GT(n_req, stored);
    nimbara_guia* none = nullptr;
    EXPECT_EQ(nimbara_store_load(store.get(), 999999, &none), NIMBARA_NOT_FOUND);

    // Checked by the database's rules, and printed to memory.
    nimbara_outcome* outcome_raw = nullptr;
    const auto checked = nimbara_store_check(store.get(), n_req, &outcome_raw);
    const Owned<nimbara_outcome> outcome(outcome_raw);
    ASSERT_TRUE(checked == NIMBARA_OK || checked == NIMBARA_FAILED_VALIDATION) << nimbara_last_error();
    EXPECT_EQ(nimbara_outcome_passed(outcome.get()), checked == NIMBARA_OK);
    EXPECT_EQ(nimbara_store_check(store.get(), 999999, &outcome_raw), NIMBARA_NOT_FOUND);
    nimbara_print_job* job_raw = nullptr;
    ASSERT_EQ(nimbara_store_print(store.get(), n_req, nullptr, 0, &job_raw), NIMBARA_OK) << nimbara_last_error();
    const Owned<nimbara_print_job> job(job_raw);
    ASSERT_GE(nimbara_print_job_count(job.get()), 1u);
    const char* data = nullptr;
    size_t size = 0;
    ASSERT_EQ(nimbara_print_job_item(job.get(), 0, &data, &size), NIMBARA_OK);
    EXPECT_EQ(std::string(data, 5), "%PDF-");
}

nimbara_field field(const char* name, const char* value)
{
    return {name, std::strlen(name), value, std::strlen(value)};
}

std::string property(nimbara_client* client, size_t contract, const char* name)
{
    const char* text = nullptr;
    size_t size = 0;
    EXPECT_EQ(nimbara_client_get(client, contract, name, std::strlen(name), &text, &size), NIMBARA_OK)
        << nimbara_last_error();
    return text ? std::string(text, size) : std::string();
}

TEST_P(CApiStore, AClientIsStoredUpdatedReadBackAndTakesAGuia)
{
    nimbara_client* raw = nullptr;
    ASSERT_EQ(nimbara_client_create(&raw), NIMBARA_OK);
    const Owned<nimbara_client> client(raw);
    const nimbara_field props[] = {field("vCod_Cliente", "456"), field("vNome", "Livraria O'Neill"),
                                   field("iTipoCliente", "2")};
    const nimbara_field contract[] = {field("vCodContrato", "300042"), field("vDesignacao", "Correio"),
                                      field("vJppCredenciado", "true")};
    ASSERT_EQ(nimbara_client_set(client.get(), props, 3), NIMBARA_OK) << nimbara_last_error();
    ASSERT_EQ(nimbara_client_add_contract(client.get(), contract, 3), NIMBARA_OK) << nimbara_last_error();

    // Refused before anything is set or stored.
    const nimbara_field bad_number[] = {field("vNome", "Other"), field("iTipoCliente", "many")};
    const nimbara_field bad_flag[] = {field("vCodContrato", "1"), field("bActivo", "maybe")};
    const nimbara_field unknown[] = {field("vPeso", "1")};
    struct Case {
        const char* what;
        std::function<nimbara_status()> call;
        const char* cause;
    } refusals[] = {
        {"number", [&] { return nimbara_client_set(client.get(), bad_number, 2); }, "iTipoCliente: \"many\""},
        {"yes/no", [&] { return nimbara_client_add_contract(client.get(), bad_flag, 2); }, "bActivo: \"maybe\""},
        {"unknown", [&] { return nimbara_client_set(client.get(), unknown, 1); }, "\"vPeso\" is not a property"},
    };
    for (const auto& r : refusals) {
        EXPECT_EQ(r.call(), NIMBARA_BAD_ARGUMENT) << r.what;
        EXPECT_NE(std::string(nimbara_last_error()).find(r.cause), std::string::npos) << nimbara_last_error();
    }
    EXPECT_EQ(property(client.get(), NIMBARA_THE_CLIENT, "vNome"), "Livraria O'Neill");
    EXPECT_EQ(nimbara_client_contract_count(client.get()), 1u);

    int32_t id = 0;
    ASSERT_EQ(nimbara_store_save_client(store.get(), client.get(), &id), NIMBARA_OK) << nimbara_last_error();
    EXPECT_GT(id, 0);

    // Saved again with a new name and a second contract: the same client, updated.
    const nimbara_field renamed[] = {field("vNome", "Livraria Nova")};
    const nimbara_field second[] = {field("vCodContrato", "300043"), field("bActivo", "false")};
    ASSERT_EQ(nimbara_client_set(client.get(), renamed, 1), NIMBARA_OK);
    ASSERT_EQ(nimbara_client_add_contract(client.get(), second, 2), NIMBARA_OK);
    int32_t again = 0;
    ASSERT_EQ(nimbara_store_save_client(store.get(), client.get(), &again), NIMBARA_OK) << nimbara_last_error();
    EXPECT_EQ(again, id);

    nimbara_client* loaded_raw = nullptr;
    ASSERT_EQ(nimbara_store_load_client(store.get(), 456, &loaded_raw), NIMBARA_OK) << nimbara_last_error();
    const Owned<nimbara_client> loaded(loaded_raw);
    EXPECT_EQ(property(loaded.get(), NIMBARA_THE_CLIENT, "vNome"), "Livraria Nova");
    EXPECT_EQ(property(loaded.get(), NIMBARA_THE_CLIENT, "iTipoCliente"), "2");
    ASSERT_EQ(nimbara_client_contract_count(loaded.get()), 2u);
    std::set<std::string> contracts;
    for (size_t i = 0; i < 2; ++i)
        contracts.insert(property(loaded.get(), i, "vCodContrato") + " " + property(loaded.get(), i, "vJppCredenciado") +
                         " " + property(loaded.get(), i, "bActivo"));
    EXPECT_EQ(contracts, (std::set<std::string>{"300042 true true", "300043 false false"}));
    nimbara_client* none = nullptr;
    EXPECT_EQ(nimbara_store_load_client(store.get(), 457, &none), NIMBARA_NOT_FOUND);

    // A contract given twice stores nothing.
    const nimbara_field twice[] = {field("vCodContrato", "300042")};
    ASSERT_EQ(nimbara_client_add_contract(client.get(), twice, 1), NIMBARA_OK);
    EXPECT_EQ(nimbara_store_save_client(store.get(), client.get(), &again), NIMBARA_BAD_ARGUMENT);
    EXPECT_NE(std::string(nimbara_last_error()).find("/contratos/2/vCodContrato"), std::string::npos)
        << nimbara_last_error();

    // The sample Guia of that client and contract is stored.
    const auto guia = guia_from(kExamples / "valid-guia.json");
    int32_t n_req = 0;
    EXPECT_EQ(nimbara_store_save(store.get(), guia.get(), &n_req, nullptr, nullptr), NIMBARA_OK)
        << nimbara_last_error();
    EXPECT_GT(n_req, 0);
}

TEST_P(CApiStore, ACancelledImportLeavesTheStoreAsItWas)
{
    ASSERT_EQ(import("v0513.mdb", nullptr, nullptr), NIMBARA_OK) << nimbara_last_error();
    const size_t before = listed_rows();
    ASSERT_GT(before, 0u);

    // Cancelled before it starts, and cancelled from the progress callback after the first table.
    struct Case {
        const char* what;
        int cancel_at_start;
    } cases[] = {{"set before", 1}, {"set by the progress callback", 0}};
    for (const auto& c : cases) {
        volatile int cancel = c.cancel_at_start;
        nimbara_import_options options{};
        options.struct_size = sizeof options;
        options.cancel = &cancel;
        options.user = const_cast<int*>(&cancel);
        options.progress = [](void* user, int) { *static_cast<volatile int*>(user) = 1; };
        EXPECT_EQ(import("v0514.mdb", &options, nullptr), NIMBARA_CANCELLED) << c.what;
        EXPECT_NE(std::string(nimbara_last_error()).find("cancelled"), std::string::npos) << nimbara_last_error();
        EXPECT_EQ(listed_rows(), before) << c.what;
    }
}

TEST_P(CApiStore, AnImportOfAnUnknownVersionOrMissingFileIsRefusedBeforeAnything)
{
    const std::string missing = (kJetFixtures / "absent.mdb").string();
    EXPECT_EQ(nimbara_store_import(store.get(), missing.data(), missing.size(), "0514", 4, nullptr, nullptr),
              NIMBARA_NOT_FOUND);
    const std::string file = (kJetFixtures / "v0514.mdb").string();
    EXPECT_EQ(nimbara_store_import(store.get(), file.data(), file.size(), "0999", 4, nullptr, nullptr),
              NIMBARA_BAD_ARGUMENT);
    EXPECT_NE(std::string(nimbara_last_error()).find("0999"), std::string::npos);
}

}  // namespace
}  // namespace nimbara::testing
