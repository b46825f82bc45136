// One frame of retargeting: the target's local matrices from the source's. The method is told in retarget_rig.h.
//
// A pure function of the rig and the source: the same inputs give the same bits, and no frame depends on another. A
// source matrix that is not usable (not finite, or beyond 1e15) counts as its origin, so that nothing but finite
// numbers comes out. Scale and shear of the source are carried over, as a stretch along the joint's own axes. The first
// frame makes room; later ones allocate nothing.
#pragma once
#include "qel/solvers/retarget_rig.h"

namespace sg {

struct Retarget {
    // ---- given ----
    RetargetRig const* rig = nullptr;        // that ran
    std::span<Qelp::Matrix34 const> source;  // local, one for each source joint
    bool disableLimits = false;

    // ---- found ----
    std::span<Qelp::Matrix34> target;  // local, one for each target joint; given as room, written by Run
    int limitHits = 0;                 // joints of this frame that a limit held back

    bool Validate() const;  // as many matrices as joints, on both sides
    bool Run();             // false, and nothing written, if it is not valid
    bool isLimited(int joint) const { return limited_[std::size_t(joint)] != 0; }  // of the last frame; `joint` exists

private:
    void readSource();
    void readCarriers();
    Quaternion turnOf(RetargetRig::TargetJoint const& t) const;
    void rotate(std::size_t i);
    void follow(std::size_t i, Quaternion const& asked, Quaternion const& above);
    void setLocal(std::size_t i, Quaternion const& local, Quaternion const& above);
    void limit(std::size_t i, Quaternion const& above);
    Qelp::Matrix34 matrixOf(std::size_t i) const;
    void translate(std::size_t i, Qelp::Matrix34& m) const;
    void stretch(RetargetRig::TargetJoint const& t, Qelp::Matrix34& m) const;

    // Of source joints: local rotation; world orientation; the turn since rest. Of target joints: local rotation, world
    // orientation, the turn made, and what it lacks of the turn that was asked for.
    std::vector<Quaternion> sourceLocal_, sourceWorld_, asked_, local_, world_, made_, lack_;
    std::vector<unsigned char> isPlain_, limited_, isStretched_;
    std::vector<Qelp::Matrix34> usable_, carriers_;
};

}  // namespace sg
