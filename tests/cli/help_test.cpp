#include <gtest/gtest.h>

#include <sstream>

#include "cli_run.hpp"
#include "nimbara/GlobalXML.hpp"
#include "support/temp_folder.hpp"

using nimbara::testing::example;
using nimbara::testing::run;

namespace {

// The parser's own wording, which no message and no help of the program may show.
const char* const kParserWording[] = {"required but received", "not in {", "not in range", "Could not convert",
                                      " excludes ", " requires ", "The following argument", " is required",
                                      "A subcommand", "FLOAT", "INT:", "TEXT:", "in [", "REQUIRED"};

void expect_no_parser_wording(const std::string& text, const std::string& what)
{
    for (const char* words : kParserWording) EXPECT_EQ(text.find(words), std::string::npos) << what << ": " << text;
}

// Every command of the program, as `nimbara help` names it.
const char* const kCommands[] = {
    "document", "check-lines", "print", "check", "form", "codes", "db", "db init", "db where", "db refs", "db params",
    "db params set", "db import", "db list", "db export", "db save", "db show", "db delete", "db client",
    "db client save", "db client show", "db client list", "db client delete", "db check", "db check-lines",
    "db print", "db receive", "printers", "read", "serve", "users", "users add", "users list", "users remove"};

}  // namespace

TEST(Help, AtAnyDepthUnderTheProgramsName)
{
    struct Case { std::string args, usage; };
    const Case cases[] = {
        {"help", "Usage: nimbara [OPTIONS] SUBCOMMAND"},
        {"help print", "Usage: nimbara print [OPTIONS] GUIA..."},
        {"print --help", "Usage: nimbara print [OPTIONS] GUIA..."},
        {"help db init", "Usage: nimbara db init [OPTIONS]"},
        {"db help init", "Usage: nimbara db init [OPTIONS]"},
        {"db init --help", "Usage: nimbara db init [OPTIONS]"},
        {"help db client save", "Usage: nimbara db client save [OPTIONS] CLIENT"},
        {"db client help save", "Usage: nimbara db client save [OPTIONS] CLIENT"},
        {"db help client save", "Usage: nimbara db client save [OPTIONS] CLIENT"},
        {"db params help set", "Usage: nimbara db params set [OPTIONS] ASSIGNMENT..."},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.status, 0) << c.args << ": " << r.err;
        EXPECT_NE(r.out.find(c.usage + "\n"), std::string::npos) << c.args << ": " << r.out;
        EXPECT_EQ(r.err, "") << c.args;
    }
    const auto unknown = run("help db nada");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown command \"nada\""), std::string::npos) << unknown.err;
}

// Each command ends with the exit codes that are its own and an example, never the program's list.
TEST(Help, EveryCommandHasItsOwnExitCodesAndExamples)
{
    const std::string programs_footer = "each command's help tells its own";
    for (const char* command : kCommands) {
        const auto r = run(std::string("help ") + command);
        ASSERT_EQ(r.status, 0) << command << ": " << r.err;
        EXPECT_NE(r.out.find("Exit status:"), std::string::npos) << command << ": " << r.out;
        EXPECT_NE(r.out.find("\nExample"), std::string::npos) << command << ": " << r.out;
        EXPECT_NE(r.out.find("  nimbara " + std::string(command).substr(0, std::string(command).find(' '))),
                  std::string::npos)
            << command << ": " << r.out;
        EXPECT_EQ(r.out.find(programs_footer), std::string::npos) << command << ": " << r.out;
        expect_no_parser_wording(r.out, command);
    }
    EXPECT_NE(run("help").out.find(programs_footer), std::string::npos);
}

// Every kind of refusal the parser can meet, and the contradictions the program refuses, in plain words.
TEST(Help, RefusalsOfTheCommandLineInPlainWords)
{
    const std::string valid = example("valid-guia.json");
    struct Case { std::string args, says; };
    const Case cases[] = {
        {"check a.json b.json", "nimbara check: GUIA takes one value"},                         // too many
        {"check", "nimbara check: GUIA is missing (the Guia file (JSON)"},                      // required
        {"form --out", "nimbara form: --out needs a value (the PDF file to write;"},           // no value
        {"form --out x.pdf --png x.png --dpi 5", "--dpi must be a number from 10 to 2400, not \"5\""},  // range
        {"form --out x.pdf --png x.png --dpi abc", "--dpi must be a number from 10 to 2400, not \"abc\""},
        {"form --out x.pdf --copy -1", "--copy must be a whole number from 0 to 32767, not \"-1\""},
        {"form --out x.pdf --edition paper", "--edition must be array or database, not \"paper\""},  // choice
        {"form --out x.pdf --left north", "--left must be a number, not \"north\""},           // conversion
        {"form --out x.pdf --dpi 300", "--dpi needs --png as well"},                            // needs
        {"check " + valid + " -q -v", "--quiet and --verbose cannot be given together"},       // excludes
        {"print " + valid + " --one-file a.pdf --out-dir d", "--out-dir and --one-file cannot be given together"},
        {"print " + valid + " --only-printer --report never", "--report and --only-printer cannot be given together"},
        {"check " + valid + " --report sometimes", "--report must be always, errors or never, not \"sometimes\""},
        {"db list --month 13", "nimbara db list: --month must be a whole number from 1 to 12, not \"13\""},
        {"db export --month 0", "--month must be a whole number from 1 to 12, not \"0\""},
        {"db refs nada", "nimbara db refs: NAME must be ambito, conteudo"},
        {"db", "nimbara db: a command is needed here: init, refs"},                             // no subcommand
        {"db nada", "nimbara db: unknown command \"nada\""},
        {"db client sve 4", "unknown command \"sve\"; did you mean \"save\"?"},
        {"check " + valid + " --repot-dir d", "unknown option \"--repot-dir\"; did you mean \"--report-dir\"?"},
        {"form --out x.pdf extra", "nimbara form: unexpected argument \"extra\""},              // extras
        {"document getXML_DoValPeso --list", "NAME and --list cannot be given together"},
        {"codes zonee", "KIND must be zone, product, speed"},
    };
    for (const auto& c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_EQ(r.out, "") << c.args;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << c.args << ": " << r.err;
        expect_no_parser_wording(r.err, c.args);
    }
}

TEST(Help, DocumentListsItsNames)
{
    const auto r = run("document --list");
    EXPECT_EQ(r.status, 0) << r.err;
    std::string expected;
    for (const auto name : nimbara::GlobalXML::document_names()) expected += std::string(name) + "\n";
    EXPECT_EQ(r.out, expected);
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 27);
    const auto neither = run("document");
    EXPECT_EQ(neither.status, 2);
    EXPECT_NE(neither.err.find("--list"), std::string::npos) << neither.err;
}

// The manual page carries every command's help as --help shows it.
TEST(Help, ManualPageHoldsEveryCommandsHelp)
{
    const auto man = run("help --man");
    ASSERT_EQ(man.status, 0) << man.err;
    EXPECT_TRUE(man.out.starts_with(".TH NIMBARA 1 ")) << man.out.substr(0, 80);
    for (const char* command : kCommands) {
        std::string heading = ".SS nimbara " + std::string(command) + "\n";
        for (auto at = heading.find('-'); at != std::string::npos; at = heading.find('-', at + 2)) heading.insert(at, "\\");
        EXPECT_NE(man.out.find(heading), std::string::npos) << command;
        // The help's first line, a plain sentence, stands in the page as it is.
        const auto help = run(std::string("help ") + command).out;
        const std::string first = help.substr(0, help.find('\n'));
        if (first.find_first_of("-\\") == std::string::npos) {
            EXPECT_NE(man.out.find(first), std::string::npos) << command;
        }
    }
    expect_no_parser_wording(man.out, "the manual page");
}
