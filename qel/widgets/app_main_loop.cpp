#include "qel/widgets/app_main_loop.h"
#include <algorithm>
#include <chrono>
#include <thread>

namespace Mirrel {
Globals gMirrel;
}

namespace wxUtils {
namespace {

std::function<std::uint32_t()>& clockInUse() {
    static std::function<std::uint32_t()> clock;
    return clock;
}

}  // namespace

std::uint32_t timeGetTime() {
    if (clockInUse()) return clockInUse()();
    using namespace std::chrono;
    return std::uint32_t(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void setClock(std::function<std::uint32_t()> clock) { clockInUse() = std::move(clock); }

AppMainLoop::~AppMainLoop() {
    if (Mirrel::gMirrel.mainLoop == this) Mirrel::gMirrel.mainLoop = nullptr;
}

void AppMainLoop::addTimerClient(AppMainLoopTimerClient* client) {
    if (!client || std::find(clients_.begin(), clients_.end(), client) != clients_.end()) return;
    clients_.push_back(client);
}

void AppMainLoop::removeTimerClient(AppMainLoopTimerClient* client) {
    auto const it = std::find(clients_.begin(), clients_.end(), client);
    if (it == clients_.end()) return;
    if (ticking_)
        *it = nullptr;
    else
        clients_.erase(it);
}

void AppMainLoop::tick() {
    if (!ticking_)
        std::stable_sort(clients_.begin(), clients_.end(),
                         [](AppMainLoopTimerClient const* a, AppMainLoopTimerClient const* b) {
                             return a->getAppMainLoopTickPriority() < b->getAppMainLoopTickPriority();
                         });
    ++ticking_;
    for (std::size_t i = 0, count = clients_.size(); i < count; ++i)
        if (clients_[i]) clients_[i]->onAppMainLoopTick();
    if (--ticking_ == 0) clients_.erase(std::remove(clients_.begin(), clients_.end(), nullptr), clients_.end());
}

void AppMainLoop::run(std::uint32_t interval, std::uint32_t milliseconds) {
    running_ = true;
    for (std::uint32_t const start = timeGetTime(); running_ && timeGetTime() - start < milliseconds;) {
        tick();
        if (running_) std::this_thread::sleep_for(std::chrono::milliseconds(interval));
    }
    running_ = false;
}

}  // namespace wxUtils
