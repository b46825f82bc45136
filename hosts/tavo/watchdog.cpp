#include "hosts/tavo/watchdog.h"

#include "hosts/tavo/console.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace host {
namespace {

// What was printed so far comes out, unless another thread is just printing, or nobody reads it within a second.
void flushIfPossible() {
    std::signal(SIGALRM, [](int) { _exit(int(ExitCode::failed)); });
    alarm(1);
    if (ftrylockfile(stdout) == 0) std::fflush(stdout);
}

[[noreturn]] void endProcess(std::string const& message) {
    std::string const line = "error: " + message + '\n';
    [[maybe_unused]] ssize_t const written = ::write(STDERR_FILENO, line.data(), line.size());
    flushIfPossible();
    _exit(int(ExitCode::failed));
}

}  // namespace

Watchdog::Watchdog(double seconds, std::string message) :
    thread_([this, seconds, message = std::move(message)] { watch(seconds, message); }) {}

Watchdog::~Watchdog() {
    {
        std::lock_guard const lock(mutex_);
        isOver_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

// The lock is held to the end of the process: what was watched does not go on.
void Watchdog::watch(double seconds, std::string const& message) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return isOver_; }))
        endProcess(message);
}

}  // namespace host
