// Ends the process when the time is over: the last resort against what can not be interrupted. Lives as long as what it
// watches.
#pragma once
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace host {

class Watchdog {
public:
    // The message is what standard error gets; the exit code is that of a failure.
    Watchdog(double seconds, std::string message);
    ~Watchdog();
    Watchdog(Watchdog const&) = delete;
    Watchdog& operator=(Watchdog const&) = delete;

private:
    void watch(double seconds, std::string const& message);

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOver_ = false;
    std::thread thread_;
};

}  // namespace host
