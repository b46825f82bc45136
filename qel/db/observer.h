// Who is told of changes, and the list of them that stands changes while it is walked.
#pragma once
#include "qel/utils/logger.h"
#include <vector>

namespace db {

class ChangeSet;
class Database;

class DatabaseObserver {
public:
    virtual ~DatabaseObserver() = default;
    // After a commit. `transient`: for display during a gesture or playback; the final commit follows.
    virtual void onDatabaseChanged(ChangeSet const&, bool /*transient*/) {}
    virtual void postDatabaseChanged(ChangeSet const&, bool /*transient*/) {}
    virtual wchar_t const* getObserverName() const { return L"DatabaseObserver"; }
};

// Observers are told in the order in which they were added. While they are told, an addition waits and a removal leaves
// a hole or waits too; both are applied when the outermost telling ends.
class ObserverManager {
public:
    enum RemoveMode { LeaveHole = 1, Wait = 2 };

    void setLogger(Qelutils::BasicLogger* sink) { sink_ = sink; }
    void add(DatabaseObserver* observer);
    void remove(DatabaseObserver* observer, int mode = LeaveHole);
    // Holds additions and removals back as long as it stands: two walks under one guard reach the same observers.
    class Telling {
    public:
        explicit Telling(ObserverManager& m) : manager_(m) { ++m.iterating_; }
        Telling(Telling const&) = delete;
        Telling& operator=(Telling const&) = delete;
        ~Telling() {
            if (--manager_.iterating_ == 0) manager_.applyPending();
        }

    private:
        ObserverManager& manager_;
    };
    template<class F> void tell(F const& each) {
        Telling const guard(*this);
        for (std::size_t i = 0; i < active_.size(); ++i)
            if (active_[i]) each(*active_[i]);
    }
    bool isIterating() const { return iterating_ > 0; }
    std::size_t count() const { return active_.size(); }

private:
    void applyPending();
    std::vector<DatabaseObserver*> active_, pendingAdditions_, pendingRemovals_;
    int iterating_ = 0;
    Qelutils::BasicLogger* sink_ = nullptr;
};

}  // namespace db
