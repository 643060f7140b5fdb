// The users table: made by db init, given to an older database on first use, and the users command.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/db_program.hpp"
#include "serve/password_hash.hpp"
#include "serve/users.hpp"

using namespace nimbara;
using namespace nimbara::testing;

namespace {

class UsersTest : public SeededStoreTest {};

TEST_P(UsersTest, AnOlderDatabaseGetsTheTablesOnFirstUse)
{
    db->execute("DROP TABLE Tbl_Utilizador");
    db->execute("DROP TABLE Tbl_Auditoria");
    EXPECT_FALSE(serve::users_exist(*db));
    EXPECT_TRUE(db->has_table("Tbl_Utilizador"));
    EXPECT_TRUE(db->has_table("Tbl_Auditoria"));
    serve::add_user(*db, "ana", "a long password", serve::Role::clerk);
    EXPECT_TRUE(serve::users_exist(*db));
}

TEST_P(UsersTest, PasswordsAreKeptAsArgon2idAndCheckedAgainstIt)
{
    serve::add_user(*db, "ana", "a long password", serve::Role::admin);
    const std::string stored = db->open("SELECT Senha FROM Tbl_Utilizador WHERE Nome = 'ana'")["Senha"].text();
    EXPECT_TRUE(stored.starts_with("$argon2id$")) << stored;
    EXPECT_EQ(stored.find("a long password"), std::string::npos);
    struct Case { const char* name; const char* password; bool in; };
    const Case cases[] = {
        {"ana", "a long password", true}, {"ana", "a long passwor", false}, {"ana", "", false},
        {"Ana", "a long password", false}, {"nobody", "a long password", false},
    };
    for (const auto& c : cases) {
        const auto user = serve::check_password(*db, c.name, c.password);
        EXPECT_EQ(user.has_value(), c.in) << c.name << " / " << c.password;
        if (user) EXPECT_EQ(user->role, serve::Role::admin);
    }
    EXPECT_FALSE(serve::password_matches("not a hash", "x"));
}

INSTANTIATE_TEST_SUITE_P(Stores, UsersTest, kBothStores, store_name);

class UsersCommandTest : public DbProgramTest {
protected:
    nimbara::testing::Run users(const std::string& args, const std::string& input = "")
    {
        return run("users " + args + " --db '" + scratch->conn() + "'", input);
    }
};

TEST_P(UsersCommandTest, AddListAndRemove)
{
    ASSERT_EQ(users("add ana --role clerk", "a long password\n").status, 0);
    ASSERT_EQ(users("add rui --role admin", "another password\n").status, 0);
    const auto listed = users("list --json");
    ASSERT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(nlohmann::json::parse(listed.out)["users"],
              (nlohmann::json{{{"name", "ana"}, {"role", "clerk"}}, {{"name", "rui"}, {"role", "admin"}}}));
    EXPECT_EQ(users("list").out, "ana\tclerk\nrui\tadmin\n");
    EXPECT_EQ(users("remove ana").status, 0);
    EXPECT_EQ(users("list").out, "rui\tadmin\n");
}

TEST_P(UsersCommandTest, RefusalsNameWhatIsWrongAndAddNothing)
{
    ASSERT_EQ(users("add ana --role clerk", "a long password\n").status, 0);
    struct Case { const char* args; const char* input; const char* says; };
    const Case cases[] = {
        {"add eva --role boss", "a long password\n", "clerk or admin"},
        {"add eva --role clerk", "short\n", "shorter than 8"},
        {"add eva --role clerk", "", "no password"},
        {"add ana --role admin", "a long password\n", "exists already"},
        {"add 'e v a' --role clerk", "a long password\n", "is not 1 to 50"},
        {"remove nobody", "", "no user \"nobody\""},
    };
    for (const auto& c : cases) {
        const auto r = users(c.args, c.input);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.says), std::string::npos) << c.args << ": " << r.err;
        EXPECT_NE(r.err.find("nimbara users "), std::string::npos) << r.err;
    }
    EXPECT_EQ(users("list").out, "ana\tclerk\n");
}

INSTANTIATE_TEST_SUITE_P(Stores, UsersCommandTest, kBothStores, store_name);

}  // namespace
