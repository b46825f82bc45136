// What an attribute is connected to.
#include "tavo/objects/attribute.h"
#include "tavo/objects/database.h"
#include "tavo/objects/scene_graph.h"

namespace Tavo {

sg::Scene* XAttribute::graph() const { return database() ? database()->SceneGraph() : nullptr; }

bool XAttribute::IsConnectedInput() const { return graph() && graph()->getInputAttribute(getAttribute()); }
bool XAttribute::IsConnectedOutput() const { return OutputConnectionCount() > 0; }
int XAttribute::OutputConnectionCount() const { return graph() ? int(graph()->getOutputCount(getAttribute())) : 0; }

XAttribute XAttribute::InputAttribute() const {
    return graph() ? XAttribute(graph()->getInputAttribute(getAttribute())) : XAttribute();
}
XObject XAttribute::InputObject() const { return InputAttribute().Object(); }

XAttribute XAttribute::OutputAttribute(int index) const {
    Qelutils::Vector<XAttribute> outputs;
    OutputAttributes(outputs);
    return index >= 0 && std::size_t(index) < outputs.size() ? outputs[std::size_t(index)] : XAttribute();
}
XObject XAttribute::OutputObject(int index) const { return OutputAttribute(index).Object(); }

void XAttribute::OutputAttributes(Qelutils::Vector<XAttribute>& out) const {
    std::vector<db::Attribute*> targets;
    if (graph()) graph()->getOutputAttributes(getAttribute(), targets);
    out.assign(targets.begin(), targets.end());
}
void XAttribute::OutputObjects(Qelutils::Vector<XObject>& out) const {
    Qelutils::Vector<XAttribute> targets;
    OutputAttributes(targets);
    out.clear();
    for (XAttribute const& target : targets) out.push_back(target.Object());
}

// ---- connecting ----

bool XAttribute::ConnectInputTo(XAttribute const& source) {
    if (isFed(source)) return true;
    DisconnectInput();
    return connect(source, *this);
}

bool XAttribute::ConnectInputTo(std::wstring const& path, std::wstring const& name) {
    if (IsValid() && isFed(XAttribute(Database(), path, name))) return true;
    if (!Object().IsEditable()) return false;
    DisconnectInput();
    return database() && connect(database()->getAttribute(path, name), *this);
}

// The target's own input is not disconnected first; it gives way when the connection is made.
bool XAttribute::ConnectOutputTo(XAttribute const& target) {
    if (target.isFed(*this)) return true;
    return Object().IsEditable() && connect(*this, target);
}

bool XAttribute::ConnectOutputTo(std::wstring const& path, std::wstring const& name) {
    if (IsValid() && XAttribute(Database(), path, name).isFed(*this)) return true;
    return Object().IsEditable() && connect(*this, database()->getAttribute(path, name));
}

bool XAttribute::isFed(XAttribute const& source) const { return source.IsValid() && InputAttribute() == source; }

bool XAttribute::connect(XAttribute const& source, XAttribute const& target) const {
    if (!source.IsValid() || !target.IsValid() || !graph()) return false;
    return graph()->connect(source.getAttribute(), target.getAttribute(), true, false) <= 0;
}

XAttribute& XAttribute::Disconnect() {
    if (graph() && Object().IsEditable()) graph()->disconnect(getAttribute());
    return *this;
}
XAttribute& XAttribute::DisconnectInput() {
    if (graph() && Object().IsEditable()) graph()->disconnectInput(getAttribute());
    return *this;
}
XAttribute& XAttribute::DisconnectOutputs() {
    if (graph() && Object().IsEditable()) graph()->disconnectOutputs(getAttribute());
    return *this;
}

bool XAttribute::IsComputed() const { return graph() && graph()->hasAffectingAttributes(getAttribute()); }

XAttribute& XAttribute::Compute() {
    if (graph() && !IsNode()) static_cast<sg::Node&>(getAttribute()->node()).callCompute(*getAttribute());
    return *this;
}

}  // namespace Tavo
