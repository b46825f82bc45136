#include "qel/db/streams.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A folder of its own for each test, removed afterwards.
class Streams : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "streams-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
    }
    void TearDown() override { fs::remove_all(folder); }

    fs::path at(std::string const& name) const { return folder / name; }
    std::wstring wide(std::string const& name) const { return at(name).wstring(); }
    void put(std::string const& name, std::string const& text) const { std::ofstream(at(name)) << text; }
    std::string get(std::string const& name) const {
        std::ostringstream text;
        text << std::ifstream(at(name)).rdbuf();
        return text.str();
    }
    std::size_t fileCount() const { return std::size_t(std::distance(fs::directory_iterator(folder), {})); }
    bool save(std::string const& name, std::string const& text) const {
        db::FileOutputStream stream(wide(name), 0, 1);
        return stream.write(text.data(), text.size()) && stream.commit();
    }
    int modeOf(std::string const& name) const {
        struct stat status = {};
        return ::stat(at(name).c_str(), &status) == 0 ? int(status.st_mode & 07777) : -1;
    }

    fs::path folder;
};

std::string readAll(db::InputStream& stream, std::size_t portion = 7) {
    std::string all, piece(portion, '\0');
    while (std::size_t count = stream.read(piece.data(), piece.size())) all.append(piece, 0, count);
    return all;
}

std::string const bytes("<a>\xC3\xA4\r\n\0\xFF</a>", 13);

TEST_F(Streams, WhatIsSavedIsReadBackByteForByte) {
    ASSERT_TRUE(save("a", bytes));
    db::FileInputStream stream(wide("a"), 0);
    EXPECT_EQ(stream.sizeHint(), bytes.size());
    EXPECT_EQ(readAll(stream), bytes);
    EXPECT_TRUE(stream.ok());
}

TEST_F(Streams, ModesHaveNamesAsWellAsNumbers) {
    db::FileOutputStream out(wide("a"), db::FileOpenMode::Plain, db::OutputStreamEncoding::Utf8);
    EXPECT_TRUE(out.commit());
    db::FileInputStream in(wide("a"), db::FileOpenMode::Plain);
    EXPECT_TRUE(in.ok());
}

TEST_F(Streams, UnknownModesAndEncodingsFail) {
    put("a", "old");
    EXPECT_FALSE(db::FileInputStream(wide("a"), 1).ok());
    EXPECT_FALSE(db::FileOutputStream(wide("a"), 1, 1).ok());
    EXPECT_FALSE(db::FileOutputStream(wide("a"), 0, 0).ok());
    EXPECT_FALSE(db::FileOutputStream(wide("a"), 0, 2).ok());
    EXPECT_EQ(get("a"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, ReadingSaysWhyItFails) {
    struct Case {
        std::wstring path;
        std::wstring reason;
    };
    for (auto const& [path, reason] : {Case{wide("none"), L"No such file"}, Case{folder.wstring(), L"Is a directory"},
                                       Case{L"", L"No such file"}, Case{wide("a") + L'\0' + L"b", L"No such file"}}) {
        db::FileInputStream stream(path, 0);
        char c;
        EXPECT_EQ(stream.read(&c, 1), 0u);
        EXPECT_FALSE(stream.ok());
        EXPECT_NE(stream.error().find(L"Can't read \"" + path), std::wstring::npos);
        EXPECT_NE(stream.error().find(reason), std::wstring::npos);
    }
}

TEST_F(Streams, WritingSaysWhyItFails) {
    put("file", "");
    struct Case {
        std::wstring path;
        std::wstring reason;
    };
    for (auto const& [path, reason] :
         {Case{wide("none/a"), L"No such file"}, Case{folder.wstring(), L"Is a directory"}, Case{L"", L"No such file"},
          Case{wide("none/"), L"Is a directory"}, Case{wide("file/a"), L"Not a directory"},
          Case{wide("a") + L'\0' + L"b", L"No such file"}, Case{wide(std::string(300, 'a')), L"File name too long"},
          Case{L"/dev/null", L"Invalid argument"}}) {
        db::FileOutputStream stream(path, 0, 1);
        EXPECT_FALSE(stream.write("x", 1));
        EXPECT_FALSE(stream.commit());
        EXPECT_NE(stream.error().find(L"Can't write \"" + path), std::wstring::npos);
        EXPECT_NE(stream.error().find(reason), std::wstring::npos) << fs::path(stream.error());
    }
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, NamesMayHoldAnyCharacter) {
    {
        db::FileOutputStream stream(folder.wstring() + L"/J\u00FCrgen \U0001F40E", 0, 1);
        ASSERT_TRUE(stream.write("x", 1) && stream.commit());
    }
    EXPECT_EQ(get("J\xC3\xBCrgen \xF0\x9F\x90\x8E"), "x");
    db::FileInputStream stream(folder.wstring() + L"/J\u00FCrgen \U0001F40E", 0);
    EXPECT_EQ(readAll(stream), "x");
}

TEST_F(Streams, TheLongestNameCanBeSaved) { EXPECT_TRUE(save(std::string(255, 'a'), "x")); }

TEST_F(Streams, TheOldFileStandsUntilTheCommit) {
    put("a", "old");
    db::FileOutputStream stream(wide("a"), 0, 1);
    ASSERT_TRUE(stream.write("new", 3));
    EXPECT_EQ(get("a"), "old");
    ASSERT_TRUE(stream.commit());
    EXPECT_EQ(get("a"), "new");
}

TEST_F(Streams, WithoutACommitTheOldFileStaysAndNothingElse) {
    put("a", "old");
    { db::FileOutputStream(wide("a"), 0, 1).write("new", 3); }
    EXPECT_EQ(get("a"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, WithoutACommitNoFileComesToBe) {
    { db::FileOutputStream(wide("a"), 0, 1).write("new", 3); }
    EXPECT_EQ(fileCount(), 0u);
}

TEST_F(Streams, ACommittedFileLeavesNoTemporary) {
    ASSERT_TRUE(save("a", "1"));
    ASSERT_TRUE(save("a", "2"));
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, ASecondCommitRepeatsTheAnswer) {
    db::FileOutputStream stream(wide("a"), 0, 1);
    EXPECT_TRUE(stream.commit());
    fs::remove(at("a"));
    EXPECT_TRUE(stream.commit());
    EXPECT_EQ(fileCount(), 0u);
}

TEST_F(Streams, NothingCanBeWrittenAfterTheCommit) {
    db::FileOutputStream stream(wide("a"), 0, 1);
    ASSERT_TRUE(stream.commit());
    EXPECT_FALSE(stream.write("x", 1));
    EXPECT_FALSE(stream.ok());
    EXPECT_EQ(get("a"), "");
}

TEST_F(Streams, OfTwoSavesAtOnceTheLastToCommitWins) {
    db::FileOutputStream first(wide("a"), 0, 1), second(wide("a"), 0, 1);
    ASSERT_TRUE(first.write("1", 1) && second.write("2", 1));
    EXPECT_TRUE(second.commit());
    EXPECT_TRUE(first.commit());
    EXPECT_EQ(get("a"), "1");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, PermissionsOfAnExistingFileStay) {
    for (fs::perms mode : {fs::perms(0600), fs::perms(0644), fs::perms(0755), fs::perms(0666)}) {
        put("a", "old");
        fs::permissions(at("a"), mode);
        ASSERT_TRUE(save("a", "new"));
        EXPECT_EQ(modeOf("a"), int(mode));
    }
}

TEST_F(Streams, ANewFileFollowsTheUserMask) {
    mode_t old = ::umask(027);
    ASSERT_TRUE(save("a", "x"));
    ::umask(old);
    EXPECT_EQ(modeOf("a"), 0640);
}

TEST_F(Streams, SavingThroughALinkReplacesTheFileItLeadsTo) {
    fs::create_directory(at("there"));
    put("there/a", "old");
    fs::create_symlink(at("there/a"), at("link"));
    ASSERT_TRUE(save("link", "new"));
    EXPECT_TRUE(fs::is_symlink(at("link")));
    EXPECT_EQ(get("there/a"), "new");
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(Streams, AChangeOfTheWorkingFolderDoesNoHarm) {
    fs::path before = fs::current_path();
    fs::current_path(folder);
    {
        db::FileOutputStream stream(L"a", 0, 1);
        fs::current_path(before);
        EXPECT_TRUE(stream.commit());
    }
    EXPECT_TRUE(fs::exists(at("a")));
    EXPECT_FALSE(fs::exists(before / "a"));
}

// Runs `task` in a process of its own and gives how it ended.
template<class Task> int inChild(Task task) {
    pid_t child = ::fork();
    if (child == 0) {
        task();
        ::_exit(0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

TEST_F(Streams, AReadOnlyFileIsNotReplaced) {
    put("a", "old");
    fs::permissions(at("a"), fs::perms(0444));
    fs::permissions(folder, fs::perms::all);
    int status = inChild([&] {
        // The superuser may write to all files, so the test gives up that right.
        if (::geteuid() == 0 && ::seteuid(65534) != 0) ::_exit(2);
        if (save("a", "new")) ::_exit(1);
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(get("a"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, AProcessKilledBeforeTheCommitLeavesTheOldFile) {
    put("a", "old");
    std::string half(1 << 20, 'x');
    int status = inChild([&] {
        db::FileOutputStream stream(wide("a"), 0, 1);
        if (stream.write(half.data(), half.size())) ::kill(::getpid(), SIGKILL);
    });
    ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
    EXPECT_EQ(get("a"), "old");
}

TEST_F(Streams, AProcessKilledAfterTheCommitLeavesTheNewFile) {
    put("a", "old");
    int status = inChild([&] {
        db::FileOutputStream stream(wide("a"), 0, 1);
        if (stream.write("new", 3) && stream.commit()) ::kill(::getpid(), SIGKILL);
    });
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(get("a"), "new");
}

TEST_F(Streams, WhatAKilledSaveLeftIsRemovedByTheNextSaveOfThatFile) {
    for (int killed = 0; killed < 3; ++killed) {
        inChild([&] {
            db::FileOutputStream first(wide("a"), 0, 1), second(wide("a"), 0, 1);
            if (first.write("half", 4) && second.write("half", 4)) ::kill(::getpid(), SIGKILL);
        });
        EXPECT_EQ(fileCount(), 2u + (killed > 0));
        ASSERT_TRUE(save("a", "new"));
        EXPECT_EQ(fileCount(), 1u);
        EXPECT_EQ(get("a"), "new");
    }
}

TEST_F(Streams, WhatAnotherProcessIsSavingStays) {
    int reached[2], go[2];
    ASSERT_TRUE(::pipe(reached) == 0 && ::pipe(go) == 0);
    pid_t child = ::fork();
    if (child == 0) {
        db::FileOutputStream stream(wide("a"), 0, 1);
        char c = 'x';
        bool ok = stream.write("theirs", 6) && ::write(reached[1], &c, 1) == 1 && ::read(go[0], &c, 1) == 1;
        ::_exit(ok && stream.commit() ? 0 : 1);
    }
    char c;
    ASSERT_EQ(::read(reached[0], &c, 1), 1);
    EXPECT_TRUE(save("a", "mine"));
    EXPECT_EQ(get("a"), "mine");
    ASSERT_EQ(::write(go[1], &c, 1), 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(get("a"), "theirs");
    EXPECT_EQ(fileCount(), 1u);
    for (int end : {reached[0], reached[1], go[0], go[1]}) ::close(end);
}

TEST_F(Streams, ASaveOfAnotherFileLeavesWhatIsNotItsOwn) {
    inChild([&] {
        db::FileOutputStream stream(wide("a"), 0, 1);
        if (stream.write("half", 4)) ::kill(::getpid(), SIGKILL);
    });
    ASSERT_TRUE(save("b", "new"));
    EXPECT_EQ(fileCount(), 2u);
}

TEST_F(Streams, SavesOfOneFileAtTheSameTimeDoNotTakeEachOthersFiles) {
    std::vector<pid_t> children;
    for (int child = 0; child < 4; ++child)
        if (pid_t id = ::fork())
            children.push_back(id);
        else {
            std::string const text(1000, char('a' + child));
            for (int i = 0; i < 50; ++i)
                if (!save("a", text)) ::_exit(1);
            ::_exit(0);
        }
    for (pid_t child : children) {
        int status = -1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    std::string const text = get("a");
    EXPECT_EQ(text, std::string(1000, text.empty() ? '-' : text[0]));
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, KilledAtAnyTimeAFileIsOldOrNewButWhole) {
    std::string const texts[] = {std::string(300'000, 'a'), std::string(300'000, 'b')};
    for (int delay = 0; delay < 40; ++delay) {
        put("a", texts[0]);
        pid_t child = ::fork();
        if (child == 0)
            for (int i = 0;; ++i) save("a", texts[i % 2]);
        ::usleep(useconds_t(delay * 137));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        std::string text = get("a");
        EXPECT_TRUE(text == texts[0] || text == texts[1]) << "after " << delay * 137 << " us: " << text.size();
    }
}

TEST_F(Streams, ADiskThatIsFullLeavesTheOldFileAndNothingElse) {
    put("a", "old");
    int status = inChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{1 << 16, 1 << 16};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        if (save("a", std::string(1 << 20, 'x'))) ::_exit(1);
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(get("a"), "old");
    EXPECT_EQ(fileCount(), 1u);
}

TEST_F(Streams, AFolderThatVanishedFailsTheCommit) {
    fs::create_directory(at("gone"));
    db::FileOutputStream stream(wide("gone/a"), 0, 1);
    ASSERT_TRUE(stream.ok());
    fs::remove_all(at("gone"));
    EXPECT_FALSE(stream.commit());
    EXPECT_FALSE(stream.commit());
    EXPECT_NE(stream.error(), L"");
}

TEST(StringStreams, GiveWhatTheyWereGiven) {
    for (std::size_t portion : {std::size_t(0), std::size_t(1), std::size_t(5), std::string::npos}) {
        db::StringInputStream stream(bytes, portion);
        EXPECT_EQ(stream.sizeHint(), bytes.size());
        EXPECT_EQ(readAll(stream), bytes);
    }
}

TEST(StringStreams, KeepWhatIsWritten) {
    db::StringOutputStream stream;
    EXPECT_TRUE(stream.write("ab", 2) && stream.write("c", 1) && stream.commit() && stream.commit());
    EXPECT_EQ(stream.text(), "abc");
    EXPECT_FALSE(stream.write("d", 1));
    EXPECT_EQ(stream.text(), "abc");
}

}  // namespace
