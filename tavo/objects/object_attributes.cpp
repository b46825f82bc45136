// The attributes of an object, those that it was given beside its type's own, and what they are connected to.
#include "tavo/objects/database.h"
#include "tavo/objects/graph_access.h"
#include "tavo/objects/scene_graph.h"
#include <algorithm>
#include <limits>
#include <unordered_set>

namespace Tavo {
namespace {

// Adds valid objects to a list, each once.
class Collector {
public:
    explicit Collector(Qelutils::Vector<XObject>& out) : out_(out) { out_.clear(); }
    void add(XObject const& object) {
        if (object.IsValid() && seen_.insert(object.ObjectID()).second) out_.push_back(object);
    }
    void addInputs(XObject const& object) {
        for (XAttribute const& input : connectedInputs(object)) add(input.InputObject());
    }
    void addOutputs(XObject const& object) {
        Qelutils::Vector<XObject> targets;
        for (XAttribute const& output : connectedOutputs(object)) {
            output.OutputObjects(targets);
            for (XObject const& target : targets) add(target);
        }
    }

private:
    Qelutils::Vector<XObject>& out_;
    std::unordered_set<int> seen_;
};

}  // namespace

Qelutils::Vector<XAttribute> connectedInputs(XObject const& object) {
    Qelutils::Vector<XAttribute> out;
    sg::Node const* node = object.getNode();
    for (std::size_t i = 0; node && i < node->inputCount; ++i)
        if (node->places[i].connection) out.push_back(node->inputs[i].to);
    std::sort(out.begin(), out.end());
    return out;
}

Qelutils::Vector<XAttribute> connectedOutputs(XObject const& object) {
    Qelutils::Vector<XAttribute> out;
    if (sg::Node const* node = object.getNode())
        for (sg::OutGroup const& group : node->outputs)
            if (!group.hierarchy && !group.edges.empty()) out.push_back(group.from);
    std::sort(out.begin(), out.end());
    return out;
}

// ---- attributes ----

XAttribute XObject::Attribute(int index) const { return XAttribute(*this, index); }
XAttribute XObject::Attribute(std::wstring const& name) const { return XAttribute(*this, name); }
bool XObject::HasAttribute(std::wstring const& name) const { return Attribute(name).IsValid(); }
int XObject::AttributeCount() const { return hasLiveNode() ? int(getNode()->getAttributeCount()) : 0; }

void XObject::Attributes(Qelutils::Vector<XAttribute>& out) const {
    out.clear();
    for (int i = 0; i < AttributeCount(); ++i) out.push_back(Attribute(i));
}
void XObject::AttributeNames(Qelutils::Vector<std::wstring>& out) const {
    out.clear();
    for (int i = 0; i < AttributeCount(); ++i) out.push_back(Attribute(i).Name());
}
void XObject::AttributePaths(Qelutils::Vector<std::wstring>& out) const {
    out.clear();
    for (int i = 0; i < AttributeCount(); ++i) out.push_back(Attribute(i).Path());
}

void XObject::CustomAttributes(Qelutils::Vector<XAttribute>& out) const {
    out.clear();
    if (!hasLiveNode()) return;
    std::vector<db::Attribute*> attributes;
    getNode()->getDynamicAttributes(attributes);
    out.assign(attributes.begin(), attributes.end());
}
int XObject::CustomAttributeCount() const { return hasLiveNode() ? int(getNode()->dynamicCount()) : 0; }
bool XObject::HasCustomAttributes() const { return CustomAttributeCount() > 0; }

XAttribute XObject::AddBooleanAttribute(std::wstring const& name, bool initial, bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicBoolArray(name, initial) : getNode()->addDynamicBool(name, initial);
}
XAttribute XObject::AddFloatAttribute(std::wstring const& name) {
    using Limits = std::numeric_limits<float>;
    return AddFloatAttribute(name, 0, Limits::lowest(), Limits::max());
}
XAttribute XObject::AddFloatAttribute(std::wstring const& name, float initial, float minimum, float maximum,
                                      bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicFloatArray(name, initial, minimum, maximum)
                   : getNode()->addDynamicFloat(name, initial, minimum, maximum);
}
XAttribute XObject::AddIntegerAttribute(std::wstring const& name) {
    using Limits = std::numeric_limits<int>;
    return AddIntegerAttribute(name, 0, Limits::lowest(), Limits::max());
}
XAttribute XObject::AddIntegerAttribute(std::wstring const& name, int initial, int minimum, int maximum, bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicIntArray(name, initial, minimum, maximum)
                   : getNode()->addDynamicInt(name, initial, minimum, maximum);
}
XAttribute XObject::AddStringAttribute(std::wstring const& name, std::wstring const& initial, bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicStringArray(name, initial) : getNode()->addDynamicString(name, initial);
}
XAttribute XObject::AddVectorAttribute(std::wstring const& name) { return AddVectorAttribute(name, XVector3()); }
XAttribute XObject::AddVectorAttribute(std::wstring const& name, XVector3 const& initial, bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicVector3Array(name, initial.AsVector())
                   : getNode()->addDynamicVector3(name, initial.AsVector());
}
XAttribute XObject::AddMatrixAttribute(std::wstring const& name) { return AddMatrixAttribute(name, XMatrix()); }
XAttribute XObject::AddMatrixAttribute(std::wstring const& name, XMatrix const& initial, bool isArray) {
    if (!hasLiveNode()) return {};
    return isArray ? getNode()->addDynamicMatrix34Array(name, initial.AsMatrix())
                   : getNode()->addDynamicMatrix34(name, initial.AsMatrix());
}

// ---- connections ----

bool XObject::HasInputAttributes() const { return hasLiveNode() && !connectedInputs(*this).empty(); }
bool XObject::HasOutputAttributes() const { return hasLiveNode() && !connectedOutputs(*this).empty(); }

void XObject::InputObjects(Qelutils::Vector<XObject>& out) const { Collector(out).addInputs(*this); }
void XObject::OutputObjects(Qelutils::Vector<XObject>& out) const { Collector(out).addOutputs(*this); }
void XObject::ConnectedObjects(Qelutils::Vector<XObject>& out) const {
    Collector collector(out);
    collector.addInputs(*this);
    collector.addOutputs(*this);
}

XObject& XObject::DisconnectInputAttributes() {
    for (XAttribute& input : connectedInputs(*this)) input.DisconnectInput();
    return *this;
}

XObject& XObject::DisconnectOutputAttributes() {
    for (XAttribute& output : connectedOutputs(*this)) output.DisconnectOutputs();
    return *this;
}

}  // namespace Tavo
