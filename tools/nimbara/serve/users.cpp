#include "users.hpp"

#include <algorithm>
#include <cctype>

#include "nimbara/Schema.hpp"
#include "password_hash.hpp"

namespace nimbara::serve {
namespace {

void check_name(const std::string& name)
{
    const bool fits = !name.empty() && name.size() <= 50 && std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return std::isalnum(c) || c == '.' || c == '_' || c == '-' || c == '@';
    });
    if (!fits)
        throw UserError("the user name \"" + name + "\" is not 1 to 50 letters, digits or . _ - @");
}

// Made once, so that a login with an unknown name verifies against something and takes as long.
const std::string& decoy_hash()
{
    static const std::string hash = hash_password("not a password of anyone");
    return hash;
}

}  // namespace

std::string_view role_name(Role role) { return role == Role::admin ? "admin" : "clerk"; }

std::optional<Role> role_of(std::string_view name)
{
    if (name == "admin") return Role::admin;
    if (name == "clerk") return Role::clerk;
    return std::nullopt;
}

void add_user(Database& db, const std::string& name, std::string_view password, Role role)
{
    check_name(name);
    if (password.size() < kShortestPassword)
        throw UserError("the password is shorter than " + std::to_string(kShortestPassword) + " characters");
    EnsureAccessTables(db);
    const std::string hash = hash_password(password);
    Transaction transaction(db);
    if (!db.open("SELECT Nome FROM Tbl_Utilizador WHERE Nome = ?", {name}).IsEOF())
        throw UserError("the user \"" + name + "\" exists already");
    db.execute("INSERT INTO Tbl_Utilizador (Nome, Papel, Senha, Criado) VALUES (?, ?, ?, ?)",
               {name, std::string(role_name(role)), hash, Timestamp::now()});
    transaction.commit();
}

bool remove_user(Database& db, const std::string& name)
{
    EnsureAccessTables(db);
    return db.execute("DELETE FROM Tbl_Utilizador WHERE Nome = ?", {name}) > 0;
}

std::vector<User> list_users(Database& db)
{
    EnsureAccessTables(db);
    std::vector<User> users;
    for (Recordset rs = db.open("SELECT Nome, Papel FROM Tbl_Utilizador ORDER BY Nome"); !rs.IsEOF(); rs.MoveNext())
        users.push_back({rs["Nome"].text(), role_of(rs["Papel"].text()).value_or(Role::clerk)});
    return users;
}

bool users_exist(Database& db)
{
    EnsureAccessTables(db);
    return !db.open("SELECT Nome FROM Tbl_Utilizador LIMIT 1").IsEOF();
}

std::optional<User> check_password(Database& db, const std::string& name, std::string_view password)
{
    EnsureAccessTables(db);
    Recordset rs = db.open("SELECT Nome, Papel, Senha FROM Tbl_Utilizador WHERE Nome = ?", {name});
    if (rs.IsEOF()) {
        password_matches(decoy_hash(), password);
        return std::nullopt;
    }
    if (!password_matches(rs["Senha"].text(), password)) return std::nullopt;
    // A role the program does not know gives the least one.
    return User{rs["Nome"].text(), role_of(rs["Papel"].text()).value_or(Role::clerk)};
}

}  // namespace nimbara::serve
