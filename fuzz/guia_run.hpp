#pragma once
// Finishing a filled Guia the way a host does, with the pages recorded rather than written and the
// report going to a scratch folder that is emptied after each run.
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>

#include "nimbara/cls_ValProdutosA.hpp"
#include "printing/recording_surface.hpp"

namespace nimbara::fuzzing {

inline const std::filesystem::path& scratch_folder()
{
    static const std::filesystem::path folder = [] {
        auto p = std::filesystem::temp_directory_path() / ("nimbara-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(p);
        return p;
    }();
    return folder;
}

// Runs ImprimeGuia and traps on an answer that is neither of the two shapes it may take.
inline void finish(cls_ValProdutosA& guia, bool only_printer)
{
    guia.setReportFolder(scratch_folder());
    guia.setPrintLog(scratch_folder() / "print.log");
    guia.setPrinter(std::make_shared<printing::RecordingSurface>());
    const std::string answer = guia.ImprimeGuia(only_printer);
    if (answer.rfind("<LIST><ITEM><ERRO_ID>", 0) != 0 || answer.find("</ITEM></LIST>") == std::string::npos)
        __builtin_trap();
    for (const auto& entry : std::filesystem::directory_iterator(scratch_folder())) std::filesystem::remove(entry.path());
}

}  // namespace nimbara::fuzzing
