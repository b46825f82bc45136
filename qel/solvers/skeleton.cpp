#include "qel/solvers/skeleton.h"
#include "qel/utils/rotation.h"

namespace sg {

using namespace retargeting;

bool isUsable(Qelp::Matrix34 const& m) {
    for (auto const& row : m.m)
        for (int j = 0; j < 3; ++j)
            if (!(std::abs(row[j]) < 1e15F)) return false;
    return true;
}

bool Skeleton::Validate() const {
    if (names.size() != size() || origins.size() != size()) return false;
    for (std::size_t i = 0; i < size(); ++i)
        if (parents[i] < -1 || parents[i] >= int(i) || !isUsable(origins[i])) return false;
    return true;
}

std::vector<Qelp::Matrix34> Skeleton::restMatrices() const {
    std::vector<Qelp::Matrix34> world(origins);
    for (std::size_t i = 0; i < size(); ++i)
        if (parents[i] >= 0) world[i] = Qelutils::multiply(origins[i], world[std::size_t(parents[i])]);
    return world;
}

std::vector<Vec3> Skeleton::restPositions() const {
    std::vector<Vec3> positions;
    for (Qelp::Matrix34 const& m : restMatrices()) positions.push_back(translationOf(m));
    return positions;
}

std::vector<Quaternion> Skeleton::restRotations() const {
    std::vector<Quaternion> world;
    for (std::size_t i = 0; i < size(); ++i) {
        Quaternion const local = toQuaternion(Qelutils::rotation::orthonormal(origins[i].m));
        world.push_back(parents[i] < 0 ? local : multiply(local, world[std::size_t(parents[i])]));
    }
    return world;
}

std::vector<std::vector<int>> Skeleton::children() const {
    std::vector<std::vector<int>> out(size());
    for (std::size_t i = 0; i < size(); ++i)
        if (parents[i] >= 0) out[std::size_t(parents[i])].push_back(int(i));
    return out;
}

}  // namespace sg
