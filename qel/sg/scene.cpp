#include "qel/sg/scene.h"
#include "qel/utils/text.h"
#include <algorithm>
#include <set>

namespace sg {

Scene::Scene(std::wstring const& name) { setDatabaseName(name); }
Scene::~Scene() { destruct(); }

db::NodeDef const* Scene::unknownNodeDef() const { return &UnknownNode::Def; }

// The nodes that came bear the other scene's counts: ours must be ahead of both.
void Scene::onAdopted(db::Database& other) {
    auto const& o = static_cast<Scene const&>(other);
    structure_ = std::max(structure_, o.structure_) + 1;
    mark_ = std::max(mark_, o.mark_);
    forgetLog();
}

sg::Node* Scene::makeNode(std::wstring const& type, std::wstring const& name, std::wstring const& nameSpace) {
    db::NodeDef const* def = db::Registry::getInstance().getNodeDef(nameSpace, type);
    if (!def || def == &Connection::Def) return nullptr;
    return static_cast<sg::Node*>(createNode(*def, name));
}

sg::Node* Scene::findNode(std::wstring const& path, sg::Node const* below) const {
    if (!below) return static_cast<sg::Node*>(findNodeByPath(path));
    db::Node const* at = below;
    std::wstring_view rest = path;
    while (at && !rest.empty()) {
        std::size_t const bar = std::min(rest.find(L'|'), rest.size());
        at = bar + 1 == rest.size() ? nullptr : at->findChild(rest.substr(0, bar));  // something stands behind a bar
        rest.remove_prefix(std::min(bar + 1, rest.size()));
    }
    return at == below ? nullptr : static_cast<sg::Node*>(const_cast<db::Node*>(at));
}

namespace {

std::vector<std::wstring_view> split(std::wstring_view pattern) {
    std::vector<std::wstring_view> parts;
    for (std::size_t from = 0;;) {
        std::size_t const bar = pattern.find(L'|', from);
        parts.push_back(pattern.substr(from, bar - from));
        if (bar == std::wstring_view::npos) return parts;
        from = bar + 1;
    }
}

// Matches paths name by name while the hierarchy is walked. A state is a set of parts that the next name may match:
// one bit each, so a path costs its depth whatever the stars.
class PathMatcher {
public:
    explicit PathMatcher(std::wstring_view pattern) : parts_(split(pattern)) {}
    std::vector<bool> start() const {
        std::vector<bool> state(parts_.size() + 1);
        state[0] = true;
        return close(std::move(state));
    }
    std::vector<bool> step(std::vector<bool> const& state, std::wstring const& name) const {
        std::vector<bool> next(parts_.size() + 1);
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            if (!state[i]) continue;
            if (parts_[i] == L"**")
                next[i] = true;
            else if (Qelutils::matchesWildcard(name, parts_[i]))
                next[i + 1] = true;
        }
        return close(std::move(next));
    }
    bool accepts(std::vector<bool> const& state) const { return state.back(); }
    bool isDead(std::vector<bool> const& state) const {
        return std::find(state.begin(), state.end(), true) == state.end();
    }

private:
    std::vector<bool> close(std::vector<bool> state) const {  // "**" may stand for no level at all
        for (std::size_t i = 0; i < parts_.size(); ++i)
            if (state[i] && parts_[i] == L"**") state[i + 1] = true;
        return state;
    }
    std::vector<std::wstring_view> parts_;
};

// A node below several parents is reached on several ways: it is given once, and looked below once for each state.
void findByPath(Scene const& scene, std::wstring const& pattern, std::vector<Node*>& out) {
    PathMatcher const matcher(pattern);
    struct Level {
        db::Node const* parent;
        std::size_t next;
        std::vector<bool> state;  // of the parent
    };
    std::set<std::pair<db::Node const*, std::vector<bool>>> seen;
    std::set<db::Node const*> given;
    std::vector<Level> levels{{&scene, 0, matcher.start()}};
    while (!levels.empty()) {
        db::Node* n = levels.back().parent->getChild(levels.back().next++);
        if (!n) {
            levels.pop_back();
            continue;
        }
        std::vector<bool> state = matcher.step(levels.back().state, n->getNodeName());
        bool const shared = n->getParentCount() > 1;
        if (shared && !seen.emplace(n, state).second) continue;
        if (matcher.accepts(state) && (!shared || given.insert(n).second)) out.push_back(static_cast<Node*>(n));
        if (!matcher.isDead(state)) levels.push_back({n, 0, std::move(state)});
    }
}

}  // namespace

void Scene::findNodes(std::wstring const& pattern, std::vector<sg::Node*>& out) const {
    if (pattern.find(L'|') != std::wstring::npos) {
        if (pattern.find_first_of(L"*?") != std::wstring::npos) return findByPath(*this, pattern, out);
        if (sg::Node* n = findNode(pattern)) out.push_back(n);
        return;
    }
    std::vector<db::Node*> all;
    getDescendents(all);
    for (db::Node* n : all)
        if (Qelutils::matchesWildcard(n->getNodeName(), pattern)) out.push_back(static_cast<sg::Node*>(n));
}

db::Attribute* Scene::findAttributeByPath(std::wstring const& path) const {
    // Names of objects may hold dots, so the split between object and attribute is tried at each, the first first.
    for (std::size_t dot = path.find(L'.', path.rfind(L'|') == std::wstring::npos ? 0 : path.rfind(L'|'));
         dot != std::wstring::npos; dot = path.find(L'.', dot + 1))
        if (sg::Node const* n = findNode(path.substr(0, dot)))
            if (db::Attribute* a = n->findAttribute(path.substr(dot + 1))) return a;
    return nullptr;
}

void Scene::listAllNodes(std::vector<sg::Node*>& out) const {
    std::vector<db::Node*> nodes;
    listNodes(nodes);
    for (db::Node* n : nodes) out.push_back(static_cast<sg::Node*>(n));
}

void Scene::getPathNames(db::Attribute const& a, std::vector<std::wstring>& out) const {
    struct Way {
        db::Node const* top;
        std::wstring below;
    };
    std::wstring const local = a.getLocalPathName();
    std::vector<Way> ways{{&a.node(), local.empty() ? local : L"." + local}};
    while (!ways.empty()) {
        Way way = std::move(ways.back());
        ways.pop_back();
        db::Node const* n = way.top;
        std::size_t parents = n->getParentCount();
        std::vector<std::wstring const*> names{&n->getNodeName()};
        for (; parents == 1; parents = n->getParentCount()) names.push_back(&(n = n->getParent())->getNodeName());
        std::wstring path;
        for (std::size_t i = names.size(); i-- > 0;) path += *names[i] + (i > 0 ? L"|" : L"");
        path += way.below;
        if (parents == 0) out.push_back(path);
        for (std::size_t i = parents; i-- > 0;) ways.push_back({n->getParent(i), L"|" + path});
    }
}

}  // namespace sg
