#include "line_batch_command.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

#include "json_output.hpp"
#include "stdin_buffer.hpp"
#include "verdict_json.hpp"

namespace nimbara::cli {

int run_line_batch(const std::string& command, const std::string& file, const BatchJudge* judge, bool json)
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
            const std::string message = "cannot open " + file + ": " + (stream ? "is a folder" : std::strerror(errno));
            std::cerr << "nimbara " << command << ": " << message << '\n';
            if (json) write_json(std::cout, refusal_json("nimbara " + command, message));
            return 2;
        }
        in = &stream;
        source = file;
    }
    std::ios::sync_with_stdio(false);
    if (json) {
        // The whole batch is one document: its results are gathered and written at the end.
        auto results = nlohmann::json::array();
        const BatchResultSink sink = [&results](const BatchLineResult& r) { results.push_back(batch_result_json(r)); };
        const BatchSummary summary = check_line_batch(*in, sink, std::cerr, source, judge);
        const int status = summary.refused > 0 || summary.read_failed ? 2 : 0;
        nlohmann::json document = {{"input", file.empty() ? "-" : file}, {"status", status}, {"results", results}};
        if (summary.read_failed) document["error"] = "the input could not be read after line " + std::to_string(summary.lines);
        write_json(std::cout, document);
        return status;
    }
    const BatchSummary summary = judge ? check_line_batch(*in, std::cout, std::cerr, source, *judge)
                                       : check_line_batch(*in, std::cout, std::cerr, source);
    std::cout.flush();
    return summary.refused > 0 || summary.read_failed ? 2 : 0;
}

}  // namespace nimbara::cli
