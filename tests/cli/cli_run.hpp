#pragma once
// Running the command-line program from a test, with its output and exit status captured; the bundled
// example Guias it is run on.
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace nimbara::testing {

struct Run {
    int status;
    std::string out;
    std::string err;
};

// Runs the program with a shell command line, capturing standard output and standard error; `prefix`
// goes before the program's name (a "cd DIR && env VAR=VALUE " of the test's own).
inline Run run_with(const std::string& prefix, const std::string& args, const std::string& input = "")
{
    // Runs may come from several threads at once: each gets files of its own.
    static std::atomic<int> counter{0};
    const auto dir = std::filesystem::temp_directory_path();
    const std::string id = std::to_string(::getpid()) + "-" + std::to_string(counter++);
    const auto in = dir / ("nimbara-cli-in-" + id);
    const auto err = dir / ("nimbara-cli-err-" + id);
    std::ofstream(in) << input;
    const std::string cmd = prefix + NIMBARA_CLI + " " + args + " <" + in.string() + " 2>" + err.string();
    FILE* pipe = ::popen(cmd.c_str(), "r");
    std::string out;
    std::array<char, 4096> buf;
    while (const auto n = std::fread(buf.data(), 1, buf.size(), pipe)) out.append(buf.data(), n);
    const int status = ::pclose(pipe);
    std::ifstream e(err);
    std::string err_text((std::istreambuf_iterator<char>(e)), {});
    std::filesystem::remove(in);
    std::filesystem::remove(err);
    return {WEXITSTATUS(status), out, err_text};
}

inline Run run(const std::string& args, const std::string& input = "") { return run_with("", args, input); }

// The report an answer names between <LOG_FILE> and </LOG_FILE>.
inline std::string answer_log(const std::string& answer)
{
    const auto from = answer.find("<LOG_FILE>") + 10;
    return answer.substr(from, answer.find("</LOG_FILE>") - from);
}

// The files of a folder whose names start with `prefix`.
inline std::size_t count_files(const std::filesystem::path& dir, std::string_view prefix)
{
    std::size_t n = 0;
    for (const auto& e : std::filesystem::directory_iterator(dir)) n += e.path().filename().string().starts_with(prefix);
    return n;
}

inline std::string example(const std::string& name) { return std::string(NIMBARA_SOURCE_DIR) + "/examples/" + name; }

}  // namespace nimbara::testing
