#include "qel/db/attribute.h"
#include "qel/db/database.h"

namespace db {

// ---- identity ----

Layout const& Attribute::layout() const { return has(outside) ? *block().layout : node().getNodeDef().layout(); }

int Attribute::getID() const {
    if (isNode()) return node().firstID_;
    return has(outside) ? block().firstID + row() : node().firstID_ + 1 + row();
}

AttributeDef const& Attribute::getDef() const {
    static AttributeDef const ofNode = row::value(0, L"Node", AttributeType::Node);
    return isNode() ? ofNode : *layout().rows[std::size_t(row())].def;
}

Database* Attribute::getDatabase() const { return node().database_; }
Node* Attribute::getParentNode() const { return &node(); }

Attribute* Attribute::getParentAttribute() const {
    if (isNode()) return nullptr;
    int const parent = layout().rows[std::size_t(row())].parent;
    if (parent >= 0) return reinterpret_cast<Attribute*>(start() + layout().rows[std::size_t(parent)].offset);
    return has(outside) && block().array ? static_cast<Attribute*>(block().array) : &node();
}

int Attribute::getIndex() const {
    if (isNode()) return -1;
    RowInfo const& r = layout().rows[std::size_t(row())];
    if (r.parent >= 0) return row() - layout().rows[std::size_t(r.parent)].firstChild;
    if (!has(outside)) return row();
    return int(block().index) + (block().array ? 0 : node().getNodeDef().layout().topLevelCount);
}

std::wstring Attribute::getName() const {
    if (isNode()) return isDatabase() ? node().database_->getDatabaseName() : node().getNodeName();
    if (has(outside) && row() == 0 && block().array)
        return block().array->getName() + L"[" + std::to_wstring(block().index) + L"]";
    return getDef().name;
}

void Attribute::setName(std::wstring const& name) {
    if (isDatabase())
        node().database_->setDatabaseName(name);
    else if (isNode())
        node().database_->renameNode(node(), name);
}

std::wstring Attribute::getLocalPathName() const {
    if (isNode()) return {};
    if (has(outside) && row() == 0 && block().array)
        return block().array->getLocalPathName() + L"[" + std::to_wstring(block().index) + L"]";
    Attribute const* parent = getParentAttribute();
    std::wstring const above = parent ? parent->getLocalPathName() : std::wstring();
    return above.empty() ? getName() : above + L"." + getName();
}

bool Attribute::hasParentNode(NodeDef const& def) const { return node().isOfType(def); }
bool Attribute::isDatabase() const { return isNode() && &node() == node().database_; }
bool Attribute::isDynamic() const { return has(outside) && !block().array && row() == 0; }
Database* Attribute::asDatabase() { return isDatabase() ? node().database_ : nullptr; }

bool Attribute::isSingleValue() const {
    AttributeType const t = getAttributeType();
    return (t >= AttributeType::Integer && t <= AttributeType::Pointer) || t == AttributeType::Quaternion;
}

Slot* Attribute::anchor() const {
    if (!has(outside)) return node().getAnchor();
    ElementBlock& b = block();
    if (!b.slot) b.slot = Slot::make(nullptr, b.removed);
    return b.slot;
}

// ---- life ----

bool Attribute::isRemoved() const {
    if (!has(outside)) return node().removed_;
    ElementBlock const& b = block();
    return b.removed || (b.array ? b.array->isRemoved() : b.node->removed_);
}

bool Attribute::remove() {
    if (isRemoved() || isDatabase()) return false;
    if (isNode()) {
        node().database_->removeNode(node());
        return true;
    }
    if (!has(outside) || row() != 0) return false;
    preRemove(true);
    if (block().array)
        block().array->removeAt(block().index);
    else
        node().database_->removeDynamic(block());
    postRemove(true);
    return true;
}

// ---- writes and reads ----

void Attribute::valueChanged() { node().valueChanged(*this); }
void Attribute::refreshValue() const { node().refreshValue(const_cast<Attribute&>(*this)); }

void StringAttribute::setValue(std::wstring value) {
    if (isNodeName())
        node().setName(value);
    else
        ValueAttribute::setValue(std::move(value));
}

bool StringAttribute::assign(Attribute const& other) {
    if (!other.isString()) return false;
    setValue(other.asString()->getValue());
    return true;
}

void StringAttribute::exchange(std::uint64_t& old) {
    auto& text = *reinterpret_cast<std::wstring*>(old);
    if (isNodeName())
        node().getDatabase()->reindexName(node(), text);
    else
        value_.swap(text);
}

// ---- composites ----

std::size_t CompositeAttribute::getAttributeCount() const {
    if (isNode()) return std::size_t(layout().topLevelCount) + node().dynamicCount();
    return getDef().children.size();
}

Attribute* CompositeAttribute::getAttribute(std::size_t index) const {
    if (index >= getAttributeCount()) return nullptr;
    Layout const& l = layout();
    std::size_t at = index;
    if (!isNode())
        at += std::size_t(l.rows[std::size_t(row())].firstChild);
    else if (index >= std::size_t(l.topLevelCount))
        return &(*node().dynamics_)[index - std::size_t(l.topLevelCount)]->attribute();
    return reinterpret_cast<Attribute*>(start() + l.rows[at].offset);
}

namespace {

Attribute* findByName(CompositeAttribute const& c, std::wstring_view name) {
    if (c.isNode()) {
        int const row = c.layout().find(name);
        if (row >= 0) return c.getAttribute(std::size_t(row));
    }
    for (std::size_t i = c.isNode() ? std::size_t(c.layout().topLevelCount) : 0; i < c.getAttributeCount(); ++i)
        if (Attribute* a = c.getAttribute(i); name == a->getDef().name) return a;
    return nullptr;
}

// "[12][3]" behind a name: into the elements of attribute arrays.
Attribute* descend(Attribute* a, std::wstring_view indices) {
    while (a && !indices.empty()) {
        std::size_t const close = indices.find(L']');
        if (indices[0] != L'[' || close == std::wstring_view::npos || close < 2 || close > 9 || !a->isAttributeArray())
            return nullptr;
        std::size_t index = 0;
        for (wchar_t c : indices.substr(1, close - 1)) {
            if (c < L'0' || c > L'9') return nullptr;
            index = index * 10 + std::size_t(c - L'0');
        }
        a = a->asAttributeArray()->getElement(index);
        indices.remove_prefix(close + 1);
    }
    return a;
}

}  // namespace

Attribute* CompositeAttribute::findAttribute(std::wstring const& path) const {
    if (Attribute* whole = findByName(*this, path)) return whole;  // a dynamic attribute may have dots in its name
    CompositeAttribute const* at = this;
    std::wstring_view rest = path;
    while (at) {
        std::size_t const dot = std::min(rest.find(L'.'), rest.size());
        std::wstring_view const part = rest.substr(0, dot);
        std::size_t const bracket = std::min(part.find(L'['), part.size());
        Attribute* found = descend(findByName(*at, part.substr(0, bracket)), part.substr(bracket));
        if (!found || dot == rest.size()) return found;
        at = found->asComposite();
        rest.remove_prefix(dot + 1);
    }
    return nullptr;
}

bool CompoundAttribute::compare(Attribute const& other) const {
    CompositeAttribute const* o = other.asComposite();
    if (!o || o->getAttributeCount() != getAttributeCount()) return false;
    for (std::size_t i = 0; i < getAttributeCount(); ++i)
        if (!getAttribute(i)->compare(*o->getAttribute(i))) return false;
    return true;
}

bool CompoundAttribute::assign(Attribute const& other) {
    CompositeAttribute const* o = other.asComposite();
    if (!o || o->getAttributeCount() != getAttributeCount()) return false;
    bool all = true;
    for (std::size_t i = 0; i < getAttributeCount(); ++i) all &= getAttribute(i)->assign(*o->getAttribute(i));
    return all;
}

bool CompoundAttribute::isDefaultValue() const {
    for (std::size_t i = 0; i < getAttributeCount(); ++i)
        if (!getAttribute(i)->isDefaultValue()) return false;
    return true;
}

void CompoundAttribute::setToDefaultValue() {
    for (std::size_t i = 0; i < getAttributeCount(); ++i) getAttribute(i)->setToDefaultValue();
}

}  // namespace db
