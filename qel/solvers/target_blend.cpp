#include "qel/solvers/target_blend.h"
#include "qel/solvers/rotation_average.h"
#include <algorithm>
#include <cmath>

namespace sg {
namespace {

using namespace Qelutils::rotation;

class Blend {
public:
    explicit Blend(Affine const& parentWorld) : toParent_(inverse(parentWorld)) {}

    void add(BlendTarget const& target, double weight) {
        if (weight > 0)
            addLocal(multiply(multiply(toAffine(target.offset), toAffine(target.world)), toParent_), weight);
    }
    void addLocal(Affine const& place, double weight) {
        Triple const at = place.row(3);
        sum_ = {sum_.x + weight * at.x, sum_.y + weight * at.y, sum_.z + weight * at.z};
        rotations_.add(toQuaternion(rotationOf(place)), weight);
        total_ += weight;
    }
    double total() const { return total_; }
    Triple translation() const {
        return total_ > 0 ? Triple{sum_.x / total_, sum_.y / total_, sum_.z / total_} : Triple();
    }
    Quaternion rotation() const { return rotations_.get(); }

private:
    Affine toParent_;
    Triple sum_;
    RotationAverage rotations_;
    double total_ = 0;
};

}  // namespace

double BlendTarget::usableWeight() const { return weight > 0 && std::isfinite(weight) ? weight : 0; }

bool TargetBlend::Validate() const {
    auto const isSound = [](BlendTarget const& t) {
        return isFinite(t.world) && isFinite(t.offset) && t.weight >= 0 && std::isfinite(t.weight);
    };
    return isFinite(parentWorld) && std::all_of(targets.begin(), targets.end(), isSound);
}

void TargetBlend::Run() {
    Blend blend(toAffine(parentWorld));
    for (BlendTarget const& target : targets) blend.add(target, target.usableWeight());
    if (!normalizeWeights && blend.total() < 1) blend.addLocal({}, 1 - blend.total());
    quaternion = blend.rotation();
    Rotation const turn = fromQuaternion(quaternion);
    Triple const angles = toEuler(turn, 0), at = blend.translation();
    local = toMatrix(toAffine(turn, at));
    translation = {clampedFloat(at.x), clampedFloat(at.y), clampedFloat(at.z)};
    rotation = {clampedFloat(angles.x), clampedFloat(angles.y), clampedFloat(angles.z)};
}

}  // namespace sg
