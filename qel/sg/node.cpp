#include "qel/sg/node.h"
#include "qel/sg/scene.h"
#include <unordered_map>

namespace sg {

Node::Node(db::NodeDef const& def, Input* room, std::size_t count) : db::Node(def), room_(room) {
    dirty = def.outputs();
    inputs = room;
    inputRoom = std::uint16_t(count);
}

Node::~Node() {
    if (database_) graph().forgetLog();
    if (inputs != room_) delete[] inputs;
}

std::uint32_t outputBits(db::Attribute const& a) {
    if (a.has(db::Attribute::outside)) return 0;
    int const bit = a.getDef().outputBit;
    return bit < 0 ? 0 : a.node().getNodeDef().needs(bit);
}

// ---- reading and writing ----

void Node::valueChanged(db::Attribute& a) { graph().push(*this, a); }

void Node::refreshValue(db::Attribute& a) {
    if (std::uint32_t const bits = outputBits(a)) {
        if (dirty & bits) graph().read(*this, bits);
        return;
    }
    int const i = inputOf(a);
    if (i < 0 || !(stale & stateBit(std::size_t(i)))) return;
    Input& in = inputs[i];
    if (in.source->dirty & in.sourceBits) graph().read(*in.source, in.sourceBits);
    carry(*in.from, a);  // it stays stale: our outputs have not seen it
}

void Node::callCompute(db::Attribute& a) {
    if (std::uint32_t const bits = outputBits(a)) {
        dirty |= std::uint32_t(1) << a.getDef().outputBit;
        update(bits);
    } else
        refreshValue(a);
}

// All sources are up to date: take over and compute.
void Node::finish(std::uint64_t todo) {
    std::uint64_t seen = 0, kept = 0;
    for (std::size_t i = 0; i < inputCount; ++i) {
        if (!(stale & stateBit(i))) continue;
        if (inputs[i].affects & todo)
            carry(*inputs[i].from, *inputs[i].to), seen |= stateBit(i);
        else
            kept |= stateBit(i);
    }
    stale &= ~(seen & ~kept);
    dirty &= ~todo;
    graph().noteEvaluation(*this);
    compute(todo);
}

// ---- the lists of edges ----

std::size_t Node::addInput(Input const& input) {
    if (inputCount == inputRoom) {
        std::size_t const room = std::size_t(std::max(4, 2 * inputRoom));
        auto* more = new Input[room];
        std::copy_n(inputs, inputCount, more);
        if (inputs != room_) delete[] inputs;
        inputs = more;
        inputRoom = std::uint16_t(room);
    }
    inputs[inputCount] = input;
    return inputCount++;
}

OutGroup* Node::groupOf(db::Attribute const& a, bool hierarchy) {
    for (OutGroup& g : outputs)
        if (g.from == &a && g.hierarchy == hierarchy) return &g;
    return nullptr;
}

int Node::inputOf(db::Attribute const& to) const {
    for (std::size_t i = 0; i < inputCount; ++i)
        if (inputs[i].to == &to) return int(i);
    return -1;
}

// ---- removal and copies ----

void Node::onRemove() {
    Scene& scene = graph();
    for (std::size_t i = inputCount; i-- > 0;)
        if (places[i].connection) scene.disconnectInput(inputs[i].to);
    for (std::size_t g = outputs.size(); g-- > 0;)
        while (g < outputs.size() && !outputs[g].hierarchy && !outputs[g].edges.empty()) {
            Edge const e = outputs[g].edges.back();
            scene.disconnectInput(e.target->inputs[e.input].to);
        }
}

namespace {

using CopyOf = std::unordered_map<db::Node const*, Node*>;

// The attribute of the copy that corresponds to one of the original.
db::Attribute* counterpart(CopyOf const& copies, db::Attribute const& a) {
    auto const it = copies.find(&a.node());
    if (it == copies.end()) return nullptr;
    return a.isNode() ? it->second : it->second->findAttribute(a.getLocalPathName());
}

void copyDynamics(db::Node const& from, db::Node& to) {
    std::vector<db::Attribute*> dynamics;
    from.getDynamicAttributes(dynamics);
    for (db::Attribute* d : dynamics) {
        db::AttributeDef const& def = d->getDef();
        to.addDynamic(def.type, def.name, def.initial, def.initialText, def.minimum, def.maximum);
    }
}

void copyValues(db::Node const& from, db::Node& to) {
    for (std::size_t i = 1; i < from.getAttributeCount(); ++i) {
        db::Attribute& target = *to.getAttribute(i);
        if (target.getDef().outputBit < 0) target.assign(*from.getAttribute(i));
    }
}

// References to nodes that were copied too lead to the copies.
void remapPointer(CopyOf const& copies, db::Attribute& a) {
    if (db::PointerAttribute* p = a.asPointer()) {
        if (db::Attribute* target = p->getValue())
            if (db::Attribute* c = counterpart(copies, *target)) p->setValue(c);
    } else if (db::PointerArrayAttribute* array = a.asPointerArray()) {
        for (std::size_t i = 0; i < array->size(); ++i)
            if (db::Attribute* target = array->getElement(i))
                if (db::Attribute* c = counterpart(copies, *target)) array->setElement(c, i);
    }
}

void connectCopies(Scene& scene, CopyOf const& copies, Node const& original) {
    for (std::size_t i = 0; i < original.inputCount; ++i) {
        if (!original.places[i].connection) continue;
        Input const& in = original.inputs[i];
        db::Attribute* from = counterpart(copies, *in.from);
        if (!from && in.source->isOfType(SceneSettingsNode::Def)) from = in.from;
        db::Attribute* to = counterpart(copies, *in.to);
        if (from && to) scene.connect(from, to, true, true);
    }
}

}  // namespace

Node* Node::makeCopy(std::wstring const& name) {
    std::vector<db::Node*> originals{this};
    getDescendents(originals);
    CopyOf copies;
    for (db::Node* o : originals) {
        auto* copy = static_cast<Node*>(graph().createNode(o->getNodeDef(), o == this ? name : std::wstring()));
        if (!copy) return nullptr;
        copies.emplace(o, copy);
        for (std::size_t i = 0; o != this && i < o->getParentCount(); ++i) {
            auto const parent = copies.find(o->getParent(i));
            if (parent != copies.end()) parent->second->addChild(*copy);
        }
        if (o != this) copy->setName(o->getNodeName());
        copyDynamics(*o, *copy);
        copyValues(*o, *copy);
    }
    for (db::Node* o : originals) {
        Node* copy = copies[o];
        for (std::size_t i = 1; i < copy->getAttributeCount(); ++i) remapPointer(copies, *copy->getAttribute(i));
        connectCopies(graph(), copies, static_cast<Node const&>(*o));
    }
    return copies[this];
}

}  // namespace sg
