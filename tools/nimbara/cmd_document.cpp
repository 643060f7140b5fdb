// nimbara document NAME: writes a catalogue document's text exactly, nothing added; --list names them.
#include <iostream>
#include <string>

#include "commands.hpp"
#include "nimbara/GlobalXML.hpp"

namespace nimbara::cli {

void register_document(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("document", "Write a catalogue document's text exactly as its function returns it");
    auto name = std::make_shared<std::string>();
    auto list = std::make_shared<bool>(false);
    auto* name_option = cmd->add_option("NAME", *name, "The document's function name, e.g. getXML_DoValPeso");
    cmd->add_flag("--list", *list, "List the names of the 27 documents, one a line")->excludes(name_option);
    cmd->footer("Exit status: 0 written, 2 an unknown name (the known ones are listed) or neither NAME nor --list.\n"
                "Examples:\n  nimbara document --list\n  nimbara document getXML_DoValPeso\n"
                "  nimbara document GetXMLPossibleValues_ZonaTaxacao > zones.xml");
    cmd->callback([name, list, &status] {
        if (*list) {
            for (const auto known : GlobalXML::document_names()) std::cout << known << '\n';
            return;
        }
        if (name->empty()) {
            std::cerr << "nimbara document: give NAME, or --list for the names\n";
            status = 2;
            return;
        }
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
