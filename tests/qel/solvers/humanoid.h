// Skeletons made to order: joint counts, names, proportions, rest poses and axes.
#pragma once
#include "qel/solvers/skeleton.h"
#include "qel/utils/rotation.h"
#include <map>
#include <random>

namespace sg {

enum class Naming { Words, Anatomy, Points, Scrambled };

struct HumanoidOptions {
    int spines = 3, necks = 1, fingers = 0, fingerBones = 3;
    bool hasRoot = false;  // on the floor, above the hips
    bool hasEnds = false;  // the top of the head
    bool hasFace = false;
    Naming naming = Naming::Words;
    double size = 1;            // of everything
    double legs = 1, arms = 1;  // of the limbs besides
    double armsDown = 0;        // radians: 0 is a T pose, 0.8 an A pose
    double legsApart = 0;
    double kneesBent = 0;
    bool turnsAxes = false;  // each joint's axes stand their own way
    bool isZUp = false;
    double facing = 0;  // about the vertical
    unsigned seed = 7;
};

class HumanoidBuilder {
public:
    explicit HumanoidBuilder(HumanoidOptions const& o) : o_(o), random_(o.seed) { build(); }

    Skeleton take() {
        pose();
        for (auto& p : at_) p = placed(p);
        Skeleton s;
        std::vector<retargeting::Quaternion> world;
        for (std::size_t i = 0; i < at_.size(); ++i) world.push_back(o_.turnsAxes ? any() : retargeting::Quaternion());
        for (std::size_t i = 0; i < at_.size(); ++i) {
            int const parent = parents_[i];
            auto const above = parent < 0 ? retargeting::Quaternion() : world[std::size_t(parent)];
            auto const from = parent < 0 ? Vec3() : at_[std::size_t(parent)];
            auto const inverse = retargeting::conjugate(above);
            auto const offset = retargeting::turned(at_[i] - from, inverse);
            auto const q = retargeting::multiply(world[i], inverse);
            Qelp::Matrix34 m;
            Qelutils::quatToMatrix({float(q.x), float(q.y), float(q.z), float(q.w)}, m);
            m.m[3][0] = float(offset.x), m.m[3][1] = float(offset.y), m.m[3][2] = float(offset.z);
            s.names.push_back(scrambledOr(names_[i]));
            s.parents.push_back(parent);
            s.origins.push_back(m);
        }
        return s;
    }

private:
    using Quaternion = retargeting::Quaternion;

    int add(std::wstring const& name, int parent, Vec3 const& offset) {
        names_.push_back(name);
        parents_.push_back(parent);
        at_.push_back((parent < 0 ? Vec3() : at_[std::size_t(parent)]) + offset * o_.size);
        return int(at_.size()) - 1;
    }
    // The three vocabularies.
    std::wstring word(int side, wchar_t const* words, wchar_t const* anatomy, wchar_t const* points) const {
        if (o_.naming == Naming::Anatomy) return std::wstring(anatomy) + (side < 0 ? L"" : side == 0 ? L".L" : L".R");
        if (o_.naming == Naming::Points)
            return std::wstring(side < 0 ? L"rig:" : side == 0 ? L"rig:l_" : L"rig:r_") + points;
        return std::wstring(side < 0 ? L"" : side == 0 ? L"Left" : L"Right") + words;
    }
    std::wstring scrambledOr(std::wstring const& name) {
        if (o_.naming != Naming::Scrambled) return name;
        std::wstring out = L"q";
        for (int i = 0; i < 6; ++i) out += wchar_t(L'a' + random_() % 26);
        return out;
    }
    static std::wstring numbered(std::wstring const& stem, int i) { return i ? stem + std::to_wstring(i) : stem; }

    void build() {
        double const thigh = 0.42 * o_.legs, shin = 0.41 * o_.legs, ankle = 0.08;
        int const root = o_.hasRoot ? add(word(-1, L"Root", L"root", L"reference"), -1, {}) : -1;
        int const hips = add(word(-1, L"Hips", L"pelvis", L"hips"), root, {0, thigh + shin + ankle + 0.05, 0});
        int chest = hips;
        for (int i = 0; i < o_.spines; ++i)
            chest = add(numbered(word(-1, L"Spine", L"spine", L"spine_"), i), chest, {0, 0.42 / o_.spines, 0});
        int neck = chest;
        for (int i = 0; i < o_.necks; ++i)
            neck = add(numbered(word(-1, L"Neck", L"neck", L"neck_"), i), neck, {0, (i ? 0.06 : 0.12), 0});
        int const head = add(word(-1, L"Head", L"head", L"head"), neck, {0, 0.08, 0.01});
        if (o_.hasEnds) add(word(-1, L"HeadEnd", L"head_end", L"head_tip"), head, {0, 0.19, 0});
        if (o_.hasFace) {
            add(word(-1, L"Jaw", L"jaw", L"jaw"), head, {0, 0.02, 0.06});
            for (int side = 0; side < 2; ++side)
                add(word(side, L"Eye", L"eye", L"eye"), head, {side ? -0.03 : 0.03, 0.08, 0.09});
        }
        for (int side = 0; side < 2; ++side) buildArm(side, chest);
        for (int side = 0; side < 2; ++side) buildLeg(side, hips, thigh, shin, ankle);
    }
    void buildArm(int side, int chest) {
        double const x = side ? -1 : 1;
        int const collar = add(word(side, L"Shoulder", L"clavicle", L"collar"), chest, {0.03 * x, 0.08, 0.02});
        int const upper = add(word(side, L"Arm", L"upper_arm", L"shoulder"), collar, {0.14 * x, 0, -0.02});
        int const fore = add(word(side, L"ForeArm", L"forearm", L"elbow"), upper, {0.28 * x * o_.arms, 0, 0});
        int const hand = add(word(side, L"Hand", L"hand", L"wrist"), fore, {0.25 * x * o_.arms, 0, 0});
        arms_[side] = {upper, fore};
        static wchar_t const* const digits[] = {L"Thumb", L"Index", L"Middle", L"Ring", L"Pinky"};
        for (int finger = 0; finger < o_.fingers; ++finger) {
            double const z = 0.05 - 0.025 * finger;
            int at = hand;
            for (int bone = 0; bone < o_.fingerBones; ++bone) {
                std::wstring const name = std::wstring(L"Hand") + digits[finger] + std::to_wstring(bone + 1);
                at = add(word(side, name.c_str(), name.c_str(), name.c_str()), at,
                         bone ? Vec3{0.03 * x, 0, finger ? 0 : 0.02} : Vec3{(finger ? 0.09 : 0.03) * x, 0, z});
            }
        }
    }
    void buildLeg(int side, int hips, double thigh, double shin, double ankle) {
        double const x = side ? -1 : 1;
        int const upper = add(word(side, L"UpLeg", L"thigh", L"hip"), hips, {0.09 * x, -0.05, 0});
        int const lower = add(word(side, L"Leg", L"shin", L"knee"), upper, {0, -thigh, 0});
        int const foot = add(word(side, L"Foot", L"foot", L"ankle"), lower, {0, -shin, 0});
        add(word(side, L"ToeBase", L"toe", L"ball"), foot, {0, -ankle + 0.02, 0.13});
        legs_[side] = {upper, lower};
    }
    bool isBelow(int joint, int ancestor) const {
        while (joint > ancestor) joint = parents_[std::size_t(joint)];
        return joint == ancestor;
    }
    void turn(int joint, Vec3 const& axis, double angle) {
        auto const q = Qelutils::rotation::fromAxisAngle({axis.x, axis.y, axis.z}, angle);
        Vec3 const pivot = at_[std::size_t(joint)];
        for (int i = joint; i < int(at_.size()); ++i)
            if (isBelow(i, joint)) at_[std::size_t(i)] = pivot + retargeting::turned(at_[std::size_t(i)] - pivot, q);
    }
    void pose() {
        for (int side = 0; side < 2; ++side) {
            double const x = side ? -1 : 1;
            turn(arms_[side].first, {0, 0, 1}, -x * o_.armsDown);
            turn(legs_[side].first, {0, 0, 1}, x * o_.legsApart);
            turn(legs_[side].first, {1, 0, 0}, -o_.kneesBent);
            turn(legs_[side].second, {1, 0, 0}, 2 * o_.kneesBent);
        }
    }
    Vec3 placed(Vec3 const& p) const {
        Vec3 const turned = retargeting::turned(p, Qelutils::rotation::fromAxisAngle({0, 1, 0}, o_.facing));
        return o_.isZUp ? Vec3{turned.x, -turned.z, turned.y} : turned;
    }
    Quaternion any() {
        std::normal_distribution<double> normal;
        return Qelutils::rotation::normalized({normal(random_), normal(random_), normal(random_), normal(random_)});
    }
    HumanoidOptions o_;
    std::mt19937 random_;
    std::vector<std::wstring> names_;
    std::vector<int> parents_;
    std::vector<Vec3> at_;
    std::pair<int, int> arms_[2], legs_[2];
};

inline Skeleton humanoid(HumanoidOptions const& o = {}) { return HumanoidBuilder(o).take(); }

// 31 and 60 joints.
inline HumanoidOptions small() {
    HumanoidOptions o;
    o.fingers = 2, o.fingerBones = 2, o.hasEnds = true;
    return o;
}
inline HumanoidOptions large() {
    HumanoidOptions o;
    o.hasRoot = true, o.spines = 5, o.necks = 2, o.fingers = 5, o.hasEnds = true, o.hasFace = true;
    return o;
}

// A motion: every joint turns about its own axes by up to `angle`, smoothly in time, and the joints without a parent
// travel. The same seed and time give the same pose, whatever came before.
inline std::vector<Qelp::Matrix34> moved(Skeleton const& s, double time, double angle = 0.5, double travel = 1) {
    std::vector<Qelp::Matrix34> out = s.origins;
    for (std::size_t i = 0; i < s.size(); ++i) {
        auto const wave = [&](int axis) { return std::sin(time * (1 + 0.3 * axis) + 1.7 * double(i) + 2.1 * axis); };
        Qelp::Matrix34 turn;
        Qelutils::eulerToMatrix({float(angle * wave(0)), float(angle * wave(1)), float(angle * wave(2))}, 0, turn);
        out[i] = Qelutils::multiply(turn, s.origins[i]);
        if (s.parents[i] < 0)
            for (int axis = 0; axis < 3; ++axis)
                out[i].m[3][axis] += float(travel * wave(axis) * (axis == 1 ? 0.1 : 1));
    }
    return out;
}

}  // namespace sg
