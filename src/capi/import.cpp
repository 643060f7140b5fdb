// The import of an old database into a store, with the host's progress callback and cancel flag.
#include <filesystem>

#include "capi/handles.hpp"
#include "capi/texts.hpp"
#include "nimbara/cls_Importacao.hpp"

using namespace nimbara::capi;

extern "C" nimbara_status nimbara_store_import(nimbara_store* store, const char* path, size_t path_size,
                                               const char* version, size_t version_size,
                                               const nimbara_import_options* options, nimbara_import_counts* counts)
{
    return guarded([&] {
        required(store, "store");
        const std::filesystem::path file(text_in(path, path_size, "path"));
        std::string v(text_in(version, version_size, "version"));
        const auto o = sized_in(options, "options");
        if (!nimbara::ImportProcedureFor(v))
            throw Refusal(NIMBARA_BAD_ARGUMENT, "version \"" + v + "\" is not one that can be imported");
        std::error_code ec;
        if (!std::filesystem::exists(file, ec)) throw Refusal(NIMBARA_NOT_FOUND, "no file \"" + file.string() + "\"");
        if (const auto problem = nimbara::ImportSourceProblem(file)) throw Refusal(NIMBARA_BAD_ARGUMENT, *problem);

        nimbara::cls_Importacao importacao(store->db);
        importacao.KeepOrphans = o.keep_orphans != 0;
        if (o.progress) importacao.Progress = [&o](int value) { o.progress(o.user, value); };
        bool cancelled = false;
        // The flag is set by another thread of the host: read atomically, at every row.
        if (o.cancel) importacao.Cancelled = [&o, &cancelled] { return cancelled = __atomic_load_n(o.cancel, __ATOMIC_RELAXED) != 0; };
        importacao.ImportaDados(file.parent_path().string(), file.filename().string(), v);
        if (cancelled) throw Refusal(NIMBARA_CANCELLED, importacao.LastError());
        if (!importacao.Succeeded()) throw Refusal(NIMBARA_DATABASE, "the import failed: " + importacao.LastError());
        const auto& n = importacao.LastCounts();
        if (counts) {
            nimbara_import_counts filled{};
            filled.clientes = n.Clientes;
            filled.contratos = n.Contratos;
            filled.guias = n.Guias;
            filled.linhas = n.Linhas;
            filled.servicos = n.Servicos;
            sized_out(filled, counts, "counts");
        }
    });
}
