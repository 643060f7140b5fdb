// The library's printer for a CUPS queue against a real scheduler: the queues listed, each print job
// one job whose document is the PDF the surface wrote, and each fault named with its queue and job.
#include <gtest/gtest.h>

#include <cstdint>
#include <regex>
#include <string>
#include <vector>

#include "cups/test_queues.hpp"
#include "nimbara/printer_queue.hpp"
#include "platform/print_server.hpp"

using nimbara::PdfSurface;
using nimbara::PrinterError;
using nimbara::PrinterFault;
using nimbara::QueuePrinter;
using nimbara::testing::spooled;

namespace {

class PrinterQueue : public nimbara::testing::QueueTest {};

// One page with a line of text that tells the copy.
void print_copy(PdfSurface& surface, int copy)
{
    surface.setFontName("Arial");
    surface.setCurrentX(1000);
    surface.setCurrentY(1000);
    surface.Print("via " + std::to_string(copy));
    surface.EndDoc();
}

// The same copy on a surface that hands the PDF back.
std::string pdf_of_copy(int copy)
{
    std::string pdf;
    PdfSurface surface([&](int, std::string bytes) { pdf = std::move(bytes); });
    surface.setOrientation(nimbara::printer::kLandscape);
    surface.setPaperSize(nimbara::printer::kPaperA4);
    print_copy(surface, copy);
    return pdf;
}

}  // namespace

TEST_F(PrinterQueue, ListsTheQueuesWithTheDefaultAndTheirState)
{
    const auto queues = nimbara::list_printers();
    std::vector<std::string> names;
    for (const auto& q : queues) {
        names.push_back(q.name);
        EXPECT_EQ(q.is_default, q.name == "nimbara-test") << q.name;
        if (q.name == "nimbara-refusing") {
            EXPECT_FALSE(q.accepting_jobs);
            EXPECT_EQ(q.state_message, "closed for the test");
        }
        if (q.name == "nimbara-stopped") {
            EXPECT_EQ(q.state, "stopped");
        }
        if (q.name == "nimbara-test") {
            EXPECT_TRUE(q.accepting_jobs);
        }
    }
    EXPECT_EQ(names, (std::vector<std::string>{"nimbara-refusing", "nimbara-stopped", "nimbara-test"}));
}

TEST_F(PrinterQueue, EachPrintJobIsOneJobCarryingTheSurfacesPdf)
{
    QueuePrinter printer("nimbara-test", "2026/1027");
    print_copy(*printer.surface(), 1);
    print_copy(*printer.surface(), 2);
    const auto jobs = printer.jobs();
    ASSERT_EQ(jobs.size(), 2u);
    for (int copy = 1; copy <= 2; ++copy) {
        const auto& job = jobs[copy - 1];
        EXPECT_EQ(job.copy, copy);
        EXPECT_EQ(job.name, "Guia 2026/1027 via " + std::to_string(copy));
        EXPECT_FALSE(job.state.empty());
        EXPECT_EQ(spooled(job.id), pdf_of_copy(copy)) << "job " << job.id;
    }
    EXPECT_GT(jobs[1].id, jobs[0].id);
}

TEST_F(PrinterQueue, AnUnknownQueueIsRefusedWithTheQueuesThereAre)
{
    try {
        QueuePrinter printer("nimbara-tset", "1");
        FAIL() << "an unknown queue was taken";
    } catch (const PrinterError& e) {
        EXPECT_EQ(e.fault(), PrinterFault::UnknownQueue);
        EXPECT_EQ(std::string(e.what()), "the CUPS server has no queue \"nimbara-tset\"; its queues: nimbara-refusing, "
                                         "nimbara-stopped, nimbara-test");
        EXPECT_EQ(e.queues().size(), 3u);
    }
}

TEST_F(PrinterQueue, AJobTheServerRefusesIsNamedAndNotKept)
{
    QueuePrinter printer("nimbara-refusing", "2026/1027");
    try {
        print_copy(*printer.surface(), 1);
        FAIL() << "a rejecting queue took the job";
    } catch (const PrinterError& e) {
        EXPECT_EQ(e.fault(), PrinterFault::Refused);
        const std::string message = e.what();
        EXPECT_NE(message.find("\"Guia 2026/1027 via 1\""), std::string::npos) << message;
        EXPECT_NE(message.find("\"nimbara-refusing\""), std::string::npos) << message;
        EXPECT_NE(message.find("not accepting jobs"), std::string::npos) << message;
    }
    EXPECT_TRUE(printer.jobs().empty());
}

// A Guia whose later copy failed has its earlier copies withdrawn while the queue still holds them.
TEST_F(PrinterQueue, CancellingWithdrawsTheJobsStillHeld)
{
    QueuePrinter printer("nimbara-stopped", "2026/1027");
    print_copy(*printer.surface(), 1);
    print_copy(*printer.surface(), 2);
    for (const auto& job : printer.jobs()) EXPECT_EQ(job.state, "pending") << job.id;
    printer.cancel_all();
    const auto jobs = printer.jobs();
    ASSERT_EQ(jobs.size(), 2u);
    for (const auto& job : jobs) EXPECT_EQ(job.state, "canceled") << job.id;
}

// The scheduler drops a request above 4 MiB midway: the job is cancelled rather than left holding
// part of a document, and the fault names the queue and the job.
TEST_F(PrinterQueue, ADocumentCutOffMidwayIsCancelledAndNamed)
{
    nimbara::Picture noise{"Pic_Noise", 1400, 1400, 1, {}, nullptr};
    std::uint32_t seed = 12345;
    noise.argb.resize(1400u * 1400u);
    for (auto& px : noise.argb) px = 0xFF000000u | ((seed = seed * 1664525u + 1013904223u) >> 8);
    QueuePrinter printer("nimbara-test", "2026/1027");
    auto& surface = *printer.surface();
    surface.PaintPicture(noise, 0, 0);
    try {
        surface.EndDoc();
        FAIL() << "a document beyond the server's limit went through";
    } catch (const PrinterError& e) {
        const std::string message = e.what();
        EXPECT_NE(message.find("for the queue \"nimbara-test\" was cancelled"), std::string::npos) << message;
        const std::regex job(R"(job (\d+) \("Guia 2026/1027 via 1"\))");
        std::smatch id;
        ASSERT_TRUE(std::regex_search(message, id, job)) << message;
        EXPECT_EQ(nimbara::platform::connect_print_server()->job_state(std::stoi(id[1])), "canceled");
    }
    EXPECT_TRUE(printer.jobs().empty());
}
