#pragma once
// Runs the built program as a user does, in a process of its own, and measures it.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace nimbara::bench {

struct ProgramRun {
    double wall_ms;
    double cpu_ms;
    double peak_mb;
};

// Runs `args` (the program first) in `folder` with its output thrown away and, when `feed` is given,
// its standard input a pipe that `feed` writes to; throws unless it exits with 0. Started with fork
// rather than posix_spawn: a spawned child shares this process's memory until it execs, and the
// kernel then counts this process's peak as the child's.
inline ProgramRun run_program(const std::vector<std::string>& args, const std::filesystem::path& folder,
                              const std::function<void(int fd)>& feed = {})
{
    int pipe_fds[2] = {-1, -1};
    if (feed && ::pipe(pipe_fds) != 0) throw std::runtime_error("cannot make a pipe");
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = ::fork();
    if (pid < 0) throw std::runtime_error("cannot start \"" + args.front() + "\"");
    if (pid == 0) {
        const int null = ::open("/dev/null", O_RDWR);
        if (null < 0 || ::chdir(folder.c_str()) != 0) ::_exit(127);
        ::dup2(feed ? pipe_fds[0] : null, STDIN_FILENO);
        ::dup2(null, STDOUT_FILENO), ::dup2(null, STDERR_FILENO);
        if (feed) ::close(pipe_fds[0]), ::close(pipe_fds[1]);
        std::vector<char*> argv;
        for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    if (feed) {
        ::close(pipe_fds[0]);
        feed(pipe_fds[1]);
        ::close(pipe_fds[1]);
    }
    int status = 0;
    rusage usage{};
    ::wait4(pid, &status, 0, &usage);
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error("\"" + args.front() + " " + args.at(1) + "\" failed");
    const auto ms = [](const timeval& t) { return t.tv_sec * 1e3 + t.tv_usec / 1e3; };
    return {wall.count(), ms(usage.ru_utime) + ms(usage.ru_stime), usage.ru_maxrss / 1024.0};
}

}  // namespace nimbara::bench
