#include "line_batch_command.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

namespace nimbara::cli {

int run_line_batch(const std::string& command, const std::string& file, const BatchJudge* judge)
{
    std::vector<char> buffer(1 << 16);  // large reads from a file; declared first, as it outlives the stream
    std::ifstream stream;
    std::istream* in = &std::cin;
    std::string source = "<stdin>";
    if (!file.empty() && file != "-") {
        stream.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        stream.open(file, std::ios::binary);
        if (!stream || std::filesystem::is_directory(file)) {
            std::cerr << "nimbara " << command << ": cannot open " << file << ": "
                      << (stream ? "is a folder" : std::strerror(errno)) << '\n';
            return 2;
        }
        in = &stream;
        source = file;
    }
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);  // a flush of the answers for every line read would cost more than the check
    const BatchSummary summary = judge ? check_line_batch(*in, std::cout, std::cerr, source, *judge)
                                       : check_line_batch(*in, std::cout, std::cerr, source);
    std::cout.flush();
    return summary.refused > 0 || summary.read_failed ? 2 : 0;
}

}  // namespace nimbara::cli
