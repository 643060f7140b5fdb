#pragma once
// Printing to the system's printers: the queues of the CUPS server, and a printer that sends each
// print job (one copy of a Guia) to a queue as one job of the server. The server is the one the
// environment names (CUPS_SERVER, the client configuration) or the local one.
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "nimbara/PdfSurface.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// What went wrong with a queue or a job; the message names the queue and, when there is one, the job.
enum class PrinterFault {
    NoServer,      // no CUPS server answers
    UnknownQueue,  // the server has no queue of that name
    Refused,       // the server refused the job (a queue that rejects jobs, a document it will not take)
    Lost,          // the connection failed while the document was being sent; the job was cancelled
};

class NIMBARA_API PrinterError : public std::runtime_error {
public:
    PrinterError(PrinterFault fault, const std::string& message, std::vector<std::string> queues = {});
    PrinterFault fault() const { return fault_; }
    // The queues the server has, for an unknown queue (so that a caller can suggest one).
    const std::vector<std::string>& queues() const { return queues_; }

private:
    PrinterFault fault_;
    std::vector<std::string> queues_;
};

struct PrinterQueue {
    std::string name;
    bool is_default = false;
    std::string state;            // "idle", "printing" or "stopped"
    bool accepting_jobs = true;   // false while the queue rejects jobs
    std::string state_message;    // the server's word on the state or the refusal, possibly empty
    std::string info;             // the queue's description
    std::string location;
};

// The server's queues, by name; throws PrinterError (NoServer).
NIMBARA_API std::vector<PrinterQueue> list_printers();

// The queue called `name`; throws PrinterError (NoServer, or UnknownQueue with the queues there are).
NIMBARA_API PrinterQueue find_printer(const std::string& name);

// One job sent to a queue.
struct QueuedJob {
    int copy = 0;       // the print job it carries, counted from 1
    int id = 0;         // the server's job id
    std::string name;   // the job's name as the queue shows it
    std::string state;  // "pending", "held", "processing", "stopped", "canceled", "aborted" or "completed"
};

// A printer whose print jobs go to a CUPS queue: each print job's PDF (A4 landscape, as the surface
// writes it) is streamed to the queue as one job, to be printed at actual size on A4. A document that
// could not be sent whole is cancelled, and EndDoc throws PrinterError naming the queue and the job.
class NIMBARA_API QueuePrinter {
public:
    // Jobs are named "Guia_<id>_via<n>", as the files of the PDF printer. Throws PrinterError when
    // there is no server or no such queue, before anything is sent.
    QueuePrinter(std::string queue, std::string guia_id);
    ~QueuePrinter();
    QueuePrinter(const QueuePrinter&) = delete;
    QueuePrinter& operator=(const QueuePrinter&) = delete;

    const std::string& queue() const;
    // The surface to print on; every job finished on it goes to the queue.
    std::shared_ptr<PdfSurface> surface() const;
    // Every job sent, in order, with its state as last known.
    std::vector<QueuedJob> jobs() const;
    // Asks the server for the state of every job sent; a job it no longer knows keeps its last state.
    void refresh();
    // Cancels every job sent that the server has not finished (when a Guia did not come out whole,
    // its other copies are withdrawn); the jobs' states are then asked again.
    void cancel_all();

private:
    struct State;
    std::shared_ptr<State> state_;
    std::shared_ptr<PdfSurface> surface_;
};

}  // namespace nimbara
