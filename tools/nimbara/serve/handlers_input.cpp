#include "handlers_input.hpp"

#include <charconv>

#include "db_command.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_store.hpp"

namespace nimbara::serve {

ApiResponse answer(const std::function<ApiResponse()>& body)
{
    try {
        return body();
    } catch (const InputError& e) {
        return api_error(e.status(), e.what(), e.field());
    } catch (const cli::FieldError& e) {
        return api_error(422, e.what(), e.field());
    } catch (const GuiaFileError& e) {
        return api_error(422, e.what(), place_in_message(e.what()));
    } catch (const GuiaNotStoredError& e) {
        return api_error(404, e.what());
    } catch (const cli::NotFoundError& e) {
        return api_error(404, e.what());
    } catch (const cli::CommandError& e) {
        return api_error(422, e.what());
    } catch (const DatabaseError& e) {
        return api_error(500, e.what());
    } catch (const std::exception& e) {
        return api_error(500, e.what());
    }
}

ApiResponse json_response(int status, const nlohmann::ordered_json& document)
{
    return {status, "application/json", document.dump(), {}, std::nullopt};
}

nlohmann::ordered_json json_body(const ApiRequest& request)
{
    nlohmann::ordered_json body;
    try {
        body = nlohmann::ordered_json::parse(request.body);
    } catch (const nlohmann::ordered_json::exception& e) {
        throw InputError(400, std::string("the body is not JSON: ") + e.what(), "/");
    }
    if (!body.is_object()) throw InputError(400, "the body must be a JSON object", "/");
    return body;
}

void allow_query(const ApiRequest& request, std::initializer_list<std::string_view> allowed)
{
    for (const auto& [name, value] : request.query) {
        bool known = false;
        for (const auto a : allowed) known = known || a == name;
        if (!known) throw InputError(400, "unknown query parameter \"" + name + "\"", name);
        if (request.query.count(name) > 1) throw InputError(400, "query parameter \"" + name + "\" given twice", name);
    }
}

std::optional<std::string> query_text(const ApiRequest& request, const std::string& name)
{
    const auto found = request.query.find(name);
    if (found == request.query.end()) return std::nullopt;
    return found->second;
}

namespace {

std::int64_t whole(const std::string& text, const std::string& name, std::int64_t least, std::int64_t most)
{
    std::int64_t value = 0;
    const auto* end = text.data() + text.size();
    const auto [at, ec] = std::from_chars(text.data(), end, value);
    if (text.empty() || ec != std::errc{} || at != end || value < least || value > most)
        throw InputError(400, name + ": \"" + text + "\" is not a whole number from " + std::to_string(least) + " to " +
                                  std::to_string(most),
                         name);
    return value;
}

}  // namespace

std::optional<std::int64_t> query_whole(const ApiRequest& request, const std::string& name, std::int64_t least,
                                        std::int64_t most)
{
    const auto text = query_text(request, name);
    if (!text) return std::nullopt;
    return whole(*text, name, least, most);
}

std::int64_t path_whole(const ApiRequest& request, const std::string& name, std::int64_t least, std::int64_t most)
{
    const auto found = request.params.find(name);
    return whole(found == request.params.end() ? std::string() : found->second, name, least, most);
}

bool dry_run(const ApiRequest& request)
{
    const auto text = query_text(request, "dry_run");
    if (!text || *text == "0" || *text == "false") return false;
    if (*text == "1" || *text == "true") return true;
    throw InputError(400, "dry_run: \"" + *text + "\" is neither 1 nor 0", "dry_run");
}

std::string place_in_message(const std::string& message)
{
    // "source: /produtos/1/Escalao: why": the first word that starts with a slash and ends in a colon.
    for (std::size_t at = message.find(": /"); at != std::string::npos; at = message.find(": /", at + 1)) {
        const auto end = message.find(':', at + 2);
        if (end == std::string::npos) break;
        const std::string place = message.substr(at + 2, end - at - 2);
        if (place.find(' ') == std::string::npos) return place;
    }
    return {};
}

}  // namespace nimbara::serve
