#pragma once
// The special-service checks of a line whose rule is settled: the rule's own service rows, and the
// dependencies and exclusions between services written by hand for a few products.
#include <optional>
#include <span>
#include <string_view>

#include "nimbara/error_array.hpp"
#include "validation/rule_index.hpp"
#include "validation/service_family.hpp"

namespace nimbara::validation {

// The line's services as split from its comma-joined text; no list at all is std::nullopt.
using Services = std::optional<std::span<const std::string_view>>;

// Whether DoValServEsp would answer nothing, without making the list; `keys` are the services'
// keys (key_or_long), made once per line.
bool admits_all_services(const IndexedRule& rule, std::span<const std::string_view> services,
                         std::span<const CodeKey> keys);

// The services the rule does not admit, each rule row striking one occurrence; nothing when all pass.
std::optional<ListArray> DoValServEsp(const IndexedRule& rule, std::span<const std::string_view> services);

struct ProductServiceVerdict {
    int code = 0;  // 0: no rule fired; -1 to -9 a rule; -100 a failure, which callers treat as no error
    std::span<const std::string_view> list;  // the codes the rule expects, for the explanation to the user
};

ProductServiceVerdict DoValServEspByProduto(std::string_view product, std::string_view zone, Services services);
// The same for a product whose family is settled.
ProductServiceVerdict DoValServEspByProduto(ServiceFamily family, std::string_view zone, Services services);

}  // namespace nimbara::validation
