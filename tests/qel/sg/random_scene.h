// Random edits of a whole scene, of every type, kind and sort of edit there is; the same seed makes the same edits.
#pragma once
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/sg/scene.h"
#include "tests/qel/db/any_value.h"
#include <limits>

namespace sg::test {

inline std::string saved(Scene& scene) {
    db::StringOutputStream out;
    db::SaverXML saver(out, 0);
    return saver.save(scene) ? out.text() : "not saved: " + std::string(saver.error().begin(), saver.error().end());
}

struct Loaded {
    bool ok;
    std::wstring error;
};
inline Loaded load(Scene& scene, std::string const& text) {
    db::StringInputStream in(text);
    db::LoaderXML loader(in, 0, nullptr);
    bool const ok = loader.load(scene);
    return {ok, loader.error()};
}

class RandomScene {
public:
    RandomScene(Scene& scene, unsigned seed, std::size_t mostNodes = 40) :
        scene_(scene), random_(seed), most_(mostNodes) {
        for (db::NodeDef const* def : db::Registry::getInstance().all())
            if (def->getNamespace() == L"sg" && !def->isAbstract() && def != &Connection::Def) types_.push_back(def);
    }

    void edit() {
        if (edits_++ % 256 == 0) findNodes();
        unsigned const what = below(100);
        if (what < 12)
            history();
        else if (what < 20)
            block();
        else if (nodes_.size() < 5 || (what < 26 && nodes_.size() < most_))
            create();
        else if (what < 44)
            structure(what);
        else if (what < 76)
            write();
        else if (what < 88)
            connect();
        else if (what < 94)
            dynamic();
        else
            evaluate();
    }
    // Blocks closed, nothing pending.
    void finish() {
        while (scene_.isInChangeBlock()) scene_.endChangeBlock(L"end");
        scene_.commitTransient();
    }
    void findNodes() {
        std::vector<db::Node*> all;
        scene_.getDescendents(all);
        nodes_.clear();
        for (db::Node* n : all) nodes_.push_back(n->getID());
    }

private:
    unsigned below(std::size_t n) { return unsigned(random_() % n); }
    Node* node() {
        for (int tries = 0; tries < 10 && !nodes_.empty(); ++tries)
            if (db::Node* n = scene_.lookupNode(nodes_[below(nodes_.size())])) return static_cast<Node*>(n);
        findNodes();
        return nodes_.empty() ? create() : static_cast<Node*>(scene_.lookupNode(nodes_[0]));
    }
    std::wstring text() {
        static constexpr wchar_t odd[] = L"aaab12 .|[]<>&\"'\t\n\r\x1b\x241b\xe4\xfffe\x1f600";
        std::wstring t;
        for (unsigned i = below(9); i-- > 0;) t += odd[below(std::size(odd) - 1)];
        return t;
    }
    double number() {
        static constexpr double odd[] = {-0.0,
                                         0.0,
                                         1e-40,
                                         -1e38,
                                         0.1,
                                         std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()};
        return below(8) ? int(below(2000)) / 8.0 - 100 : odd[below(std::size(odd))];
    }
    db::test::AnyValue value(db::Attribute& a) {
        db::test::AnyValue v;
        if (db::test::hasReferences(a)) {
            db::Attribute* target = below(2) ? attribute(false) : node();
            v.numbers = {below(5) && target ? double(target->getID()) : -1};
        } else if (db::test::hasTexts(a)) {
            v.texts = {text()};
        } else {
            v = db::test::randomValue(a, random_);
            if (a.isFloat() || a.isDouble() || a.isFloatArray() || a.isMatrix34() || a.isVector3())
                for (double& x : v.numbers) x = number();
        }
        return v;
    }
    // A value of some node, perhaps within compounds and elements; null where there is none.
    db::Attribute* attribute(bool toWrite) {
        Node* n = node();
        db::Attribute* a = n->getAttribute(below(n->getAttributeCount()));
        while (a && (a->isCompound() || a->isAttributeArray())) {
            if (db::AttributeArray* array = a->asAttributeArray()) {
                a = array->empty() ? nullptr : array->getElement(below(array->size()));
            } else {
                db::CompositeAttribute* c = a->asComposite();
                a = c->getAttribute(below(c->getAttributeCount()));
            }
        }
        return toWrite && a && !a->getDef().isSaved() ? nullptr : a;
    }

    Node* create() {
        db::NodeDef const* def = below(2) ? types_[below(types_.size())]
                                          : db::Registry::getInstance().getNodeDef(L"sg", below(2)   ? L"Joint"
                                                                                          : below(2) ? L"Animation"
                                                                                                     : L"Transform");
        auto* n = static_cast<Node*>(scene_.createNode(*def, below(2) ? text() : L"joint"));
        if (n) nodes_.push_back(n->getID());
        return n;
    }
    void structure(unsigned what) {
        Node *a = node(), *b = node();
        if (what < 29)
            a->remove();
        else if (what < 33)
            a->setName(text());
        else if (what < 40)
            a->addChild(*b);
        else
            a->removeChild(*b);
    }
    void write() {
        Node* n = node();
        db::Attribute* top = n->getAttribute(below(n->getAttributeCount()));
        if (db::AttributeArray* array = top->asAttributeArray()) elements(*array);
        db::Attribute* a = attribute(true);
        if (!a) return;
        if (below(10) == 0) return a->setToDefaultValue();
        std::size_t const at = below(6);
        if (!db::test::isSeveral(*a) || below(4) == 0)
            db::test::write(*a, value(*a));
        else if (below(3) == 0)
            static_cast<db::ArrayAttribute*>(a)->removeAt(at);
        else if (below(2))
            db::test::setElement(*a, value(*a), at);
        else
            db::test::insertElement(*a, value(*a), at);
    }
    void elements(db::AttributeArray& array) {
        if (below(3) && array.size() < 6)
            array.insert(below(array.size() + 1));
        else
            array.removeAt(below(4));
        if (db::AttributeArray* inner = array.empty() ? nullptr : array[0]->asAttributeArray()) elements(*inner);
    }
    void connect() {
        db::Attribute* to = attribute(true);
        if (below(4) == 0) return to ? void(scene_.disconnectInput(to)) : void();
        for (int tries = 0; tries < 6; ++tries)
            if (scene_.connect(attribute(false), to, true, true) == Connected) return;
    }
    void dynamic() {
        Node* n = node();
        std::vector<db::Attribute*> mine;
        n->getDynamicAttributes(mine);
        if (!mine.empty() && below(2)) return void(mine[below(mine.size())]->remove());
        auto const type = db::AttributeType(1 + below(int(db::AttributeType::QuaternionArray)));
        double const initial[4] = {number(), number(), number(), number()};
        if (type == db::AttributeType::Matrix) {
            Qelp::Matrix34 m;
            m.m[3][0] = 7;
            n->addDynamicMatrix34(text(), m);
        } else if (type != db::AttributeType::Integer && type != db::AttributeType::Enumeration &&
                   type != db::AttributeType::IntegerArray && type != db::AttributeType::EnumerationArray)
            n->addDynamic(type, text(), initial, text(), -1, number());
        else
            n->addDynamic(type, L"Layers[" + std::to_wstring(below(3)) + L"]");
    }
    void evaluate() {
        if (db::Attribute* a = attribute(false)) db::test::read(*a);
    }
    void block() {
        auto const mode = below(3) ? db::ChangeMode::Recorded : db::ChangeMode::Transient;
        if (below(3) && !scene_.isInChangeBlock())
            scene_.beginChangeBlock(mode);
        else if (below(5) == 0)
            scene_.beginChangeBlock(mode);
        else if (below(8) == 0)
            scene_.cancel();
        else
            scene_.endChangeBlock(L"step");
    }
    void history() {
        unsigned const what = below(8);
        if (what < 4)
            scene_.undo();
        else if (what < 7)
            scene_.redo();
        else
            scene_.commitTransient();
    }

    Scene& scene_;
    std::mt19937 random_;
    std::size_t most_, edits_ = 0;
    std::vector<db::NodeDef const*> types_;
    std::vector<int> nodes_;
};

// All that can be read of a scene: what is computed and what is connected as well.
inline std::string readings(Scene& scene) {
    std::string out;
    std::vector<db::Node*> all;
    scene.listByPrimaryParent(all);
    auto add = [&](auto const& self, db::Attribute& a) -> void {
        if (db::CompositeAttribute* c = a.asComposite()) {
            for (std::size_t i = 0; i < c->getAttributeCount(); ++i) self(self, *c->getAttribute(i));
        } else if (db::AttributeArray* array = a.asAttributeArray()) {
            for (std::size_t i = 0; i < array->size(); ++i) self(self, *array->getElement(i));
        } else if (!a.getDef().hasFlag(db::FlagReserved)) {
            out += '\n' + std::to_string(a.getID()) + ':';
            for (double x : db::test::read(a).numbers) {
                char number[40];
                std::snprintf(number, sizeof number, " %a", x != x ? 0.125e-300 : x);
                out += number;
            }
        }
    };
    for (db::Node* n : all) add(add, *n);
    return out;
}

}  // namespace sg::test
