#include "validation/service_rules.hpp"

#include <algorithm>
#include <vector>

#include "foundation/list_helpers.hpp"
#include "foundation/text.hpp"

namespace nimbara::validation {
namespace {

// Codes are a few characters long, which a plain loop compares faster than a call to the library.
bool same(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i]) return false;
    return true;
}

bool in(const Services& services, std::string_view code)
{
    return services && std::any_of(services->begin(), services->end(), [code](std::string_view s) { return same(s, code); });
}

bool any_of_products(std::string_view product, std::initializer_list<std::string_view> names)
{
    return std::any_of(names.begin(), names.end(), [product](std::string_view n) { return same(n, product); });
}

// A code as a number: plain digits, as codes are, on the spot, and any other text by the general
// conversion, which answers alike for digits.
std::optional<double> number_of(std::string_view code)
{
    if (code.empty() || code.size() > 9) return text::to_number(code);
    int value = 0;
    for (const char c : code) {
        if (c < '0' || c > '9') return text::to_number(code);
        value = value * 10 + (c - '0');
    }
    return value;
}

// Reading the first service or the zone as a number fails for no list or for text that is no
// number; the whole procedure then ends with -100, which lets a line without services through.
std::optional<double> first_service_number(const Services& services)
{
    if (!services || services->empty()) return std::nullopt;
    return number_of(services->front());
}

constexpr int kNumberFailure = -100;

// The codes each rule expects, in static storage so that a verdict refers to them.
constexpr std::string_view k01[] = {"01"}, k02[] = {"02"}, k06[] = {"06"}, k10[] = {"10"};
constexpr std::string_view k02_13[] = {"02", "13"}, k03_11[] = {"03", "11"}, k03_13[] = {"03", "13"};
constexpr std::string_view k04_05[] = {"04", "05"};

ProductServiceVerdict product_rules(std::string_view product, std::string_view zone, const Services& services)
{
    // Only products of the C and E families have rules of their own.
    if (product.empty() || (product[0] != 'C' && product[0] != 'E')) return {};
    if (same(product, "C24")) {
        if (in(services, "02") && !in(services, "06")) return {-6, k06};
    } else if (any_of_products(product, {"C06", "C6", "C20"})) {
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "06")) return {-1, k06};
    } else if (same(product, "C10")) {
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "01")) return {-2, k01};
    } else if (any_of_products(product, {"E2", "E02"})) {
        if (in(services, "03") && in(services, "11")) return {-3, k03_11};
    } else if (any_of_products(product, {"E1", "E01"})) {
        const auto first = first_service_number(services);
        if (!first) return {kNumberFailure, {}};
        if (*first != 0) {
            const auto z = number_of(zone);
            if (!z) return {kNumberFailure, {}};
            if (*z >= 17 && *z <= 26 && !in(services, "03") && !in(services, "13")) return {-4, k03_13};
            if (*z >= 27 && *z <= 33 && !in(services, "02") && !in(services, "04") && !in(services, "13")) return {-5, k02_13};
        }
    } else if (same(product, "C13")) {
        const auto first = first_service_number(services);
        if (!first) return {kNumberFailure, {}};
        if (*first != 0) {
            // Both rows are judged; the second replaces the first when both fire.
            ProductServiceVerdict verdict;
            if (in(services, "10") && !in(services, "02")) verdict = {-7, k02};
            const auto z = number_of(zone);
            if (!z) return {kNumberFailure, {}};
            if (*z == 1 && in(services, "07") && !in(services, "10")) verdict = {-8, k10};
            if (verdict.code != 0) return verdict;
        }
    }
    return {};
}

// Which of a line's services a rule row has struck: bits for the usual handful, flags beyond.
class Struck {
public:
    explicit Struck(std::size_t count)
    {
        if (count > 64) more_.assign(count, 0);
    }
    bool operator[](std::size_t i) const { return more_.empty() ? (bits_ >> i) & 1 : more_[i] != 0; }
    void set(std::size_t i)
    {
        if (more_.empty())
            bits_ |= std::uint64_t{1} << i;
        else
            more_[i] = 1;
    }

private:
    std::uint64_t bits_ = 0;
    std::vector<char> more_;
};

// Strikes, for each rule row, the first service not yet struck that equals it; answers how many
// services are left.
std::size_t strike(const IndexedRule& rule, std::span<const std::string_view> services, Struck& struck)
{
    std::size_t left = services.size();
    for (const auto& row : rule.services) {
        for (std::size_t i = 0; i < services.size(); ++i) {
            if (!struck[i] && same(services[i], row)) {
                struck.set(i);
                --left;
                break;
            }
        }
    }
    return left;
}

}  // namespace

bool admits_all_services(const IndexedRule& rule, std::span<const std::string_view> services)
{
    Struck struck(services.size());
    if (strike(rule, services, struck) == 0) return true;
    // Empty codes drop out of the list of refused ones, and an empty list refuses nothing.
    for (std::size_t i = 0; i < services.size(); ++i)
        if (!struck[i] && !services[i].empty()) return false;
    return true;
}

std::optional<ListArray> DoValServEsp(const IndexedRule& rule, std::span<const std::string_view> services)
{
    Struck struck(services.size());
    if (strike(rule, services, struck) == 0) return std::nullopt;
    GlobalFrameWork::StrikeList remaining;
    remaining.reserve(services.size());
    for (std::size_t i = 0; i < services.size(); ++i)
        remaining.push_back(struck[i] ? std::nullopt : std::optional<std::string>(services[i]));
    return GlobalFrameWork::ArrayShrink(remaining);
}

ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone, Services services)
{
    ProductServiceVerdict verdict = product_rules(product, zone, services);
    if (verdict.code == 0 && in(services, "04") && in(services, "05")) verdict = {-9, k04_05};
    return verdict;
}

}  // namespace nimbara::validation
