#pragma once
// The domain handlers, one per route of routes.cpp, grouped by subject in handlers_*.cpp. Each is a
// pure function of its request: it reads and writes only the request's database.
#include "api.hpp"

namespace nimbara::serve {

// handlers_lines.cpp: the codes, the accepted values and one line's verdict.
ApiResponse get_codes(const ApiRequest& request);
ApiResponse get_possible_values(const ApiRequest& request);
ApiResponse check_line(const ApiRequest& request);

// handlers_clients.cpp
ApiResponse list_clients(const ApiRequest& request);
ApiResponse get_client(const ApiRequest& request);
ApiResponse create_client(const ApiRequest& request);
ApiResponse update_client(const ApiRequest& request);
ApiResponse delete_client(const ApiRequest& request);
ApiResponse list_contracts(const ApiRequest& request);
ApiResponse create_contract(const ApiRequest& request);
ApiResponse update_contract(const ApiRequest& request);
ApiResponse delete_contract(const ApiRequest& request);

// handlers_guias.cpp
ApiResponse check_guia(const ApiRequest& request);
ApiResponse save_guia(const ApiRequest& request);
ApiResponse list_guias(const ApiRequest& request);
ApiResponse get_guia(const ApiRequest& request);
ApiResponse delete_guia(const ApiRequest& request);
ApiResponse guia_printable(const ApiRequest& request);
ApiResponse guia_pdf(const ApiRequest& request);
ApiResponse export_guias(const ApiRequest& request);

// handlers_summary.cpp
ApiResponse month_summary(const ApiRequest& request);

// handlers_settings.cpp
ApiResponse get_settings(const ApiRequest& request);
ApiResponse put_settings(const ApiRequest& request);
ApiResponse preview_settings(const ApiRequest& request);

// handlers_imports.cpp
ApiResponse start_import(const ApiRequest& request);
ApiResponse import_progress(const ApiRequest& request);

}  // namespace nimbara::serve
