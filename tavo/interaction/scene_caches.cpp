// What a scene answers about its objects, from sets that are made anew when a group or the selection changes: the
// renderer asks for each node of each frame.
#include "tavo/interaction/scene_objects.h"
#include "tavo/objects/database_change.h"
#include <utility>

namespace Tavo {
namespace {

// What a group and all above it allow; the root folder itself has no say.
struct GroupState {
    bool visible = true, editable = true, selectable = true;
};

// Calls visit(group, state) for each plain group below `root`, in order. References may form a circle in a broken file:
// each group is entered once. Folders may lie in folders to any depth: what waits is kept in a list.
template<class Visit> void forEachPlainGroup(XObjectGroup const& root, Visit const& visit) {
    std::vector<std::pair<XObjectGroup, GroupState>> waiting;  // with the state of the folder; the next one last
    auto const addChildren = [&waiting](XObjectGroup const& folder, GroupState const& state) {
        Qelutils::Vector<XObject> children;
        folder.ChildGroupReferenceArray().ObjectRefs(children);
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            waiting.emplace_back(XObjectGroup(*child), state);
    };
    XScene::ObjectIDs entered = {root.ObjectID()};
    for (addChildren(root, GroupState()); !waiting.empty();) {
        auto const [group, above] = waiting.back();
        waiting.pop_back();
        if (!group.IsValid() || group.IsSeparator() || !entered.insert(group.ObjectID()).second) continue;
        GroupState const state = {above.visible && group.IsVisible().Boolean(),
                                  above.editable && group.IsEditable().Boolean(),
                                  above.selectable && group.IsSelectable().Boolean()};
        if (group.IsFolder())
            addChildren(group, state);
        else
            visit(group, state);
    }
}

void addMembers(XObjectGroup const& group, XScene::ObjectIDs& set) {
    Qelutils::Vector<XObject> members;
    group.ObjectReferenceArray().ObjectRefs(members);
    for (XObject const& member : members)
        if (member.IsValid()) set.insert(member.ObjectID());
}

bool hasMember(XObjectGroup const& group, XObject const& object) {
    Qelutils::Vector<XObject> members;
    group.ObjectReferenceArray().ObjectRefs(members);
    return std::find(members.begin(), members.end(), object) != members.end();
}

// What is in the set already brought all below it along, so that nested selections cost their union.
void addDescendants(db::Node const& top, XScene::ObjectIDs& set) {
    std::vector<db::Node const*> waiting = {&top};
    while (!waiting.empty()) {
        db::Node const& node = *waiting.back();
        waiting.pop_back();
        node.forEachChild([&](db::Node const& child) {
            if (set.insert(child.getID()).second) waiting.push_back(&child);
        });
    }
}

}  // namespace

XScene::ObjectIDs const& XScene::ObjectSet(int groupMode) const {
    static ObjectIDs const none;
    auto const& sets = objects().groupSets;
    return groupMode >= 0 && groupMode < int(sets.size()) ? sets[std::size_t(groupMode)] : none;
}

// ---- queries ----

bool XScene::queryIsVisible(XObject const& object) const {
    return !ObjectSet(NotVisibleGroup).contains(object.ObjectID());
}

bool XScene::queryIsSelectable(XObject const& object) const {
    return !ObjectSet(NotSelectableGroup).contains(object.ObjectID());
}

// Time, units and views stay editable in the read-only mode.
bool XScene::queryIsEditable(XObject const& object) const {
    if (_mode == ReadOnlyMode && object != _sceneSettings && object != objects().viewportSettings) return false;
    return !ObjectSet(NotEditableGroup).contains(object.ObjectID());
}

bool XScene::queryIsSelected(XObject const& object) const { return objects().selection.IsSelected(object); }

bool XScene::queryIsCopyable(XObject const&) const { return true; }

// The object's controller would know; no type has one.
bool XScene::querySupportsEditMode(XObject const&, int) const { return false; }

void XScene::queryDisplayGroup(XObject const& object, XDisplayGroup& out) const {
    out = XDisplayGroup::Undefined;
    forEachPlainGroup(objects().displayGroups, [&](XObjectGroup const& group, GroupState const&) {
        if (!out.IsValid() && hasMember(group, object)) out = XDisplayGroup(group);
    });
}

void XScene::querySelectionGroups(XObject const& object, Qelutils::Vector<XSelectionGroup>& out) const {
    out.clear();
    forEachPlainGroup(objects().selectionGroups, [&](XObjectGroup const& group, GroupState const&) {
        if (hasMember(group, object)) out.push_back(XSelectionGroup(group));
    });
}

XDisplayGroup XSceneObject::DisplayGroup() const {
    XDisplayGroup group;
    Scene().queryDisplayGroup(*this, group);
    return group;
}

Qelutils::Vector<XSelectionGroup>& XSceneObject::SelectionGroups(Qelutils::Vector<XSelectionGroup>& out) const {
    Scene().querySelectionGroups(*this, out);
    return out;
}

// ---- the sets ----

void XScene::clearSelectionCache() { objects().selectionCache = {}; }

// Made when first asked for: many selections come and go between two frames.
void XScene::loadSelectionCache() { objects().selectionCache.isDue = true; }

void XScene::reloadSelectionCache() {
    clearSelectionCache();
    loadSelectionCache();
}

void XScene::updateSelectionCache(XSceneChange const& change, bool) {
    if (change.IsSelectionChange()) reloadSelectionCache();
}

XSelectionCache const& XScene::selectionCache() const {
    XSelectionCache& cache = objects().selectionCache;
    if (!std::exchange(cache.isDue, false)) return cache;
    Qelutils::Vector<XObject> selected;
    for (XObject const& object : Selection().Objects(selected)) {
        if (!object.IsValid()) continue;
        cache.selected.insert(object.ObjectID());
        if (!cache.descendants.contains(object.ObjectID())) addDescendants(*object.getNode(), cache.descendants);
    }
    return cache;
}

void XScene::clearGroupCache() {
    for (ObjectIDs& set : objects().groupSets) set.clear();
}

void XScene::reloadGroupCache() {
    clearGroupCache();
    auto& sets = objects().groupSets;
    forEachPlainGroup(objects().displayGroups, [&](XObjectGroup const& group, GroupState const& state) {
        if (!state.visible) addMembers(group, sets[NotVisibleGroup]);
        if (!state.editable) addMembers(group, sets[NotEditableGroup]);
        if (!state.selectable) addMembers(group, sets[NotSelectableGroup]);
    });
    auto const hide = [&](XObjectGroup const& group, GroupState const& state) {
        if (!state.visible) addMembers(group, sets[NotVisibleGroup]);
    };
    forEachPlainGroup(objects().selectionGroups, hide);
    forEachPlainGroup(objects().collisionGroups, hide);
    CommitTransient();
    Redraw();
}

void XScene::updateGroupCache(XSceneChange const& change, bool) {
    if (change.IsTypeChanged(&XDisplayGroup::Definition()) || change.IsTypeChanged(&XSelectionGroup::Definition()) ||
        change.IsTypeChanged(&XCollisionGroup::Definition()))
        reloadGroupCache();
}

void XScene::updateVisibilityCache(XSceneChange const& change) {
    if (!change.IsTypeChanged(&XViewportSettings::Definition())) return;
    clearVisibilityCache();
    loadVisibilityCache();
}

// Only views and the renderer need what follows; headless there is nothing to keep.
void XScene::clearVisibilityCache() {}
void XScene::loadVisibilityCache() {}
void XScene::updateObjectColourCache(XSceneChange const&, bool) {}
void XScene::updateRenderSettings() {}

}  // namespace Tavo
