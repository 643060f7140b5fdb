#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "nimbara/pdf_printer.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "printing/printed_text.hpp"
#include "printing/recording_surface.hpp"
#include "support/temp_folder.hpp"

using nimbara::cls_ValProdutosA;
using nimbara::printing::RecordingSurface;
using namespace printing_test;
namespace fs = std::filesystem;

namespace {

// A one-line Guia poured in as a host would, with the copy count and top margin (twips) given.
void fill(cls_ValProdutosA& v, const std::string& vias, const std::string& top = "0")
{
    v.PreencheCabecalho("1027", "0", "456", "123", "77", "Papelaria", "501234567", "Rua", "1000-100", "LISBOA", "",
                        "0", "1", "77", "5123", "2025-05-03", "2025/1027", "7", "", "0");
    v.PreencheParametros("3", "0", "10", "0", "2", "0", "0", "0", vias, top, "0", "0");
    v.PreencheProduto("01", "C01", "0", "100", "1", "0", "0", "20", "02", "1", "0", "100", "1", "0", "0", "0", "",
                      "1027", "", "");
}

int copy_marks(const RecordingSurface& s, const std::string& mark)
{
    int n = 0;
    for (const auto& t : printed_texts(s)) n += t.text == mark;
    return n;
}

}  // namespace

TEST(PrintDrive, CopiesAndWhatIsLeftOfTheGuia)
{
    struct Case { const char* what; std::string vias; int jobs; bool parameters_kept; };
    const Case cases[] = {
        {"two copies: the original and duplicate 1", "2", 2, false},
        {"no copies asked", "0", 0, false},
        {"a copy count that is no number fails the run", "", 0, true},
    };
    for (const auto& c : cases) {
        nimbara::testing::TempFolder folder;
        cls_ValProdutosA v;
        v.setPrintLog(folder.path() / "print.log");
        fill(v, c.vias);
        RecordingSurface s;
        std::int32_t dupl = 0;
        v.Imprime_Guias(s, nimbara::form_impressao(), "", 1027, 0, dupl, "2025-05-03", "2025/1027");
        EXPECT_EQ(s.documents_ended(), c.jobs) << c.what;
        EXPECT_EQ(dupl, c.jobs) << c.what;
        EXPECT_EQ(copy_marks(s, "Original"), c.jobs > 0 ? 1 : 0) << c.what;
        EXPECT_EQ(copy_marks(s, "Duplicado 1"), c.jobs > 1 ? 1 : 0) << c.what;
        EXPECT_TRUE(v.arrGuia().empty() && v.arrCabecalho().empty() && v.arrServEsp().empty()) << c.what;
        EXPECT_EQ(v.arrParametros().empty(), !c.parameters_kept) << c.what;
        EXPECT_FALSE(fs::exists(folder.path() / "print.log")) << c.what;
    }
}

TEST(PrintDrive, PrinterIsLandscapeA4AndMarginsAreTwips)
{
    cls_ValProdutosA v;
    fill(v, "1", "567");
    RecordingSurface s;
    std::int32_t dupl = 0;
    v.Imprime_Guias(s, nimbara::form_impressao(), "", 1027, 0, dupl, "2025-05-03", "2025/1027");
    const std::vector<std::string> setup = {"setTrackDefault", "setOrientation", "setPaperSize"};
    for (std::size_t i = 0; i < setup.size(); ++i) EXPECT_EQ(s.calls()[i].op, setup[i]);
    EXPECT_EQ(s.calls()[0].numbers[0], 0);
    EXPECT_EQ(s.calls()[1].numbers[0], 2);
    EXPECT_EQ(s.calls()[2].numbers[0], 9);
    EXPECT_EQ(s.calls().back().op, "setTrackDefault");
    EXPECT_EQ(s.calls().back().numbers[0], 1);
    // 567 twips are 10 mm: the first row, at 42.5 mm, comes down to 52.5 mm.
    ASSERT_TRUE(find_text(s, "C01"));
    EXPECT_DOUBLE_EQ(find_text(s, "C01")->y_mm, 52.5);
}

TEST(PrintDrive, ImprimeGuiaPrintsOnTheHostsPrinterOnce)
{
    cls_ValProdutosA v;
    fill(v, "1");
    auto printer = std::make_shared<RecordingSurface>();
    v.setPrinter(printer);
    EXPECT_EQ(v.ImprimeGuia(true), "<LIST><ITEM><ERRO_ID>0</ERRO_ID><LOG_FILE></LOG_FILE></ITEM></LIST>");
    EXPECT_EQ(printer->documents_ended(), 1);
    // The run emptied the Guia: a second call finds no lines.
    v.ImprimeGuia(true);
    EXPECT_EQ(printer->documents_ended(), 1);
}

TEST(PdfPrinter, NamesSayWhichGuiaAndCopyAndNeverOverwrite)
{
    nimbara::testing::TempFolder folder;
    const auto& dir = folder.path();
    EXPECT_EQ(nimbara::pdf_file_name(dir, "2025/1027", 2), dir / "Guia_2025-1027_via2.pdf");
    EXPECT_EQ(nimbara::pdf_file_name(dir, "", 1), dir / "Guia_sem-numero_via1.pdf");
    EXPECT_EQ(nimbara::pdf_file_name(dir, std::string(300, '9'), 1).filename().string().size(), 100u + 14)
        << "a long document number is cut";
    std::ofstream(dir / "Guia_7_via1.pdf") << "x";
    std::ofstream(dir / "Guia_7_via1-2.pdf") << "x";
    const auto printer = nimbara::make_pdf_printer(dir, "7");
    printer->Print("page");
    printer->EndDoc();
    EXPECT_EQ(printer->written(), std::vector<fs::path>{dir / "Guia_7_via1-3.pdf"});
    EXPECT_EQ(nimbara::testing::read_file(dir / "Guia_7_via1.pdf"), "x") << "taken names are never replaced";
}
