#include "platform/print_server.hpp"

#include "platform/module_loader.hpp"

namespace nimbara::platform {

std::unique_ptr<PrintServer> connect_print_server()
{
    const auto make = loaded_module("cups").entry<decltype(nimbara_print_server)>("nimbara_print_server");
    return std::unique_ptr<PrintServer>(make());
}

}  // namespace nimbara::platform
