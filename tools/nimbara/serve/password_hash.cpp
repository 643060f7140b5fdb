#include "password_hash.hpp"

#include <sodium.h>

#include <stdexcept>

namespace nimbara::serve {
namespace {

void init_once()
{
    static const bool ready = sodium_init() >= 0;
    if (!ready) throw std::runtime_error("the password library cannot start");
}

}  // namespace

std::string hash_password(std::string_view password)
{
    init_once();
    char out[crypto_pwhash_STRBYTES];
    // The interactive cost: a login waits a fraction of a second, a stolen table costs an attacker that
    // much per guess and per user.
    if (crypto_pwhash_str_alg(out, password.data(), password.size(), crypto_pwhash_OPSLIMIT_INTERACTIVE,
                              crypto_pwhash_MEMLIMIT_INTERACTIVE, crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::runtime_error("not enough memory to hash the password");
    return out;
}

bool password_matches(std::string_view hash, std::string_view password)
{
    init_once();
    if (hash.empty() || hash.size() >= crypto_pwhash_STRBYTES) return false;
    const std::string terminated(hash);
    return crypto_pwhash_str_verify(terminated.c_str(), password.data(), password.size()) == 0;
}

}  // namespace nimbara::serve
