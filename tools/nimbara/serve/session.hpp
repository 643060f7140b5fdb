#pragma once
// The server's sessions, held in memory: a random id in an HttpOnly cookie, who it is (nobody until a
// login), the CSRF token its writes must carry, and when it ends.
#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "api.hpp"

namespace nimbara::serve {

using Clock = std::function<std::chrono::steady_clock::time_point()>;

struct Session {
    std::string id;
    std::string csrf_token;
    std::optional<Caller> caller;  // nothing until a login (or always, when no login is required)
    std::chrono::steady_clock::time_point expires;
};

// 32 random bytes from the kernel, as 64 hexadecimal digits.
std::string random_token();

class SessionStore {
public:
    SessionStore(std::chrono::seconds lifetime, Clock clock);

    // A new session, with a fresh id and token.
    Session open(std::optional<Caller> caller);
    // The session of that id while it lasts; an expired one is forgotten.
    std::optional<Session> find(const std::string& id);
    void close(const std::string& id);
    // Ends every session of that user (when the user is removed).
    void close_user(const std::string& user);

private:
    std::chrono::seconds lifetime_;
    Clock clock_;
    std::mutex mutex_;
    std::unordered_map<std::string, Session> sessions_;
};

// Failed logins counted per name and per address over a window; past the allowed number, logins
// from either wait until the oldest failure leaves the window.
class LoginLimiter {
public:
    LoginLimiter(int allowed, std::chrono::seconds window, Clock clock);

    // Seconds to wait before the next try for that name or address; nothing when it may try now.
    std::optional<std::chrono::seconds> wait(const std::string& name, const std::string& address);
    void failed(const std::string& name, const std::string& address);
    // A success forgets the name's failures (not the address's: one address guessing many names stays limited).
    void succeeded(const std::string& name);

private:
    using Failures = std::vector<std::chrono::steady_clock::time_point>;
    std::optional<std::chrono::seconds> wait_for(Failures& failures, std::chrono::steady_clock::time_point now) const;

    int allowed_;
    std::chrono::seconds window_;
    Clock clock_;
    std::mutex mutex_;
    std::unordered_map<std::string, Failures> by_name_;
    std::unordered_map<std::string, Failures> by_address_;
};

}  // namespace nimbara::serve
