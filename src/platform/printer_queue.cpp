#include "nimbara/printer_queue.hpp"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/print_server.hpp"

namespace nimbara {
namespace {

template <class T>
T answered(platform::ServerAnswer<T> answer)
{
    if (auto* fault = std::get_if<platform::PrintFault>(&answer))
        throw PrinterError(fault->fault, fault->message, std::move(fault->queues));
    return std::get<T>(std::move(answer));
}

// Long enough for any document number a form shows, short of the 255 bytes a job's name may have.
constexpr std::size_t kMaxIdLength = 100;

std::vector<std::string> names_of(const std::vector<PrinterQueue>& queues)
{
    std::vector<std::string> names;
    for (const auto& q : queues) names.push_back(q.name);
    return names;
}

}  // namespace

PrinterError::PrinterError(PrinterFault fault, const std::string& message, std::vector<std::string> queues)
    : std::runtime_error(message), fault_(fault), queues_(std::move(queues))
{
}

std::vector<PrinterQueue> list_printers()
{
    auto queues = answered(platform::connect_print_server()->printers());
    std::sort(queues.begin(), queues.end(), [](const PrinterQueue& a, const PrinterQueue& b) { return a.name < b.name; });
    return queues;
}

PrinterQueue find_printer(const std::string& name)
{
    const auto queues = list_printers();
    const auto it = std::find_if(queues.begin(), queues.end(), [&](const PrinterQueue& q) { return q.name == name; });
    if (it != queues.end()) return *it;
    std::string message = "the CUPS server has no queue \"" + name + "\"";
    message += queues.empty() ? std::string("; it has none") : "; its queues: ";
    for (std::size_t i = 0; i < queues.size(); ++i) message += (i ? ", " : "") + queues[i].name;
    throw PrinterError(PrinterFault::UnknownQueue, message, names_of(queues));
}

// What the surface's sink and the caller share: the connection and the jobs, guarded because a
// caller may read the jobs from another thread while a copy is being sent.
struct QueuePrinter::State {
    std::string queue;
    std::string guia_id;
    std::unique_ptr<platform::PrintServer> server;
    mutable std::mutex guard;
    std::vector<QueuedJob> jobs;

    void send(int copy, const std::string& pdf)
    {
        const std::string name = "Guia " + guia_id + " via " + std::to_string(copy);
        const auto sent = answered(server->send(queue, name, pdf));
        const std::lock_guard lock(guard);
        jobs.push_back(QueuedJob{copy, sent.id, name, sent.state});
    }

    void restate()
    {
        const auto ids = [this] {
            const std::lock_guard lock(guard);
            std::vector<int> out;
            for (const auto& j : jobs) out.push_back(j.id);
            return out;
        }();
        for (const int id : ids) {
            auto state = server->job_state(id);
            if (state.empty()) continue;
            const std::lock_guard lock(guard);
            for (auto& j : jobs)
                if (j.id == id) j.state = std::move(state);
        }
    }
};

QueuePrinter::QueuePrinter(std::string queue, std::string guia_id) : state_(std::make_shared<State>())
{
    find_printer(queue);
    state_->queue = std::move(queue);
    state_->guia_id = guia_id.substr(0, kMaxIdLength);
    if (state_->guia_id.empty()) state_->guia_id = "sem-numero";
    state_->server = platform::connect_print_server();
    // The surface keeps the jobs' record alive, so that it may outlive this object.
    surface_ = std::make_shared<PdfSurface>([state = state_](int job, std::string pdf) { state->send(job, pdf); });
    surface_->setOrientation(printer::kLandscape);
    surface_->setPaperSize(printer::kPaperA4);
}

QueuePrinter::~QueuePrinter() = default;

const std::string& QueuePrinter::queue() const { return state_->queue; }

std::shared_ptr<PdfSurface> QueuePrinter::surface() const { return surface_; }

std::vector<QueuedJob> QueuePrinter::jobs() const
{
    const std::lock_guard lock(state_->guard);
    return state_->jobs;
}

void QueuePrinter::refresh() { state_->restate(); }

void QueuePrinter::cancel_all()
{
    for (const auto& job : jobs())
        if (job.state != "completed" && job.state != "canceled" && job.state != "aborted")
            state_->server->cancel(state_->queue, job.id);
    state_->restate();
}

}  // namespace nimbara
