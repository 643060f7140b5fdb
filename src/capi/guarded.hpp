#pragma once
// Every entry point runs its body through guarded(): an exception becomes a status and the thread's
// last error, as no C++ exception may cross into a C host.
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "nimbara/nimbara.h"

namespace nimbara::capi {

// A refusal of the C layer's own, with the status it answers.
class Refusal : public std::runtime_error {
public:
    Refusal(nimbara_status status, const std::string& cause) : std::runtime_error(cause), status_(status) {}
    nimbara_status status() const { return status_; }

private:
    nimbara_status status_;
};

// The status of the exception in flight, after leaving its cause as the last error.
nimbara_status status_of_current_exception() noexcept;

// Throws a bad-argument Refusal naming `what` when `pointer` is NULL.
template <class T>
T& required(T* pointer, const char* what)
{
    if (pointer == nullptr) throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(what) + " is NULL");
    return *pointer;
}

// The value a C host passed where an enum stands, read as the integer it is: C lets any int through,
// and one outside the enumerators is refused rather than taken for one. `last` is the largest.
template <class Enum>
Enum enumerator(const Enum& passed, Enum last, const char* what)
{
    int raw = 0;
    static_assert(sizeof raw == sizeof passed);
    std::memcpy(&raw, &passed, sizeof raw);  // a copy of the bytes, never a load of an invalid enum
    if (raw < 0 || raw > static_cast<int>(last))
        throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(what) + " " + std::to_string(raw) + " is not one of 0 to " +
                                                std::to_string(static_cast<int>(last)));
    return static_cast<Enum>(raw);
}

// Runs `body`, which answers a status (or nothing, meaning NIMBARA_OK).
template <class Body>
nimbara_status guarded(Body&& body) noexcept
{
    try {
        if constexpr (std::is_void_v<decltype(body())>) {
            std::forward<Body>(body)();
            return NIMBARA_OK;
        } else {
            return std::forward<Body>(body)();
        }
    } catch (...) {
        return status_of_current_exception();
    }
}

}  // namespace nimbara::capi
