#include "validation/service_rules.hpp"

#include <algorithm>
#include <vector>

#include "foundation/list_helpers.hpp"
#include "foundation/text.hpp"

namespace nimbara::validation {
namespace {

bool in(const Services& services, std::string_view code)
{
    return services && std::find(services->begin(), services->end(), code) != services->end();
}

bool any_of_products(std::string_view product, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), product) != names.end();
}

// Reading the first service or the zone as a number fails for no list or for text that is no
// number; the whole procedure then ends with -100, which lets a line without services through.
struct NumberFailure {};

double first_service_number(const Services& services)
{
    if (!services || services->empty()) throw NumberFailure{};
    const auto value = text::to_number(services->front());
    if (!value) throw NumberFailure{};
    return *value;
}

double zone_number(std::string_view zone)
{
    const auto value = text::to_number(zone);
    if (!value) throw NumberFailure{};
    return *value;
}

ProductServiceVerdict product_rules(std::string_view product, std::string_view zone, const Services& services)
{
    if (product == "C24") {
        if (in(services, "02") && !in(services, "06")) return {-6, {"06"}};
    } else if (any_of_products(product, {"C06", "C6", "C20"})) {
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "06")) return {-1, {"06"}};
    } else if (product == "C10") {
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "01")) return {-2, {"01"}};
    } else if (any_of_products(product, {"E2", "E02"})) {
        if (in(services, "03") && in(services, "11")) return {-3, {"03", "11"}};
    } else if (any_of_products(product, {"E1", "E01"})) {
        if (first_service_number(services) != 0) {
            const double z = zone_number(zone);
            if (z >= 17 && z <= 26 && !in(services, "03") && !in(services, "13")) return {-4, {"03", "13"}};
        }
        if (first_service_number(services) != 0) {
            const double z = zone_number(zone);
            if (z >= 27 && z <= 33 && !in(services, "02") && !in(services, "04") && !in(services, "13")) return {-5, {"02", "13"}};
        }
    } else if (product == "C13") {
        // Both rows are judged; the second replaces the first when both fire.
        ProductServiceVerdict verdict;
        if (first_service_number(services) != 0 && in(services, "10") && !in(services, "02")) verdict = {-7, {"02"}};
        if (first_service_number(services) != 0) {
            const double z = zone_number(zone);
            if (z == 1 && in(services, "07") && !in(services, "10")) verdict = {-8, {"10"}};
        }
        if (verdict.code != 0) return verdict;
    }
    return {};
}

}  // namespace

std::optional<ListArray> DoValServEsp(const IndexedRule& rule, std::span<const std::string_view> services)
{
    // Flags instead of a struck copy keep the common case, every service admitted, free of allocation.
    thread_local std::vector<char> struck;
    struck.assign(services.size(), 0);
    std::size_t left = services.size();
    for (const auto& row : rule.services) {
        for (std::size_t i = 0; i < services.size(); ++i) {
            if (!struck[i] && services[i] == row) {
                struck[i] = 1;
                --left;
                break;
            }
        }
    }
    if (left == 0) return std::nullopt;

    GlobalFrameWork::StrikeList remaining;
    remaining.reserve(services.size());
    for (std::size_t i = 0; i < services.size(); ++i)
        remaining.push_back(struck[i] ? std::nullopt : std::optional<std::string>(services[i]));
    return GlobalFrameWork::ArrayShrink(remaining);
}

ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone, Services services)
{
    try {
        ProductServiceVerdict verdict = product_rules(product, zone, services);
        if (verdict.code == 0 && in(services, "04") && in(services, "05")) verdict = {-9, {"04", "05"}};
        return verdict;
    } catch (const NumberFailure&) {
        return {-100, {}};
    }
}

}  // namespace nimbara::validation
