#include "qel/db/saver_xml.h"
#include "qel/db/database.h"
#include "qel/db/loader_xml.h"
#include "qel/db/value_text.h"
#include "qel/utils/text.h"
#include <unordered_set>

namespace db {
namespace {

// The names of the compounds around an attribute, up to the node or element that is written.
struct Path {
    Path const* outer;
    wchar_t const* name;
    std::wstring text() const { return outer ? outer->text() + L"." + name : name; }
};

// The row of a dynamic attribute, before it was given anything to start from.
bool hasPlainInitial(AttributeDef const& def) {
    bool const isRotation = def.type == AttributeType::Quaternion || def.type == AttributeType::QuaternionArray;
    double const plain[4] = {0, 0, 0, isRotation ? 1.0 : 0.0};
    return std::equal(plain, plain + 4, def.initial);
}

class Document {
public:
    Document(Database const& database, OutputStream& stream) :
        database_(database), preserved_(database.preserved()), out_(stream) {}

    bool write() {
        out_.startElement("tavo");
        out_.attribute("format", SaverXML::formatVersion);
        out_.attribute("name", database_.getDatabaseName());
        out_.attribute("ids", std::max(database_.endOfIDs(), preserved_.endOfIDs));
        std::vector<Node*> nodes;
        database_.listByPrimaryParent(nodes);
        findMixed(nodes);
        for (Node const* n : nodes)
            if (isInReach(*n)) writeNode(*n);
        writeConnections();
        out_.endElement();
        return error_.empty() && out_.finish();
    }
    std::wstring const& error() const { return error_.empty() ? out_.error() : error_; }

private:
    // Parents of nodes that have several: the order of their children does not follow from that of the file.
    void findMixed(std::vector<Node*> const& nodes) {
        std::vector<Node*> parents;
        for (Node const* n : nodes) {
            parents.clear();
            n->getParents(parents);
            if (parents.size() > 1) mixed_.insert(parents.begin(), parents.end());
        }
    }

    // What can't be read again is not written.
    bool isInReach(Node const& n) {
        while (!above_.empty() && above_.back() != n.getParent()) above_.pop_back();
        above_.push_back(&n);
        if (int(above_.size()) > LoaderXML::mostLevels)
            error_ = L"The hierarchy is more than " + std::to_wstring(LoaderXML::mostLevels) + L" levels deep";
        return error_.empty();
    }

    void writeNode(Node const& n) {
        auto const foreign = preserved_.types.find(n.getID());
        out_.startElement("node");
        out_.attribute("id", n.getID());
        if (foreign == preserved_.types.end())
            writeType(n.getClassID(), n.getNodeDef().getNamespace());
        else
            writeType(foreign->second.type, foreign->second.nameSpace);
        out_.attribute("name", n.getNodeName());
        writePlace(n);
        writeRows(n);
        std::vector<Attribute*> dynamics;
        n.getDynamicAttributes(dynamics);
        for (Attribute const* d : dynamics) writeDynamic(*d);
        writePreserved(n.getID());
        out_.endElement();
    }

    void writeType(std::wstring const& type, std::wstring const& space) {
        out_.attribute("type", type);
        if (space != L"sg") out_.attribute("space", space);
    }

    void writePlace(Node const& n) {
        std::vector<Node*> related;
        n.getParents(related);
        if (!related.empty()) out_.attribute("parent", related[0]->getID());
        if (related.size() > 1) writeIDs("parents", {related.begin() + 1, related.end()});
        if (!mixed_.count(&n)) return;
        related.clear();
        for (std::size_t i = 0; i < n.getChildCount(); ++i) related.push_back(n.getChild(i));
        writeIDs("children", related);
    }

    void writeIDs(char const* name, std::vector<Node*> const& nodes) {
        std::vector<int> ids;
        for (Node const* n : nodes) ids.push_back(n->getID());
        out_.attribute(name, ids);
    }

    // ---- attributes ----

    static bool isWorthWriting(Attribute const& a) { return !a.has(Attribute::live) && !isInitialValue(a); }

    void writeRows(Node const& n) {
        Layout const& layout = n.getNodeDef().layout();
        for (int i = 1; i < layout.topLevelCount; ++i)
            writeAttribute(n.at<Attribute>(i), *layout.rows[std::size_t(i)].def, nullptr);
    }

    void writeAttribute(Attribute const& a, AttributeDef const& def, Path const* outer) {
        if (!def.isSaved()) return;
        Path const path{outer, def.name};
        if (CompositeAttribute const* c = a.asComposite())
            writeChildren(*c, &path);
        else if (AttributeArray const* array = a.asAttributeArray())
            writeElements(*array, &path);
        else if (isWorthWriting(a)) {
            out_.startElement("a");
            writeName(&path);
            writeValue(out_, a);
            out_.endElement();
        }
    }

    void writeName(Path const* path) {
        if (path && !path->outer)
            out_.attribute("n", path->name);
        else if (path)
            out_.attribute("n", path->text());
    }

    void writeChildren(CompositeAttribute const& c, Path const* outer) {
        for (std::size_t i = 0; i < c.getAttributeCount(); ++i) {
            Attribute const& child = *c.getAttribute(i);
            writeAttribute(child, child.getDef(), outer);
        }
    }

    void writeElements(AttributeArray const& array, Path const* path) {
        for (std::size_t i = 0; i < array.size(); ++i) writeElement(*array.getElement(i), path);
    }

    // A text is written even if it is that of a new element, since an empty one could not be told from it.
    void writeElement(Attribute const& element, Path const* path) {
        out_.startElement("e");
        writeName(path);
        out_.attribute("id", element.getID());
        if (CompositeAttribute const* c = element.asComposite())
            writeChildren(*c, nullptr);
        else if (AttributeArray const* array = element.asAttributeArray())
            writeElements(*array, nullptr);
        else if (isWorthWriting(element) || (element.isString() && !element.has(Attribute::live)))
            writeValue(out_, element);
        writePreserved(element.getID());
        out_.endElement();
    }

    void writeDynamic(Attribute const& d) {
        AttributeDef const& def = d.getDef();
        out_.startElement("d");
        out_.attribute("n", def.name);
        out_.attribute("type", int(def.type));
        out_.attribute("id", d.getID());
        if (def.minimum > -1e308) out_.attribute("minimum", def.minimum);
        if (def.maximum < 1e308) out_.attribute("maximum", def.maximum);
        writeInitial(def);
        if (!d.has(Attribute::live)) writeValue(out_, d);
        out_.endElement();
    }

    void writeInitial(AttributeDef const& def) {
        bool const isText = def.type == AttributeType::String || def.type == AttributeType::StringArray;
        bool const isMatrix = def.type == AttributeType::Matrix || def.type == AttributeType::MatrixArray;
        if (isText && def.initialText[0])
            out_.attribute("initial", def.initialText);
        else if (isMatrix && *def.initialMatrix != Qelp::Matrix34())
            out_.attribute("initial", std::span<float const>(def.initialMatrix->m[0], 16));
        else if (!isText && !isMatrix && !hasPlainInitial(def))
            out_.attribute("initial", std::span<double const>(def.initial, 4));
    }

    // ---- what is not known ----

    void writePreserved(int id) {
        auto const kept = preserved_.elements.find(id);
        if (kept == preserved_.elements.end()) return;
        for (PreservedElement const& e : kept->second) writePreserved(e);
    }

    void writePreserved(PreservedElement const& e) {
        out_.startElement(e.name);
        for (auto const& [name, value] : e.attributes) out_.attribute(name, value);
        if (e.children.empty() && !e.text.empty()) out_.text(e.text);
        for (PreservedElement const& child : e.children) writePreserved(child);
        out_.endElement();
    }

    // ---- connections ----

    void writeConnection(int id, std::wstring const& from, std::wstring const& to) {
        out_.startElement("connection");
        out_.attribute("id", id);
        out_.attribute("from", from);
        out_.attribute("to", to);
        out_.endElement();
    }

    void writeConnections() {
        std::vector<Database::ConnectionRecord> connections;
        database_.listConnections(connections);
        for (auto const& c : connections) {
            std::wstring const from = referenceTo(c.from, database_), to = referenceTo(c.to, database_);
            if (!from.empty() && !to.empty()) writeConnection(c.id, from, to);
        }
        auto const text = [](auto const& end) { return std::to_wstring(end.node) + L"." + end.attribute; };
        for (PreservedConnection const& c : preserved_.connections)
            if (database_.lookupNode(c.from.node) && database_.lookupNode(c.to.node))
                writeConnection(c.id, text(c.from), text(c.to));
    }

    Database const& database_;
    Preserved const& preserved_;
    XMLWriter out_;
    std::wstring error_;
    std::vector<Node const*> above_;
    std::unordered_set<Node const*> mixed_;
};

}  // namespace

bool SaverXML::save(Attribute& root) {
    Database* database = root.asDatabase();
    if (!database) {
        error_ = L"Only a whole document can be saved";
        return false;
    }
    Document document(*database, stream_);
    bool const written = document.write() && stream_.commit();
    if (!written) error_ = stream_.ok() ? document.error() : stream_.error();
    return written;
}

}  // namespace db
