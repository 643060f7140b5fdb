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

nlohmann::json batch_result_json(const BatchLineResult& r)
{
    nlohmann::json j = {{"line", r.line}};
    if (r.refused) {
        j["refused"] = *r.refused;
        return j;
    }
    j["passed"] = !r.result;
    if (r.result) {
        j.update(error_json(*r.result));
        j["possible_values"] = possible_values_json(r.possible_values, r.weight_steps);
    }
    return j;
}

}  // namespace nimbara::cli
