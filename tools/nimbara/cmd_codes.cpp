// nimbara codes [KIND...] [--product P]: the codes a product line may carry, from the compiled-in
// rule catalogue (no database), with their designations; with --product, only those its rules accept.
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "codes_json.hpp"
#include "commands.hpp"
#include "json_output.hpp"
#include "option_checks.hpp"

namespace nimbara::cli {
namespace {

struct CodesOptions {
    std::vector<std::string> kinds;
    std::string product;
    bool json = false;
};

int codes(const CodesOptions& o, std::ostream& out)
{
    const std::optional<std::string> product = o.product.empty() ? std::nullopt : std::optional<std::string>(o.product);
    const auto document = codes_document(o.kinds, product);
    if (o.json) {
        write_json(out, document);
        return 0;
    }
    bool first = true;
    for (const auto& entry : document["kinds"]) {
        const bool weight = entry.contains("steps");
        out << (first ? "" : "\n") << entry["kind"].get<std::string>() << " (" << entry["field"].get<std::string>()
            << (weight ? ", grams" : "") << ")" << (product ? " for product " + o.product : std::string()) << ":\n";
        first = false;
        if (weight) {
            for (const auto& step : entry["steps"])
                out << "  " << step["product"].get<std::string>() << "  above " << step["above"].get<std::int32_t>()
                    << ", up to " << step["up_to"].get<std::int32_t>() << '\n';
            continue;
        }
        for (const auto& c : entry["codes"]) {
            const auto code = c["code"].get<std::string>(), designation = c["designation"].get<std::string>();
            out << "  " << code << std::string(code.size() < 4 ? 5 - code.size() : 1, ' ')
                << (designation.empty() && code == "0" ? "(not applicable)" : designation) << '\n';
        }
    }
    return 0;
}

}  // namespace

void register_codes(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("codes", "List the codes a product line may carry, from the compiled-in rule "
                                            "catalogue (no database), with their designations");
    auto o = std::make_shared<CodesOptions>();
    const std::vector<std::string> names = code_kind_names();
    cmd->add_option("KIND", o->kinds, "The kinds of code to list (default: all)")->check(one_of(names));
    cmd->add_option("--product", o->product, "Only the codes the active rules of this product accept (e.g. C01)");
    cmd->add_flag("--json", o->json, "Write the lists as one JSON document");
    cmd->footer("Code \"0\" means the dimension does not apply to the line; an empty sampling delivery counts as "
                "\"0\". A weight (Escalao, grams) passes a step when it is above the step's first number and up to "
                "its second. Pre-treatment 1 stands for any whole number above 0.\n"
                "Exit status: 0 listed, 2 an unknown kind or a product without an active rule.\nExamples:\n"
                "  nimbara codes zone --product C01\n  nimbara codes service weight --product C06\n"
                "  nimbara codes product --json");
    cmd->callback([o, &status] {
        try {
            status = codes(*o, std::cout);
        } catch (const std::exception& e) {
            std::cerr << "nimbara codes: " << e.what() << '\n';
            if (o->json) write_json(std::cout, refusal_json("nimbara codes", e.what()));
            status = 2;
        }
    });
}

}  // namespace nimbara::cli
