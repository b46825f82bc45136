// The changes of structure as the history keeps them. Each is its own inverse; all rely on being replayed in strictly
// reversed order, so that the place a thing had is still there when it comes back.
#pragma once
#include "qel/db/database.h"

namespace db {

struct StructureEdits {
    // A node came into being or was removed.
    struct Life : Edit {
        Life(Node& n, bool adds_) : node(n), adds(adds_) {}
        void toggle(Database& d) override { d.setRemoved(node, !node.removed_); }
        void list(ChangeSet& set) const override { adds ? set.addAdded(node) : set.addRemoved(node); }
        void drop(Database& d, bool undone) override {
            if (adds == undone) d.destroy(node);  // only this item could bring it back
        }
        Node& node;
        bool adds;
    };

    // A node moved from one primary parent, and place among its children, to another.
    struct Place : Edit {
        Place(Node& n) : node(n), parent(n.place_.parent), before(n.place_.next) {}
        void toggle(Database& d) override {
            Node* const nowParent = node.place_.parent;
            ChildLink* const nowBefore = node.place_.next;
            d.unlink(node.place_);
            d.link(node.place_, *parent, before);
            d.changes().addReparented(node);
            parent = nowParent;
            before = nowBefore;
        }
        void list(ChangeSet& set) const override { set.addReparented(node); }
        Node& node;
        Node* parent;
        ChildLink* before;
    };

    // A further parent came or went. Whoever has no use for the link frees it: this edit while it is taken out.
    struct ExtraParent : Edit {
        ExtraParent(ChildLink* l, bool linked_) : link(l), linked(linked_) {}
        ~ExtraParent() override {
            if (!linked) delete link;
        }
        void toggle(Database& d) override {
            linked ? takeOut(d) : putIn(d);
            d.changes().addReparented(*link->child);
        }
        void takeOut(Database& d) {
            d.unlink(*link);
            after = &link->child->place_;
            while (after->nextParent != link) after = after->nextParent;
            after->nextParent = link->nextParent;
            linked = false;
        }
        void putIn(Database& d) {
            d.link(*link, *link->parent, link->next);
            link->nextParent = after->nextParent;
            after->nextParent = link;
            linked = true;
        }
        void list(ChangeSet& set) const override { set.addReparented(*link->child); }
        ChildLink* link;
        ChildLink* after = nullptr;
        bool linked;
    };

    // Elements of an attribute array came or went; those outside belong to the edit.
    struct Elements : Edit {
        Elements(AttributeArray& a, std::size_t at_, std::size_t inside_, std::vector<ElementBlock*> out) :
            array(a), at(at_), inside(inside_), outsiders(std::move(out)) {}
        void toggle(Database& d) override {
            std::size_t const count = outsiders.size();
            outsiders = array.exchangeElements(at, inside, outsiders);
            inside = count;
            list(d.changes());
        }
        void list(ChangeSet& set) const override {
            set.addAttribute(array);
            for (ElementBlock* e : outsiders) set.addRemovedAttribute(e->attribute());
        }
        void drop(Database& d, bool) override { d.destroyElements(outsiders); }
        AttributeArray& array;
        std::size_t at, inside;
        std::vector<ElementBlock*> outsiders;
    };

    // A dynamic attribute came or went.
    struct Dynamic : Edit {
        Dynamic(Node& n, ElementBlock& b, bool present_) : node(n), block(b), present(present_) {}
        void toggle(Database& d) override {
            auto& list_ = *node.dynamics_;
            if (present)
                list_.erase(list_.begin() + long(block.index));
            else
                list_.insert(list_.begin() + long(block.index), &block);
            for (std::size_t i = block.index; i < list_.size(); ++i) list_[i]->index = std::uint32_t(i);
            present = !present;
            block.setRemoved(!present);
            list(d.changes());
        }
        void list(ChangeSet& set) const override {
            if (present)
                set.addAttribute(block.attribute());
            else
                set.addRemovedAttribute(block.attribute()), set.addNode(node);
        }
        void drop(Database& d, bool) override {
            if (!present) d.destroyElements({&block});
        }
        Node& node;
        ElementBlock& block;
        bool present;
    };
};

}  // namespace db
