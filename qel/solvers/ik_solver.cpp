#include "qel/solvers/ik_solver.h"
#include "qel/solvers/ik_search.h"
#include "qel/utils/text.h"

namespace sg {
namespace {

bool isFinite(Qelp::Matrix34 const& m) {
    for (auto const& row : m.m)
        for (int k = 0; k < 3; ++k)
            if (!std::isfinite(row[k])) return false;
    return true;
}

// Also for what is not a number, which compares as false.
bool isWeight(double x) { return x >= 0 && x < 1e30; }

template<class... A> std::wstring message(wchar_t const* text, A... arguments) {
    return Qelutils::format(text, arguments...);
}

std::wstring checkHierarchy(IKSolver const& s) {
    int const count = int(s.geometry.size());
    if (s.hierarchy.size() < s.geometry.size()) return L"The hierarchy is shorter than the geometry";
    for (int i = 0; i < count; ++i)
        if (s.hierarchy[std::size_t(i)] < -1 || s.hierarchy[std::size_t(i)] >= count)
            return message(L"Joint %d has no joint %d for a parent", i, s.hierarchy[std::size_t(i)]);
    // Whoever walks up for longer than there are joints walks in a circle.
    for (int i = 0; i < count; ++i) {
        int at = i, steps = 0;
        while (at >= 0 && steps <= count) at = s.hierarchy[std::size_t(at)], ++steps;
        if (at >= 0) return message(L"Joint %d is below itself", at);
    }
    for (int root : s.roots)
        if (root < 0 || root >= count) return message(L"There is no joint %d for a root", root);
    return {};
}

std::wstring checkHandles(IKSolver const& s) {
    for (std::size_t i = 0; i < s.handles.size(); ++i) {
        IKHandle const& h = s.handles[i];
        int const n = int(i);
        if (h.joint < 0 || std::size_t(h.joint) >= s.geometry.size())
            return message(L"Handle %d has no joint %d for an effector", n, h.joint);
        if (!isFinite(h.target)) return message(L"The target of handle %d is not finite", n);
        if (h.mode < PositionAndOrientationHandle || h.mode > SecondaryHandle)
            return message(L"Handle %d has the mode %d, which there is not", n, h.mode);
        if (!isWeight(h.positionWeight) || !isWeight(h.orientationWeight) || !isWeight(h.secondaryWeight))
            return message(L"A weight of handle %d is negative or not a number", n);
    }
    return {};
}

std::wstring checkJoints(IKSolver const& s) {
    for (std::size_t i = 0; i < s.geometry.size(); ++i)
        if (!isFinite(s.geometry[i])) return message(L"The matrix of joint %d is not finite", int(i));
    for (std::size_t i = 0; i < s.joints.size(); ++i) {
        IKJoint const& j = s.joints[i];
        if (!isWeight(j.stiffness) || !isWeight(j.readiness[0]) || !isWeight(j.readiness[1]) ||
            !isWeight(j.readiness[2]))
            return message(L"A weight of joint %d is negative or not a number", int(i));
        if (j.hasPoles && !(isFinite(j.controlPole) && isFinite(j.referencePole)))
            return message(L"A pole of joint %d is not finite", int(i));
    }
    for (auto const& pose : s.bindPoses)
        for (Qelp::Matrix34 const& m : pose)
            if (!isFinite(m)) return L"A bind pose is not finite";
    for (Qelp::Matrix34 const& m : s.previous)
        if (!isFinite(m)) return L"The previous pose is not finite";
    return {};
}

}  // namespace

IKSolver::IKSolver() = default;
IKSolver::~IKSolver() = default;
IKSolver::IKSolver(IKSolver&&) noexcept = default;
IKSolver& IKSolver::operator=(IKSolver&&) noexcept = default;

std::wstring IKSolver::Validate() const {
    std::wstring why = checkHierarchy(*this);
    if (why.empty()) why = checkHandles(*this);
    if (why.empty()) why = checkJoints(*this);
    if (!why.empty()) return why;
    if (maxIterations < 0) return L"The number of iterations is negative";
    if (!isWeight(positionAccuracy) || !isWeight(orientationAccuracy))
        return L"An accuracy is negative or not a number";
    if (!std::isfinite(moreBias) || !std::isfinite(reverseBias)) return L"A bias is not a number";
    return {};
}

bool IKSolver::Run() {
    result.assign(geometry.begin(), geometry.end());
    isReached = false;
    iterations = attempts = 0;
    positionError = orientationError = 0;
    if (!Validate().empty()) return false;
    if (!search_) search_ = std::make_unique<ik::Search>();
    search_->run(*this);
    return true;
}

}  // namespace sg
