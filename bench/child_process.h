// Runs a piece of benchmark work in a child process, so that its memory (and its peak resident
// size) is its own and a crash stays there. The result travels back through a pipe as bytes.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <type_traits>

namespace kxbench {

// work() in a child; false when the child could not run, failed or threw. peakKiB, when given,
// receives the child's peak resident size.
template <class Result, class Work>
bool InChild(Work work, Result& out, long* peakKiB = nullptr) {
    static_assert(std::is_trivially_copyable<Result>::value, "the result is sent as bytes");
    int fd[2];
    if (pipe(fd) != 0) return false;
    std::fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        close(fd[0]);
        Result r{};
        try {
            r = work();
        } catch (const std::exception& e) {
            std::fprintf(stderr, "%s\n", e.what());
            _exit(1);
        }
        _exit(write(fd[1], &r, sizeof r) == static_cast<ssize_t>(sizeof r) ? 0 : 1);
    }
    close(fd[1]);
    if (pid < 0) {
        close(fd[0]);
        return false;
    }
    Result r{};
    const bool read_ok = read(fd[0], &r, sizeof r) == static_cast<ssize_t>(sizeof r);
    close(fd[0]);
    int status = 0;
    rusage usage = {};
    wait4(pid, &status, 0, &usage);
    if (!read_ok || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return false;
    if (peakKiB != nullptr) *peakKiB = usage.ru_maxrss;
    out = r;
    return true;
}

}  // namespace kxbench
