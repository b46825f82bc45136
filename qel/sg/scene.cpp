#include "qel/sg/scene.h"
#include "qel/utils/text.h"
#include <functional>

namespace sg {

Scene::Scene(std::wstring const& name) { setDatabaseName(name); }
Scene::~Scene() { destruct(); }

db::NodeDef const* Scene::unknownNodeDef() const { return &UnknownNode::Def; }

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
        at = at->findChild(rest.substr(0, bar));
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

void findByPath(Scene const& scene, std::wstring const& pattern, std::vector<Node*>& out) {
    PathMatcher const matcher(pattern);
    struct Level {
        db::Node* next;
        std::vector<bool> state;  // of the parent
    };
    std::vector<Level> levels{{scene.db::Node::getChild(0), matcher.start()}};
    while (!levels.empty()) {
        db::Node* n = levels.back().next;
        if (!n) {
            levels.pop_back();
            continue;
        }
        levels.back().next = n->nextSibling();
        std::vector<bool> state = matcher.step(levels.back().state, n->getNodeName());
        if (matcher.accepts(state)) out.push_back(static_cast<Node*>(n));
        if (!matcher.isDead(state)) levels.push_back({n->getChild(0), std::move(state)});
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
    std::vector<std::wstring> paths;
    std::function<void(db::Node const*, std::wstring const&)> climb = [&](db::Node const* n, std::wstring const& tail) {
        std::wstring const path = tail.empty() ? n->getNodeName() : n->getNodeName() + L"|" + tail;
        if (n->getParentCount() == 0) paths.push_back(path);
        for (std::size_t i = 0; i < n->getParentCount(); ++i) climb(n->getParent(i), path);
    };
    db::Node const& n = a.node();
    bool severalWays = false;
    for (db::Node const* up = &n; up && !severalWays; up = up->getParent()) severalWays = up->getParentCount() > 1;
    if (severalWays)
        climb(&n, {});
    else
        paths.push_back(n.getPath());
    std::wstring const local = a.getLocalPathName();
    for (std::wstring& p : paths) out.push_back(local.empty() ? p : p + L"." + local);
}

}  // namespace sg
