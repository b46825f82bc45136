// Clips and files for the tests of this folder.
#pragma once
#include "plugins/bvh/reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace bvh {

inline Clip mustRead(std::string_view text) {
    Clip clip;
    Error error;
    EXPECT_TRUE(read(text, clip, error)) << error.text() << "\nin\n" << text.substr(0, 2000);
    return clip;
}

inline Error mustFail(std::string_view text) {
    Clip clip;
    Error error;
    EXPECT_FALSE(read(text, clip, error)) << text.substr(0, 2000);
    return error;
}

// One root of the given channels, and a motion.
inline std::string oneJoint(std::string const& channels, std::string const& motion) {
    return "HIERARCHY\nROOT Hips\n{\n OFFSET 1 2 3\n CHANNELS " + channels + "\n}\nMOTION\n" + motion;
}

// A root with one rotation, whose single frame holds `numbers`.
inline std::string withNumbers(std::string const& numbers, int frames = 1) {
    return oneJoint("1 Xrotation", "Frames: " + std::to_string(frames) + "\nFrame Time: 0.1\n" + numbers);
}

inline std::string fileText(std::filesystem::path const& path) {
    std::ifstream file{path, std::ios::binary};
    return {std::istreambuf_iterator<char>{file}, {}};
}

inline std::filesystem::path sourceFolder() { return TAVO_SOURCE_DIR; }
inline std::filesystem::path sharedClips() { return sourceFolder() / ".." / "shared" / "data"; }

// A folder of its own that goes with the test.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "clips-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        path = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;

    std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator{path}, std::filesystem::directory_iterator{});
    }
};

}  // namespace bvh
