#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include "nimbara/Notifier.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "nimbara/cls_Ref.hpp"
#include "nimbara/mdl_Biz.hpp"
#include "nimbara/Schema.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara;

namespace {

struct Message {
    MessageIcon icon;
    std::string title;
    std::string text;
};

class KeepMessages : public Notifier {
public:
    std::vector<Message> messages;
    void message(MessageIcon icon, std::string_view title, std::string_view text) override
    {
        messages.push_back({icon, std::string(title), std::string(text)});
    }
    void busy(bool) override {}
    void progress(int) override {}
};

// The ini file is read from the working directory, so each test runs in a folder of its own.
class ConnectionTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        previous_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_.path());
        set_notifier(&notes_);
    }
    void TearDown() override
    {
        set_notifier(nullptr);
        std::filesystem::current_path(previous_);
        CloseConnection();
    }
    void write_ini(const std::string& body) { std::ofstream("Zartel_Nimbara.Ini") << body; }

    nimbara::testing::TempFolder folder_{"connection"};
    std::filesystem::path previous_;
    KeepMessages notes_;
};

}  // namespace

TEST_F(ConnectionTest, ReadsTheIniOrSaysWhyNot)
{
    struct Case { const char* ini; bool ok; const char* conn; const char* dir; };
    const Case cases[] = {
        {"[Nimbarauto]\nConn=sqlite:guias.db\n", true, "sqlite:guias.db", ""},
        {"[NIMBARAUTO]\nconn = sqlite:g.db\nDirBD=/srv/bd\n", true, "sqlite:g.db", "/srv/bd"},
        {"[Nimbarauto]\nConn=\nDirBD=/srv/bd\n", false, "", "/srv/bd"},
        {"[Outra]\nConn=sqlite:guias.db\n", false, "", ""},
        {nullptr, false, "", ""},
    };
    for (const auto& c : cases) {
        std::filesystem::remove("Zartel_Nimbara.Ini");
        if (c.ini) write_ini(c.ini);
        notes_.messages.clear();
        EXPECT_EQ(Le_Ini(), c.ok) << (c.ini ? c.ini : "no file");
        EXPECT_EQ(gConnString, c.conn);
        EXPECT_EQ(gDirBD, c.dir);
        if (c.ok) {
            EXPECT_TRUE(notes_.messages.empty());
            continue;
        }
        ASSERT_EQ(notes_.messages.size(), 1u);
        EXPECT_EQ(notes_.messages[0].icon, MessageIcon::Critical);
        EXPECT_EQ(notes_.messages[0].title, "Guia Nimbara");
        EXPECT_EQ(notes_.messages[0].text,
                  "Erro na leitura do ficheiro INI.\nSaia da aplicação e verifique a existencia do mesmo.");
    }

    write_ini("[Nimbarauto]\nConn=sqlite:" + std::string(450, 'x') + "\n");
    ASSERT_TRUE(Le_Ini());
    EXPECT_EQ(gConnString.size(), 399u) << "the 400-character buffer holds 399 and its end";
}

TEST_F(ConnectionTest, ObjectsOfAThreadShareOneConnection)
{
    write_ini("[Nimbarauto]\nConn=Provider=Microsoft.Jet.OLEDB.4.0;Data Source = guias.db\n");
    CreateSchema(*OpenDatabase("sqlite:guias.db", OpenMode::Create));

    cls_Ref_Produto produto;
    cls_Parametro parametro;
    ASSERT_TRUE(produto.myConn);
    EXPECT_EQ(produto.myConn, parametro.myConn);
    OpenConnection();
    EXPECT_EQ(gConn, produto.myConn);

    std::shared_ptr<Database> other;
    std::thread([&] { OpenConnection(other); }).join();
    ASSERT_TRUE(other);
    EXPECT_NE(other, produto.myConn) << "another thread has its own";

    EXPECT_EQ(CloseConnection(produto.myConn), 0);
    EXPECT_FALSE(produto.myConn);
    EXPECT_EQ(CloseConnection(produto.myConn), 0) << "closing nothing ends quietly";
}

TEST_F(ConnectionTest, WithoutAConnectionTheFirstOperationFails)
{
    write_ini("[Nimbarauto]\nConn=sqlite:missing.db\n");
    cls_Ref_Formato formato;  // a store that cannot be opened gives no message on this path
    EXPECT_FALSE(formato.myConn);
    EXPECT_TRUE(notes_.messages.empty());
    Recordset rs;
    try {
        formato.SelectAll(rs);
        FAIL();
    } catch (const DatabaseError& e) {
        EXPECT_NE(std::string(e.what()).find("missing.db"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(std::filesystem::exists("missing.db"));
    EXPECT_THROW(OpenConnection(), DatabaseError) << "without an argument the failure goes to the caller";
}

// A write the old component could not even roll back (there was no connection) reached the host as
// an error; the writes that otherwise answer 0 keep that road, with a type a host can catch.
TEST_F(ConnectionTest, AWriteWithoutAConnectionRaisesToTheHost)
{
    write_ini("[Nimbarauto]\nConn=sqlite:missing.db\n");
    cls_Guia_Cabecalho guia;
    cls_Guia_Linha linha;
    cls_Guia_SEspecial servico;
    cls_Cliente cliente;
    cls_Contrato contrato;
    ASSERT_FALSE(guia.myConn) << "the store named cannot be opened";
    cls_Guia_Cabecalho without(nullptr);  // a host's object that was handed no connection
    without.AddLinha(1, "01", "C01", 20, 10, "0", "01", "0", "0", "0", 0, 0, "0", without.vCodContrato, "", "", "");

    struct Case {
        const char* what;
        std::function<void()> write;
        std::function<const std::string&()> last_error;
    };
    const Case cases[] = {
        {"Guia DoSave", [&] { guia.DoSave(); }, [&]() -> auto& { return guia.LastError(); }},
        {"Guia DoDelete", [&] { guia.DoDelete(); }, [&]() -> auto& { return guia.LastError(); }},
        {"Guia DoInsertValTemp", [&] { without.DoInsertValTemp(); }, [&]() -> auto& { return without.LastError(); }},
        {"Guia DoRemoveValTemp", [&] { guia.DoRemoveValTemp(); }, [&]() -> auto& { return guia.LastError(); }},
        {"Guia DoSaveNumerada", [&] { (void)without.DoSaveNumerada(); }, [&]() -> auto& { return without.LastError(); }},
        {"line DoSave", [&] { linha.DoSave(); }, [&]() -> auto& { return linha.LastError(); }},
        {"line DoDelete", [&] { linha.DoDelete(); }, [&]() -> auto& { return linha.LastError(); }},
        {"service DoSave", [&] { servico.DoSave(); }, [&]() -> auto& { return servico.LastError(); }},
        {"service DoDelete", [&] { servico.DoDelete(); }, [&]() -> auto& { return servico.LastError(); }},
        {"client DoSave", [&] { cliente.DoSave(); }, [&]() -> auto& { return cliente.LastError(); }},
        {"client DoDelete", [&] { cliente.DoDelete(); }, [&]() -> auto& { return cliente.LastError(); }},
        {"contract DoSave", [&] { contrato.DoSave(); }, [&]() -> auto& { return contrato.LastError(); }},
        {"contract DoDelete", [&] { contrato.DoDelete(); }, [&]() -> auto& { return contrato.LastError(); }},
    };
    for (const auto& c : cases) {
        try {
            c.write();
            ADD_FAILURE() << c.what << " returned normally";
        } catch (const ConnectionError& e) {
            EXPECT_NE(std::string(e.what()).find("no connection to the database"), std::string::npos) << c.what;
            EXPECT_EQ(c.last_error(), e.what()) << c.what << ": LastError() knows it too";
        }
    }
    EXPECT_FALSE(std::filesystem::exists("missing.db"));
}
