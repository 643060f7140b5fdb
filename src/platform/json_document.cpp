#include "platform/json_document.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <unordered_set>

namespace nimbara::platform {
namespace {

using nlohmann::json;

std::string position(std::string_view text, std::size_t offset)
{
    offset = std::min(offset, text.size());
    std::size_t line = 1, column = 1;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// nlohmann's messages start with an identifier in brackets and repeat the position in bytes.
std::string plain_message(std::string_view message)
{
    if (message.starts_with('[')) {
        if (const auto close = message.find("] "); close != std::string_view::npos) message.remove_prefix(close + 2);
    }
    if (const auto colon = message.find(": "); message.starts_with("parse error") && colon != std::string_view::npos)
        message.remove_prefix(colon + 2);
    return std::string(message);
}

// Builds the tree from the parser's events; refusals carry the parser's byte offset.
class TreeBuilder : public json::json_sax_t {
public:
    TreeBuilder(std::string_view text, std::size_t max_depth) : text_(text), max_depth_(max_depth) {}

    bool null() override { return add(JsonValue{}); }
    bool boolean(bool value) override
    {
        JsonValue v;
        v.kind = JsonValue::Kind::Boolean;
        v.boolean = value;
        return add(std::move(v));
    }
    bool number_integer(number_integer_t value) override { return number(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override { return number(std::to_string(value)); }
    bool number_float(number_float_t, const string_t& literal) override { return number(literal); }
    bool string(string_t& value) override
    {
        JsonValue v;
        v.kind = JsonValue::Kind::Text;
        v.text = std::move(value);
        return add(std::move(v));
    }
    bool binary(binary_t&) override { return add(JsonValue{}); }
    bool start_object(std::size_t) override { return open(JsonValue::Kind::Object); }
    bool key(string_t& name) override
    {
        if (!seen_.back().insert(name).second) {
            error_ = path() + ": the key \"" + name + "\" is given twice";
            return false;
        }
        pending_key_ = std::move(name);
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(JsonValue::Kind::Array); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t offset, const std::string&, const nlohmann::detail::exception& e) override
    {
        throw JsonError(position(text_, offset > 0 ? offset - 1 : 0) + ": " + plain_message(e.what()));
    }

    JsonValue take_root() { return std::move(root_); }
    const std::string& error() const { return error_; }

private:
    // Where the builder stands, as a JSON pointer ("/produtos/1").
    std::string path() const
    {
        std::string out;
        for (std::size_t i = 1; i < stack_.size(); ++i) {
            const JsonValue& parent = stack_[i - 1];
            out += '/';
            out += parent.kind == JsonValue::Kind::Array ? std::to_string(parent.items.size()) : keys_[i];
        }
        return out.empty() ? "/" : out;
    }

    bool number(std::string literal)
    {
        JsonValue v;
        v.kind = JsonValue::Kind::Number;
        v.text = std::move(literal);
        return add(std::move(v));
    }
    bool open(JsonValue::Kind kind)
    {
        if (stack_.size() >= max_depth_) {
            error_ = path() + ": nesting deeper than " + std::to_string(max_depth_) + " levels";
            return false;
        }
        JsonValue v;
        v.kind = kind;
        stack_.push_back(std::move(v));
        seen_.emplace_back();
        keys_.push_back(std::move(pending_key_));
        return true;
    }
    bool close()
    {
        JsonValue done = std::move(stack_.back());
        stack_.pop_back();
        seen_.pop_back();
        pending_key_ = std::move(keys_.back());
        keys_.pop_back();
        return add(std::move(done));
    }
    bool add(JsonValue v)
    {
        if (stack_.empty()) {
            root_ = std::move(v);
        } else if (stack_.back().kind == JsonValue::Kind::Array) {
            stack_.back().items.push_back(std::move(v));
        } else {
            stack_.back().members.push_back(JsonMember{std::move(pending_key_), std::move(v)});
        }
        return true;
    }

    std::string_view text_;
    std::size_t max_depth_;
    std::vector<JsonValue> stack_;
    std::vector<std::string> keys_;
    std::vector<std::unordered_set<std::string>> seen_;  // the keys of each open object
    std::string pending_key_;
    JsonValue root_;
    std::string error_;
};

}  // namespace

std::string_view JsonValue::kind_name() const
{
    switch (kind) {
    case Kind::Null: return "null";
    case Kind::Boolean: return "a boolean";
    case Kind::Number: return "a number";
    case Kind::Text: return "text";
    case Kind::Array: return "an array";
    case Kind::Object: return "an object";
    }
    return "a value";
}

JsonValue parse_json(std::string_view text, std::size_t max_depth)
{
    TreeBuilder builder(text, max_depth);
    if (!json::sax_parse(text.begin(), text.end(), &builder, json::input_format_t::json, true))
        throw JsonError(builder.error());
    return builder.take_root();
}

std::string json_quote(std::string_view text)
{
    return json(std::string(text)).dump(-1, ' ', false, json::error_handler_t::strict);
}

}  // namespace nimbara::platform
