#include "qel/db/loader_xml.h"
#include "qel/db/database.h"
#include "qel/db/saver_xml.h"
#include "qel/db/value_text.h"
#include "qel/db/xml_reader.h"
#include "qel/utils/text.h"

namespace db {
namespace {

std::wstring quoted(std::string_view utf8) { return L"\"" + Qelutils::fromUtf8(utf8) + L"\""; }

// Builds the document in a database of its own while the file is read.
class Builder : public XMLHandler {
public:
    explicit Builder(Database& target) : target_(target) {}

    void startElement(XMLReader& reader, XMLElement const& e) override {
        if (!capture_.empty()) return startCaptured(reader, e);
        if (reader.depth() == 1) return startDocument(reader, e);
        if (reader.depth() > 2)
            startContent(reader, e);
        else if (e.name() == "node")
            startNode(reader, e);
        else if (e.name() == "connection")
            startConnection(reader, e);
        else
            reader.fail(quoted(e.name()) + L" is not expected here");
    }

    void endElement(XMLReader& reader, std::string_view, std::string_view text) override {
        if (!capture_.empty()) return endCaptured(text);
        if (levels_.empty()) return finish(reader);
        Level const level = levels_.back();
        levels_.pop_back();
        if (level.isItem)
            addItem(*level.attribute, text);
        else if (level.attribute)
            endValue(reader, level, text);
    }

private:
    // An open element of a node, or the node. Its attribute is null of a connection.
    struct Level {
        Attribute* attribute = nullptr;
        bool isItem = false;      // "s" or "r": one of the values of the attribute
        bool mayBeEmpty = false;  // "e" or "d": without a text it has its initial value
    };
    struct Entry {
        Node* node = nullptr;
        int level = 0;
    };
    struct Relatives {
        Node* node;
        std::vector<int> ids;  // as in the file
    };
    struct Connection {
        int id = -1;
        std::wstring from, to;
    };

    void startDocument(XMLReader& reader, XMLElement const& e) {
        int format = 0;
        if (e.name() != "tavo" || !e.get("format", format))
            return reader.fail(L"This is not a document of this system");
        if (format > SaverXML::formatVersion || format < 1)
            return reader.fail(L"The document has the format " + std::to_wstring(format) +
                               L"; this program reads up to " + std::to_wstring(SaverXML::formatVersion));
        std::wstring name;
        if (e.get("name", name)) target_.setDatabaseName(name);
        if (e.get("ids", target_.preserved().endOfIDs)) target_.keepIDsBelow(target_.preserved().endOfIDs);
    }

    // ---- nodes ----

    void startNode(XMLReader& reader, XMLElement const& e) {
        int id = -1;
        std::wstring name;
        PreservedType type{{}, L"sg"};
        if (!e.get("id", id) || id < 0 || !e.get("type", type.type))
            return reader.fail(L"A node needs an id and a type");
        if (nodes_.count(id)) return reader.fail(L"The id " + std::to_wstring(id) + L" stands twice");
        e.get("space", type.nameSpace);
        e.get("name", name);
        Entry parent;
        if (e.has("parent") && !findParent(reader, e, name, parent)) return;
        NodeDef const* def = findType(type);
        if (!def) return reader.fail(L"The type \"" + type.type + L"\" is not known");
        Node* n = target_.createForLoading(*def, id, name, parent.node);
        if (!n || n->isNotAnObject()) return reader.fail(L"\"" + name + L"\" can't be made");
        if (def == target_.unknownNodeDef()) target_.preserved().types[n->getID()] = std::move(type);
        nodes_[id] = {n, parent.node ? parent.level + 1 : 1};
        addRelatives(reader, e, "parents", *n, furtherParents_);
        addRelatives(reader, e, "children", *n, children_);
        levels_.push_back({n});
    }

    bool findParent(XMLReader& reader, XMLElement const& e, std::wstring const& name, Entry& parent) const {
        int id = -1;
        auto const it = e.get("parent", id) ? nodes_.find(id) : nodes_.end();
        if (it == nodes_.end())
            reader.fail(L"The parent of \"" + name + L"\" does not stand before it");
        else if (!it->second.node->supportsChildren())
            reader.fail(L"The parent of \"" + name + L"\" takes no children");
        else if (it->second.level >= LoaderXML::mostLevels)
            reader.fail(L"The hierarchy is more than " + std::to_wstring(LoaderXML::mostLevels) + L" levels deep");
        else
            parent = it->second;
        return reader.ok();
    }

    NodeDef const* findType(PreservedType const& type) {
        if (type_ && type_->getClassID() == type.type && type_->getNamespace() == type.nameSpace) return type_;
        type_ = Registry::getInstance().getNodeDef(type.nameSpace, type.type);
        if (!type_ || type_->isAbstract()) type_ = target_.unknownNodeDef();
        return type_;
    }

    static void addRelatives(XMLReader& reader, XMLElement const& e, char const* name, Node& n,
                             std::vector<Relatives>& to) {
        std::string_view list;
        if (!e.get(name, list)) return;
        to.push_back({&n, {}});
        if (!parseXMLNumbers(list, to.back().ids))
            reader.fail(L"The " + Qelutils::fromUtf8(name) + L" of \"" + n.getNodeName() + L"\" are no ids");
    }

    // ---- what stands in a node ----

    void startContent(XMLReader& reader, XMLElement const& e) {
        Level const outer = levels_.empty() ? Level() : levels_.back();
        if (!outer.attribute || outer.isItem) return reader.fail(quoted(e.name()) + L" is not expected here");
        Attribute& a = *outer.attribute;
        bool const isItem = e.name() == "s"   ? holdsTexts(a.getAttributeType())
                            : e.name() == "r" ? holdsReferences(a.getAttributeType())
                                              : false;
        if (isItem) return levels_.push_back({&a, true});
        if (Attribute* inner = e.name() == "a" ? named(a, e) : nullptr) return startValue(*inner, false);
        if (Attribute* inner = e.name() == "e" ? addElement(a, e) : nullptr) return startValue(*inner, true);
        if (Attribute* inner = e.name() == "d" && a.isNode() ? addDynamic(reader, *a.asNode(), e) : nullptr)
            return startValue(*inner, true);
        // A value holds text or values, and could not be written with anything beside them.
        if (!a.isCompound() && !a.isAttributeArray()) reader.fail(quoted(e.name()) + L" is not expected here");
        if (reader.ok()) startCaptured(reader, e);
    }

    void startValue(Attribute& a, bool mayBeEmpty) {
        if (StringArrayAttribute* texts = a.asStringArray()) texts->raw().clear();
        references_.erase(&a);
        levels_.push_back({&a, false, mayBeEmpty});
    }

    static Attribute* named(Attribute const& outer, XMLElement const& e) {
        std::wstring name;
        CompositeAttribute const* c = outer.asComposite();
        Attribute* a = c && e.get("n", name) ? c->findAttribute(name) : nullptr;
        bool const isValue = a && !a->isCompound() && !a->isAttributeArray();
        return isValue && a->getDef().isSaved() && !(a->isString() && a->asString()->isNodeName()) ? a : nullptr;
    }

    static Attribute* addElement(Attribute& outer, XMLElement const& e) {
        std::wstring name;
        CompositeAttribute const* c = outer.asComposite();
        Attribute* a = !c ? &outer : e.get("n", name) ? c->findAttribute(name) : nullptr;
        if (!a || !a->isAttributeArray() || !a->getDef().isSaved()) return nullptr;
        int id = -1;
        e.get("id", id);
        return a->asAttributeArray()->appendForLoading(id);
    }

    // Null when it can't stand here: its kind is not known, or its name has become one of the type's own.
    static Attribute* addDynamic(XMLReader& reader, Node& n, XMLElement const& e) {
        std::wstring name, text;
        int type = 0, id = -1;
        double minimum = -1e308, maximum = 1e308;
        std::vector<double> initial;
        if (!e.get("n", name) || !e.get("type", type) || type < 1) {
            reader.fail(L"A custom attribute needs a name and a kind");
            return nullptr;
        }
        if (type > int(AttributeType::QuaternionArray)) return nullptr;
        e.get("minimum", minimum);
        e.get("maximum", maximum);
        e.get("id", id);
        std::string_view list;
        e.get("initial", text);
        if (e.get("initial", list)) parseXMLNumbers(list, initial);
        return n.addDynamicForLoading(AttributeType(type), name, initial, text, minimum, maximum, id);
    }

    void endValue(XMLReader& reader, Level const& level, std::string_view text) {
        Attribute& a = *level.attribute;
        AttributeType const type = a.getAttributeType();
        if (a.isCompound() || a.isAttributeArray() || holdsTexts(type)) return;
        if (type == AttributeType::Pointer) return addItem(a, text);
        if (holdsReferences(type)) return;
        if (text.empty() && level.mayBeEmpty && type != AttributeType::String) return;
        if (!readValue(a, text)) reader.fail(L"The value of \"" + a.getLocalPathName() + L"\" is not of its kind");
    }

    void addItem(Attribute& a, std::string_view text) {
        if (StringArrayAttribute* texts = a.asStringArray())
            texts->raw().push_back(decodeXMLText(text));
        else
            references_[&a].push_back(decodeXMLText(text));
    }

    // ---- what is not known ----

    void startCaptured(XMLReader& reader, XMLElement const& e) {
        PreservedElement kept{std::string(e.name()), {}, {}, {}};
        bool isWritable = XMLWriter::isName(e.name());
        for (std::size_t i = 0; i < e.attributeCount(); ++i) {
            kept.attributes.emplace_back(e.attribute(i).name, decodeXMLText(e.attribute(i).value));
            isWritable &= XMLWriter::isName(e.attribute(i).name);
        }
        if (!isWritable) return reader.fail(quoted(e.name()) + L" is not expected here");
        capture_.push_back(std::move(kept));
    }

    void endCaptured(std::string_view text) {
        PreservedElement kept = std::move(capture_.back());
        capture_.pop_back();
        if (kept.children.empty()) kept.text = decodeXMLText(text);
        auto& to = capture_.empty() ? target_.preserved().elements[levels_.back().attribute->getID()]
                                    : capture_.back().children;
        to.push_back(std::move(kept));
    }

    void startConnection(XMLReader& reader, XMLElement const& e) {
        Connection c;
        if (!e.get("id", c.id) || !e.get("from", c.from) || !e.get("to", c.to))
            return reader.fail(L"A connection needs an id and two ends");
        connections_.push_back(std::move(c));
        levels_.push_back({});
    }

    // ---- what needs the whole file ----

    void finish(XMLReader& reader) {
        addFurtherParents(reader);
        for (Relatives const& r : children_) target_.orderChildrenForLoading(*r.node, findNodes(r.ids));
        for (auto const& [attribute, texts] : references_) resolve(*attribute, texts);
        for (Connection const& c : connections_) connect(c);
    }

    void addFurtherParents(XMLReader& reader) {
        for (Relatives const& r : furtherParents_) {
            std::vector<Node*> const parents = findNodes(r.ids);
            if (!r.node->getParent() || parents.size() != r.ids.size() ||
                !target_.addParentsForLoading(*r.node, parents))
                return reader.fail(L"The parents of \"" + r.node->getNodeName() + L"\" can't be its parents");
        }
        Node const* n = furtherParents_.empty() ? nullptr : target_.findCycle();
        if (n) reader.fail(L"\"" + n->getNodeName() + L"\" is below itself");
    }

    std::vector<Node*> findNodes(std::vector<int> const& ids) const {
        std::vector<Node*> found;
        for (int id : ids)
            if (auto const it = nodes_.find(id); it != nodes_.end()) found.push_back(it->second.node);
        return found;
    }

    // "17" or "17.Local.Path", the id as in the file.
    Node* findNode(std::wstring const& reference) const {
        int id = -1;
        std::string digits;
        for (std::size_t i = 0; i < reference.size() && reference[i] != L'.' && i < 12; ++i)
            digits += reference[i] < 128 ? char(reference[i]) : '?';
        auto const it = parseXMLNumber(digits, id) ? nodes_.find(id) : nodes_.end();
        return it == nodes_.end() ? nullptr : it->second.node;
    }

    Attribute* find(std::wstring const& reference) const {
        Node* n = findNode(reference);
        std::size_t const dot = reference.find(L'.');
        return n && dot != std::wstring::npos ? n->findAttribute(reference.substr(dot + 1)) : n;
    }

    void resolve(Attribute& a, std::vector<std::wstring> const& texts) const {
        std::vector<AttributeHandle> targets;
        for (std::wstring const& t : texts) targets.emplace_back(find(t));
        if (PointerAttribute* p = a.asPointer())
            p->raw() = targets.empty() ? AttributeHandle() : targets[0];
        else if (PointerArrayAttribute* array = a.asPointerArray())
            array->raw() = std::move(targets);
        else if (NodeContainer* container = a.asNodeContainer())
            container->raw() = std::move(targets);
    }

    void connect(Connection const& c) {
        Attribute *from = find(c.from), *to = find(c.to);
        if (from && to && target_.loadConnection({c.id, from, to})) return;
        Node *source = findNode(c.from), *target = findNode(c.to);
        if (source && target)
            target_.preserved().connections.push_back({c.id, endOf(*source, c.from), endOf(*target, c.to)});
    }

    static PreservedConnection::End endOf(Node const& n, std::wstring const& reference) {
        std::size_t const dot = reference.find(L'.');
        return {n.getID(), dot == std::wstring::npos ? std::wstring() : reference.substr(dot + 1)};
    }

    Database& target_;
    NodeDef const* type_ = nullptr;         // of the node before
    std::unordered_map<int, Entry> nodes_;  // by the id in the file
    std::vector<Relatives> furtherParents_, children_;
    std::unordered_map<Attribute*, std::vector<std::wstring>> references_;
    std::vector<Connection> connections_;
    std::vector<Level> levels_;
    std::vector<PreservedElement> capture_;
};

}  // namespace

bool LoaderXML::load(Attribute& root) {
    Database* database = root.asDatabase();
    if (!database) {
        error_ = L"Only a whole document can be loaded";
        return false;
    }
    std::unique_ptr<Database> aside = database->makeEmpty();
    Builder builder(*aside);
    XMLReader reader(stream_, mostElements);
    if (!reader.read(builder)) {
        error_ = reader.error();
        return false;
    }
    database->adopt(*aside);
    return true;
}

}  // namespace db
