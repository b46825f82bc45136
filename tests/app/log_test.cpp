#include "tests/app/fixture.h"

namespace Tavo {
namespace {

using Level = Qelutils::BasicLogger::Level;
using Log = StartedApplication;

TEST(LogWithoutASink, ReturnsAtOnce) {
    XApplication& application = XApplication::Instance();
    ASSERT_FALSE(application.IsStarted());
    application.LogError(L"%s", L"nobody").LogDebug(L"%d", 1).Log(Level::Warning, L"nobody");
    application.Log(Level::Warning, "nobody").Log(Level::Warning, std::wstring(L"nobody"));
}

TEST(LogWithoutASink, IsSilentAgainAfterShutdown) {
    RecordingLog sink;
    XApplication::Instance().Startup(nullptr, &sink, L"");
    XApplication::Instance().Shutdown();
    XApplication::Instance().LogError(L"nobody");
    EXPECT_TRUE(sink.entries.empty());
}

TEST_F(Log, HandsEachLevelToTheSink) {
    application().LogInformation(L"a").LogWarning(L"b").LogError(L"c").LogDebug(L"d");
    std::vector<RecordingLog::Entry> const expected = {
        {Level(0), L"a"}, {Level(1), L"b"}, {Level(2), L"c"}, {Level(3), L"d"}};
    EXPECT_EQ(log.entries, expected);
}

TEST_F(Log, FormatsWideTextAndNumbers) {
    application().LogError(L"\"%s\" has %d of %.2f", std::wstring(L"J\u00f6int"), 3, 1.5);
    EXPECT_EQ(log.errors(), std::vector<std::wstring>{L"\"J\u00f6int\" has 3 of 1.50"});
}

TEST_F(Log, PassesPlainTextUnformatted) {
    application().Log(Level::Error, L"100%d").Log(Level::Error, "100%s").Log(Level::Error, std::wstring(L"%n"));
    EXPECT_EQ(log.errors(), (std::vector<std::wstring>{L"100%d", L"100%s", L"%n"}));
}

TEST_F(Log, CutsAMessageThatIsLongerThanTheBuffer) {
    for (std::size_t length : {16382, 16383, 16384, 100000}) {
        log.clear();
        application().LogError(L"%s", std::wstring(length, L'x'));
        ASSERT_EQ(log.entries.size(), 1u);
        EXPECT_EQ(log.entries[0].text.size(), std::min<std::size_t>(length, 16383)) << length;
    }
}

TEST_F(Log, HearsWhatTheDatabaseHasToSay) {
    EXPECT_EQ(scene().SceneGraph()->logger(), &log);
    EXPECT_EQ(application().Settings().SceneGraph()->logger(), &log);
}

}  // namespace
}  // namespace Tavo
