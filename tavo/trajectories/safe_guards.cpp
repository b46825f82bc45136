// Safe guards: spheres in which no weighted edit moves a key.
#include "tavo/trajectories/trajectory_edit.h"

namespace Tavo {
namespace {

std::wstring const useLabel = L"Use Safe Guards", addLabel = L"Add Safe Guard", editLabel = L"Edit Safe Guard",
                   deleteLabel = L"Delete Safe Guard";

void write(XAttribute const& guard, XVector3 const& centre, float radius, XDropOff const& dropoff) {
    guard.Attribute(0).SetVector(centre);
    float const numbers[] = {radius, dropoff.m_range, dropoff.m_innerTangent, dropoff.m_outerTangent};
    for (int i = 0; i < 4; ++i) guard.Attribute(i + 1).SetFloat(numbers[i]);
}

}  // namespace

XTrajectory& XTrajectory::UseSafeGuards(bool use) {
    XTrajectoryEdit const edit(*this, useLabel);
    UseSafeGuards().SetBoolean(use);
    return *this;
}

XTrajectory& XTrajectory::AddSafeGuard(XVector3 const& centre, float radius, XDropOff const& dropoff) {
    if (XTrajectoryEdit const edit(*this, addLabel); edit)
        write(SafeGuardsArray().AddAttribute(), centre, radius, dropoff);
    return *this;
}

XTrajectory& XTrajectory::EditSafeGuard(int index, XVector3 const& centre, float radius, XDropOff const& dropoff) {
    XTrajectoryEdit const edit(*this, editLabel);
    if (edit && index >= 0 && index < SafeGuardsArray().AttributeCount())
        write(SafeGuardsArray().Attribute(index), centre, radius, dropoff);
    return *this;
}

XTrajectory& XTrajectory::DeleteSafeGuard(int index) {
    XTrajectoryEdit const edit(*this, deleteLabel);
    if (edit && index >= 0 && index < SafeGuardsArray().AttributeCount()) SafeGuardsArray().Delete(index);
    return *this;
}

}  // namespace Tavo
