// What the name of a joint says: which side, which part of a body, which number. For the files of retargeting.
#pragma once
#include "qel/solvers/body_parts.h"

namespace sg {

// Words that may name more than one part, besides those that name one.
enum class NameWord { None, Certain, Hip, Leg, Arm, Shoulder };

struct JointName {
    BodySide side = BodySide::Middle;
    BodyPart part = BodyPart::None;  // where `word` is Certain
    NameWord word = NameWord::None;
    bool isHelper = false;  // ends, twists, controls: no part of a body
    std::vector<int> numbers;
    std::wstring key;  // the same for names that differ in case, separators and prefix only
};

std::vector<JointName> readJointNames(std::vector<std::wstring> const& names);

}  // namespace sg
