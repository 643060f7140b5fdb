#pragma once
// The CUPS client: the server's queues, and jobs streamed to them. It lives in the module "cups", so
// that a program which never prints to a printer never loads libcups or what it pulls in. Faults come
// back as values, not exceptions, as a module's own exception types are not the library's.
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "nimbara/printer_queue.hpp"

namespace nimbara::platform {

struct PrintFault {
    PrinterFault fault;
    std::string message;  // names the queue and the job
    std::vector<std::string> queues = {};  // the queues there are, for an unknown one
};

template <class T>
using ServerAnswer = std::variant<T, PrintFault>;

struct SentJob {
    int id = 0;
    std::string state;
};

class PrintServer {
public:
    virtual ~PrintServer() = default;

    virtual ServerAnswer<std::vector<PrinterQueue>> printers() = 0;
    // Sends `pdf` to the queue as one job called `title`, at actual size on A4; a document not sent
    // whole is cancelled.
    virtual ServerAnswer<SentJob> send(const std::string& queue, const std::string& title, std::string_view pdf) = 0;
    // The job's state, or an empty text when the server does not tell it.
    virtual std::string job_state(int job) = 0;
    virtual void cancel(const std::string& queue, int job) = 0;
};

// The server the environment names, through the module, loaded by the first call.
std::unique_ptr<PrintServer> connect_print_server();

}  // namespace nimbara::platform

// The module's factory: a new PrintServer the caller owns.
extern "C" [[gnu::visibility("default")]] nimbara::platform::PrintServer* nimbara_print_server();
