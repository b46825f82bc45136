// An attribute: anything with a value in a node. It is a small polymorphic object with its value inline; a node and
// its attributes lie in one block of memory, so an attribute is as cheap as a field. One word says where its node is,
// which row of the type it is, of what kind, and what must happen on a read or a write.
//
// Writes are recorded: the first write to an attribute in a change block keeps the old value, later ones only write.
// What was removed by an earlier step takes no writes: the history that keeps it alive would not bring them back.
// Reads of an attribute that is computed or connected first bring it up to date; all others are a load.
#pragma once
#include "qel/db/attribute_def.h"
#include <cstddef>
#include <cstdint>
#include <string>

namespace db {

class Node;
class NodeDef;
class Database;
class Layout;
struct ElementBlock;
struct Slot;

// The value classes, each with the kind that it alone has. The list drives as...() and is...().
#define DB_ROW_KINDS(X)                                                                                                \
    X(Int, IntAttribute, Integer)                                                                                      \
    X(Bool, BoolAttribute, Boolean)                                                                                    \
    X(Enum, EnumAttribute, Enumeration)                                                                                \
    X(Float, FloatAttribute, Float)                                                                                    \
    X(Double, DoubleAttribute, Double)                                                                                 \
    X(String, StringAttribute, String)                                                                                 \
    X(Vector3, Vector3Attribute, Vector3)                                                                              \
    X(Matrix34, Matrix34Attribute, Matrix)                                                                             \
    X(Pointer, PointerAttribute, Pointer)                                                                              \
    X(Quaternion, QuaternionAttribute, Quaternion)                                                                     \
    X(IntArray, IntArrayAttribute, IntegerArray)                                                                       \
    X(BoolArray, BoolArrayAttribute, BooleanArray)                                                                     \
    X(EnumArray, EnumArrayAttribute, EnumerationArray)                                                                 \
    X(FloatArray, FloatArrayAttribute, FloatArray)                                                                     \
    X(DoubleArray, DoubleArrayAttribute, DoubleArray)                                                                  \
    X(StringArray, StringArrayAttribute, StringArray)                                                                  \
    X(Vector3Array, Vector3ArrayAttribute, Vector3Array)                                                               \
    X(Matrix34Array, Matrix34ArrayAttribute, MatrixArray)                                                              \
    X(PointerArray, PointerArrayAttribute, PointerArray)                                                               \
    X(QuaternionArray, QuaternionArrayAttribute, QuaternionArray)                                                      \
    X(NodeContainer, NodeContainer, NodeContainer)                                                                     \
    X(AttributeArray, AttributeArray, AttributeArray)
#define DB_VALUE_KINDS(X) DB_ROW_KINDS(X) X(Node, Node, Node)

#define DB_DECLARE(name, type, kind) class type;
DB_VALUE_KINDS(DB_DECLARE)
#undef DB_DECLARE
class SingleValueAttribute;
class ArrayAttribute;
class CompositeAttribute;
class CompoundAttribute;

// Where an attribute lies: what its constructor needs to know.
struct AttributePlace {
    std::uint32_t back = 0;    // distance to the start of its block, in units of 8 bytes
    std::uint32_t number = 0;  // row in the layout of its block
    bool outside = false;      // the block is an ElementBlock and not a node
};

class Attribute {
public:
    virtual ~Attribute() = default;
    Attribute(Attribute const&) = delete;
    Attribute& operator=(Attribute const&) = delete;

    // ---- identity ----
    AttributeType getAttributeType() const { return AttributeType((bits_ & kindMask) >> kindShift); }
    int getID() const;  // unique in its database, never used again
    AttributeDef const& getDef() const;
    Database* getDatabase() const;
    Node* getParentNode() const;             // of a node: itself
    Attribute* getParentAttribute() const;   // the compound, array or node that encloses it; null for a node
    int getIndex() const;                    // in the enclosing attribute; -1 for a node
    std::wstring getName() const;            // of an array's element: "Keys[3]"; of a node: its name
    void setName(std::wstring const& name);  // of a node; others keep the name of their row
    std::wstring getLocalPathName() const;   // within the node: "Layers[0].Colour.Red"; empty for a node
    void getLocalPathName(std::wstring& out) const { out = getLocalPathName(); }
    bool hasParentNode(NodeDef const& def) const;
    bool isNodeType(NodeDef const& def) const { return hasParentNode(def); }

    // ---- kind ----
#define DB_AS(name, type, kind)                                                                                        \
    bool is##name() const { return getAttributeType() == AttributeType::kind; }                                        \
    type* as##name() { return is##name() ? reinterpret_cast<type*>(this) : nullptr; }                                  \
    type const* as##name() const { return is##name() ? reinterpret_cast<type const*>(this) : nullptr; }
    DB_VALUE_KINDS(DB_AS)
#undef DB_AS
    bool isArray() const { return isArrayType(getAttributeType()); }
    bool isCompound() const { return isCompoundType(getAttributeType()) || isNode(); }
    bool isComposite() const { return isCompound(); }
    bool isSingleValue() const;
    bool isDatabase() const;
    bool isDynamic() const;
    bool IsObjectRef() const { return isPointer(); }
    inline ArrayAttribute* asArray();
    inline ArrayAttribute const* asArray() const;
    inline CompositeAttribute* asComposite();
    inline CompositeAttribute const* asComposite() const;
    inline CompoundAttribute* asCompound();
    inline SingleValueAttribute* asSingleValue();
    Database* asDatabase();

    // ---- life ----
    bool isRemoved() const;  // itself, what it lies in, or its node
    // Removes a node with what lies below it, a dynamic attribute, or an element of an array. Undo brings it back with
    // the same id. Anything else is a fixed part of its node and stays: false.
    bool remove();
    virtual void preRemove(bool) {}
    virtual void postRemove(bool) {}

    // ---- values without regard to kind ----
    virtual bool compare(Attribute const& other) const = 0;  // the same kind and the same value
    virtual bool assign(Attribute const& other) = 0;         // false when the kinds differ
    virtual bool isDefaultValue() const = 0;
    virtual void setToDefaultValue() = 0;
    bool compareAttributeTypes(Attribute const& other) const { return getAttributeType() == other.getAttributeType(); }

    // ---- history: what undo needs of one attribute, a word ----
    virtual std::uint64_t remember() = 0;           // the value of now, or what will hold it
    virtual void exchange(std::uint64_t& old) = 0;  // swaps with the current value
    virtual void forget(std::uint64_t) {}           // frees what remember() made
    virtual std::size_t historyBytes(std::uint64_t) const { return 0; }
    // Keeps the whole value, which is about to change without record: what flows in along a connection.
    bool noteWhole() {
        if (!noteWrite()) return false;
        keepWhole();
        return true;
    }

    // ---- state; for db and sg ----
    enum Flag : std::uint32_t {
        recorded = 1u << 27,  // the old value is kept since the last recorded commit
        listed = 1u << 28,    // in the change set that is being built
        live = 1u << 29,      // computed or connected: a read must ask the node
        feeds = 1u << 30,     // others depend on it: a write must tell the node
        outside = 1u << 31,   // its block is an ElementBlock
    };
    bool has(std::uint32_t flags) const { return (bits_ & flags) != 0; }
    void set(std::uint32_t flags) { bits_ |= flags; }
    void clear(std::uint32_t flags) { bits_ &= ~flags; }
    // Its old value is kept, and no other takes its place: the one test of a bulk write.
    bool isKept() const { return (bits_ & (recorded | live)) == recorded; }
    // Of that kind and a plain value: the one test of a fast read.
    bool isPlain(AttributeType kind) const { return (bits_ & (kindMask | live)) == std::uint32_t(kind) << kindShift; }
    Node& node() const;
    ElementBlock& block() const { return *reinterpret_cast<ElementBlock*>(start()); }
    Layout const& layout() const;
    int row() const { return int(bits_ >> numberShift & 1023); }
    Slot* anchor() const;  // of its block: what handles attach to

    bool noteWrite();                   // what beforeWrite() does the first time
    bool noteWrite(std::uint64_t old);  // of a value that fits the word

protected:
    virtual void keepWhole() {}  // beyond what remember() kept
    Attribute(AttributePlace place, AttributeType kind) :
        bits_(place.back | place.number << numberShift | std::uint32_t(kind) << kindShift |
              (place.outside ? outside : 0u)) {}
    bool isNoted() const { return (bits_ & (recorded | listed)) == (recorded | listed); }
    inline bool beforeWrite();  // false: removed, the write must not happen
    inline void afterWrite();
    inline void refresh() const;

    static constexpr std::uint32_t backMask = 4095, numberShift = 12, kindShift = 22, kindMask = 31u << kindShift;
    char* start() const {
        return reinterpret_cast<char*>(const_cast<Attribute*>(this)) - 8 * std::size_t(bits_ & backMask);
    }

private:
    bool note(std::uint64_t old);
    void valueChanged();
    void refreshValue() const;

    std::uint32_t bits_;
};

// The first write of a block is noted, and told to the graph only where something depends on the attribute.
inline bool Attribute::beforeWrite() { return isNoted() || noteWrite(); }
inline void Attribute::afterWrite() {
    if (has(feeds)) valueChanged();
}
inline void Attribute::refresh() const {
    if (has(live)) refreshValue();
}

class SingleValueAttribute : public Attribute {
protected:
    using Attribute::Attribute;
};

// An array of one value kind.
class ArrayAttribute : public Attribute {
public:
    virtual std::size_t size() const = 0;
    virtual void resize(std::size_t count) = 0;    // new elements have the default of the row
    virtual bool removeAt(std::size_t index) = 0;  // false beyond the end
    bool empty() const { return size() == 0; }
    void clearArray() { resize(0); }

protected:
    using Attribute::Attribute;
};

// A set of attributes reached by index or name.
class CompositeAttribute : public Attribute {
public:
    std::size_t getAttributeCount() const;             // of a node: the fixed ones and then the dynamic ones
    Attribute* getAttribute(std::size_t index) const;  // null beyond the end
    Attribute* operator[](std::size_t index) const { return getAttribute(index); }
    Attribute* findAttribute(std::wstring const& name) const;  // a name, or a path such as "Layers[0].Label"; or null

protected:
    using Attribute::Attribute;
};

// A composite inside a node or an element; its children are rows of the same layout.
class CompoundAttribute : public CompositeAttribute {
public:
    CompoundAttribute(AttributePlace place, AttributeDef const& def) : CompositeAttribute(place, def.type) {}
    bool compare(Attribute const& other) const override;
    bool assign(Attribute const& other) override;
    bool isDefaultValue() const override;
    void setToDefaultValue() override;
    std::uint64_t remember() override { return 0; }
    void exchange(std::uint64_t&) override {}

protected:
    CompoundAttribute(AttributePlace place, AttributeType kind) : CompositeAttribute(place, kind) {}
};

inline ArrayAttribute* Attribute::asArray() { return isArray() ? static_cast<ArrayAttribute*>(this) : nullptr; }
inline ArrayAttribute const* Attribute::asArray() const {
    return isArray() ? static_cast<ArrayAttribute const*>(this) : nullptr;
}
inline CompositeAttribute* Attribute::asComposite() {
    return isComposite() ? static_cast<CompositeAttribute*>(this) : nullptr;
}
inline CompositeAttribute const* Attribute::asComposite() const {
    return isComposite() ? static_cast<CompositeAttribute const*>(this) : nullptr;
}
inline CompoundAttribute* Attribute::asCompound() {
    return isCompound() ? static_cast<CompoundAttribute*>(this) : nullptr;
}
inline SingleValueAttribute* Attribute::asSingleValue() {
    return isSingleValue() ? static_cast<SingleValueAttribute*>(this) : nullptr;
}

}  // namespace db
