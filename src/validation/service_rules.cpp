#include "validation/service_rules.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
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

// A code as a number: plain digits, as codes are, on the spot, and any other text by the general
// conversion, which answers alike for digits. Text that is no number gives NaN, which is returned
// in a register where an optional would go through memory on every line.
double number_of(std::string_view code)
{
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    if (code.empty() || code.size() > 9) return text::to_number(code).value_or(kNoNumber);
    int value = 0;
    for (const char c : code) {
        if (c < '0' || c > '9') return text::to_number(code).value_or(kNoNumber);
        value = value * 10 + (c - '0');
    }
    return value;
}

// Reading the first service or the zone as a number fails (NaN) for no list or for text that is no
// number; the whole procedure then ends with -100, which lets a line without services through.
double first_service_number(const Services& services)
{
    if (!services || services->empty()) return std::numeric_limits<double>::quiet_NaN();
    return number_of(services->front());
}

constexpr int kNumberFailure = -100;

// The codes each rule expects, in static storage so that a verdict refers to them.
constexpr std::string_view k01[] = {"01"}, k02[] = {"02"}, k06[] = {"06"}, k10[] = {"10"};
constexpr std::string_view k02_13[] = {"02", "13"}, k03_11[] = {"03", "11"}, k03_13[] = {"03", "13"};
constexpr std::string_view k04_05[] = {"04", "05"};

[[gnu::noinline]] ProductServiceVerdict product_rules(ServiceFamily family, std::string_view zone, const Services& services)
{
    switch (family) {
    case ServiceFamily::None: break;
    case ServiceFamily::C24:
        if (in(services, "02") && !in(services, "06")) return {-6, k06};
        break;
    case ServiceFamily::C06:
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "06")) return {-1, k06};
        break;
    case ServiceFamily::C10:
        if ((in(services, "02") || in(services, "04") || in(services, "05")) && !in(services, "01")) return {-2, k01};
        break;
    case ServiceFamily::E02:
        if (in(services, "03") && in(services, "11")) return {-3, k03_11};
        break;
    case ServiceFamily::E01: {
        const double first = first_service_number(services);
        if (std::isnan(first)) return {kNumberFailure, {}};
        if (first != 0) {
            const double z = number_of(zone);
            if (std::isnan(z)) return {kNumberFailure, {}};
            if (z >= 17 && z <= 26 && !in(services, "03") && !in(services, "13")) return {-4, k03_13};
            if (z >= 27 && z <= 33 && !in(services, "02") && !in(services, "04") && !in(services, "13")) return {-5, k02_13};
        }
        break;
    }
    case ServiceFamily::C13: {
        const double first = first_service_number(services);
        if (std::isnan(first)) return {kNumberFailure, {}};
        if (first != 0) {
            // Both rows are judged; the second replaces the first when both fire.
            ProductServiceVerdict verdict;
            if (in(services, "10") && !in(services, "02")) verdict = {-7, k02};
            const double z = number_of(zone);
            if (std::isnan(z)) return {kNumberFailure, {}};
            if (z == 1 && in(services, "07") && !in(services, "10")) verdict = {-8, k10};
            if (verdict.code != 0) return verdict;
        }
        break;
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
// services are left. Codes are compared by their keys, and by their texts only when both are long.
std::size_t strike(const IndexedRule& rule, std::span<const std::string_view> services, std::span<const CodeKey> keys,
                   Struck& struck)
{
    std::size_t left = services.size();
    for (std::size_t r = 0; r < rule.services.size(); ++r) {
        const CodeKey row = rule.service_keys[r];
        for (std::size_t i = 0; i < services.size(); ++i) {
            if (!struck[i] && keys[i] == row && (row != kLongCode || same(services[i], rule.services[r]))) {
                struck.set(i);
                --left;
                break;
            }
        }
    }
    return left;
}

}  // namespace

bool admits_all_services(const IndexedRule& rule, std::span<const std::string_view> services,
                         std::span<const CodeKey> keys)
{
    Struck struck(services.size());
    if (strike(rule, services, keys, struck) == 0) return true;
    // Empty codes drop out of the list of refused ones, and an empty list refuses nothing.
    for (std::size_t i = 0; i < services.size(); ++i)
        if (!struck[i] && !services[i].empty()) return false;
    return true;
}

std::optional<ListArray> DoValServEsp(const IndexedRule& rule, std::span<const std::string_view> services)
{
    std::vector<CodeKey> keys;
    keys.reserve(services.size());
    for (const auto code : services) keys.push_back(key_or_long(code));
    Struck struck(services.size());
    if (strike(rule, services, keys, struck) == 0) return std::nullopt;
    GlobalFrameWork::StrikeList remaining;
    remaining.reserve(services.size());
    for (std::size_t i = 0; i < services.size(); ++i)
        remaining.push_back(struck[i] ? std::nullopt : std::optional<std::string>(services[i]));
    return GlobalFrameWork::ArrayShrink(remaining);
}

ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone, Services services)
{
    return DoValServEspByProduto(service_family_of(product), zone, services);
}

ProductServiceVerdict DoValServEspByProduto(ServiceFamily family, std::string_view zone, Services services)
{
    // Most products have no rule of their own: they skip the frame the others' checks need.
    ProductServiceVerdict verdict = family == ServiceFamily::None ? ProductServiceVerdict{} : product_rules(family, zone, services);
    if (verdict.code == 0 && in(services, "04") && in(services, "05")) verdict = {-9, k04_05};
    return verdict;
}

}  // namespace nimbara::validation
