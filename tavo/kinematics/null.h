// XNull: an object without content, a peg for connections and custom attributes.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XNull : public XTyped<XNull, XObject, sg::NullNode> {
public:
    static constexpr XWord TypeID = L"Null";
    using XTyped::XTyped;
};
using XNullDef = XTypedDef<XNull>;

}  // namespace Tavo
