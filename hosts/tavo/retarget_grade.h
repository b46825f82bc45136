// How good a retargeted motion is: what the rig matched, and what became of the motion while it was played. The
// measures and the verdict are those of qel/solvers/retarget_report.h.
#pragma once
#include "hosts/tavo/rig_verbs.h"
#include "qel/solvers/retarget_report.h"
#include "tavo/kinematics/retarget.h"

namespace sg {
class RetargetNode;
}

namespace host {

class RetargetGrade {
public:
    explicit RetargetGrade(Tavo::XRetarget const& rig);

    void sample();                  // the places of all joints now
    void finish(double frameTime);  // while the rig is still there; it may go afterwards

    sg::RetargetReport const& report() const { return report_; }
    std::string text() const;
    std::string json(RetargetVerb const& verb) const;
    std::string mapText() const;  // as joint_map.h reads it; what is no pair as a remark, so that it is found again

private:
    struct Match {
        std::string source, target, basis;
        double confidence = 0;
        bool isPair = true;  // no mix of two joints, and no bone in several parts: those no map can tell
    };
    struct Side {
        std::vector<Tavo::XTransform> joints;
        std::vector<std::string> names;
        std::vector<Qelp::Vector3> positions;  // frame by frame

        explicit Side(Tavo::XAttribute const& references);
        void sample();
        sg::JointTracks tracks() const { return {joints.size(), positions}; }
        std::vector<std::string> namesOf(std::vector<int> const& indices) const;
    };

    void tellMatches(sg::SkeletonMatch const& match);

    sg::RetargetNode& node_;
    Side source_, target_;
    sg::RetargetReport report_;
    std::vector<Match> matches_;
    std::vector<std::string> unmatchedSource_, unmatchedTarget_;
};

// Throws a Failure of the code for missed qualities, with all gates that the result misses.
void checkGates(RetargetVerb const& verb, sg::RetargetReport const& report);

}  // namespace host
