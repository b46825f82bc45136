// The main loop as the core sees it: clients that are ticked, a request to redraw, and the clock of playback. Headless:
// a host with windows derives from it and ticks from its own event loop; others call run() or tick().
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

namespace wxUtils {

class FileDialogs;

class AppMainLoopTimerClient {
public:
    virtual ~AppMainLoopTimerClient() = default;
    virtual void onAppMainLoopTick() = 0;
    virtual int getAppMainLoopTickPriority() const { return 0; }
};

class AppMainLoop {
public:
    AppMainLoop() = default;
    AppMainLoop(AppMainLoop const&) = delete;
    AppMainLoop& operator=(AppMainLoop const&) = delete;
    virtual ~AppMainLoop();

    // Clients of lower priority number come first, those of one number in the order of adding. A client may add and
    // remove clients, itself included, while it is ticked; a new one is ticked from the next round on.
    void addTimerClient(AppMainLoopTimerClient* client);
    void removeTimerClient(AppMainLoopTimerClient* client);
    void tick();
    // Ticks every `interval` milliseconds of the clock until stop() or, if given, until `milliseconds` have passed.
    void run(std::uint32_t interval = 4, std::uint32_t milliseconds = 0xffffffffu);
    void stop() { running_ = false; }

    virtual void redraw() {}  // the display is out of date; headless: nothing to draw

private:
    std::vector<AppMainLoopTimerClient*> clients_;
    int ticking_ = 0;
    bool running_ = false;
};

// Milliseconds since some moment, wrapping at 2^32. A test may set its own clock; null brings the real one back.
std::uint32_t timeGetTime();
void setClock(std::function<std::uint32_t()> clock);

}  // namespace wxUtils

namespace Mirrel {

// Application-wide pointers, filled by the host before it starts the core.
struct Globals {
    wxUtils::AppMainLoop* mainLoop = nullptr;
    wxUtils::FileDialogs* fileDialogs = nullptr;  // of a host that can ask
};
extern Globals gMirrel;

}  // namespace Mirrel
