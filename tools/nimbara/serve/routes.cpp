#include "routes.hpp"

#include "handlers.hpp"

namespace nimbara::serve {

std::span<const Route> api_routes()
{
    static constexpr Route routes[] = {
        {"GET", "/codes", Role::clerk, false, get_codes},
        {"GET", "/possible-values", Role::clerk, false, get_possible_values},
        {"POST", "/lines/check", Role::clerk, false, check_line},
        {"GET", "/clients", Role::clerk, false, list_clients},
        {"POST", "/clients", Role::admin, true, create_client},
        {"GET", "/clients/{code}", Role::clerk, false, get_client},
        {"PUT", "/clients/{code}", Role::admin, true, update_client},
        {"DELETE", "/clients/{code}", Role::admin, true, delete_client},
        {"GET", "/clients/{code}/contracts", Role::clerk, false, list_contracts},
        {"POST", "/clients/{code}/contracts", Role::admin, true, create_contract},
        {"PUT", "/contracts/{id}", Role::admin, true, update_contract},
        {"DELETE", "/contracts/{id}", Role::admin, true, delete_contract},
        {"POST", "/guias/check", Role::clerk, false, check_guia},
        {"POST", "/guias", Role::clerk, true, save_guia},
        {"GET", "/guias", Role::clerk, false, list_guias},
        {"GET", "/guias/export", Role::clerk, false, export_guias},
        {"GET", "/guias/{id}", Role::clerk, false, get_guia},
        {"DELETE", "/guias/{id}", Role::clerk, true, delete_guia},
        {"GET", "/guias/{id}/printable", Role::clerk, false, guia_printable},
        {"GET", "/guias/{id}/pdf", Role::clerk, false, guia_pdf},
        {"GET", "/summary", Role::clerk, false, month_summary},
        {"GET", "/settings", Role::admin, false, get_settings},
        {"PUT", "/settings", Role::admin, true, put_settings},
        {"POST", "/settings/preview", Role::admin, true, preview_settings},
        {"POST", "/imports", Role::admin, true, start_import},
        {"GET", "/imports/{id}", Role::admin, false, import_progress},
    };
    return routes;
}

}  // namespace nimbara::serve
