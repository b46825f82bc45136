#include "qel/db/saver_xml.h"
#include "qel/db/database.h"
#include "qel/db/value_text.h"
#include "qel/utils/text.h"

namespace db {
namespace {

class Document {
public:
    Document(Database const& database, OutputStream& stream) : database_(database), out_(stream) {}

    bool write() {
        out_.startElement("tavo");
        out_.attribute("format", SaverXML::formatVersion);
        out_.attribute("name", database_.getDatabaseName());
        std::vector<Node*> nodes;
        database_.getDescendents(nodes);
        for (Node const* n : nodes) writeNode(*n);
        writeConnections();
        out_.endElement();
        return out_.finish();
    }
    std::wstring const& error() const { return out_.error(); }

private:
    void writeNode(Node const& n) {
        auto const kept = database_.preserved().nodes.find(n.getID());
        PreservedNode const* preserved = kept == database_.preserved().nodes.end() ? nullptr : &kept->second;
        bool const foreign = preserved && !preserved->type.empty();
        out_.startElement("node");
        out_.attribute("id", n.getID());
        out_.attribute("type", foreign ? preserved->type : Qelutils::toUtf8(n.getClassID()));
        std::string const space = foreign ? preserved->nameSpace : Qelutils::toUtf8(n.getNodeDef().getNamespace());
        if (space != "sg") out_.attribute("space", space);
        out_.attribute("name", n.getNodeName());
        if (Node const* parent = n.getParent()) out_.attribute("parent", parent->getID());
        if (n.getParentCount() > 1) writeFurtherParents(n);
        int const count = n.layout().topLevelCount;
        for (int i = 1; i < count; ++i) writeAttribute(*n.getAttribute(std::size_t(i)), {});
        std::vector<Attribute*> dynamics;
        n.getDynamicAttributes(dynamics);
        for (Attribute const* d : dynamics) writeDynamic(*d);
        if (preserved)
            for (PreservedElement const& e : preserved->elements) writePreserved(e);
        out_.endElement();
    }

    void writeFurtherParents(Node const& n) {
        std::string ids;
        for (std::size_t i = 1; i < n.getParentCount(); ++i)
            ids += (i > 1 ? " " : "") + std::to_string(n.getParent(i)->getID());
        out_.attribute("parents", ids);
    }

    static bool isWorthWriting(Attribute const& a) {
        return a.getDef().isSaved() && !(a.has(Attribute::live) && !a.isCompound()) && !a.isDefaultValue();
    }

    void writeAttribute(Attribute const& a, std::wstring const& prefix) {
        if (!a.getDef().isSaved()) return;
        std::wstring const name = prefix + a.getDef().name;
        if (CompositeAttribute const* c = a.asComposite()) {
            for (std::size_t i = 0; i < c->getAttributeCount(); ++i) writeAttribute(*c->getAttribute(i), name + L".");
        } else if (AttributeArray const* array = a.asAttributeArray()) {
            for (std::size_t i = 0; i < array->size(); ++i) writeElement(*array->getElement(i), name);
        } else if (isWorthWriting(a)) {
            out_.startElement("a");
            out_.attribute("n", name);
            writeValue(out_, a);
            out_.endElement();
        }
    }

    void writeElement(Attribute const& element, std::wstring const& name) {
        out_.startElement("e");
        out_.attribute("n", name);
        out_.attribute("id", element.getID());
        if (CompositeAttribute const* c = element.asComposite()) {
            for (std::size_t i = 0; i < c->getAttributeCount(); ++i) writeAttribute(*c->getAttribute(i), {});
        } else if (AttributeArray const* array = element.asAttributeArray()) {
            for (std::size_t i = 0; i < array->size(); ++i) writeElement(*array->getElement(i), {});
        } else if (isWorthWriting(element)) {
            writeValue(out_, element);
        }
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
        if (def.initialText[0])
            out_.attribute("initial", def.initialText);
        else if (def.initial[0] != 0 || def.initial[1] != 0 || def.initial[2] != 0)
            out_.attribute("initial", std::span<double const>(def.initial, 4));
        if (!d.has(Attribute::live)) writeValue(out_, d);
        out_.endElement();
    }

    void writePreserved(PreservedElement const& e) {
        out_.startElement(e.name);
        for (auto const& [name, value] : e.attributes) out_.attribute(name, std::string_view(value));
        if (e.children.empty() && !e.text.empty()) out_.text(std::string_view(e.text));
        for (PreservedElement const& child : e.children) writePreserved(child);
        out_.endElement();
    }

    template<class T> void writeConnection(int id, T const& from, T const& to) {
        out_.startElement("connection");
        out_.attribute("id", id);
        out_.attribute("from", from);
        out_.attribute("to", to);
        out_.endElement();
    }

    void writeConnections() {
        std::vector<Database::ConnectionRecord> connections;
        database_.listConnections(connections);
        for (auto const& c : connections) writeConnection(c.id, referenceTo(c.from), referenceTo(c.to));
        for (PreservedConnection const& c : database_.preserved().connections) writeConnection(c.id, c.from, c.to);
    }

    Database const& database_;
    XMLWriter out_;
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
