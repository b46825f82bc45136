#include "qel/db/loader_xml.h"
#include "qel/db/database.h"
#include "qel/db/saver_xml.h"
#include "qel/db/value_text.h"
#include "qel/db/xml_reader.h"
#include "qel/utils/text.h"

namespace db {
namespace {

// Builds the document in a database of its own while the file is read.
class Builder : public XMLHandler {
public:
    explicit Builder(Database& target) : target_(target) {}

    void startElement(XMLReader& reader, XMLElement const& e) override {
        ++depth_;
        if (!capture_.empty()) return startCaptured(e);
        if (depth_ == 1)
            startDocument(reader, e);
        else if (depth_ == 2 && e.name() == "node")
            startNode(reader, e);
        else if (depth_ == 2 && e.name() == "connection")
            startConnection(reader, e);
        else if (depth_ == 2)
            reader.fail(L"\"" + Qelutils::fromUtf8(e.name()) + L"\" is not expected here");
        else
            startContent(reader, e);
    }

    void endElement(XMLReader& reader, std::string_view, std::string_view text) override {
        --depth_;
        if (!capture_.empty()) return endCaptured(text);
        if (depth_ <= 1 || levels_.empty()) return;
        Level const level = levels_.back();
        levels_.pop_back();
        if (level.list)
            addToList(*level.list, text);
        else if (level.attribute)
            endValue(reader, *level.attribute, text);
    }

    // What needs the whole file: references and connections.
    void finish() {
        for (auto const& [handle, texts] : references_) resolve(*handle, texts);
        for (PreservedConnection const& c : connections_) {
            Attribute *from = find(c.from), *to = find(c.to);
            if (!from || !to || !target_.loadConnection({c.id, from, to})) target_.preserved().connections.push_back(c);
        }
    }

private:
    // An open element below a node.
    struct Level {
        Attribute* attribute = nullptr;  // whose value it holds; a node or compound for what only encloses
        Attribute* list = nullptr;       // of "s" and "r": the attribute that gets the text
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
    }

    // ---- nodes ----

    void startNode(XMLReader& reader, XMLElement const& e) {
        int id = -1, parentID = -1;
        std::string_view type, space = "sg";
        std::wstring name;
        if (!e.get("id", id) || id < 0 || !e.get("type", type)) return reader.fail(L"A node needs an id and a type");
        if (nodes_.count(id)) return reader.fail(L"The id " + std::to_wstring(id) + L" stands twice");
        e.get("space", space);
        e.get("name", name);
        Entry parent;
        if (e.has("parent")) {
            auto const it = e.get("parent", parentID) ? nodes_.find(parentID) : nodes_.end();
            if (it == nodes_.end()) return reader.fail(L"The parent of \"" + name + L"\" does not stand before it");
            parent = it->second;
            if (parent.level + 1 >= LoaderXML::mostLevels)
                return reader.fail(L"The hierarchy is more than " + std::to_wstring(LoaderXML::mostLevels) +
                                   L" levels deep");
        }
        NodeDef const* def = Registry::getInstance().getNodeDef(Qelutils::fromUtf8(space), Qelutils::fromUtf8(type));
        bool const known = def && !def->isAbstract();
        if (!known) def = target_.unknownNodeDef();
        if (!def) return reader.fail(L"The type \"" + Qelutils::fromUtf8(type) + L"\" is not known");
        Node* n = makeNode(*def, id, name, parent.node);
        if (!n) return reader.fail(L"\"" + name + L"\" can't be made");
        if (!known || def == target_.unknownNodeDef())
            target_.preserved().nodes[n->getID()] = {std::string(type), std::string(space), {}};
        nodes_[id] = {n, parent.node ? parent.level + 1 : 0};
        addFurtherParents(reader, e, *n);
        levels_.push_back({n, nullptr});
    }

    // With the id it had if that is free; a type that has grown may have taken it.
    Node* makeNode(NodeDef const& def, int id, std::wstring const& name, Node* parent) {
        if (Node* n = target_.createForLoading(def, id, name, parent)) return n;
        return target_.createForLoading(def, target_.nextFreeID(), name, parent);
    }

    void addFurtherParents(XMLReader& reader, XMLElement const& e, Node& n) {
        std::string_view list;
        std::vector<int> ids;
        if (!e.get("parents", list)) return;
        if (!parseXMLNumbers(list, ids))
            return reader.fail(L"The further parents of \"" + n.getNodeName() + L"\" are no ids");
        for (int id : ids) furtherParents_.push_back({&n, id});
    }

    // ---- what stands in a node ----

    void startContent(XMLReader& reader, XMLElement const& e) {
        if (levels_.empty()) return reader.fail(L"\"" + Qelutils::fromUtf8(e.name()) + L"\" is not expected here");
        Level const& outer = levels_.back();
        if (outer.attribute && (e.name() == "s" || e.name() == "r"))
            return levels_.push_back({nullptr, outer.attribute});
        Attribute* a = nullptr;
        if (outer.attribute && e.name() == "a")
            a = named(*outer.attribute, e);
        else if (outer.attribute && e.name() == "e")
            a = addElement(*outer.attribute, e);
        else if (outer.attribute && outer.attribute->isNode() && e.name() == "d")
            a = addDynamic(reader, *outer.attribute->asNode(), e);
        if (!a) return reader.ok() ? startCaptured(e) : void();
        levels_.push_back({a, nullptr});
    }

    static Attribute* named(Attribute const& outer, XMLElement const& e) {
        std::wstring name;
        CompositeAttribute const* c = outer.asComposite();
        Attribute* a = c && e.get("n", name) ? c->findAttribute(name) : nullptr;
        return a && a->getDef().isSaved() && !a->isCompound() && !a->isAttributeArray() ? a : nullptr;
    }

    Attribute* addElement(Attribute const& outer, XMLElement const& e) {
        std::wstring name;
        CompositeAttribute const* c = outer.asComposite();
        Attribute* a = c && e.get("n", name) ? c->findAttribute(name) : const_cast<Attribute*>(&outer);
        AttributeArray* array = a ? a->asAttributeArray() : nullptr;
        if (!array) return nullptr;
        int id = -1;
        bool const hasID = e.get("id", id);
        return array->appendForLoading(hasID ? id : -1);
    }

    Attribute* addDynamic(XMLReader& reader, Node& n, XMLElement const& e) {
        std::wstring name, text;
        int type = 0, id = -1;
        double minimum = -1e308, maximum = 1e308;
        std::vector<double> initial;
        if (!e.get("n", name) || !e.get("type", type) || type < 1 || type > int(AttributeType::QuaternionArray)) {
            reader.fail(L"A custom attribute needs a name and a kind");
            return nullptr;
        }
        e.get("minimum", minimum);
        e.get("maximum", maximum);
        std::string_view list;
        bool const isText =
            AttributeType(type) == AttributeType::String || AttributeType(type) == AttributeType::StringArray;
        if (isText)
            e.get("initial", text);
        else if (e.get("initial", list) && (!parseXMLNumbers(list, initial) || initial.size() != 4))
            initial.clear();
        e.get("id", id);
        Attribute* a = n.addDynamicForLoading(AttributeType(type), name, initial.empty() ? nullptr : initial.data(),
                                              text, minimum, maximum, id);
        if (!a) reader.fail(L"The custom attribute \"" + name + L"\" can't be made: its name or kind is wrong");
        return a;
    }

    void endValue(XMLReader& reader, Attribute& a, std::string_view text) {
        AttributeType const type = a.getAttributeType();
        if (a.isNode() || a.isCompound() || a.isAttributeArray() || type == AttributeType::StringArray ||
            type == AttributeType::PointerArray || type == AttributeType::NodeContainer)
            return;
        if (type == AttributeType::Pointer) return addToList(a, text);
        if (text.empty() && a.has(Attribute::outside) && type != AttributeType::String) return;  // the default
        if (!readValue(a, text)) reader.fail(L"The value of \"" + a.getLocalPathName() + L"\" is not of its kind");
    }

    void addToList(Attribute& a, std::string_view text) {
        if (StringArrayAttribute* texts = a.asStringArray())
            texts->raw().push_back(decodeXMLText(text));
        else
            references_[&a].emplace_back(text);
    }

    // ---- what is not known ----

    void startCaptured(XMLElement const& e) {
        PreservedElement kept{std::string(e.name()), {}, {}, {}};
        for (std::size_t i = 0; i < e.attributeCount(); ++i)
            kept.attributes.emplace_back(e.attribute(i).name, e.attribute(i).value);
        capture_.push_back(std::move(kept));
    }

    void endCaptured(std::string_view text) {
        PreservedElement kept = std::move(capture_.back());
        capture_.pop_back();
        kept.text = kept.children.empty() ? std::string(text) : std::string();
        if (!capture_.empty())
            capture_.back().children.push_back(std::move(kept));
        else if (!levels_.empty())
            target_.preserved().nodes[levels_[0].attribute->getID()].elements.push_back(std::move(kept));
    }

    // ---- references and connections ----

    void startConnection(XMLReader& reader, XMLElement const& e) {
        PreservedConnection c{-1, {}, {}};
        std::string_view from, to;
        if (!e.get("id", c.id) || !e.get("from", from) || !e.get("to", to))
            return reader.fail(L"A connection needs an id and two ends");
        c.from = from;
        c.to = to;
        connections_.push_back(std::move(c));
        levels_.push_back({nullptr, nullptr});
    }

    Attribute* find(std::string const& reference) const {
        std::size_t const dot = std::min(reference.find('.'), reference.size());
        int id = -1;
        if (!parseXMLNumber(std::string_view(reference).substr(0, dot), id)) return nullptr;
        auto const it = nodes_.find(id);
        if (it == nodes_.end()) return nullptr;
        return dot == reference.size()
                   ? it->second.node
                   : it->second.node->findAttribute(decodeXMLText(std::string_view(reference).substr(dot + 1)));
    }

    void resolve(Attribute& a, std::vector<std::string> const& texts) const {
        if (PointerAttribute* p = a.asPointer())
            p->raw() = AttributeHandle(texts.empty() ? nullptr : find(texts[0]));
        else if (PointerArrayAttribute* array = a.asPointerArray())
            for (std::string const& t : texts) array->raw().push_back(AttributeHandle(find(t)));
        else if (NodeContainer* container = a.asNodeContainer())
            for (std::string const& t : texts) container->raw().push_back(AttributeHandle(find(t)));
    }

public:
    void addFurtherParents() {
        for (auto const& [child, id] : furtherParents_)
            if (auto const it = nodes_.find(id); it != nodes_.end())
                target_.addParentForLoading(*child, *it->second.node);
    }

private:
    struct Entry {
        Node* node = nullptr;
        int level = 0;
    };
    Database& target_;
    std::unordered_map<int, Entry> nodes_;  // by the id in the file
    std::vector<std::pair<Node*, int>> furtherParents_;
    std::unordered_map<Attribute*, std::vector<std::string>> references_;
    std::vector<PreservedConnection> connections_;
    std::vector<Level> levels_;
    std::vector<PreservedElement> capture_;
    int depth_ = 0;
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
    XMLReader reader(stream_);
    if (!reader.read(builder)) {
        error_ = reader.error();
        return false;
    }
    builder.addFurtherParents();
    builder.finish();
    database->adopt(*aside);
    return true;
}

}  // namespace db
