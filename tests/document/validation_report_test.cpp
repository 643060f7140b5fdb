#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "nimbara/cls_ValProdutosA.hpp"
#include "support/temp_folder.hpp"

using nimbara::cls_ValProdutosA;
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFailureAnswer =
    "<LIST><ITEM><ERRO_ID>-1</ERRO_ID><LOG_FILE>Nao Disponivel</LOG_FILE></ITEM></LIST>";

struct Line {
    std::string_view zone, product, weight, format = "0", pre = "1", discount = "0", services = "0", speed = "0";
    std::string_view quantity = "300", sampling = "0";
};

// Reports go to a fresh folder per test; the Guia is poured in as a host would.
class Report : public ::testing::Test {
protected:
    void SetUp() override { guia_.setReportFolder(dir_); }

    void header() { guia_.PreencheCabecalho("7", "", "456", "", "", "Ana", "", "", "", "", "", "", "", "", "", "", "2026/7", "", "", "0"); }
    void add(const Line& l)
    {
        const int n = guia_.arrGuia().row_count() + 1;
        ASSERT_EQ(guia_.PreencheProduto(l.zone, l.product, l.speed, l.quantity, std::to_string(n * 10), l.services, "0",
                                        l.weight, l.format, l.pre, l.discount, "", "", l.sampling, "", "", "", "", "", ""),
                  std::nullopt);
    }

    // Runs ImprimeGuia expecting a written report and answers its text.
    std::string report(std::string_view erro_id)
    {
        const std::string answer = guia_.ImprimeGuia(false);
        const std::string open = "<LIST><ITEM><ERRO_ID>" + std::string(erro_id) + "</ERRO_ID><LOG_FILE>";
        EXPECT_TRUE(answer.starts_with(open)) << answer;
        const std::string path = answer.substr(open.size(), answer.find("</LOG_FILE>") - open.size());
        EXPECT_TRUE(answer.ends_with("</LOG_FILE></ITEM></LIST>")) << answer;
        EXPECT_EQ(fs::path(path).parent_path(), dir_);
        EXPECT_TRUE(fs::exists(path)) << path;
        return nimbara::testing::read_file(path);
    }

    int files() const { return static_cast<int>(std::distance(fs::directory_iterator(dir_), {})); }

    nimbara::testing::TempFolder folder_;
    const fs::path& dir_ = folder_.path();
    cls_ValProdutosA guia_;
};

// Expected texts are written with \n and compared with the report's CR LF.
std::string crlf(std::string_view s)
{
    std::string out;
    for (const char c : s) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
}

constexpr std::string_view kHead = "Numero Documento = 2026/7\nCodigo Cliente = 456\n\nValidacao do Produto\n";

}  // namespace

// Each Guia's answer and report. Guias whose report cannot be written (no header, a weight that is no
// number) give the failure answer and leave no file.
TEST_F(Report, TextsByGuia)
{
    struct Case { const char* what; bool header; std::vector<Line> lines; const char* erro_id; std::string text; };
    const Case cases[] = {
        {"no lines: a report of no text still ends its record", true, {}, "0", "\n"},
        {"no header: the report's head reads it", false, {{"01", "C01", "50", "02"}}, nullptr, ""},
        {"weight that is no number", true, {{"01", "C01", "5x", "02"}}, nullptr, ""},
        {"valid", true, {{"01", "C01", "50", "02"}}, "0", std::string(kHead) + "\nValidacao da Guia\n\n"},
        {"Guia rule error", true, {{"01", "C03", "100", "0", "1", "0", "0", "0", "249"}}, "-1",
         std::string(kHead) + "\nValidacao da Guia\nErro ID = -1\nDescricao = Erro Minimo de 250 Objectos\n\n\n"},
        {"failing lines each get a block and the Guia is not judged", true,
         {{"01", "C01", "0", "02"},                                   // weight: the ranges of the product in its zone
          {"01", "C01", "50", "02"},                                  // passes, leaves no trace
          {"01", "C03", "100", "02", "1", "0", "0", "0", "1"},        // format; its quantity would fail the Guia
          {"01", "C01", "50", "02", "1", "0", "0", "0", "300", "01"}},  // sampling: the listing fails, none shown
         "-1",
         std::string(kHead) +
             "\nOrdem Insercao = 1\nLinha = 10\nProduto = C01\nErro ID = -3\n"
             "Descricao = Erro na Validação do Peso\n"
             "\nValores Possiveis: \n"
             "Minimo = 0\nMaximo = 50\nMinimo = 50\nMaximo = 100\nMinimo = 100\nMaximo = 2000\n"
             "------\n"
             "\nOrdem Insercao = 3\nLinha = 30\nProduto = C03\nErro ID = -5\n"
             "Descricao = Erro no Formato\n"
             "\nValores Possiveis: \n"
             "Codigo = 0\nDesignacao = Vazio\n"
             "------\n"
             "\nOrdem Insercao = 4\nLinha = 40\nProduto = C01\nErro ID = -21\n"
             "Descricao = Erro na Entrega Sampling\n"
             "------\n\n"},
        {"service errors list the wrong services and explain", true,
         {{"01", "P14", "50", "03", "0", "02", "02,02"},  // the second 02 is one too many
          {"16", "E02", "100", "0", "0", "0", "03,11", "03"},
          {"01", "C13", "50", "03", "1", "02", "10"}},
         "-1",
         std::string(kHead) +
             "\nOrdem Insercao = 1\nLinha = 10\nProduto = P14\nErro ID = -10\n"
             "Descricao = Servicos Especiais Errados\n"
             "Servicos Especiais Errados = 02\n"
             "\nValores Possiveis: \n"
             "Codigo = 0\nDesignacao = Vazio\nCodigo = 02\nDesignacao = Aviso de Recepção\n"
             "------\n"
             "\nOrdem Insercao = 2\nLinha = 20\nProduto = E02\nErro ID = -13\n"
             "Descricao = Servicos Especiais Errados por Produtos - E02\n"
             "Servicos Especiais Errados = 03,11\n"
             "\nValores Possiveis: \n"
             "Os serviços 3 - Entrega ao Domicilio e 11 - Domicilio Pós-Laboral,\n"
             "não são admitidos em simultâneo.------\n"
             "\nOrdem Insercao = 3\nLinha = 30\nProduto = C13\nErro ID = -22\n"
             "Descricao = 02\n"
             "Servicos Especiais Errados = 02\n"
             "\nValores Possiveis: \n"
             "Para ter 10 - Entrega ao próprio, precisa de ter 2 - Aviso de Recepção. ------\n\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        guia_ = cls_ValProdutosA{};
        guia_.setReportFolder(dir_);
        for (const auto& entry : fs::directory_iterator(dir_)) fs::remove(entry);
        if (c.header) header();
        for (const auto& l : c.lines) add(l);
        if (!c.header || c.lines.empty()) {  // nothing to print: the printer alone answers success, writes nothing
            EXPECT_EQ(guia_.ImprimeGuia(true), "<LIST><ITEM><ERRO_ID>0</ERRO_ID><LOG_FILE></LOG_FILE></ITEM></LIST>");
        }
        if (c.erro_id) {
            EXPECT_EQ(report(c.erro_id), crlf(c.text));
            continue;
        }
        EXPECT_EQ(guia_.ImprimeGuia(false), kFailureAnswer);
        EXPECT_EQ(files(), 0);
    }
}

TEST_F(Report, EachCallWritesAFileOfItsOwnName)
{
    header();
    add({"01", "C01", "0", "02"});
    const auto log_file = [](const std::string& answer) {
        const auto from = answer.find("<LOG_FILE>") + 10;
        return fs::path(answer.substr(from, answer.find("</LOG_FILE>") - from));
    };
    const fs::path first = log_file(guia_.ImprimeGuia(false));
    const fs::path second = log_file(guia_.ImprimeGuia(false));
    EXPECT_NE(first, second) << "the same lines are judged again into another file";
    EXPECT_EQ(first.parent_path(), dir_);
    if (second.parent_path().empty()) {
        // Both names fell in one hundredth of a second: the replacement name has no folder.
        EXPECT_TRUE(fs::exists(second));
        fs::remove(second);
    } else {
        EXPECT_EQ(files(), 2);
    }
    const std::regex name("ErrosGuia_[0-9]{16}[0-9]{1,2}\\.txt");
    for (const auto& e : fs::directory_iterator(dir_))
        EXPECT_TRUE(std::regex_match(e.path().filename().string(), name)) << e.path();
}
