// Change control and history; what the structure is made of stands in structure.cpp.
#include "qel/db/database.h"
#include "qel/db/edits.h"
#include <algorithm>
#include <atomic>
#include <utility>

namespace db {
namespace {

// Databases take their ids far above those of nodes, from one counter, so that an id names one database of all.
std::atomic<int> databaseCount{0};

// Observers that answer every change with another would never end.
constexpr int mostNestedTellings = 64;

}  // namespace

bool Database::timing_ = false;
NodeDef const Database::Def(L"db", L"Database", nullptr, {}, sizeof(Database), nullptr);

std::size_t UndoItem::bytes() const {
    std::size_t sum = sizeof *this + count * sizeof(Record) + label.capacity() * sizeof(wchar_t);
    for (std::size_t i = 0; i < count; ++i) {
        if (records[i].subject)
            sum += records[i].subject->historyBytes(records[i].old);
        else
            sum += sizeof(StructureEdits::Place);
    }
    return sum;
}

Database::Database() : Database(Def) {}

Database::Database(NodeDef const& def) : Node(def) {
    database_ = this;
    firstID_ = firstDatabaseID + databaseCount++;
}

Database::~Database() { destruct(); }

void Database::destruct() {
    dropRedo();
    dropDone();
    dropRecords(journal_.data(), journal_.size(), false);
    journal_.clear();
    telling_ = 0;
    for (Retired& r : retired_) r.told = true;
    emptyGraveyard();
    for (std::size_t p = 0; p < pages_.size(); ++p)
        if (pages_[p] && !(pages_[p] & 1)) destroy(*reinterpret_cast<Node*>(pages_[p]));
    if (auto const own = std::move(dynamics_))
        for (ElementBlock* b : *own) ElementBlock::destroy(b);
    pages_.clear();
    pools_.clear();
    firstChild_ = lastChild_ = nullptr;
    childCount_ = 0;
}

// ---- blocks ----

void Database::beginChangeBlock(ChangeMode mode) {
    if (depth_++ > 0) return;
    mode_ = mode;
    if (mode == ChangeMode::Transient || journal_.empty()) {
        blockStart_ = 0;
        return;
    }
    // What is pending gets a seal, so that this block can be taken back alone.
    for (Record const& r : journal_)
        if (r.subject) r.subject->clear(Attribute::recorded);
    blockStart_ = journal_.size();
}

void Database::endChangeBlock(std::wstring const& label) {
    if (depth_ == 0) return;
    if (depth_ > 1 || committing_) {
        depth_ = std::max(1, depth_ - 1);
        return;
    }
    bool const transient = mode_ == ChangeMode::Transient;
    if (!transient && blockStart_ > 0) relistJournal();
    if (!set_->empty()) prepareCommit(transient);
    depth_ = 0;
    if (!set_->empty() || (!transient && (!journal_.empty() || keepsStep_))) commit(label, transient);
}

void Database::keepStep() {
    if (depth_ == 1 && mode_ == ChangeMode::Recorded) keepsStep_ = true;
}

void Database::prepareCommit(bool transient) {
    committing_ = true;
    customiseChangeSetPreCommit(*set_);
    onDatabaseChangedPreCommit(*set_, transient);
    committing_ = false;
}

void Database::cancel() {
    if (depth_ == 0) return;
    rollBack(blockStart_);
    depth_ = 0;
    keepsStep_ = false;
    if (!set_->empty()) tell(false);
}

void Database::commitTransient() {
    if (depth_ > 0) {
        if (mode_ != ChangeMode::Transient || committing_ || set_->empty()) return;
        prepareCommit(true);
        if (!set_->empty()) tell(true);
        return;
    }
    if (journal_.empty() && set_->empty()) return;
    mode_ = ChangeMode::Recorded;
    blockStart_ = journal_.size();  // so that all that is pending is listed
    depth_ = 1;
    endChangeBlock({});
}

// Keeps the old value and lists the attribute, once each.
bool Attribute::note(std::uint64_t old) {
    if (isRemoved()) return false;
    Database& d = *node().database_;
    if (!has(recorded)) d.journal_.push_back({this, old});
    if (!has(listed)) d.set_->attributes_.push_back(this);
    set(recorded | listed);
    return true;
}

bool Attribute::noteWrite() {
    if (isRemoved()) return false;
    return note(has(recorded) ? 0 : remember());
}

// The usual case needs no call: a part of a node, neither recorded nor listed, and the lists have room.
bool Attribute::noteWrite(std::uint64_t old) {
    if (!has(outside | recorded | listed)) [[likely]] {
        Node& n = *reinterpret_cast<Node*>(start());
        std::vector<Record>& journal = n.database_->journal_;
        std::vector<Attribute*>& list = n.database_->set_->attributes_;
        if (!n.removed_ && journal.size() != journal.capacity() && list.size() != list.capacity()) [[likely]] {
            set(recorded | listed);
            journal.push_back({this, old});
            list.push_back(this);
            return true;
        }
    }
    return note(old);
}

void Database::record(std::unique_ptr<Edit> edit) {
    journal_.push_back({nullptr, reinterpret_cast<std::uint64_t>(edit.release())});
}

// ---- commit ----

void Database::commit(std::wstring const& label, bool transient) {
    ++telling_;  // what the history lets go may still be listed: it dies after the telling
    if (!transient) storeItem(label);
    --telling_;
    tell(transient);
}

// What earlier transient blocks left pending belongs to the final set as well, told before or not.
void Database::relistJournal() {
    set_->forgetRemovedAttributes();
    for (Record const& r : journal_) {
        if (!r.subject) {
            r.edit()->list(*set_);
            continue;
        }
        set_->addAttribute(*r.subject);
        StringAttribute const* text = r.subject->asString();
        if (text && text->isNodeName()) set_->addRenamed(r.subject->node());
    }
}

// All that is in the journal is listed too: the telling clears both flags in one pass.
void Database::storeItem(std::wstring const& label) {
    blockStart_ = 0;
    if (!std::exchange(keepsStep_, false) && journal_.empty()) return;
    dropRedo();
    std::uint64_t const serial = journal_.empty() ? presentState() : nextSerial_++;
    UndoItem& item = items_.emplace_back();
    item.label = label;
    item.count = journal_.size();
    item.serial = serial;
    item.records = std::make_unique_for_overwrite<Record[]>(journal_.size());
    std::copy(journal_.begin(), journal_.end(), item.records.get());
    ++done_;
    journal_.clear();
    trimHistory();
}

// The set is put aside before anyone is told: an observer that edits fills another one.
void Database::tell(bool transient) {
    std::unique_ptr<ChangeSet> told = std::move(set_);
    if (spareSets_.empty())
        set_ = std::make_unique<ChangeSet>();
    else {
        set_ = std::move(spareSets_.back());
        spareSets_.pop_back();
    }
    for (Retired& r : retired_) r.told = true;
    customiseChangeSet(*told);
    told->close(transient ? Attribute::listed : Attribute::listed | Attribute::recorded);
    ++telling_;
    lentSets_.push_back(told.get());
    if (telling_ <= mostNestedTellings) {
        notifyObservers(*told, transient);
        postCommit();
    } else if (logger_)
        logger_->Log(Qelutils::BasicLogger::Error,
                     L"Observers answer every change with another: they are not told of this one");
    lentSets_.pop_back();
    if (--telling_ == 0) emptyGraveyard();
    told->reset();
    spareSets_.push_back(std::move(told));
}

void Database::listRuns() {
    set_->listRuns();
    for (ChangeSet const* lent : lentSets_) lent->listRuns();
}

void Database::notifyObservers(ChangeSet const& set, bool transient) {
    ObserverManager::Telling const both(observers_);
    observers_.tell([&](DatabaseObserver& o) { o.onDatabaseChanged(set, transient); });
    observers_.tell([&](DatabaseObserver& o) { o.postDatabaseChanged(set, transient); });
}

// ---- undo and redo ----

bool Database::undo() { return replay(true); }
bool Database::redo() { return replay(false); }

bool Database::replay(bool back) {
    if (depth_ > 0) return false;
    commitTransient();
    if (back ? done_ == 0 : done_ == items_.size()) return false;
    UndoItem& item = items_[back ? done_ - 1 : done_];
    replaying_ = true;
    for (std::size_t i = 0; i < item.count; ++i) toggleRecord(item.records[back ? item.count - 1 - i : i]);
    replaying_ = false;
    done_ = back ? done_ - 1 : done_ + 1;
    tell(false);
    return true;
}

void Database::toggleRecord(Record& r) {
    if (!r.subject) return r.edit()->toggle(*this);
    r.subject->exchange(r.old);
    set_->addAttribute(*r.subject);
    if (r.subject->has(Attribute::feeds)) r.subject->node().valueChanged(*r.subject);
}

void Database::rollBack(std::size_t from) {
    replaying_ = true;
    for (std::size_t i = journal_.size(); i-- > from;) toggleRecord(journal_[i]);
    replaying_ = false;
    for (std::size_t i = from; i < journal_.size(); ++i)
        if (journal_[i].subject) journal_[i].subject->clear(Attribute::recorded);
    ++telling_;  // what is rolled back may still be listed: it dies after the telling
    dropRecords(journal_.data() + from, journal_.size() - from, true);
    --telling_;
    journal_.resize(from);
}

void Database::clearUndoHistory() {
    if (depth_ == 0) commitTransient();
    dropRedo();
    dropDone();
}

void Database::setCheckpoint() { checkpoint_ = presentState(); }
bool Database::isAtCheckpoint() const { return journal_.empty() && checkpoint_ == presentState(); }

void Database::setMaxUndoItems(int count) {
    maxItems_ = std::size_t(std::max(0, count));
    trimHistory();
}

std::size_t Database::getHistoryBytes() const {
    std::size_t sum = 0;
    for (UndoItem const& item : items_) sum += item.bytes();
    return sum;
}

void Database::dropOldest() {
    bottom_ = items_.front().serial;
    dropItem(items_.front(), false);
    items_.pop_front();
    --done_;
}

void Database::dropNewest() {
    dropItem(items_.back(), true);
    items_.pop_back();
}

void Database::dropDone() {
    while (done_ > 0) dropOldest();
}

void Database::dropRedo() {
    while (items_.size() > done_) dropNewest();
}

void Database::trimHistory() {
    while (items_.size() > maxItems_) done_ > 0 ? dropOldest() : dropNewest();
}

void Database::dropItem(UndoItem& item, bool undone) {
    dropRecords(item.records.get(), item.count, undone);
    item.count = 0;
}

// Values first: an edit may free the node that they were written to. Then the edits in the order of time, undone ones
// against it: so that a node goes after what happened inside it.
void Database::dropRecords(Record* records, std::size_t count, bool undone) {
    for (std::size_t i = 0; i < count; ++i)
        if (records[i].subject) records[i].subject->forget(records[i].old);
    for (std::size_t k = 0; k < count; ++k) {
        Record const& r = records[undone ? count - 1 - k : k];
        if (r.subject) continue;
        r.edit()->drop(*this, undone);
        delete r.edit();
    }
}

}  // namespace db
