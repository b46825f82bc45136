// Weak references to nodes and attributes. A block (a node, or an element of an attribute array) owns a slot from the
// first handle on; slots are process-wide and never returned, so a stale handle may always look, also after its
// database is gone. Handles are plain words: nothing is counted and nothing pinned.
#pragma once
#include "qel/db/attribute.h"

namespace db {

// The generation is even while the block lives, odd while it is removed and may come back, and moves on by two when
// it dies.
struct Slot {
    Node* node = nullptr;  // null for an element, and for a node that died
    std::uint32_t generation = 0;

    static Slot* make(Node* node, bool removed);
    void die() { node = nullptr, generation = (generation | 1) + 1; }
};

// Null when the attribute, or its node, died or is removed; valid again when undo brings it back.
class AttributeHandle {
public:
    AttributeHandle() = default;
    explicit AttributeHandle(Attribute const* a) { setAnchor(const_cast<Attribute*>(a)); }
    inline void setAnchor(Attribute* a) {
        attribute_ = a;
        slot_ = a ? a->anchor() : nullptr;
        generation_ = slot_ ? slot_->generation & ~1u : 0;
    }
    Attribute* getRef() const {
        if (!slot_ || slot_->generation != generation_) return nullptr;
        return attribute_->has(Attribute::outside) && attribute_->isRemoved() ? nullptr : attribute_;
    }
    // Also while it is removed.
    Attribute* getRefOrRemoved() const {
        return slot_ && (slot_->generation & ~1u) == generation_ ? attribute_ : nullptr;
    }
    bool operator==(AttributeHandle const& o) const {
        return slot_ == o.slot_ && generation_ == o.generation_ && attribute_ == o.attribute_;
    }

private:
    Slot* slot_ = nullptr;
    std::uint32_t generation_ = 0;
    Attribute* attribute_ = nullptr;
};

// Null only when the node died; `isAlive` is false while it is removed.
class NodeHandle {
public:
    NodeHandle() = default;
    inline explicit NodeHandle(Node* node);
    inline void setAnchor(Slot* slot) {
        slot_ = slot;
        generation_ = slot ? slot->generation & ~1u : 0;
    }
    Node* getRef() const { return slot_ && (slot_->generation & ~1u) == generation_ ? slot_->node : nullptr; }
    bool isAlive() const { return slot_ && slot_->generation == generation_; }

private:
    Slot* slot_ = nullptr;
    std::uint32_t generation_ = 0;
};

}  // namespace db
