// nimbara document NAME: writes a catalogue document's text exactly, nothing added.
#include <iostream>
#include <string>

#include "commands.hpp"
#include "nimbara/GlobalXML.hpp"

namespace nimbara::cli {

void register_document(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("document", "Write a catalogue document's text exactly as its function returns it");
    auto name = std::make_shared<std::string>();
    cmd->add_option("NAME", *name, "The document's function name, e.g. getXML_DoValPeso")->required();
    cmd->callback([name, &status] {
        if (const auto text = GlobalXML::document(*name)) {
            std::cout << *text << std::flush;
            return;
        }
        std::cerr << "nimbara document: unknown document \"" << *name << "\"; known documents:\n";
        for (const auto known : GlobalXML::document_names()) std::cerr << "  " << known << '\n';
        status = 2;
    });
}

}  // namespace nimbara::cli
