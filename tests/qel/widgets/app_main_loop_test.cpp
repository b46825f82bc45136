#include "qel/widgets/app_main_loop.h"
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace wxUtils {
namespace {

struct Client : AppMainLoopTimerClient {
    Client(std::string& log_, char name_, int priority_ = 0) : log(log_), name(name_), priority(priority_) {}
    void onAppMainLoopTick() override {
        log += name;
        if (then) then();
    }
    int getAppMainLoopTickPriority() const override { return priority; }
    std::string& log;
    char name;
    int priority;
    std::function<void()> then;
};

struct MainLoop : ::testing::Test {
    AppMainLoop loop;
    std::string log;
    Client a{log, 'a'}, b{log, 'b'}, c{log, 'c'};
};

TEST_F(MainLoop, TicksItsClientsInTheOrderOfAdding) {
    for (Client* client : {&b, &a, &c}) loop.addTimerClient(client);
    loop.tick();
    EXPECT_EQ(log, "bac");
}

TEST_F(MainLoop, TicksLowPriorityNumbersFirst) {
    Client late(log, 'z', 1);
    loop.addTimerClient(&late);
    loop.addTimerClient(&a);
    loop.tick();
    EXPECT_EQ(log, "az");
}

TEST_F(MainLoop, HoldsAClientOnce) {
    loop.addTimerClient(&a);
    loop.addTimerClient(&a);
    loop.tick();
    EXPECT_EQ(log, "a");
    loop.addTimerClient(nullptr);
    loop.removeTimerClient(&b);
    loop.tick();
    EXPECT_EQ(log, "aa");
}

TEST_F(MainLoop, StandsClientsThatGoAndComeWhileTheyAreTicked) {
    for (Client* client : {&a, &b}) loop.addTimerClient(client);
    a.then = [&] {
        loop.removeTimerClient(&a);
        loop.removeTimerClient(&b);
        loop.addTimerClient(&c);
    };
    loop.tick();
    EXPECT_EQ(log, "a");
    loop.tick();
    EXPECT_EQ(log, "ac");
}

TEST_F(MainLoop, RunsUntilItIsStopped) {
    loop.addTimerClient(&a);
    a.then = [&] {
        if (log.size() == 3) loop.stop();
    };
    loop.run(0);
    EXPECT_EQ(log, "aaa");
}

TEST_F(MainLoop, RunsForItsTimeAcrossTheWrapOfTheClock) {
    std::uint32_t now = 0xffffffffu - 5;
    setClock([&] { return now; });
    loop.addTimerClient(&a);
    a.then = [&] { now += 4; };
    loop.run(0, 12);
    EXPECT_EQ(log, "aaa");
    setClock(nullptr);
}

TEST(MainLoopOfTheHost, IsForgottenWhenItGoes) {
    auto loop = std::make_unique<AppMainLoop>();
    Mirrel::gMirrel.mainLoop = loop.get();
    loop.reset();
    EXPECT_EQ(Mirrel::gMirrel.mainLoop, nullptr);
}

}  // namespace
}  // namespace wxUtils
