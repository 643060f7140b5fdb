#pragma once
// How handlers read their input and shape their answers: every refusal names its field, and every
// failure of the code below becomes an error answer rather than an escaping exception.
#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "api.hpp"

namespace nimbara::serve {

// Input the handler refuses: answered as api_error(status, message, field).
class InputError : public std::runtime_error {
public:
    InputError(int status, const std::string& message, std::string field = {})
        : std::runtime_error(message), status_(status), field_(std::move(field))
    {
    }
    int status() const { return status_; }
    const std::string& field() const { return field_; }

private:
    int status_;
    std::string field_;
};

// Runs a handler's body; what it throws becomes the error answer that fits: InputError as it says,
// a refused file value 422 with its place, nothing stored 404, a store failure 500.
ApiResponse answer(const std::function<ApiResponse()>& body);

ApiResponse json_response(int status, const nlohmann::ordered_json& document);

// The body as one JSON object; 400 when it is not JSON or not an object.
nlohmann::ordered_json json_body(const ApiRequest& request);

// Refuses (400, naming it) a query parameter not among `allowed`, or one given twice.
void allow_query(const ApiRequest& request, std::initializer_list<std::string_view> allowed);

// The query parameter's value; nothing when it is not given.
std::optional<std::string> query_text(const ApiRequest& request, const std::string& name);

// A whole number from `least` to `most` in the query (nothing when not given) or the path; anything
// else is refused with 400 naming the parameter.
std::optional<std::int64_t> query_whole(const ApiRequest& request, const std::string& name, std::int64_t least,
                                        std::int64_t most);
std::int64_t path_whole(const ApiRequest& request, const std::string& name, std::int64_t least, std::int64_t most);

// ?dry_run=1 (or true); 0, false or nothing is no dry run.
bool dry_run(const ApiRequest& request);

// The place a GuiaFileError or a refused document names ("/produtos/1/Escalao"), or "" when none.
std::string place_in_message(const std::string& message);

}  // namespace nimbara::serve
