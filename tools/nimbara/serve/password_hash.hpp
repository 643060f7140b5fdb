#pragma once
// Passwords as the users table keeps them: Argon2id strings, never the password itself.
#include <string>
#include <string_view>

namespace nimbara::serve {

// A new Argon2id string for the password (salted, with its cost parameters inside).
std::string hash_password(std::string_view password);

// Whether the password is the one the string was made from; a string that is no Argon2id string
// matches nothing.
bool password_matches(std::string_view hash, std::string_view password);

}  // namespace nimbara::serve
