#include "verdict_json.hpp"

namespace nimbara::cli {

nlohmann::json error_json(const ErrorArray& e)
{
    nlohmann::json d;
    d["number"] = e.number;
    if (const auto* list = std::get_if<ListArray>(&e.description))
        d["services"] = *list;
    else
        d["description"] = std::get<std::string>(e.description);
    return d;
}

nlohmann::json possible_values_json(const std::vector<PossibleValue>& values, bool weight_steps)
{
    auto rows = nlohmann::json::array();
    for (const auto& v : values)
        rows.push_back(weight_steps ? nlohmann::json{{"minimum", v.code}, {"maximum", v.designation}}
                                    : nlohmann::json{{"code", v.code}, {"designation", v.designation}});
    return rows;
}

}  // namespace nimbara::cli
