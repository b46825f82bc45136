// What the tests of `tavo ik` and `tavo retarget` share: clips of a few frames, figures made from them, and where their
// joints are, worked out here from nothing but the files.
#pragma once
#include "plugins/bvh/reader.h"
#include "plugins/bvh/writer.h"
#include "tests/hosts/tavo/trajectory_host.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numbers>

namespace hosttest {

class RigHostTest : public TrajectoryHostTest {
protected:
    using Place = std::array<double, 3>;
    using Matrix = std::array<Place, 3>;  // rows are where the axes go

    bvh::Clip read(std::string const& name) const {
        bvh::Clip clip;
        bvh::Error error;
        EXPECT_TRUE(bvh::readFile((folder / name).string(), clip, error)) << name << ": " << error.text();
        return clip;
    }
    void save(bvh::Clip const& clip, std::string const& name) const {
        bvh::Error error;
        EXPECT_TRUE(bvh::writeFile((folder / name).string(), clip, error)) << name << ": " << error.text();
    }
    // The first frames of the walk.
    bvh::Clip walk(int frames) const {
        bvh::Clip clip = read("walk.bvh");
        clip.frames = frames;
        clip.values.resize(std::size_t(frames) * std::size_t(clip.channels));
        return clip;
    }
    // Stands at rest in its one frame, at the place where it walks.
    static void stand(bvh::Clip& clip) {
        clip.frames = 1;
        clip.values.resize(std::size_t(clip.channels));
        std::fill(clip.values.begin() + 3, clip.values.end(), 0);
    }
    static int joint(bvh::Clip const& clip, std::string const& name) {
        for (std::size_t i = 0; i < clip.joints.size(); ++i)
            if (clip.joints[i].name == name) return int(i);
        ADD_FAILURE() << "no joint " << name;
        return 0;
    }
    // Every length, offsets and positions alike.
    static void resize(bvh::Clip& clip, double factor) {
        for (bvh::Joint& joint : clip.joints) {
            for (double& x : joint.offset) x *= factor;
            for (bvh::EndSite& end : joint.endSites)
                for (double& x : end.offset) x *= factor;
            for (int frame = 0; frame < clip.frames; ++frame)
                for (std::size_t k = 0; k < joint.channels.size(); ++k)
                    if (bvh::isPosition(joint.channels[k])) value(clip, frame, joint.column + int(k)) *= factor;
        }
    }
    // Its children hang on its parent instead, where they are at rest. A joint with three channels.
    static void remove(bvh::Clip& clip, std::string const& name) {
        int const gone = joint(clip, name);
        bvh::Joint const removed = clip.joints[std::size_t(gone)];
        auto const width = std::ptrdiff_t(removed.channels.size());
        for (int frame = clip.frames; frame-- > 0;) {
            auto const at = clip.values.begin() + std::ptrdiff_t(frame) * clip.channels + removed.column;
            clip.values.erase(at, at + width);
        }
        clip.channels -= int(width);
        clip.joints.erase(clip.joints.begin() + gone);
        for (bvh::Joint& joint : clip.joints) {
            if (joint.column > removed.column) joint.column -= int(width);
            if (joint.parent == gone) {
                joint.parent = removed.parent;
                for (std::size_t i = 0; i < 3; ++i) joint.offset[i] += removed.offset[i];
            } else if (joint.parent > gone) {
                --joint.parent;
            }
        }
    }
    static double& value(bvh::Clip& clip, int frame, int column) {
        return clip.values[std::size_t(frame) * std::size_t(clip.channels) + std::size_t(column)];
    }

    // In the world, in the file's unit, and how it is turned there.
    struct Pose {
        Place at{};
        Matrix turn{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    };
    static std::vector<Pose> poses(bvh::Clip const& clip, int frame) {
        std::vector<Pose> poses;
        for (bvh::Joint const& joint : clip.joints) {
            Pose local{joint.offset};
            for (std::size_t k = joint.channels.size(); k-- > 0;) {
                double const x = clip.value(frame, joint.column + int(k));
                auto const axis = std::size_t(bvh::axisOf(joint.channels[k]));
                if (bvh::isPosition(joint.channels[k]))
                    local.at[axis] = x;
                else
                    local.turn = product(local.turn, turnAbout(axis, x * std::numbers::pi / 180));
            }
            Pose const above = joint.parent < 0 ? Pose() : poses[std::size_t(joint.parent)];
            poses.push_back({sum(carried(local.at, above.turn), above.at), product(local.turn, above.turn)});
        }
        return poses;
    }
    static Pose pose(bvh::Clip const& clip, int frame, std::string const& name) {
        return poses(clip, frame)[std::size_t(joint(clip, name))];
    }
    // The largest distance of joints of one number over all frames, in metres of clips in centimetres; the first one's
    // lengths count `factor` times.
    static double largestDistance(bvh::Clip const& a, bvh::Clip const& b, double factor = 1) {
        EXPECT_EQ(a.joints.size(), b.joints.size());
        EXPECT_EQ(a.frames, b.frames);
        double largest = 0;
        for (int frame = 0; frame < std::min(a.frames, b.frames); ++frame) {
            std::vector<Pose> const p = poses(a, frame), q = poses(b, frame);
            for (std::size_t i = 0; i < std::min(p.size(), q.size()); ++i)
                largest = std::max(largest, length(difference(q[i].at, p[i].at, factor)));
        }
        return largest / 100;
    }
    static double length(Place const& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); }
    static Place difference(Place const& a, Place const& b, double factor = 1) {
        return {a[0] - factor * b[0], a[1] - factor * b[1], a[2] - factor * b[2]};
    }

private:
    static Place sum(Place const& a, Place const& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
    static Place carried(Place const& v, Matrix const& m) {
        Place out{};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) out[j] += v[i] * m[i][j];
        return out;
    }
    static Matrix product(Matrix const& first, Matrix const& second) {
        return {carried(first[0], second), carried(first[1], second), carried(first[2], second)};
    }
    static Matrix turnAbout(std::size_t axis, double angle) {
        std::size_t const y = (axis + 1) % 3, z = (axis + 2) % 3;
        Matrix m{};
        m[axis][axis] = 1;
        m[y][y] = m[z][z] = std::cos(angle);
        m[y][z] = std::sin(angle);
        m[z][y] = -std::sin(angle);
        return m;
    }
};

}  // namespace hosttest
