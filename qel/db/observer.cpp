#include "qel/db/observer.h"
#include <algorithm>

namespace db {
namespace {

bool holds(std::vector<DatabaseObserver*> const& list, DatabaseObserver* o) {
    return std::find(list.begin(), list.end(), o) != list.end();
}

}  // namespace

void ObserverManager::add(DatabaseObserver* observer) {
    if (holds(pendingRemovals_, observer)) return;
    (iterating_ ? pendingAdditions_ : active_).push_back(observer);
}

void ObserverManager::remove(DatabaseObserver* observer, int mode) {
    if (holds(pendingAdditions_, observer)) return;
    auto const it = std::find(active_.begin(), active_.end(), observer);
    if (it == active_.end()) {
        if (sink_) sink_->Log(Qelutils::BasicLogger::Warning, L"Observer not found in ObserverManager::remove()");
    } else if (!iterating_)
        active_.erase(it);
    else if (mode == Wait)
        pendingRemovals_.push_back(observer);
    else
        *it = nullptr;
}

void ObserverManager::applyPending() {
    for (DatabaseObserver*& o : active_)
        if (holds(pendingRemovals_, o)) o = nullptr;
    active_.erase(std::remove(active_.begin(), active_.end(), nullptr), active_.end());
    active_.insert(active_.end(), pendingAdditions_.begin(), pendingAdditions_.end());
    pendingAdditions_.clear();
    pendingRemovals_.clear();
}

}  // namespace db
