// Joint positions straight from a motion file's numbers: a reader of its own and column-vector matrices, in double
// precision, short and slow, sharing nothing with what it is to check. Takes plain files: no glued numbers, no names
// that look like keywords.
#pragma once
#include <array>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kinematics {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

struct Bone {
    int parent;
    Vector offset{};
    std::vector<std::string> channels;
};

struct Motion {
    std::vector<Bone> bones;
    std::vector<std::vector<double>> frames;
    double frameTime = 0;
    bool adds = false;  // position channels are differences from the offset; otherwise they stand in its place
};

inline Motion load(std::string const& path) {
    Motion motion;
    std::ifstream file(path);
    std::vector<int> open;  // -1: an end site
    int last = -1;
    for (std::string word; file >> word && word != "MOTION";) {
        if (word == "ROOT" || word == "JOINT") {
            motion.bones.push_back({open.empty() ? -1 : open.back(), {}, {}});
            last = int(motion.bones.size()) - 1;
        } else if (word == "End") {
            last = -1;
        } else if (word == "{") {
            open.push_back(last);
        } else if (word == "}") {
            open.pop_back();
        } else if (word == "OFFSET") {
            Vector v;
            file >> v[0] >> v[1] >> v[2];
            if (open.back() >= 0) motion.bones[std::size_t(open.back())].offset = v;
        } else if (word == "CHANNELS") {
            int count = 0;
            file >> count;
            auto& channels = motion.bones[std::size_t(open.back())].channels;
            for (channels.resize(std::size_t(count)); std::string & channel : channels) file >> channel;
        }
    }
    std::string word;
    std::size_t frames = 0, width = 0;
    file >> word >> frames >> word >> word >> word;
    motion.frameTime = std::stod(word);
    for (Bone const& bone : motion.bones) width += bone.channels.size();
    motion.frames.assign(frames, std::vector<double>(width));
    for (auto& frame : motion.frames)
        for (double& value : frame) file >> value;
    return motion;
}

inline Vector transformed(Matrix const& m, Vector const& v) {
    Vector r{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k) r[i] += m[i][k] * v[k];
    return r;
}

inline Matrix multiply(Matrix const& a, Matrix const& b) {
    Matrix r{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) r[i][j] += a[i][k] * b[k][j];
    return r;
}

inline Matrix turn(char axis, double degrees) {
    double const c = std::cos(degrees * 3.14159265358979323846 / 180),
                 s = std::sin(degrees * 3.14159265358979323846 / 180);
    if (axis == 'X') return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
    if (axis == 'Y') return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
    return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
}

// World positions of all bones in a frame, in the file's unit.
inline std::vector<Vector> positions(Motion const& motion, std::size_t frame) {
    std::vector<Vector> place;
    std::vector<Matrix> turned;
    auto value = motion.frames[frame].begin();
    for (Bone const& bone : motion.bones) {
        Vector at = bone.offset;
        Matrix rotation{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
        for (std::string const& channel : bone.channels) {
            auto const axis = std::size_t(channel[0] - 'X');
            if (channel.find("position") != std::string::npos)
                at[axis] = (motion.adds ? bone.offset[axis] : 0) + *value++;
            else
                rotation = multiply(rotation, turn(channel[0], *value++));
        }
        if (bone.parent >= 0) {
            Matrix const& above = turned[std::size_t(bone.parent)];
            at = transformed(above, at);
            for (std::size_t i = 0; i < 3; ++i) at[i] += place[std::size_t(bone.parent)][i];
            rotation = multiply(above, rotation);
        }
        place.push_back(at);
        turned.push_back(rotation);
    }
    return place;
}

// The extent of the first frame.
inline double size(Motion const& motion) {
    Vector low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
    for (Vector const& v : positions(motion, 0))
        for (std::size_t i = 0; i < 3; ++i) low[i] = std::min(low[i], v[i]), high[i] = std::max(high[i], v[i]);
    return std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
}

}  // namespace kinematics
