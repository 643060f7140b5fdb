#pragma once
// The `nimbara db` commands run on a scratch store of each kind.
#include <string>

#include "cli/cli_run.hpp"
#include "support/test_database.hpp"

namespace nimbara::testing {

// `nimbara db ARGS --db CONN`, the connection quoted for the shell.
inline Run run_db(const std::string& conn, const std::string& args, const std::string& input = "")
{
    return run("db " + args + " --db '" + conn + "'", input);
}

// The client of the examples' Guias (456, contract 300042 with credential 77), as a client file.
inline const char* const kSampleClient = R"({"vCod_Cliente": "456", "vNome": "Papelaria Horizonte, Lda.", "iTipoCliente": 1,
  "vMorada": "Rua das Flores, 12", "vLocalidade": "Lisboa", "vCodPostal": "1000-100", "vDesigPostal": "LISBOA",
  "vNIF": "501234567", "vObservacoes": "", "iAcessoRede": 0,
  "contratos": [{"vCodContrato": "300042", "vDesignacao": "Correio", "vJppCredenciado": false,
                 "vCodCredencial": "77", "vValidacao": "", "vDescricao": "", "bActivo": true}]})";

// A scratch store the program created itself with `db init`; the test's own connection is closed,
// as the program opens the database on its own.
class DbProgramTest : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        db.reset();
        ASSERT_EQ(program("init").status, 0);
    }
    nimbara::testing::Run program(const std::string& args, const std::string& input = "")
    {
        return run_db(scratch->conn(), args, input);
    }
};

}  // namespace nimbara::testing
