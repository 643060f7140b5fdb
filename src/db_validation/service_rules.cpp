#include "db_validation/service_rules.hpp"

#include <algorithm>
#include <initializer_list>

#include "foundation/list_helpers.hpp"
#include "foundation/text.hpp"

namespace nimbara::db_validation {
namespace {

bool in(const ListArray* services, std::string_view code)
{
    return services && std::find(services->begin(), services->end(), code) != services->end();
}

bool is_one_of(std::string_view product, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), product) != names.end();
}

// Reading the first service or the zone as a number fails for no list or for text that is no
// number; the procedure then ends with -100, which lets the line through.
struct NumberFailure {};

double number_or_fail(std::optional<double> value)
{
    if (!value) throw NumberFailure{};
    return *value;
}

double first_service(const ListArray* services)
{
    if (!services || services->empty()) throw NumberFailure{};
    return number_or_fail(text::to_number(services->front()));
}

ProductServiceVerdict product_rules(std::string_view product, std::string_view zone, const ListArray* services)
{
    const bool registered_trigger = in(services, "02") || in(services, "04");
    if (product == "C24") {
        if (in(services, "02") && !in(services, "06")) return {-6, {"06"}};
    } else if (is_one_of(product, {"C06", "C6", "C20"})) {
        if (registered_trigger && !in(services, "06")) return {-1, {"06"}};
    } else if (product == "C10") {
        if (registered_trigger && !in(services, "01")) return {-2, {"01"}};
    } else if (is_one_of(product, {"E2", "E02"})) {
        if (in(services, "03") && in(services, "11")) return {-3, {"03", "11"}};
    } else if (is_one_of(product, {"E1", "E01"})) {
        if (first_service(services) != 0) {
            const double z = number_or_fail(text::to_number(zone));
            if (z >= 17 && z <= 26 && !in(services, "03") && !in(services, "13")) return {-4, {"03", "13"}};
            if (z >= 27 && z <= 33 && !in(services, "02") && !in(services, "04") && !in(services, "13"))
                return {-5, {"02", "13"}};
        }
    }
    return {};
}

}  // namespace

std::optional<ListArray> DoValServEsp(const TableRule& rule, const ListArray& services)
{
    GlobalFrameWork::StrikeList left(services.begin(), services.end());
    for (const auto& row : rule.services) {
        const auto hit = std::find(left.begin(), left.end(), row);
        if (hit != left.end()) hit->reset();
    }
    return GlobalFrameWork::ArrayShrink(left);
}

ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone,
                                            const ListArray* services)
{
    try {
        return product_rules(product, zone, services);
    } catch (const NumberFailure&) {
        return {-100, {}};
    }
}

}  // namespace nimbara::db_validation
