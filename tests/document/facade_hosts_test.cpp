// What a host sees of the façade beyond the old answers: named fills, causes, outcomes, its own
// notifier and print log, and PDFs kept in memory.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "nimbara/Notifier.hpp"
#include "nimbara/PdfSurface.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "support/temp_folder.hpp"

namespace fs = std::filesystem;
using nimbara::cls_ValProdutosA;

namespace {

struct Collected final : nimbara::Notifier {
    std::vector<std::string> texts;
    void message(nimbara::MessageIcon, std::string_view, std::string_view text) override { texts.emplace_back(text); }
    void busy(bool) override {}
    void progress(int) override {}
};

nimbara::GuiaFile valid_guia()
{
    return nimbara::read_guia_file(fs::path(NIMBARA_SOURCE_DIR) / "examples" / "valid-guia.json");
}

}  // namespace

TEST(FacadeHosts, NamedFillsMatchThePositionalOnesAndKeepTheCause)
{
    cls_ValProdutosA named, positional;
    ASSERT_EQ(named.PreencheProduto({.A_Zona_Taxacao = "01", .B_Produto = "C01", .Escalao = "50", .PreTratamento = "1"}),
              std::nullopt);
    ASSERT_EQ(positional.PreencheProduto("01", "C01", "", "", "", "", "", "50", "", "1", "", "", "", "", "", "", "", "",
                                         "", ""),
              std::nullopt);
    EXPECT_EQ(named.arrays(), positional.arrays());
    EXPECT_EQ(named.LastError(), std::nullopt);

    EXPECT_EQ(named.PreencheProduto({.B_Produto = "C01", .PreTratamento = "x"}), -1);
    ASSERT_TRUE(named.LastError());
    EXPECT_EQ(named.LastError()->where, "PreencheProduto");
    EXPECT_EQ(named.LastError()->cause, "PreTratamento must be a number, found \"x\"");
    EXPECT_EQ(named.PreencheServico({.N_Linha = "1", .CodServEsp = "02", .Valor = "150"}), std::nullopt);
    EXPECT_EQ(named.LastError(), std::nullopt) << "a call that succeeds clears the cause";
}

TEST(FacadeHosts, OutcomeTellsWhatTheAnswerHides)
{
    nimbara::testing::TempFolder folder;
    cls_ValProdutosA guia;
    guia.setReportFolder(folder.path());
    auto file = valid_guia();
    file.produtos[0].Escalao = "abc";
    ASSERT_EQ(nimbara::fill_guia(guia, file), std::nullopt);
    const auto failed = guia.ImprimeGuiaOutcome(false);
    ASSERT_TRUE(failed.failure);
    EXPECT_NE(failed.failure->cause.find("abc"), std::string::npos) << failed.failure->cause;
    EXPECT_EQ(nimbara::guia_answer(failed), "<LIST><ITEM><ERRO_ID>-1</ERRO_ID><LOG_FILE>Nao Disponivel</LOG_FILE></ITEM></LIST>");
    EXPECT_TRUE(fs::is_empty(folder.path())) << "no report behind a failure";

    cls_ValProdutosA checked;
    checked.setReportFolder(folder.path());
    checked.setPrintingEnabled(false);
    ASSERT_EQ(nimbara::fill_guia(checked, valid_guia()), std::nullopt);
    const auto passed = checked.ImprimeGuiaOutcome(false);
    EXPECT_FALSE(passed.failure);
    EXPECT_FALSE(passed.errors);
    ASSERT_TRUE(passed.report);
    EXPECT_EQ(passed.report->parent_path(), folder.path());
    EXPECT_TRUE(passed.printed.empty());
}

// Two façades printing side by side each tell their own notifier and log; the process-wide one
// hears nothing. Each prints to memory.
TEST(FacadeHosts, EachFacadeHasItsOwnNotifierLogAndPrinter)
{
    nimbara::testing::TempFolder folder;
    Collected global, first_notes, second_notes;
    nimbara::set_notifier(&global);
    std::vector<std::string> pdfs[2];
    Collected* notes[2] = {&first_notes, &second_notes};
    for (int i = 0; i < 2; ++i) {
        cls_ValProdutosA guia;
        guia.setReportFolder(folder.path());
        guia.setNotifier(notes[i]);
        guia.setPrintLog(folder.path() / ("print" + std::to_string(i) + ".log"));
        guia.setPrinter(std::make_shared<nimbara::PdfSurface>([&pdfs, i](int, std::string pdf) { pdfs[i].push_back(std::move(pdf)); }));
        auto file = valid_guia();
        file.parametros.vCod2DErroLevel = "x";  // the symbol cannot be made: logged, the page still prints
        ASSERT_EQ(nimbara::fill_guia(guia, file), std::nullopt);
        const auto outcome = guia.ImprimeGuiaOutcome(false);
        ASSERT_FALSE(outcome.failure);
        ASSERT_EQ(outcome.print_failures.size(), 1u);
        EXPECT_TRUE(outcome.print_failures[0].starts_with("PrintCreatedPDF-Erro:")) << outcome.print_failures[0];
    }
    nimbara::set_notifier(nullptr);
    EXPECT_TRUE(global.texts.empty());
    for (int i = 0; i < 2; ++i) {
        EXPECT_NE(std::find(notes[i]->texts.begin(), notes[i]->texts.end(),
                            "WriteLog - " + (folder.path() / ("print" + std::to_string(i) + ".log")).string()),
                  notes[i]->texts.end());
        ASSERT_EQ(pdfs[i].size(), 1u);
        EXPECT_TRUE(pdfs[i][0].starts_with("%PDF-")) << "a whole PDF in memory";
        EXPECT_TRUE(pdfs[i][0].ends_with("%%EOF\n"));
    }
}

TEST(FacadeHosts, GuiaFilesRoundTripAndTablesRefuseCellsOutsideThem)
{
    auto guia = valid_guia();
    guia.cabecalho.cb_Obs = "Entrega \"urgente\"\tà porta\nsegundo andar";
    guia.produtos.push_back({.B_Produto = "C25", .PreTratamento = "0"});
    EXPECT_EQ(nimbara::parse_guia_file(nimbara::write_guia_file(guia), "written"), guia);

    nimbara::cab::Table header;
    EXPECT_THROW(header.set(static_cast<nimbara::cab::Field>(22), 0, "x"), std::out_of_range);
    EXPECT_THROW(header.set(nimbara::cab::Nome, -1, "x"), std::out_of_range);
    EXPECT_TRUE(header.empty()) << "a refused write stores nothing";
    EXPECT_EQ(header.at(nimbara::cab::Nome, 5), std::nullopt) << "reading past the rows is an empty cell";
}

// A copy with a fault is no printed Guia: the default printer's files of the run are removed and
// none is told as printed. The day code a host leaves out is computed from the date.
TEST(FacadeHosts, APartialCopyLeavesNoFileAndTheDayCodeFollowsTheDate)
{
    nimbara::testing::TempFolder folder;
    cls_ValProdutosA guia;
    guia.setReportFolder(folder.path() / "reports");
    guia.setPrintFolder(folder.path());
    guia.setPrintLog(folder.path() / "print.log");
    auto file = valid_guia();
    file.parametros.vGuiaNVias = "2";
    file.parametros.vCod2DErroLevel = "x";  // the symbol cannot be made: each copy lacks it
    ASSERT_EQ(nimbara::fill_guia(guia, file), std::nullopt);
    EXPECT_FALSE(guia.PrintProblems().empty()) << "told before printing, to those who ask";
    const auto outcome = guia.ImprimeGuiaOutcome(true);
    EXPECT_FALSE(outcome.failure);
    EXPECT_EQ(outcome.copies, 2);
    EXPECT_FALSE(outcome.print_failures.empty());
    EXPECT_TRUE(outcome.printed.empty());
    for (const auto& entry : fs::directory_iterator(folder.path()))
        EXPECT_NE(entry.path().extension(), ".pdf") << entry.path();

    struct Case { const char* date; const char* code; const char* computed; };
    const Case cases[] = {
        {"2026-11-24", "", "6328"},
        {"2024-12-31", "", "4366"},
        {"2025-02-03 10:00:00", "", "5034"},
        {"24/11/2026", "", ""},  // no date this reader knows: nothing made up
        {"2026-11-24", "6001", "6001"},
    };
    for (const auto& c : cases) {
        cls_ValProdutosA held;
        auto f = valid_guia();
        f.cabecalho.cb_DataRequisicao = c.date;
        f.cabecalho.cb_Drqjul = c.code;
        ASSERT_EQ(nimbara::fill_guia(held, f), std::nullopt);
        EXPECT_EQ(held.arrays().arrCabecalho.text(nimbara::cab::Drqjul, 0), c.computed) << c.date;
        EXPECT_EQ(held.DayCodeConflict().has_value(), std::string(c.code) == "6001") << c.date;
    }
}
