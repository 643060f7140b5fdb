// The JSON Schemas of the Guia file and the client file, checked by Python's jsonschema against the
// examples and against files the program refuses: schema and program agree on both.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

#include "cli/db_program.hpp"
#include "support/temp_folder.hpp"

namespace {

namespace fs = std::filesystem;

std::string schema(const std::string& name) { return std::string(NIMBARA_SOURCE_DIR) + "/data/schema/" + name; }

// Each file's verdict: null when it satisfies the schema, else the first error's message.
nlohmann::json verdicts(const std::string& schema_file, const std::vector<std::string>& files)
{
    std::string cmd = std::string(NIMBARA_PYTHON) + " " + NIMBARA_SOURCE_DIR + "/tests/cli/check_schema.py " + schema_file;
    for (const auto& f : files) cmd += " '" + f + "'";
    FILE* pipe = ::popen(cmd.c_str(), "r");
    std::string out;
    char buf[4096];
    while (const auto n = std::fread(buf, 1, sizeof buf, pipe)) out.append(buf, n);
    EXPECT_EQ(WEXITSTATUS(::pclose(pipe)), 0) << cmd;
    return nlohmann::json::parse(out);
}

// The files of the table written into the folder, one per case.
std::vector<std::string> written(const fs::path& dir, const std::vector<std::string>& texts)
{
    std::vector<std::string> files;
    for (const auto& text : texts) {
        files.push_back((dir / ("case" + std::to_string(files.size()) + ".json")).string());
        std::ofstream(files.back()) << text;
    }
    return files;
}

const std::vector<std::string> kRefusedGuias = {
    R"([])",
    R"({"extra": {}})",
    R"({"cabecalho": {"cb_Nomme": "x"}})",
    R"({"cabecalho": {"cb_Nome": ["x"]}})",
    R"({"parametros": {"vGuiaNVias": null}})",
    R"({"produtos": {"B_Produto": "C01"}})",
    R"({"produtos": [{"Escalao": {}}]})",
    R"({"servicos": [{"Valor": true}]})",
};

const std::vector<std::string> kRefusedClients = {
    R"({"vNome": "no number"})",
    R"({"vCod_Cliente": "12a"})",
    R"({"vCod_Cliente": 1234567890})",
    R"({"vCod_Cliente": "1", "iTipoCliente": "1"})",
    R"({"vCod_Cliente": "1", "vNIF": 5.5})",
    R"({"vCod_Cliente": "1", "vCidade": "Porto"})",
    R"({"vCod_Cliente": "1", "contratos": [{"vDesignacao": "no code"}]})",
    R"({"vCod_Cliente": "1", "contratos": [{"vCodContrato": "1", "bActivo": 1}]})",
};

}  // namespace

TEST(GuiaFileSchema, AcceptsTheExamplesAndRefusesWhatTheProgramRefuses)
{
    std::vector<std::string> examples;
    for (const auto& e : fs::directory_iterator(std::string(NIMBARA_SOURCE_DIR) + "/examples"))
        if (e.path().extension() == ".json" && e.path().filename() != "client.json") examples.push_back(e.path().string());
    ASSERT_GE(examples.size(), 4u);
    const nimbara::testing::TempFolder dir;
    const auto accepted = verdicts(schema("guia-file.schema.json"), examples);
    for (const auto& [file, verdict] : accepted.items()) {
        EXPECT_TRUE(verdict.is_null()) << file << ": " << verdict;
        EXPECT_NE(nimbara::testing::run("check '" + file + "' --report-dir " + dir.path().string()).status, 2) << file;
    }

    const auto files = written(dir.path(), kRefusedGuias);
    const auto found = verdicts(schema("guia-file.schema.json"), files);
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_FALSE(found[files[i]].is_null()) << kRefusedGuias[i] << ": the schema lets it pass";
        EXPECT_EQ(nimbara::testing::run("check " + files[i] + " --report-dir " + dir.path().string()).status, 2)
            << kRefusedGuias[i] << ": the program takes it";
    }
}

class ClientFileSchema : public nimbara::testing::DbProgramTest {};
INSTANTIATE_TEST_SUITE_P(Stores, ClientFileSchema, nimbara::testing::kBothStores, nimbara::testing::store_name);

TEST_P(ClientFileSchema, AcceptsTheExampleAndRefusesWhatTheProgramRefuses)
{
    const std::string example = nimbara::testing::example("client.json");
    EXPECT_TRUE(verdicts(schema("client-file.schema.json"), {example})[example].is_null());
    const auto saved = program("client save " + example);
    EXPECT_EQ(saved.status, 0) << saved.err;

    const nimbara::testing::TempFolder dir;
    const auto files = written(dir.path(), kRefusedClients);
    const auto found = verdicts(schema("client-file.schema.json"), files);
    for (std::size_t i = 0; i < files.size(); ++i) {
        EXPECT_FALSE(found[files[i]].is_null()) << kRefusedClients[i] << ": the schema lets it pass";
        const auto r = program("client save " + files[i]);
        EXPECT_EQ(r.status, 2) << kRefusedClients[i] << ": the program takes it";
    }
}
