#include "session.hpp"

#include <sys/random.h>

#include <algorithm>
#include <stdexcept>

namespace nimbara::serve {

std::string random_token()
{
    unsigned char bytes[32];
    std::size_t got = 0;
    while (got < sizeof bytes) {
        const ssize_t n = getrandom(bytes + got, sizeof bytes - got, 0);
        if (n < 0) throw std::runtime_error("the kernel gave no random bytes");
        got += static_cast<std::size_t>(n);
    }
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned char b : bytes) text += {kDigits[b >> 4], kDigits[b & 15]};
    return text;
}

SessionStore::SessionStore(std::chrono::seconds lifetime, Clock clock) : lifetime_(lifetime), clock_(std::move(clock)) {}

Session SessionStore::open(std::optional<Caller> caller)
{
    Session session{random_token(), random_token(), std::move(caller), clock_() + lifetime_};
    const std::lock_guard lock(mutex_);
    // Expired sessions are swept now and then, so that callers that never come back do not pile up.
    if (sessions_.size() % 256 == 255) {
        const auto now = clock_();
        std::erase_if(sessions_, [now](const auto& entry) { return entry.second.expires <= now; });
    }
    sessions_[session.id] = session;
    return session;
}

std::optional<Session> SessionStore::find(const std::string& id)
{
    const std::lock_guard lock(mutex_);
    const auto it = sessions_.find(id);
    if (it == sessions_.end()) return std::nullopt;
    if (it->second.expires <= clock_()) {
        sessions_.erase(it);
        return std::nullopt;
    }
    return it->second;
}

void SessionStore::close(const std::string& id)
{
    const std::lock_guard lock(mutex_);
    sessions_.erase(id);
}

void SessionStore::close_user(const std::string& user)
{
    const std::lock_guard lock(mutex_);
    std::erase_if(sessions_, [&](const auto& entry) { return entry.second.caller && entry.second.caller->user == user; });
}

LoginLimiter::LoginLimiter(int allowed, std::chrono::seconds window, Clock clock)
    : allowed_(allowed), window_(window), clock_(std::move(clock))
{
}

std::optional<std::chrono::seconds> LoginLimiter::wait_for(Failures& failures, std::chrono::steady_clock::time_point now) const
{
    std::erase_if(failures, [&](auto at) { return at + window_ <= now; });
    if (static_cast<int>(failures.size()) < allowed_) return std::nullopt;
    const auto left = failures.front() + window_ - now;
    return std::max(std::chrono::seconds(1), std::chrono::ceil<std::chrono::seconds>(left));
}

std::optional<std::chrono::seconds> LoginLimiter::wait(const std::string& name, const std::string& address)
{
    const std::lock_guard lock(mutex_);
    const auto now = clock_();
    // Looked up without being added, so that names never tried cost no memory.
    const auto check = [&](auto& map, const std::string& key) -> std::optional<std::chrono::seconds> {
        const auto it = map.find(key);
        if (it == map.end()) return std::nullopt;
        const auto wait = wait_for(it->second, now);
        if (it->second.empty()) map.erase(it);
        return wait;
    };
    const auto by_name = check(by_name_, name);
    const auto by_address = check(by_address_, address);
    if (by_name && by_address) return std::max(*by_name, *by_address);
    return by_name ? by_name : by_address;
}

void LoginLimiter::failed(const std::string& name, const std::string& address)
{
    const std::lock_guard lock(mutex_);
    const auto now = clock_();
    by_name_[name].push_back(now);
    by_address_[address].push_back(now);
}

void LoginLimiter::succeeded(const std::string& name)
{
    const std::lock_guard lock(mutex_);
    by_name_.erase(name);
}

}  // namespace nimbara::serve
