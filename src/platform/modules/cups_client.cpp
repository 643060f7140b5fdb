// The CUPS client of the module "cups": IPP requests over one connection per call to the server the
// environment names.
#include <cups/cups.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/print_server.hpp"

namespace nimbara::platform {
namespace {

struct HttpCloser {
    void operator()(http_t* http) const { httpClose(http); }
};
using Connection = std::unique_ptr<http_t, HttpCloser>;

struct IppDeleter {
    void operator()(ipp_t* ipp) const { ippDelete(ipp); }
};
using Response = std::unique_ptr<ipp_t, IppDeleter>;

// A server that does not answer within this is taken for absent, rather than hanging the print run.
constexpr int kConnectMillis = 30000;
// The document goes in pieces of this size, so that a connection lost midway is known at once.
constexpr std::size_t kChunk = 64 * 1024;

std::string server_name()
{
    const char* server = cupsServer();
    return server ? server : "localhost";
}

std::string in_quotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

// The server's own reason for the last request, or the system's for a connection that failed.
std::string last_reason()
{
    const char* why = cupsLastErrorString();
    return why && *why ? why : ippErrorString(cupsLastError());
}

struct Connected {
    Connection http;
    std::optional<PrintFault> fault;
};

// Why the connection to the server could not be made: the socket that is not there, or the system's
// reason for the refusal (libcups leaves errno as the last call it made set it, which may say nothing).
std::string unreachable_because(const std::string& server, int error)
{
    if (server.starts_with('/')) {
        std::error_code ec;
        if (!std::filesystem::exists(server, ec)) return "there is no such socket";
    }
    if (error == ECONNREFUSED || error == ENOENT || error == EACCES || error == ETIMEDOUT || error == EHOSTUNREACH ||
        error == ENETUNREACH || error == ECONNRESET)
        return std::strerror(error);
    return "it does not answer";
}

Connected connect()
{
    const std::string server = server_name();
    errno = 0;
    http_t* http = httpConnect2(server.c_str(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1, kConnectMillis,
                                nullptr);
    if (!http) {
        const int error = errno;
        return {nullptr, PrintFault{PrinterFault::NoServer, "no CUPS server answers at " + in_quotes(server) + ": " +
                                                                unreachable_because(server, error)}};
    }
    return {Connection(http), std::nullopt};
}

// A request that never reached the server, or whose answer never came back, is the connection's fault.
bool connection_failed(ipp_status_t status)
{
    return status == IPP_STATUS_ERROR_SERVICE_UNAVAILABLE || status == IPP_STATUS_ERROR_INTERNAL;
}

std::string job_state_name(int state)
{
    switch (state) {
    case IPP_JSTATE_PENDING: return "pending";
    case IPP_JSTATE_HELD: return "held";
    case IPP_JSTATE_PROCESSING: return "processing";
    case IPP_JSTATE_STOPPED: return "stopped";
    case IPP_JSTATE_CANCELED: return "canceled";
    case IPP_JSTATE_ABORTED: return "aborted";
    case IPP_JSTATE_COMPLETED: return "completed";
    default: return "";
    }
}

std::string printer_state_name(int state)
{
    switch (state) {
    case IPP_PSTATE_IDLE: return "idle";
    case IPP_PSTATE_PROCESSING: return "printing";
    case IPP_PSTATE_STOPPED: return "stopped";
    default: return "";
    }
}

std::string text_of(ipp_attribute_t* attr)
{
    const char* text = ippGetString(attr, 0, nullptr);
    return text ? text : "";
}

// The user's default queue as `lp` would take it (LPDEST, PRINTER, lpoptions, then the server's).
std::string default_queue(http_t* http)
{
    cups_dest_t* dest = cupsGetNamedDest(http, nullptr, nullptr);
    if (!dest) return "";
    std::string name = dest->name ? dest->name : "";
    cupsFreeDests(1, dest);
    return name;
}

class CupsServer final : public PrintServer {
public:
    ServerAnswer<std::vector<PrinterQueue>> printers() override
    {
        auto [http, fault] = connect();
        if (fault) return *fault;
        ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
        static const char* const wanted[] = {"printer-name", "printer-state", "printer-is-accepting-jobs",
                                             "printer-state-message", "printer-info", "printer-location"};
        ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                      static_cast<int>(std::size(wanted)), nullptr, wanted);
        const Response response(cupsDoRequest(http.get(), request, "/"));
        const ipp_status_t status = cupsLastError();
        // A server without queues answers "not found".
        if (status == IPP_STATUS_ERROR_NOT_FOUND) return std::vector<PrinterQueue>{};
        if (!response || status > IPP_STATUS_OK_CONFLICTING)
            return PrintFault{connection_failed(status) ? PrinterFault::NoServer : PrinterFault::Refused,
                              "the CUPS server at " + in_quotes(server_name()) + " did not list its queues: " + last_reason()};

        std::vector<PrinterQueue> queues;
        const auto finish = [&](PrinterQueue& q) {
            if (!q.name.empty()) queues.push_back(std::move(q));
            q = PrinterQueue{};
        };
        PrinterQueue queue;
        for (ipp_attribute_t* attr = ippFirstAttribute(response.get()); attr; attr = ippNextAttribute(response.get())) {
            // Each queue is a group of its own; a nameless separator stands between them.
            if (ippGetGroupTag(attr) != IPP_TAG_PRINTER || !ippGetName(attr)) {
                finish(queue);
                continue;
            }
            const std::string_view name = ippGetName(attr);
            if (name == "printer-name") queue.name = text_of(attr);
            else if (name == "printer-state") queue.state = printer_state_name(ippGetInteger(attr, 0));
            else if (name == "printer-is-accepting-jobs") queue.accepting_jobs = ippGetBoolean(attr, 0) != 0;
            else if (name == "printer-state-message") queue.state_message = text_of(attr);
            else if (name == "printer-info") queue.info = text_of(attr);
            else if (name == "printer-location") queue.location = text_of(attr);
        }
        finish(queue);

        const std::string chosen = default_queue(http.get());
        for (auto& q : queues) q.is_default = q.name == chosen;
        return queues;
    }

    ServerAnswer<SentJob> send(const std::string& queue, const std::string& title, std::string_view pdf) override
    {
        auto [http, fault] = connect();
        if (fault) return *fault;
        const std::string what = "job " + in_quotes(title) + " for the queue " + in_quotes(queue);

        // Our pages are A4 turned on its side (their boxes are 842 x 595 points), so the document carries
        // its orientation: the queue is told the paper and that nothing is to be scaled, and a driver
        // turns the page onto the sheet. Asking for landscape as well would turn it a second time.
        cups_option_t* options = nullptr;
        int count = 0;
        count = cupsAddOption("media", "A4", count, &options);
        count = cupsAddOption("print-scaling", "none", count, &options);
        count = cupsAddOption("copies", "1", count, &options);
        const int job = cupsCreateJob(http.get(), queue.c_str(), title.c_str(), count, options);
        cupsFreeOptions(count, options);
        if (job == 0) {
            const ipp_status_t status = cupsLastError();
            const PrinterFault kind = status == IPP_STATUS_ERROR_NOT_FOUND ? PrinterFault::UnknownQueue
                                      : connection_failed(status)         ? PrinterFault::Lost
                                                                          : PrinterFault::Refused;
            return PrintFault{kind, "the CUPS server refused the " + what + ": " + last_reason()};
        }

        const std::string sent = "job " + std::to_string(job) + " (" + in_quotes(title) + ") for the queue " + in_quotes(queue);
        const auto abandon = [&](PrinterFault kind, const std::string& why) {
            // The server may hold what came before; a fresh connection withdraws it.
            cancel(queue, job);
            return PrintFault{kind, "the " + sent + " was cancelled: " + why};
        };
        if (cupsStartDocument(http.get(), queue.c_str(), job, title.c_str(), CUPS_FORMAT_PDF, 1) != HTTP_STATUS_CONTINUE)
            return abandon(PrinterFault::Lost, "the document could not be started: " + last_reason());
        for (std::size_t at = 0; at < pdf.size(); at += kChunk) {
            const std::string_view piece = pdf.substr(at, kChunk);
            if (cupsWriteRequestData(http.get(), piece.data(), piece.size()) != HTTP_STATUS_CONTINUE)
                return abandon(PrinterFault::Lost, "the connection failed after " + std::to_string(at) + " of " +
                                                       std::to_string(pdf.size()) + " bytes: " + last_reason());
        }
        const ipp_status_t finished = cupsFinishDocument(http.get(), queue.c_str());
        if (finished > IPP_STATUS_OK_CONFLICTING)
            return abandon(connection_failed(finished) ? PrinterFault::Lost : PrinterFault::Refused,
                           "the server did not take the whole document: " + last_reason());
        return SentJob{job, job_state(job)};
    }

    std::string job_state(int job) override
    {
        auto [http, fault] = connect();
        if (fault) return "";
        ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
        char uri[HTTP_MAX_URI];
        httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", ippPort(), "/jobs/%d", job);
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri);
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
        ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr, "job-state");
        const Response response(cupsDoRequest(http.get(), request, "/"));
        if (!response || cupsLastError() > IPP_STATUS_OK_CONFLICTING) return "";
        ipp_attribute_t* state = ippFindAttribute(response.get(), "job-state", IPP_TAG_ENUM);
        return state ? job_state_name(ippGetInteger(state, 0)) : "";
    }

    void cancel(const std::string& queue, int job) override
    {
        auto [http, fault] = connect();
        if (!fault) cupsCancelJob2(http.get(), queue.c_str(), job, 0);
    }
};

}  // namespace
}  // namespace nimbara::platform

extern "C" nimbara::platform::PrintServer* nimbara_print_server() { return new nimbara::platform::CupsServer(); }
