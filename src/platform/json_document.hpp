#pragma once
// JSON read into a tree of our own, strictly: numbers keep their literal text, a key given twice in
// one object is refused, and every refusal names the line and column.
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbara::platform {

struct JsonMember;

struct JsonValue {
    enum class Kind { Null, Boolean, Number, Text, Array, Object };
    Kind kind = Kind::Null;
    bool boolean = false;
    std::string text;  // a string's value, or a number as it was written
    std::vector<JsonValue> items;
    std::vector<JsonMember> members;  // in file order

    // "null", "a boolean", "a number", "text", "an array", "an object"
    std::string_view kind_name() const;
};

struct JsonMember {
    std::string key;
    JsonValue value;
};

struct JsonError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws JsonError with "line L, column C: what" for malformed text, nesting deeper than
// `max_depth`, or a duplicate key.
JsonValue parse_json(std::string_view text, std::size_t max_depth = 64);

// The text as a JSON string, quotes included.
std::string json_quote(std::string_view text);

}  // namespace nimbara::platform
