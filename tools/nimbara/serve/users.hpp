#pragma once
// The accounts of the web server, kept in the database's users table (Tbl_Utilizador): a name, a
// role and an Argon2id string of the password.
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "api.hpp"
#include "nimbara/Database.hpp"

namespace nimbara::serve {

struct User {
    std::string name;
    Role role = Role::clerk;
};

// A name, role or password refused, or a name taken; the text says which and why.
class UserError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

std::string_view role_name(Role role);
// "clerk" or "admin"; nothing for anything else.
std::optional<Role> role_of(std::string_view name);

// The shortest password accepted.
inline constexpr std::size_t kShortestPassword = 8;

// Each of these first gives an older database its users table. Names are 1 to 50 letters, digits
// and . _ - @; they are compared as written.
void add_user(Database& db, const std::string& name, std::string_view password, Role role);
bool remove_user(Database& db, const std::string& name);  // false when there was none
std::vector<User> list_users(Database& db);
bool users_exist(Database& db);

// The user when the password is theirs; nothing otherwise (an unknown name costs the same time, so
// the answer does not tell which names exist).
std::optional<User> check_password(Database& db, const std::string& name, std::string_view password);

}  // namespace nimbara::serve
