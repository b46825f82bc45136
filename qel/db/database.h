// The undoable database: a tree of nodes with change control.
//
// Every change is recorded. Inside a change block it belongs to the step that the outermost end commits; a change made
// in a transient block, or outside any block, stays pending until the next recorded commit takes it along or
// commitTransient() makes a step of it. So nothing escapes the history, and undo always finds what it left.
//
// A commit costs what changed, never what exists. Single-threaded; observers may edit, open blocks, add and remove
// observers, undo and redo while they are told.
#pragma once
#include "qel/db/change_set.h"
#include "qel/db/name_index.h"
#include "qel/db/node_pool.h"
#include "qel/db/observer.h"
#include "qel/db/preserved.h"

namespace db {

enum class ChangeMode { Recorded = 1, Transient = 2 };

// A change of structure. Toggling it twice leaves everything as it was.
struct Edit {
    virtual ~Edit() = default;
    virtual void toggle(Database& database) = 0;      // undone, or done again
    virtual void list(ChangeSet& set) const = 0;      // enters what it changed
    virtual void drop(Database&, bool /*undone*/) {}  // the item goes: free what only it kept
};

// What undo needs of one change: of a value its old value, swapped with the current one; or an edit.
struct Record {
    Attribute* subject;  // null: an edit
    std::uint64_t old;
    Edit* edit() const { return reinterpret_cast<Edit*>(old); }
};

struct UndoItem {
    std::wstring label;
    std::unique_ptr<Record[]> records;
    std::size_t count = 0;
    std::uint64_t serial = 0;
    std::size_t bytes() const;
};

class Database : public Node {
public:
    static NodeDef const Def;

    Database();
    explicit Database(NodeDef const& def);
    ~Database() override;
    // Frees every node. Derived classes call it first in their destructor, while their own part still stands.
    void destruct();

    std::wstring const& getDatabaseName() const { return name_; }
    void setDatabaseName(std::wstring const& name) { name_ = name; }

    // ---- change control ----
    void beginChangeBlock(ChangeMode mode = ChangeMode::Recorded);  // may nest; the outermost decides the mode
    void endChangeBlock(std::wstring const& label = {});            // only the outermost commits; none open: nothing
    // The open block, unless it is nested or transient, makes a step of the history even if nothing changes in it. Such
    // a step leaves the state what it was: at the checkpoint or not.
    void keepStep();
    // Rolls back what the outermost open block changed and closes all blocks; of a transient one, the whole gesture:
    // all that is pending. The ends that follow find no block and do nothing.
    virtual void cancel();
    // Outside any block: makes one step of what is pending. Inside a transient block: only tells what changed since
    // the last telling. Inside a recorded block: nothing.
    void commitTransient();
    bool isInChangeBlock() const { return depth_ > 0; }
    bool isTransient() const { return depth_ > 0 && mode_ == ChangeMode::Transient; }

    // ---- history ----
    bool undo();  // false: nothing to undo, or a block is open
    bool redo();
    void clearUndoHistory();
    void setCheckpoint();  // the present state is the clean one
    bool isAtCheckpoint() const;
    void setMaxUndoItems(int count);  // 0 stops recording
    int getMaxUndoItems() const { return int(maxItems_); }
    std::size_t getUndoCount() const { return done_; }
    std::size_t getRedoCount() const { return items_.size() - done_; }
    std::wstring getUndoLabel() const { return done_ ? items_[done_ - 1].label : std::wstring(); }
    std::wstring getRedoLabel() const { return done_ < items_.size() ? items_[done_].label : std::wstring(); }
    std::size_t getHistoryBytes() const;

    // ---- lookup ----
    Node* lookupNode(int id) const;  // null for a removed one
    Attribute* lookupAttribute(int id) const;
    Node* findNodeByPath(std::wstring_view path) const;  // "a|b|c" from the top; null for none
    std::size_t nodeCount() const { return nodeCount_; }
    void listNodes(std::vector<Node*>& out) const;  // that are not removed, by id, internal ones included

    // ---- structure ----
    // Null when the type is abstract or the ids are used up. The node stands at the top under a unique form of `name`.
    Node* createNode(NodeDef const& def, std::wstring const& name);
    // `wanted` if no child of `parent` (null: of the top) but `except` bears it, otherwise with the smallest number
    // from 1 up appended that makes it unique.
    std::wstring makeUniqueName(Node const* parent, std::wstring const& wanted, Node const* except = nullptr);
    virtual void clear();  // removes every node

    // ---- observers ----
    void addObserver(DatabaseObserver* observer) { observers_.add(observer); }
    void removeObserver(DatabaseObserver* observer, int mode = ObserverManager::LeaveHole) {
        observers_.remove(observer, mode);
    }
    ObserverManager& observers() { return observers_; }
    static bool isObserverTimingEnabled() { return timing_; }
    static void setObserverTimingEnabled(bool on) { timing_ = on; }
    Qelutils::BasicLogger* logger() const { return logger_; }
    void setLogger(Qelutils::BasicLogger* sink) { logger_ = sink, observers_.setLogger(sink); }

    // ---- for the classes of this library and the graph ----
    void record(std::unique_ptr<Edit> edit);
    ChangeSet& changes() { return *set_; }
    void listRuns();  // of every change set: elements are about to come or go
    bool isReplaying() const { return replaying_; }
    Node* createDetached(NodeDef const& def);  // outside the hierarchy, without a name; recorded like any other
    // The first of so many ids: `wanted` where it and those behind it are free, otherwise behind all that were taken.
    int takeIDs(std::size_t count, void* owner, bool isElement, int wanted = -1);
    void releaseIDs(int firstID, void const* owner);
    // ---- for loading: nothing of it is recorded ----
    virtual std::unique_ptr<Database> makeEmpty() const { return std::make_unique<Database>(); }  // of the same kind
    // Takes over all that `other` holds, which was made by makeEmpty and told to nobody, in place of its own content
    // and history. What is listed as removed stays readable until the next telling ends.
    void adopt(Database& other);
    // A node with the id it had if that is free. `parent` null: at the top; `detached`: nowhere. Null as of createNode.
    Node* createForLoading(NodeDef const& def, int id, std::wstring const& name, Node* parent, bool detached = false);
    // Behind those it has. False when one of them can't be: it stands twice, is the node itself or takes no children.
    bool addParentsForLoading(Node& child, std::vector<Node*> const& parents);
    void orderChildrenForLoading(Node& parent, std::vector<Node*> const& children);  // the listed ones last, in order
    Node* findCycle() const;     // a node that is below itself, or below such a one; null: the hierarchy is sound
    void keepIDsBelow(int end);  // for those that want them: others get ids from there on
    // ---- for saving ----
    int endOfIDs() const;  // no node, element or dynamic attribute has an id from there on
    // Depth first; each below its primary parent, and so behind it.
    void listByPrimaryParent(std::vector<Node*>& out) const;
    Preserved& preserved() { return preserved_; }
    Preserved const& preserved() const { return preserved_; }
    // Connections belong to the graph above, which saves and restores them through these.
    struct ConnectionRecord {
        int id;
        Attribute *from, *to;
    };
    virtual void listConnections(std::vector<ConnectionRecord>&) const {}
    virtual bool loadConnection(ConnectionRecord const&) { return false; }
    // The type that stands in for one that is not known here, so that its nodes survive a load and a save.
    virtual NodeDef const* unknownNodeDef() const { return nullptr; }
    void removeDynamic(ElementBlock& block);
    void destroyElements(std::vector<ElementBlock*> const& elements);

protected:
    virtual void customiseChangeSetPreCommit(ChangeSet&) {}
    virtual void onDatabaseChangedPreCommit(ChangeSet const&, bool /*transient*/) {}
    virtual void customiseChangeSet(ChangeSet&) {}
    virtual void notifyObservers(ChangeSet const& set, bool transient);
    virtual void postCommit() {}
    virtual void onAdopted(Database& /*other*/) {}  // its content replaced the own one

private:
    friend class Attribute;
    friend class BulkWrite;
    friend class Node;
    friend class AttributeArray;
    friend class StringAttribute;
    friend struct StructureEdits;

    void prepareCommit(bool transient);
    void commit(std::wstring const& label, bool transient);
    void storeItem(std::wstring const& label);
    void tell(bool transient);
    void relistJournal();
    bool replay(bool back);
    void toggleRecord(Record& r);
    void rollBack(std::size_t from);
    void dropRecords(Record* records, std::size_t count, bool undone);
    void dropItem(UndoItem& item, bool undone);
    void dropOldest();
    void dropNewest();
    void dropDone();
    void dropRedo();
    void trimHistory();
    std::uint64_t presentState() const { return done_ ? items_[done_ - 1].serial : bottom_; }
    void emptyGraveyard();

    // Structure: the steps that edits toggle. None of them records.
    void link(ChildLink& l, Node& parent, ChildLink* before);
    void unlink(ChildLink& l);
    void setRemoved(Node& n, bool removed);
    void reindexName(Node& n, std::wstring& name);  // swaps
    void removeNode(Node& n);
    void removeSingle(Node& n);
    void renameNode(Node& n, std::wstring const& wanted);
    void giveName(Node& n, std::wstring name);
    void moveNode(Node& n, Node& parent, ChildLink* before);
    void destroy(Node& n);
    void retire(Node& n);
    void free(Node& n);
    void retireContent();
    void freeRetired();
    Node* construct(NodeDef const& def);
    bool areIDsFree(int id, std::size_t pages) const;
    bool hasRoomFor(NodeDef const& def) const;
    Node* findChildOf(Node const& parent, std::wstring_view name, Node const* except = nullptr) const;

    static constexpr int pageBits = 4;  // a block takes whole pages of 16 ids
    static constexpr int firstDatabaseID = 0x7f000000;
    static bool timing_;

    std::wstring name_;
    std::vector<std::uintptr_t> pages_;  // id >> 4: a Node*, or an ElementBlock* with the lowest bit set
    std::vector<std::unique_ptr<NodePool>> pools_;
    std::vector<Node*> graveyard_;  // dead while a set that may list them is lent out
    std::vector<ElementBlock*> elementGraveyard_;
    struct Retired {  // a content that was replaced
        std::vector<Node*> nodes;
        std::vector<ElementBlock*> elements;
        std::vector<std::unique_ptr<NodePool>> pools;
        bool told = false;  // the set that lists it goes out, or went
    };
    std::vector<Retired> retired_;
    Preserved preserved_;
    NameTable names_;
    StemNumbers stems_;
    std::size_t nodeCount_ = 0;

    std::vector<Record> journal_;  // since the last recorded commit
    std::size_t blockStart_ = 0;   // where the open recorded block begins in it
    std::unique_ptr<ChangeSet> set_ = std::make_unique<ChangeSet>();
    std::vector<std::unique_ptr<ChangeSet>> spareSets_;
    std::vector<ChangeSet const*> lentSets_;  // that are being told
    std::deque<UndoItem> items_;
    std::size_t done_ = 0, maxItems_ = 100000;
    std::uint64_t nextSerial_ = 1, checkpoint_ = 0;
    std::uint64_t bottom_ = 0;  // the state below the oldest item
    int depth_ = 0, telling_ = 0;
    ChangeMode mode_ = ChangeMode::Recorded;
    bool replaying_ = false, committing_ = false, keepsStep_ = false;
    ObserverManager observers_;
    Qelutils::BasicLogger* logger_ = nullptr;
};

// Brackets a change: one step of the history and one telling.
class ChangeBlock {
public:
    ChangeBlock(Database* database, std::wstring const& label, ChangeMode mode = ChangeMode::Recorded) :
        database_(database), label_(label) {
        if (database_) database_->beginChangeBlock(mode);
    }
    ChangeBlock(ChangeBlock const&) = delete;
    ChangeBlock& operator=(ChangeBlock const&) = delete;
    ~ChangeBlock() {
        if (database_) database_->endChangeBlock(label_);
    }

private:
    Database* database_;
    std::wstring label_;
};

inline std::wstring const& EmptyString() {
    static std::wstring const empty;
    return empty;
}
inline std::vector<std::wstring> const& EmptyStringArray() {
    static std::vector<std::wstring> const empty;
    return empty;
}

}  // namespace db
