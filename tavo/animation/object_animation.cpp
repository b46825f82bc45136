// What an object of any type offers of its animation.
#include "tavo/animation/animation.h"

namespace Tavo {

XAnimation XObject::Animation(int attribute) const { return Attribute(attribute).Animation(); }

}  // namespace Tavo
