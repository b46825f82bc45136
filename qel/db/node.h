// A node: a named set of attributes in one block of memory, with a place in the hierarchy. What all nodes of a type
// share is its NodeDef, made from the type's table.
//
// A node may have several parents; the first is its primary one, which gives it its path and its siblings. Among those
// its name is unique; under a further parent it need not be, and there a lookup prefers the parent's own. A removed
// node keeps its id and its values until no step of the history refers to it.
#pragma once
#include "qel/db/array_attributes.h"
#include "qel/db/layout.h"
#include <deque>

namespace sg {
struct Input;
}

namespace db {

struct ElementRun;

// A type of node: its names, its base, its rows. Types live as long as the program.
class NodeDef {
public:
    using Construct = Node* (*)(void* at, NodeDef const& def);

    // `rows` are those that the type adds to its base, and first, those of the base that it restates with another
    // default; a number above the next free one leaves a gap, which reserved attributes fill. `size` is that of the
    // node's class. A type that is only a base has no `construct`.
    NodeDef(wchar_t const* nameSpace, wchar_t const* classID, NodeDef const* base, std::span<AttributeDef const> rows,
            std::size_t size, Construct construct);
    NodeDef(NodeDef const&) = delete;
    virtual ~NodeDef() = default;

    virtual int getTypeID() const { return typeID_; }
    virtual std::wstring const& getClassID() const { return classID_; }
    virtual std::wstring const& getNamespace() const { return namespace_; }
    NodeDef const* getBase() const { return base_; }
    bool isOfType(NodeDef const& def) const;
    bool isAbstract() const { return !construct_; }
    Layout const& layout() const { return layout_; }
    std::uint32_t needs(int output) const { return needs_[output]; }  // that output and those it is made of, as bits
    std::uint32_t outputs() const { return outputs_; }

    Node* construct(void* at) const { return construct_(at, *this); }

private:
    std::vector<AttributeDef const*> collectRows(std::span<AttributeDef const> rows);

    std::wstring namespace_, classID_;
    NodeDef const* base_;
    std::deque<AttributeDef> reserved_;  // rows that fill gaps
    std::deque<std::wstring> reservedNames_;
    std::vector<AttributeDef const*> topLevel_;
    Layout layout_;
    int typeID_;
    Construct construct_;
    std::uint32_t needs_[32] = {}, outputs_ = 0;
};

// All node types by namespace and class. Types enter by being constructed and stay.
class Registry {
public:
    static Registry& getInstance();
    NodeDef const* getNodeDef(std::wstring const& nameSpace, std::wstring const& classID, bool = false) const;
    NodeDef const* getNodeDef(int typeID) const;
    std::vector<NodeDef const*> const& all() const { return byID_; }
    int add(NodeDef const& def);  // gives the type its id

private:
    std::vector<NodeDef const*> byID_;
    std::unordered_map<std::wstring, NodeDef const*> byName_;  // "namespace:class"
};

// A child in the list of one of its parents. The list is intrusive and a link that was taken out keeps its neighbours:
// the history replays in strictly reversed order, so the place is still there, and removal and return cost the same at
// any number of siblings.
struct ChildLink {
    Node *child = nullptr, *parent = nullptr;
    ChildLink *previous = nullptr, *next = nullptr;  // among the parent's children
    ChildLink* nextParent = nullptr;                 // the child's next parent
    std::uint32_t nameHash = 0;                      // under which the name index has it
};

class Node : public CompoundAttribute {
public:
    explicit Node(NodeDef const& def);
    ~Node() override;

    // ---- identity ----
    int getNodeID() const { return firstID_; }
    Database* getDatabase() const { return database_; }
    NodeDef const& getNodeDef() const { return *def_; }
    std::wstring const& getClassID() const { return def_->getClassID(); }
    bool isOfType(NodeDef const& def) const { return def_ == &def || def_->isOfType(def); }
    std::wstring const& getNodeName() const;
    StringAttribute& nameAttribute() const { return at<StringAttribute>(0); }
    virtual std::wstring getDefaultName() const { return getClassID(); }
    NodeHandle getHandle() { return NodeHandle(this); }
    Slot* getAnchor() const;

    // ---- hierarchy ----
    Node* getParent(std::size_t i = 0) const;  // null at the top; 0 is the primary parent
    std::size_t getParentCount() const;
    void getParents(std::vector<Node*>& out) const;  // the primary one first
    Node* getChild(std::size_t i) const;             // null beyond the end
    std::size_t getChildCount() const { return childCount_; }
    Node* firstChild() const { return firstChild_ ? firstChild_->child : nullptr; }
    Node* lastChild() const { return lastChild_ ? lastChild_->child : nullptr; }
    template<class Visit> void forEachChild(Visit const& visit) const {  // which changes nothing
        for (ChildLink const* l = firstChild_; l; l = l->next) visit(*l->child);
    }
    Node* findChild(std::wstring_view name) const;
    void getDescendents(std::vector<Node*>& out) const;  // depth first, each once
    // Neither itself, nor one of its ancestors, nor twice the same child; and this node takes children. A database
    // takes none this way, and a node outside the hierarchy has no parents.
    virtual bool canBeParentOf(Node const& child) const;
    bool isAncestorOf(Node const& n) const;  // over any of its parents
    bool addChild(Node& child);              // at the end; a node at the top moves, another gets one more parent
    bool removeChild(Node& child);           // a node without parents stands at the top
    Node* nextSibling() const { return place_.parent && place_.next ? place_.next->child : nullptr; }
    Node* previousSibling() const { return place_.parent && place_.previous ? place_.previous->child : nullptr; }
    std::wstring getPath() const;  // the names from the top down, joined with "|"
    bool isRemovedNode() const { return removed_; }

    // ---- attributes of its own ----
    // Each returns the new attribute, or null when the name is taken or empty. They are saved with the node, found by
    // name like any other, and come after the fixed ones.
    Attribute* addDynamic(AttributeType type, std::wstring const& name, double const* initial = nullptr,
                          std::wstring const& text = {}, double minimum = -1e308, double maximum = 1e308);
    Attribute* addDynamicBool(std::wstring const& name, bool initial);
    Attribute* addDynamicInt(std::wstring const& name, int initial, int minimum, int maximum);
    Attribute* addDynamicFloat(std::wstring const& name, float initial, float minimum, float maximum);
    Attribute* addDynamicString(std::wstring const& name, std::wstring const& initial);
    Attribute* addDynamicVector3(std::wstring const& name, Qelp::Vector3 const& initial);
    Attribute* addDynamicMatrix34(std::wstring const& name, Qelp::Matrix34 const& initial);
    Attribute* addDynamicBoolArray(std::wstring const& name, bool initial);
    Attribute* addDynamicIntArray(std::wstring const& name, int initial, int minimum, int maximum);
    Attribute* addDynamicFloatArray(std::wstring const& name, float initial, float minimum, float maximum);
    Attribute* addDynamicStringArray(std::wstring const& name, std::wstring const& initial);
    Attribute* addDynamicVector3Array(std::wstring const& name, Qelp::Vector3 const& initial);
    Attribute* addDynamicMatrix34Array(std::wstring const& name, Qelp::Matrix34 const& initial);
    // Without record, and with the id it had if that is free. `initial`: four numbers, sixteen of a matrix, or none.
    Attribute* addDynamicForLoading(AttributeType type, std::wstring const& name, std::vector<double> const& initial,
                                    std::wstring const& text, double minimum, double maximum, int id);
    void getDynamicAttributes(std::vector<Attribute*>& out) const;
    std::size_t dynamicCount() const { return dynamics_ ? dynamics_->size() : 0; }

    // ---- what the graph above adds ----
    virtual void valueChanged(Attribute&) {}            // a written attribute that feeds something
    virtual void elementsChanged(ElementRun const&) {}  // a bulk write to parts of elements, as far as it has come
    virtual void refreshValue(Attribute&) {}            // a read of a computed or connected attribute
    virtual void onRemove() {}                          // about to be removed, still whole: recorded edits are allowed
    virtual void onRemovePart(ElementBlock&) {}         // the same for one of its elements or dynamic attributes
    virtual void onLife(bool /*removed*/) {}            // was removed or came back, also by undo: no recorded edits
    virtual void onPlaceChanged(bool /*linked*/) {}     // came to or left its primary parent: no recorded edits
    virtual bool isNotAnObject() const { return false; }  // kept out of the lists of objects
    virtual bool supportsChildren() const { return true; }

    // A top-level attribute of known number and class.
    template<class A> A& at(int row) const {
        return *reinterpret_cast<A*>(reinterpret_cast<char*>(const_cast<Node*>(this)) +
                                     def_->layout().offsets[std::size_t(row)]);
    }

    bool compare(Attribute const& other) const override { return this == &other; }

protected:
    ElementBlock* makeDynamic(AttributeType type, std::wstring const& name, double const* initial,
                              std::wstring const& text, double minimum, double maximum, int id = -1);

    friend class Attribute;
    friend class ChangeSet;
    friend class Database;
    friend class CompositeAttribute;
    friend struct StructureEdits;

    // The first cache line: all that evaluation looks at. The words from `dirty` on belong to the graph.
    int firstID_ = -1;
    NodeDef const* def_;
    Database* database_ = nullptr;

public:
    std::uint64_t dirty = 0, stale = 0;
    sg::Input* inputs = nullptr;
    std::uint16_t inputCount = 0, inputRoom = 0;

protected:
    bool removed_ = false;
    std::uint8_t listedAs_ = 0;  // a bit per list of the change set that has it

    // From here on what only structure asks for.
    ChildLink place_;  // the link to the primary parent, or to the top
    ChildLink *firstChild_ = nullptr, *lastChild_ = nullptr;
    std::size_t childCount_ = 0;
    mutable Slot* slot_ = nullptr;
    mutable std::unique_ptr<std::vector<Node*>> childIndex_;  // made when asked for by number
    std::unique_ptr<std::vector<ElementBlock*>> dynamics_;
};

// The head of a block outside its node: one element of an attribute array, or one dynamic attribute. The attributes
// follow; row 0 is the element itself.
struct ElementBlock {
    Node* node;
    Layout const* layout;
    AttributeArray* array;       // null of a dynamic attribute
    struct DynamicDef* dynamic;  // of a dynamic attribute, owned; null of an element
    int firstID = -1;
    std::uint32_t index = 0;  // in the array or among the dynamic attributes
    Slot* slot = nullptr;
    bool removed = false;

    Attribute& attribute() { return part(0); }
    Attribute& part(int row) {
        return *reinterpret_cast<Attribute*>(reinterpret_cast<char*>(this) + layout->offsets[std::size_t(row)]);
    }
    // Takes ids, `id` if that is free, but is in no list yet.
    static ElementBlock* make(Node& node, Layout const& layout, AttributeArray* array, DynamicDef* dynamic,
                              int id = -1);
    static void destroy(ElementBlock* block);
    void setRemoved(bool on);
};

// Elements of an array from `from` to before `to`, each with the parts in these rows of its layout, as bits.
struct ElementRun {
    AttributeArray* array;
    std::uint64_t rows;
    std::size_t from, to;
    bool operator==(ElementRun const&) const = default;
    bool holds(Attribute const& part) const;
};

// The definition that a dynamic attribute brings along.
struct DynamicDef {
    DynamicDef(AttributeType type, std::wstring name, double const* initial, std::wstring text, double minimum,
               double maximum);
    DynamicDef(DynamicDef const&) = delete;

    std::wstring const name, text;
    Qelp::Matrix34 matrix;  // the initial value of the matrix kinds
    AttributeDef def;
    std::unique_ptr<Layout const> layout;
};

// An array whose elements are attributes, mostly compounds. Elements are edited one by one, each with its own history.
class AttributeArray final : public Attribute {
public:
    AttributeArray(AttributePlace place, AttributeDef const&) : Attribute(place, AttributeType::AttributeArray) {}
    ~AttributeArray() override;

    std::size_t size() const { return elements_ ? elements_->size() : 0; }
    bool empty() const { return size() == 0; }
    Attribute* getElement(std::size_t i) const { return i < size() ? &(*elements_)[i]->attribute() : nullptr; }
    Attribute* operator[](std::size_t i) const { return getElement(i); }
    std::span<ElementBlock* const> blocks() const {  // of the elements, until they come or go
        return elements_ ? std::span<ElementBlock* const>(*elements_) : std::span<ElementBlock* const>();
    }
    Attribute* add(bool = true) { return insert(unsigned(size())); }
    Attribute* insert(unsigned index, bool = true);  // null beyond the end
    bool removeAt(std::size_t index);
    void resize(std::size_t count);
    void clearArray() { resize(0); }
    Layout const& elementLayout() const { return *layout().rows[std::size_t(row())].element; }

    bool compare(Attribute const& other) const override;
    bool assign(Attribute const& other) override;
    bool isDefaultValue() const override { return empty(); }
    void setToDefaultValue() override { resize(0); }
    std::uint64_t remember() override { return 0; }
    void exchange(std::uint64_t&) override {}

    Attribute* appendForLoading(int id);  // without record, and with the id it had if that is free
    // Takes `removed` elements out at `at` and puts `inserted` in; both keep their ids. For the history.
    std::vector<ElementBlock*> exchangeElements(std::size_t at, std::size_t removed,
                                                std::vector<ElementBlock*> const& inserted);

private:
    void splice(std::size_t at, std::size_t removed, std::vector<ElementBlock*> inserted);
    std::unique_ptr<std::vector<ElementBlock*>> elements_;
};

inline NodeHandle::NodeHandle(Node* node) { setAnchor(node ? node->getAnchor() : nullptr); }
inline Node& Attribute::node() const { return has(outside) ? *block().node : *reinterpret_cast<Node*>(start()); }
inline void NodeContainer::add(Node* node) { PlainArrayAttribute::add(AttributeHandle(node)); }
inline Node* NodeContainer::getNode(std::size_t i) const {
    Attribute* a = PlainArrayAttribute::getElement(i).getRef();
    return a ? a->asNode() : nullptr;
}

}  // namespace db
