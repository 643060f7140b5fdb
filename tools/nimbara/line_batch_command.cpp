#include "line_batch_command.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

#include "stdin_buffer.hpp"

namespace nimbara::cli {

int run_line_batch(const std::string& command, const std::string& file, const BatchJudge* judge)
{
    std::vector<char> buffer(1 << 16);  // large reads from a file; declared first, as it outlives the stream
    std::ifstream stream;
    StdinBuffer stdin_buffer;
    std::istream standard_input(&stdin_buffer);
    std::istream* in = &standard_input;
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
    const BatchSummary summary = judge ? check_line_batch(*in, std::cout, std::cerr, source, *judge)
                                       : check_line_batch(*in, std::cout, std::cerr, source);
    std::cout.flush();
    return summary.refused > 0 || summary.read_failed ? 2 : 0;
}

}  // namespace nimbara::cli
