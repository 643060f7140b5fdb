#include "capi/printing.hpp"


#include "capi/texts.hpp"
#include "nimbara/PdfSurface.hpp"

namespace nimbara::capi {

nimbara_print_job print_guia(cls_ValProdutosA guia, const std::optional<std::filesystem::path>& folder)
{
    nimbara_print_job job;
    std::shared_ptr<PdfSurface> memory;
    if (folder) {
        guia.setPrintFolder(*folder);
    } else {
        memory = std::make_shared<PdfSurface>([&job](int, std::string pdf) { job.items.push_back(std::move(pdf)); });
        guia.setPrinter(memory);
    }
    guia.setPrintingEnabled(true);
    const GuiaOutcome outcome = guia.ImprimeGuiaOutcome(true);
    if (outcome.failure) throw Refusal(NIMBARA_IO, "the Guia was not printed: " + outcome.failure->cause);
    if (outcome.copies <= 0) throw Refusal(NIMBARA_BAD_ARGUMENT, "the Guia has nothing to print (no header or no line)");
    if (!outcome.print_failures.empty())
        throw Refusal(NIMBARA_IO, "the Guia did not print whole: " + outcome.print_failures.front());
    if (folder) {
        for (const auto& pdf : outcome.printed) job.items.push_back(pdf.string());
        if (job.items.size() != static_cast<std::size_t>(outcome.copies))
            throw Refusal(NIMBARA_IO, "the Guia did not print whole into \"" + folder->string() + "\"");
    } else if (job.items.size() != static_cast<std::size_t>(outcome.copies)) {
        throw Refusal(NIMBARA_IO, "the Guia did not print whole: " + std::to_string(job.items.size()) + " of " +
                                      std::to_string(outcome.copies) + " copies");
    }
    return job;
}

}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

void nimbara_print_job_destroy(nimbara_print_job* job) { delete job; }

size_t nimbara_print_job_count(const nimbara_print_job* job) { return job ? job->items.size() : 0; }

nimbara_status nimbara_print_job_item(const nimbara_print_job* job, size_t index, const char** data, size_t* size)
{
    return guarded([&] {
        const auto& items = required(job, "job").items;
        if (index >= items.size())
            throw Refusal(NIMBARA_BAD_ARGUMENT, "item " + std::to_string(index) + " of " + std::to_string(items.size()));
        required(data, "data") = items[index].data();
        required(size, "size") = items[index].size();
    });
}

}
