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
    int const bit = a.getDef().outputBit;
    return bit < 0 ? 0 : a.node().getNodeDef().needs(bit);
}

// ---- reading and writing ----

void Node::valueChanged(db::Attribute& a) { graph().push(*this, a); }

// One element stands for all; but what one of them feeds by itself is told for itself.
void Node::elementsChanged(db::ElementRun const& run) {
    db::ElementBlock& first = run.array->getElement(run.from)->block();
    for (std::uint64_t rows = run.rows; rows; rows &= rows - 1)
        graph().push(*this, first.part(int(__builtin_ctzll(rows))));
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (outputs[i].from && run.holds(*outputs[i].from)) graph().push(*this, *outputs[i].from);
}

void Node::refreshValue(db::Attribute& a) {
    if (std::uint32_t const bits = outputBits(a))
        update(bits);
    else
        refreshPlain(a, 0);
}

void Node::refreshPlain(db::Attribute& a, int depth) {
    int const i = inputOf(a);
    if (i < 0 || !isStale(std::size_t(i))) return;
    if (depth > Scene::mostDepth) return graph().refreshDeep(*this, i);
    takeOver(inputs[i], depth);
    clearStale(std::size_t(i));  // our outputs are out of date and will find the value in place
    graph().noteEvaluation(*this);
}

void Node::callCompute(db::Attribute& a) {
    std::uint32_t const bits = outputBits(a);
    if (bits) dirty |= std::uint32_t(1) << a.getDef().outputBit;
    refreshValue(a);
}

void Node::takeOverLate(std::uint64_t todo, int depth) {
    bool some = false;
    for (std::size_t i = lateInput; i < inputCount; ++i) {
        if (!isStale(i)) continue;
        if (!(inputs[i].affects & todo)) {
            some = true;
            continue;
        }
        takeOver(inputs[i], depth);
        clearStale(i);
    }
    if (!some) stale &= ~lateBit;
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

void Node::swapInputs(std::size_t a, std::size_t b) {
    bool const staleA = isStale(a), staleB = isStale(b);
    for (std::size_t i : {a, b}) clearStale(i);
    std::swap(inputs[a], inputs[b]);
    std::swap(places[a], places[b]);
    if (staleA) setStale(b);
    if (staleB) setStale(a);
}

OutGroup* Node::groupOf(db::Attribute const& a, bool hierarchy) {
    for (OutGroup& g : outputs)
        if (g.from == &a && g.hierarchy == hierarchy) return &g;
    return nullptr;
}

// The last first: what connects many inputs asks for them as they come, and the history takes them back the same way.
int Node::inputOf(db::Attribute const& to) const {
    if (!to.has(db::Attribute::live)) return -1;
    for (std::size_t i = inputCount; i-- > 0;)
        if (inputs[i].to == &to) return int(i);
    return -1;
}

// ---- removal and copies ----

template<class Which> void Node::disconnectWhere(Which const& which) {
    Scene& scene = graph();
    for (std::size_t i = inputCount; i-- > 0;)
        if (i < inputCount && places[i].connection && which(*inputs[i].to)) scene.disconnectInput(inputs[i].to);
    for (std::size_t g = outputs.size(); g-- > 0;)
        while (g < outputs.size() && outputs[g].from && !outputs[g].hierarchy && which(*outputs[g].from)) {
            Edge const e = outputs[g].edges.back();
            scene.disconnectInput(e.target->inputs[e.input].to);
        }
}

void Node::onRemove() {
    disconnectWhere([](db::Attribute const&) { return true; });
}

void Node::onRemovePart(db::ElementBlock& part) {
    disconnectWhere([&](db::Attribute const& a) {
        for (db::Attribute const* at = &a; at && at->has(outside); at = at->block().array)
            if (&at->block() == &part) return true;
        return false;
    });
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
        db::Attribute* copy = to.addDynamic(def.type, def.name, def.initial, def.initialText, def.minimum, def.maximum);
        if (copy) copy->block().dynamic->matrix = d->block().dynamic->matrix;
    }
}

// What is not saved follows from the rest, and from the place in the hierarchy.
void copyValues(db::Node const& from, db::Node& to) {
    for (std::size_t i = 1; i < from.getAttributeCount(); ++i) {
        db::Attribute& target = *to.getAttribute(i);
        if (target.getDef().isSaved()) target.assign(*from.getAttribute(i));
    }
}

template<class Array> void remapElements(CopyOf const& copies, Array& array) {
    for (std::size_t i = 0; i < array.size(); ++i)
        if (db::Attribute* target = array.getValue()[i].getRef())
            if (db::Attribute* c = counterpart(copies, *target)) array.setElement(db::AttributeHandle(c), i);
}

// References to what was copied too lead to the copies.
void remapPointers(CopyOf const& copies, db::Attribute& a) {
    if (db::PointerAttribute* p = a.asPointer()) {
        if (db::Attribute* target = p->getValue())
            if (db::Attribute* c = counterpart(copies, *target)) p->setValue(c);
    } else if (db::PointerArrayAttribute* array = a.asPointerArray()) {
        remapElements(copies, static_cast<db::PointerArrayAttribute::PlainArrayAttribute&>(*array));
    } else if (db::NodeContainer* nodes = a.asNodeContainer()) {
        remapElements(copies, *nodes);
    } else if (db::AttributeArray* elements = a.asAttributeArray()) {
        for (std::size_t i = 0; i < elements->size(); ++i) remapPointers(copies, *elements->getElement(i));
    } else if (db::CompositeAttribute* composite = a.asComposite()) {
        for (std::size_t i = 0; i < composite->getAttributeCount(); ++i)
            remapPointers(copies, *composite->getAttribute(i));
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

// The copies stand under each other as the originals do, children in their order: first each under the first of its
// parents that was copied, then under the others.
void placeCopies(CopyOf const& copies, std::vector<db::Node*> const& originals) {
    auto firstParent = [&](db::Node const& n) {
        std::size_t i = 0;
        while (!copies.count(n.getParent(i))) ++i;
        return n.getParent(i);
    };
    for (bool first : {true, false})
        for (db::Node const* parent : originals)
            for (std::size_t i = 0; i < parent->getChildCount(); ++i) {
                db::Node const& child = *parent->getChild(i);
                if ((firstParent(child) == parent) != first) continue;
                Node& copy = *copies.at(&child);
                copies.at(parent)->addChild(copy);
                if (first) copy.setName(child.getNodeName());
            }
}

}  // namespace

Node* Node::makeCopy(std::wstring const& name) {
    if (isNotAnObject() || isRemovedNode()) return nullptr;
    std::vector<db::Node*> originals{this};
    getDescendents(originals);
    CopyOf copies;
    for (db::Node* o : originals) {
        auto* copy = static_cast<Node*>(graph().createNode(o->getNodeDef(), o == this ? name : std::wstring()));
        if (!copy) {
            for (auto const& [original, made] : copies) made->remove();
            return nullptr;
        }
        copies.emplace(o, copy);
        copyDynamics(*o, *copy);
        copyValues(*o, *copy);
    }
    placeCopies(copies, originals);
    for (db::Node* o : originals) {
        Node* copy = copies[o];
        for (std::size_t i = 1; i < copy->getAttributeCount(); ++i) remapPointers(copies, *copy->getAttribute(i));
        connectCopies(graph(), copies, static_cast<Node const&>(*o));
    }
    return copies[this];
}

}  // namespace sg
