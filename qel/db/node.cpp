#include "qel/db/node.h"
#include "qel/db/database.h"
#include "qel/db/edits.h"

namespace db {

Slot* Slot::make(Node* node, bool removed) {
    static auto& slots = *new std::deque<Slot>;  // outlives every handle, those in static objects included
    return &slots.emplace_back(Slot{node, removed ? 1u : 0u});
}

Node::Node(NodeDef const& def) : CompoundAttribute({}, AttributeType::Node), def_(&def) { place_.child = this; }

Node::~Node() {
    if (slot_) slot_->die();
    if (dynamics_)
        for (ElementBlock* b : *dynamics_) ElementBlock::destroy(b);
    for (ChildLink* l = place_.nextParent; l;) {
        ChildLink* const next = l->nextParent;
        delete l;
        l = next;
    }
}

Slot* Node::getAnchor() const {
    if (!slot_) slot_ = Slot::make(const_cast<Node*>(this), removed_);
    return slot_;
}

std::wstring const& Node::getNodeName() const {
    return isDatabase() ? database_->getDatabaseName() : nameAttribute().raw();
}

// ---- hierarchy ----

Node* Node::getParent(std::size_t i) const {
    ChildLink const* l = &place_;
    for (; l && i > 0; --i) l = l->nextParent;
    return l && l->parent && !l->parent->isDatabase() ? l->parent : nullptr;
}

std::size_t Node::getParentCount() const {
    if (!getParent()) return 0;
    std::size_t count = 1;
    for (ChildLink const* l = place_.nextParent; l; l = l->nextParent) ++count;
    return count;
}

void Node::getParents(std::vector<Node*>& out) const {
    if (!getParent()) return;
    for (ChildLink const* l = &place_; l; l = l->nextParent) out.push_back(l->parent);
}

Node* Node::getChild(std::size_t i) const {
    if (i >= childCount_) return nullptr;
    if (i == 0) return firstChild_->child;
    if (!childIndex_) {
        childIndex_ = std::make_unique<std::vector<Node*>>();
        childIndex_->reserve(childCount_);
        for (ChildLink const* l = firstChild_; l; l = l->next) childIndex_->push_back(l->child);
    }
    return (*childIndex_)[i];
}

Node* Node::findChild(std::wstring_view name) const { return database_->findChildOf(*this, name); }

void Node::getDescendents(std::vector<Node*>& out) const {
    std::vector<ChildLink const*> stack;
    std::unordered_map<Node const*, bool> seen;  // only of nodes that can be met twice
    if (firstChild_) stack.push_back(firstChild_);
    while (!stack.empty()) {
        ChildLink const* l = stack.back();
        stack.pop_back();
        if (l->next) stack.push_back(l->next);
        if (l->child->place_.nextParent && !seen.emplace(l->child, true).second) continue;
        out.push_back(l->child);
        if (l->child->firstChild_) stack.push_back(l->child->firstChild_);
    }
}

bool Node::canBeParentOf(Node const& child) const {
    if (&child == this || isDatabase() || !child.place_.parent || child.database_ != database_ || !supportsChildren() ||
        child.isNotAnObject())
        return false;
    for (ChildLink const* l = &child.place_; l; l = l->nextParent)
        if (l->parent == this) return false;
    return !child.firstChild_ || !child.isAncestorOf(*this);
}

bool Node::isAncestorOf(Node const& n) const {
    std::vector<Node const*> above{&n};
    std::unordered_map<Node const*, bool> seen;  // only of nodes with several parents: their ancestors are met again
    for (std::size_t i = 0; i < above.size(); ++i) {
        if (above[i]->place_.nextParent && !seen.emplace(above[i], true).second) continue;
        for (ChildLink const* l = &above[i]->place_; l && l->parent; l = l->nextParent) {
            if (l->parent == this) return true;
            if (!l->parent->isDatabase()) above.push_back(l->parent);
        }
    }
    return false;
}

bool Node::addChild(Node& child) {
    if (removed_ || child.removed_ || !canBeParentOf(child)) return false;
    if (child.place_.parent == database_) {
        database_->moveNode(child, *this, nullptr);
        return true;
    }
    auto* link = new ChildLink{&child, this, nullptr, nullptr, nullptr, 0};
    auto edit = std::make_unique<StructureEdits::ExtraParent>(link, false);
    edit->after = &child.place_;
    while (edit->after->nextParent) edit->after = edit->after->nextParent;
    edit->putIn(*database_);
    database_->changes().addReparented(child);
    database_->record(std::move(edit));
    return true;
}

bool Node::removeChild(Node& child) {
    ChildLink* l = &child.place_;
    while (l && l->parent != this) l = l->nextParent;
    if (!l || removed_ || child.removed_ || isDatabase()) return false;
    if (l == &child.place_ && !l->nextParent) {
        database_->moveNode(child, *database_, nullptr);
        return true;
    }
    // The next parent becomes the primary one; the child keeps its place there.
    ChildLink* extra = l == &child.place_ ? l->nextParent : l;
    Node* const heir = extra->parent;
    ChildLink* const before = extra->next;
    auto edit = std::make_unique<StructureEdits::ExtraParent>(extra, true);
    edit->takeOut(*database_);
    database_->record(std::move(edit));
    database_->changes().addReparented(child);
    if (l == &child.place_) database_->moveNode(child, *heir, before);
    return true;
}

std::wstring Node::getPath() const {
    std::vector<Node const*> chain;
    std::size_t length = 0;
    for (Node const* n = this; n && !n->isDatabase(); n = n->place_.parent)
        chain.push_back(n), length += n->getNodeName().size() + 1;
    std::wstring path;
    path.reserve(length);
    for (std::size_t i = chain.size(); i-- > 0;) {
        path += chain[i]->getNodeName();
        if (i > 0) path += L'|';
    }
    return path;
}

// ---- dynamic attributes ----

DynamicDef::DynamicDef(AttributeType type, std::wstring name_, double const* initial, std::wstring text_,
                       double minimum, double maximum) :
    name(std::move(name_)),
    text(std::move(text_)) {
    def = row::array(0, name.c_str(), type);
    def.initialText = text.c_str();
    if (type == AttributeType::Quaternion) def.initial[3] = 1;
    def.initialMatrix = &matrix;
    for (int i = 0; initial && i < 4; ++i) def.initial[i] = initial[i];
    def.minimum = minimum;
    def.maximum = maximum;
    def.flags = FlagAnimatable;
    layout = std::make_unique<Layout const>(std::vector<AttributeDef const*>{&def}, sizeof(ElementBlock));
}

// In no list yet; null when the kind or the name won't do.
ElementBlock* Node::makeDynamic(AttributeType type, std::wstring const& name, double const* initial,
                                std::wstring const& text, double minimum, double maximum, int id) {
    bool const plain = type != AttributeType::None && !isCompoundType(type) && type != AttributeType::Node &&
                       type != AttributeType::AttributeArray;
    if (!plain || name.empty() || removed_) return nullptr;
    auto* dynamic = new DynamicDef(type, name, initial, text, minimum, maximum);
    ElementBlock* block = ElementBlock::make(*this, *dynamic->layout, nullptr, dynamic, id);
    if (!dynamics_) dynamics_ = std::make_unique<std::vector<ElementBlock*>>();
    block->index = std::uint32_t(dynamics_->size());
    return block;
}

Attribute* Node::addDynamic(AttributeType type, std::wstring const& name, double const* initial,
                            std::wstring const& text, double minimum, double maximum) {
    ElementBlock* block = findAttribute(name) ? nullptr : makeDynamic(type, name, initial, text, minimum, maximum);
    if (!block) return nullptr;
    auto edit = std::make_unique<StructureEdits::Dynamic>(*this, *block, false);
    edit->toggle(*database_);
    database_->record(std::move(edit));
    return &block->attribute();
}

namespace {

struct Four {
    double v[4];
};
Four one(double x) { return {{x, 0, 0, 0}}; }
Four three(Qelp::Vector3 const& x) { return {{x.x, x.y, x.z, 0}}; }

// The definition does not take a matrix when it is made.
Attribute* withMatrix(Attribute* a, Qelp::Matrix34 const& m) {
    if (!a) return a;
    a->block().dynamic->matrix = m;
    if (a->isMatrix34()) a->asMatrix34()->raw() = m;
    return a;
}

}  // namespace

// A name that is a path only since an element stands there is no hindrance: it was none when the attribute was added.
Attribute* Node::addDynamicForLoading(AttributeType type, std::wstring const& name, std::vector<double> const& initial,
                                      std::wstring const& text, double minimum, double maximum, int id) {
    auto const bearsName = [&](ElementBlock const* b) { return b->dynamic->name == name; };
    if (layout().find(name) >= 0 || (dynamics_ && std::any_of(dynamics_->begin(), dynamics_->end(), bearsName)))
        return nullptr;
    double const* four = initial.size() == 4 ? initial.data() : nullptr;
    ElementBlock* block = makeDynamic(type, name, four, text, minimum, maximum, id);
    if (!block) return nullptr;
    dynamics_->push_back(block);
    if (initial.size() != 16) return &block->attribute();
    Qelp::Matrix34 m;
    for (std::size_t i = 0; i < 16; ++i) m.m[i / 4][i % 4] = float(initial[i]);
    return withMatrix(&block->attribute(), m);
}

Attribute* Node::addDynamicBool(std::wstring const& name, bool v) {
    return addDynamic(AttributeType::Boolean, name, one(v).v);
}
Attribute* Node::addDynamicInt(std::wstring const& name, int v, int low, int high) {
    return addDynamic(AttributeType::Integer, name, one(v).v, {}, low, high);
}
Attribute* Node::addDynamicFloat(std::wstring const& name, float v, float low, float high) {
    return addDynamic(AttributeType::Float, name, one(v).v, {}, low, high);
}
Attribute* Node::addDynamicString(std::wstring const& name, std::wstring const& v) {
    return addDynamic(AttributeType::String, name, nullptr, v);
}
Attribute* Node::addDynamicVector3(std::wstring const& name, Qelp::Vector3 const& v) {
    return addDynamic(AttributeType::Vector3, name, three(v).v);
}
Attribute* Node::addDynamicMatrix34(std::wstring const& name, Qelp::Matrix34 const& v) {
    return withMatrix(addDynamic(AttributeType::Matrix, name), v);
}
Attribute* Node::addDynamicBoolArray(std::wstring const& name, bool v) {
    return addDynamic(AttributeType::BooleanArray, name, one(v).v);
}
Attribute* Node::addDynamicIntArray(std::wstring const& name, int v, int low, int high) {
    return addDynamic(AttributeType::IntegerArray, name, one(v).v, {}, low, high);
}
Attribute* Node::addDynamicFloatArray(std::wstring const& name, float v, float low, float high) {
    return addDynamic(AttributeType::FloatArray, name, one(v).v, {}, low, high);
}
Attribute* Node::addDynamicStringArray(std::wstring const& name, std::wstring const& v) {
    return addDynamic(AttributeType::StringArray, name, nullptr, v);
}
Attribute* Node::addDynamicVector3Array(std::wstring const& name, Qelp::Vector3 const& v) {
    return addDynamic(AttributeType::Vector3Array, name, three(v).v);
}
Attribute* Node::addDynamicMatrix34Array(std::wstring const& name, Qelp::Matrix34 const& v) {
    return withMatrix(addDynamic(AttributeType::MatrixArray, name), v);
}

void Node::getDynamicAttributes(std::vector<Attribute*>& out) const {
    if (dynamics_)
        for (ElementBlock* b : *dynamics_) out.push_back(&b->attribute());
}

// ---- elements ----

ElementBlock* ElementBlock::make(Node& node, Layout const& layout, AttributeArray* array, DynamicDef* dynamic, int id) {
    void* memory = ::operator new(layout.size, std::align_val_t(16));
    auto* block = new (memory) ElementBlock{&node, &layout, array, dynamic};
    layout.construct(static_cast<char*>(memory), true);
    block->firstID = node.getDatabase()->takeIDs(layout.rows.size(), block, true, id);
    return block;
}

void ElementBlock::destroy(ElementBlock* block) {
    if (block->slot) block->slot->die();
    block->node->getDatabase()->releaseIDs(block->firstID, block);
    block->layout->destruct(reinterpret_cast<char*>(block));
    delete block->dynamic;
    block->~ElementBlock();
    ::operator delete(static_cast<void*>(block), std::align_val_t(16));
}

void ElementBlock::setRemoved(bool on) {
    removed = on;
    if (slot) slot->generation = (slot->generation & ~1u) | (on ? 1u : 0u);
}

Attribute* AttributeArray::appendForLoading(int id) {
    ElementBlock* e = ElementBlock::make(node(), elementLayout(), this, nullptr, id);
    exchangeElements(size(), 0, {e});
    return &e->attribute();
}

AttributeArray::~AttributeArray() {
    if (elements_)
        for (ElementBlock* e : *elements_) ElementBlock::destroy(e);
}

Attribute* AttributeArray::insert(unsigned index, bool) {
    if (index > size() || isRemoved()) return nullptr;
    ElementBlock* e = ElementBlock::make(node(), elementLayout(), this, nullptr);
    splice(index, 0, {e});
    return &e->attribute();
}

bool AttributeArray::removeAt(std::size_t index) {
    if (index >= size() || isRemoved()) return false;
    splice(index, 1, {});
    return true;
}

void AttributeArray::resize(std::size_t count) {
    std::size_t const now = size();
    if (isRemoved()) return;
    if (count < now) return splice(count, now - count, {});
    std::vector<ElementBlock*> added;
    for (std::size_t i = now; i < count; ++i)
        added.push_back(ElementBlock::make(node(), elementLayout(), this, nullptr));
    if (!added.empty()) splice(now, 0, std::move(added));
}

void AttributeArray::splice(std::size_t at, std::size_t removed, std::vector<ElementBlock*> inserted) {
    std::size_t const count = inserted.size();
    for (std::size_t i = at; i < at + removed; ++i) node().onRemovePart(*(*elements_)[i]);
    auto edit = std::make_unique<StructureEdits::Elements>(*this, at, count, exchangeElements(at, removed, inserted));
    edit->list(getDatabase()->changes());
    getDatabase()->record(std::move(edit));
}

std::vector<ElementBlock*> AttributeArray::exchangeElements(std::size_t at, std::size_t removed,
                                                            std::vector<ElementBlock*> const& inserted) {
    getDatabase()->listRuns();
    if (!elements_) elements_ = std::make_unique<std::vector<ElementBlock*>>();
    auto& v = *elements_;
    auto const first = v.begin() + long(at);
    std::vector<ElementBlock*> out(first, first + long(removed));
    v.insert(v.erase(first, first + long(removed)), inserted.begin(), inserted.end());
    for (ElementBlock* e : out) e->setRemoved(true);
    for (ElementBlock* e : inserted) e->setRemoved(false);
    for (std::size_t i = at; i < v.size(); ++i) v[i]->index = std::uint32_t(i);
    afterWrite();
    return out;
}

bool AttributeArray::compare(Attribute const& other) const {
    AttributeArray const* o = other.asAttributeArray();
    if (!o || o->size() != size()) return false;
    for (std::size_t i = 0; i < size(); ++i)
        if (!getElement(i)->compare(*o->getElement(i))) return false;
    return true;
}

bool AttributeArray::assign(Attribute const& other) {
    AttributeArray const* o = other.asAttributeArray();
    if (!o || o->elementLayout().rows[0].def->type != elementLayout().rows[0].def->type) return false;
    if (o == this) return true;
    resize(o->size());
    bool all = true;
    for (std::size_t i = 0; i < size(); ++i) all &= getElement(i)->assign(*o->getElement(i));
    return all;
}

}  // namespace db
