// The import of an old Jet file uploaded as the body: its dry run's report at once, or the import
// itself in the background, its progress asked for by id.
#include <sstream>

#include "db_command.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "import_jobs.hpp"

namespace nimbara::serve {
namespace {

// The dry run reports nothing as progress.
class Silent final : public Notifier {
public:
    void message(MessageIcon, std::string_view, std::string_view) override {}
    void busy(bool) override {}
    void progress(int) override {}
};

cli::ImportOptions options_of(const ApiRequest& request)
{
    cli::ImportOptions o;
    o.version = query_text(request, "version").value_or("");
    if (const auto keep = query_text(request, "keep_orphans")) {
        if (*keep != "0" && *keep != "1") throw InputError(400, "keep_orphans: \"" + *keep + "\" is neither 1 nor 0", "keep_orphans");
        o.keep_orphans = *keep == "1";
    }
    return o;
}

}  // namespace

ApiResponse start_import(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"dry_run", "version", "keep_orphans"});
        cli::ImportOptions o = options_of(request);
        if (request.body.empty()) throw InputError(400, "the body must be the old database file's bytes", "/");
        if (dry_run(request)) {
            const UploadedFile file(request.body);
            o.file = file.path().string();
            o.dry_run = true;
            Silent silent;
            std::ostringstream warnings;
            cli::ImportOutcome outcome;
            try {
                outcome = cli::run_import(o, [&] { return request.db; }, silent, nullptr, warnings);
            } catch (const cli::CommandError& e) {
                // The layout or version refused before anything was read; the name is the temporary file's.
                throw InputError(422, e.what(), "version");
            }
            outcome.document.erase("file");
            if (outcome.status != 0)
                throw InputError(422, outcome.document.value("error", std::string("the import failed")));
            return json_response(200, outcome.document);
        }
        if (!import_jobs().can_start())
            throw InputError(503, "this server has no connection of its own for a background import");
        const std::size_t bytes = request.body.size();
        const auto id = import_jobs().start(std::make_unique<UploadedFile>(request.body), o);
        if (!id) throw InputError(409, "an import is running already; wait for it to end");
        auto response = json_response(202, {{"id", *id}});
        response.audit = AuditEntry{"import", "import " + std::to_string(*id) + " of a file of " + std::to_string(bytes) + " bytes"};
        return response;
    });
}

ApiResponse import_progress(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const auto job = import_jobs().find(path_whole(request, "id", 1, 1'000'000'000));
        if (!job) throw InputError(404, "no import with that id", "id");
        return json_response(200, {{"state", job->state},
                                   {"done", job->done},
                                   {"total", job->total},
                                   {"summary", job->summary.is_null() ? nlohmann::ordered_json::object() : job->summary}});
    });
}

}  // namespace nimbara::serve
