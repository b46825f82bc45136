// Fills a node of retargeting. For the files of this folder and for XRetargeting.
#pragma once
#include "tavo/kinematics/retarget.h"
#include "tavo/kinematics/rig_parts.h"

namespace Tavo {

class XRetargetRig {
public:
    using Objects = Qelutils::Vector<XObject>;

    explicit XRetargetRig(XRetarget const& node) : _node(node) {}

    // Whatever it did before. Both lists hold joints.
    void build(Objects const& source, Objects const& target);

private:
    void reset();
    void addSource(XObjectList const& joints);
    void addTarget(XObjectList const& joints);
    void addParameters(XObjectList const& joints, int j, XAttribute const& all);

    XRetarget _node;
};

}  // namespace Tavo
