// The façade behind a nimbara_validator: lines, batches, filling, validation and ImprimeGuia.
#include <ostream>
#include <streambuf>
#include <string>

#include "capi/fields.hpp"
#include "capi/handles.hpp"
#include "capi/outcome.hpp"
#include "capi/printing.hpp"
#include "capi/texts.hpp"
#include "nimbara/GlobalFrameWork.hpp"
#include "nimbara/line_batch.hpp"

namespace nimbara::capi {
namespace {

// Reads the host's buffer where it lies, so that a batch is never copied before it is judged.
class BorrowedBuffer : public std::streambuf {
public:
    BorrowedBuffer(const char* data, std::size_t size)
    {
        char* begin = const_cast<char*>(data);  // only ever read
        setg(begin, begin, begin + size);
    }
};

// Collects what the batch writes, without the copy a string stream makes at the end.
class GrowingBuffer : public std::streambuf {
public:
    std::string text;

protected:
    int_type overflow(int_type c) override
    {
        if (c != traits_type::eof()) text.push_back(traits_type::to_char_type(c));
        return c;
    }
    std::streamsize xsputn(const char* s, std::streamsize n) override
    {
        text.append(s, static_cast<std::size_t>(n));
        return n;
    }
};

std::optional<std::filesystem::path> folder_in(const char* data, std::size_t size)
{
    const auto text = text_in(data, size, "folder");
    if (text.empty()) return std::nullopt;
    return std::filesystem::path(text);
}

}  // namespace
}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

nimbara_status nimbara_validator_create(nimbara_validator** validator)
{
    return guarded([&] { required(validator, "validator") = new nimbara_validator{}; });
}

void nimbara_validator_destroy(nimbara_validator* validator) { delete validator; }

nimbara_status nimbara_check_line(const nimbara_validator* validator, const nimbara_line* line, int32_t* number,
                                  char** description, size_t* description_size)
{
    return guarded([&] {
        const auto& facade = required(validator, "validator").facade;
        // A host of this version's struct is read in place; an older, smaller one through a copy.
        nimbara_line copy;
        const bool whole = required(line, "line").struct_size >= sizeof(nimbara_line);
        if (!whole) copy = sized_in(line, "line");
        const nimbara_line& l = whole ? *line : copy;
        const auto result = facade.DoValidaProduto(
            text_in(l.produto, l.produto_size, "produto"), text_in(l.zona, l.zona_size, "zona"), l.peso,
            text_in(l.velocidade, l.velocidade_size, "velocidade"), text_in(l.formato, l.formato_size, "formato"),
            text_in(l.pre_tratamento, l.pre_tratamento_size, "pre_tratamento"),
            text_in(l.desconto, l.desconto_size, "desconto"), text_in(l.ambito, l.ambito_size, "ambito"),
            text_in(l.amostra, l.amostra_size, "amostra"), text_in(l.servicos, l.servicos_size, "servicos"));
        if (number) *number = result ? result->number : 0;
        if (!result) return NIMBARA_OK;
        if (description) text_out(outcome_error(*result, 0, "").description, description, description_size, "description");
        return NIMBARA_FAILED_VALIDATION;
    });
}

nimbara_status nimbara_check_lines(const nimbara_validator* validator, const char* tsv, size_t tsv_size, char** results,
                                   size_t* results_size, size_t* refused)
{
    return guarded([&] {
        required(validator, "validator");
        required(results, "results");
        const auto text = text_in(tsv, tsv_size, "tsv");
        BorrowedBuffer in_buffer(text.data(), text.size());
        std::istream in(&in_buffer);
        GrowingBuffer out_buffer;
        out_buffer.text.reserve(text.size() / 8);
        std::ostream out(&out_buffer);
        // Each refused line's reason is in its own result line; the messages for a terminal are not needed.
        std::ostream messages(nullptr);
        const auto summary = nimbara::check_line_batch(in, out, messages, "batch");
        out.flush();
        text_out(out_buffer.text, results, results_size, "results");
        if (refused) *refused = summary.refused;
    });
}

nimbara_status nimbara_validator_fill(nimbara_validator* validator, const nimbara_guia* guia)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        if (const auto refused = nimbara::fill_guia(facade, required(guia, "guia").file))
            throw Refusal(NIMBARA_BAD_ARGUMENT, *refused);
    });
}

nimbara_status nimbara_validator_fill_fields(nimbara_validator* validator, nimbara_section section,
                                             const nimbara_field* fields, size_t count)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        const nimbara_section checked = enumerator(section, NIMBARA_SERVICO, "section");
        nimbara::GuiaFile one;
        fill_section(one, checked, fields, count);
        bool accepted = true;
        switch (checked) {
        case NIMBARA_CABECALHO: accepted = facade.PreencheCabecalho(one.cabecalho) == 0; break;
        case NIMBARA_PARAMETROS: accepted = !facade.PreencheParametros(one.parametros).has_value(); break;
        case NIMBARA_PRODUTO: accepted = !facade.PreencheProduto(one.produtos.front()).has_value(); break;
        case NIMBARA_SERVICO: accepted = !facade.PreencheServico(one.servicos.front()).has_value(); break;
        }
        if (!accepted) {
            const auto& failure = facade.LastError();
            throw Refusal(NIMBARA_BAD_ARGUMENT,
                          failure ? failure->where + ": " + failure->cause : std::string("the fill answered -1"));
        }
    });
}

nimbara_status nimbara_validator_validate(const nimbara_validator* validator, nimbara_outcome** outcome)
{
    return guarded([&] {
        const auto& arrays = required(validator, "validator").facade.arrays();
        required(outcome, "outcome");
        if (arrays.arrGuia.empty()) throw Refusal(NIMBARA_BAD_ARGUMENT, "the Guia has no product line");
        try {
            return hand_out(outcome_of(nimbara::document::build_validation_report(arrays)), outcome);
        } catch (const nimbara::document::ReportFailure& e) {
            throw Refusal(NIMBARA_BAD_ARGUMENT, e.what());
        }
    });
}

nimbara_status nimbara_validator_set_report_folder(nimbara_validator* validator, const char* folder, size_t folder_size)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        facade.setReportFolder(folder_in(folder, folder_size).value_or(nimbara::GlobalFrameWork::DefaultOutputFolder()));
    });
}

nimbara_status nimbara_validator_set_print_folder(nimbara_validator* validator, const char* folder, size_t folder_size)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        facade.setPrintFolder(folder_in(folder, folder_size).value_or(facade.reportFolder()));
    });
}

nimbara_status nimbara_validator_set_print_log(nimbara_validator* validator, const char* path, size_t path_size)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        facade.setPrintLog(folder_in(path, path_size).value_or(nimbara::GlobalFrameWork::DefaultPrintLog()));
    });
}

nimbara_status nimbara_validator_imprime_guia(nimbara_validator* validator, int only_printer, char** answer,
                                              size_t* answer_size)
{
    return guarded([&] {
        auto& facade = required(validator, "validator").facade;
        required(answer, "answer");
        text_out(facade.ImprimeGuia(only_printer != 0), answer, answer_size, "answer");
    });
}

nimbara_status nimbara_validator_print_memory(const nimbara_validator* validator, nimbara_print_job** job)
{
    return guarded([&] {
        required(job, "job");
        *job = new nimbara_print_job(print_guia(required(validator, "validator").facade, std::nullopt));
    });
}

nimbara_status nimbara_validator_print_files(const nimbara_validator* validator, const char* folder, size_t folder_size,
                                             nimbara_print_job** job)
{
    return guarded([&] {
        required(job, "job");
        const auto place = folder_in(folder, folder_size);
        if (!place) throw Refusal(NIMBARA_BAD_ARGUMENT, "no folder to print into");
        *job = new nimbara_print_job(print_guia(required(validator, "validator").facade, place));
    });
}

}
