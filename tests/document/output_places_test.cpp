// Where the façade writes when the host names no place: never into the folder it is installed in.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "nimbara/Notifier.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "support/temp_folder.hpp"
#include "support/unwritable_places.hpp"

namespace fs = std::filesystem;
using nimbara::testing::TempFolder;
using nimbara::testing::UnwritableFolder;

namespace {

struct Quiet : nimbara::Notifier {
    void message(nimbara::MessageIcon, std::string_view, std::string_view) override {}
    void busy(bool) override {}
    void progress(int) override {}
};

}  // namespace

TEST(OutputPlaces, ReportsGoToTheWorkingFolderAndTheLogToTheStateFolder)
{
    TempFolder folder;
    const auto previous = fs::current_path();
    const char* state_was = std::getenv("XDG_STATE_HOME");
    const std::optional<std::string> kept_state = state_was ? std::optional<std::string>(state_was) : std::nullopt;
    fs::current_path(folder.path());
    ::setenv("XDG_STATE_HOME", (folder.path() / "state").c_str(), 1);

    nimbara::cls_ValProdutosA guia;
    EXPECT_EQ(guia.reportFolder(), folder.path());
    EXPECT_EQ(guia.printFolder(), folder.path());
    const std::string answer = guia.ImprimeGuia(false);
    EXPECT_NE(answer.find("<LOG_FILE>" + folder.path().string() + "/ErrosGuia_"), std::string::npos) << answer;

    Quiet quiet;
    nimbara::cls_ImpressaoA printer;
    printer.set_notifier(&quiet);
    const fs::path log = folder.path() / "state" / "nimbara" / "nimbara.log";
    EXPECT_EQ(printer.log_path(), log);
    printer.WriteLog("printaCaixa-Erro:boom");
    EXPECT_TRUE(nimbara::testing::read_file(log).ends_with("\tprintaCaixa-Erro:boom\n")) << "its folder is made";

    kept_state ? ::setenv("XDG_STATE_HOME", kept_state->c_str(), 1) : ::unsetenv("XDG_STATE_HOME");
    fs::current_path(previous);
}

// A report that cannot be written still leaves the Guia validated, and its cause with the host.
TEST(OutputPlaces, AReportThatCannotBeWrittenSaysWhy)
{
    UnwritableFolder place(UnwritableFolder::Kind::ReadOnly);
    if (!place.path()) GTEST_SKIP() << "this machine lets the test make no read-only folder";
    nimbara::cls_ValProdutosA guia;
    guia.setReportFolder(*place.path());
    guia.setPrintingEnabled(false);
    (void)guia.PreencheCabecalho("1", "", "456", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "0");
    (void)guia.PreencheProduto("01", "X99", "0", "10", "1", "0", "0", "20", "01", "1", "0", "", "", "", "", "", "", "1",
                               "", "");
    EXPECT_EQ(guia.ImprimeGuia(false), "<LIST><ITEM><ERRO_ID>-1</ERRO_ID><LOG_FILE>Nao Disponivel</LOG_FILE></ITEM></LIST>");
    ASSERT_TRUE(guia.LastError());
    EXPECT_EQ(guia.LastError()->where, "ImprimeGuia");
    EXPECT_NE(guia.LastError()->cause.find(place.path()->string()), std::string::npos) << guia.LastError()->cause;

    const nimbara::GuiaOutcome outcome = guia.ImprimeGuiaOutcome(false);
    EXPECT_TRUE(outcome.errors) << "validated all the same";
    EXPECT_EQ(outcome.line_errors.size(), 1u);
    ASSERT_TRUE(outcome.failure);
    EXPECT_EQ(outcome.failure->cause, guia.LastError()->cause);

    guia.setReportFolder(fs::temp_directory_path());
    const nimbara::GuiaOutcome written = guia.ImprimeGuiaOutcome(false);
    ASSERT_TRUE(written.report);
    fs::remove(*written.report);
    EXPECT_FALSE(guia.LastError()) << "a call that succeeds clears the cause";
}
