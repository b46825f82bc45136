// The built host as a child process, in a folder of its own.
#pragma once
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace hosttest {

namespace fs = std::filesystem;

struct Outcome {
    int code = -1;
    std::string out, err;
};

inline std::string textOf(fs::path const& file) {
    std::ifstream stream{file, std::ios::binary};
    return {std::istreambuf_iterator<char>{stream}, {}};
}

inline void write(fs::path const& file, std::string const& text) {
    std::ofstream stream{file, std::ios::binary};
    stream << text;
}

class HostTest : public testing::Test {
protected:
    HostTest() {
        std::string name = (fs::temp_directory_path() / "host-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        fs::copy_file(fs::path(TAVO_SOURCE_DIR) / "examples/walk.bvh", folder / "walk.bvh");
    }
    ~HostTest() override {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }
    // `arguments` as a shell reads them.
    Outcome tavo(std::string const& arguments) const {
        std::string const command =
            "cd '" + folder.string() + "' && '" TAVO_BINARY_DIR "/bin/tavo' " + arguments + " >.out 2>.err </dev/null";
        int const status = std::system(command.c_str());
        Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, textOf(folder / ".out"), textOf(folder / ".err")};
        fs::remove(folder / ".out");
        fs::remove(folder / ".err");
        return outcome;
    }
    // Must succeed without a message; gives what it printed.
    std::string result(std::string const& arguments) const {
        Outcome const outcome = tavo(arguments);
        EXPECT_EQ(outcome.code, 0) << arguments << "\n" << outcome.err;
        EXPECT_EQ(outcome.err, "") << arguments;
        return outcome.out;
    }
    // Must fail with that code, one line of message, no result and no new file; gives the message.
    std::string failure(int code, std::string const& arguments) const {
        std::ptrdiff_t const before = files();
        Outcome const outcome = tavo(arguments);
        EXPECT_EQ(outcome.code, code) << arguments << "\n" << outcome.err;
        EXPECT_EQ(outcome.out, "") << arguments;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << arguments << "\n" << outcome.err;
        EXPECT_EQ(files(), before) << arguments << " left a file";
        return outcome.err;
    }
    std::ptrdiff_t files() const { return std::distance(fs::directory_iterator{folder}, fs::directory_iterator{}); }
    bool exists(std::string const& name) const { return fs::exists(folder / name); }
    std::string text(std::string const& name) const { return textOf(folder / name); }

    fs::path folder;
};

inline bool has(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

}  // namespace hosttest
