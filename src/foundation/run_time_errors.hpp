#pragma once
// The old run time's errors, in one place: the printing routines log their texts exactly as they were.
#include <stdexcept>
#include <string_view>

namespace nimbara {

enum class RunTimeError { TypeMismatch, Overflow, SubscriptOutOfRange, InvalidProcedureCall };

constexpr std::string_view description(RunTimeError e)
{
    switch (e) {
    case RunTimeError::TypeMismatch: return "Type mismatch";
    case RunTimeError::Overflow: return "Overflow";
    case RunTimeError::SubscriptOutOfRange: return "Subscript out of range";
    case RunTimeError::InvalidProcedureCall: return "Invalid procedure call or argument";
    }
    return "Application-defined or object-defined error";
}

// Throws the standard exception of the error's kind (invalid_argument for a mismatch, overflow_error,
// out_of_range for the others) carrying its description.
[[noreturn]] inline void raise(RunTimeError e)
{
    const std::string text(description(e));
    switch (e) {
    case RunTimeError::TypeMismatch: throw std::invalid_argument(text);
    case RunTimeError::Overflow: throw std::overflow_error(text);
    default: throw std::out_of_range(text);
    }
}

}  // namespace nimbara
