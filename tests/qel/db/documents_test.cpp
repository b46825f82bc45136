// Files of a database without any graph: each kind of attribute, fixed, in elements and added, comes back.
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "tests/qel/db/any_value.h"
#include "tests/qel/db/test_nodes.h"
#include <gtest/gtest.h>
#include <limits>

namespace db::test {
namespace {

std::string saved(Database& database) {
    StringOutputStream out;
    SaverXML saver(out, 0);
    EXPECT_TRUE(saver.save(database));
    return out.text();
}
bool load(Database& database, std::string const& text) {
    StringInputStream in(text);
    LoaderXML loader(in, 0, nullptr);
    bool const ok = loader.load(database);
    EXPECT_TRUE(ok) << std::string(loader.error().begin(), loader.error().end());
    return ok;
}

constexpr AttributeType plainKinds[] = {
    AttributeType::Integer,       AttributeType::Boolean,      AttributeType::Enumeration,
    AttributeType::Float,         AttributeType::Double,       AttributeType::String,
    AttributeType::Vector3,       AttributeType::Matrix,       AttributeType::Pointer,
    AttributeType::IntegerArray,  AttributeType::BooleanArray, AttributeType::EnumerationArray,
    AttributeType::FloatArray,    AttributeType::DoubleArray,  AttributeType::StringArray,
    AttributeType::Vector3Array,  AttributeType::MatrixArray,  AttributeType::PointerArray,
    AttributeType::NodeContainer, AttributeType::Quaternion,   AttributeType::QuaternionArray,
};

struct Documents : ::testing::Test {
    Node* make(std::wstring const& name) { return database.createNode(allDef(), name); }
    // The node of the same id in what a save and a load give.
    Node* again(Node const* n) {
        document = saved(database);
        load(other, document);
        EXPECT_EQ(saved(other), document);
        return other.lookupNode(n->getID());
    }
    AnyValue valueFor(Attribute& a, Node* target, unsigned seed) {
        std::mt19937 random(seed);
        if (hasReferences(a)) return {{double(target->getID())}, {}};
        return randomValue(a, random);
    }
    Database database, other;
    std::string document;
};

TEST_F(Documents, HoldEachKindOfValue) {
    Node *n = make(L"n"), *target = make(L"target");
    for (std::size_t i = 1; i < n->getAttributeCount(); ++i)
        if (Attribute* a = n->getAttribute(i); !a->isCompound() && !a->isAttributeArray() && a->getDef().isSaved())
            write(*a, valueFor(*a, target, unsigned(i)));
    Node* back = again(n);
    for (std::size_t i = 0; i < n->getAttributeCount(); ++i)
        if (Attribute* a = n->getAttribute(i); !a->isCompound() && !a->isAttributeArray()) {
            EXPECT_EQ(read(*back->getAttribute(i)), read(*a)) << i;
        }
}

TEST_F(Documents, HoldAddedAttributesOfEachKindWithTheirIdsAndInitialValues) {
    Node *n = make(L"n"), *target = make(L"target");
    double const initial[4] = {0.5, 1, -2, 3};
    for (AttributeType type : plainKinds) {
        std::wstring const name = L"a" + std::to_wstring(int(type));
        Attribute* untouched = n->addDynamic(type, name, initial, L"start", -4, 4);
        ASSERT_NE(untouched, nullptr) << int(type);
        Attribute* written = n->addDynamic(type, name + L" . written");
        write(*written, valueFor(*written, target, unsigned(type)));
    }
    Qelp::Matrix34 m;
    m.m[3][1] = 5;
    n->addDynamicMatrix34(L"matrix", m)->asMatrix34()->setValue(Qelp::Matrix34());
    n->addDynamicMatrix34Array(L"matrices", m);
    Node* back = again(n);
    std::vector<Attribute*> expected, found;
    n->getDynamicAttributes(expected);
    back->getDynamicAttributes(found);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i]->getID(), expected[i]->getID());
        EXPECT_EQ(found[i]->getName(), expected[i]->getName());
        EXPECT_EQ(read(*found[i]), read(*expected[i])) << i;
        EXPECT_EQ(defaultOf(*found[i]), defaultOf(*expected[i])) << i;
        EXPECT_EQ(found[i]->getDef().minimum, expected[i]->getDef().minimum);
        EXPECT_EQ(found[i]->getDef().maximum, expected[i]->getDef().maximum);
    }
}

TEST_F(Documents, HoldFloatsBitForBit) {
    Node* n = make(L"n");
    auto& values = get<FloatArrayAttribute>(n, L"FloatArray");
    values.setValue({-0.0f, 1e-45f, 0.1f, 3.4028235e38f, std::numeric_limits<float>::infinity()});
    get<Vector3Attribute>(n, L"Vector3").setValue({-0.0f, 0, 0, 0});
    get<DoubleAttribute>(n, L"Double").setValue(0.1 + 0.2);
    Node* back = again(n);
    EXPECT_TRUE(std::signbit(get<Vector3Attribute>(back, L"Vector3").getValue().x));
    EXPECT_TRUE(std::signbit(get<FloatArrayAttribute>(back, L"FloatArray").getElement(0)));
    EXPECT_EQ(get<FloatArrayAttribute>(back, L"FloatArray").getValue(), values.getValue());
    EXPECT_EQ(get<DoubleAttribute>(back, L"Double").getValue(), 0.1 + 0.2);
}

TEST_F(Documents, HoldNamesAndTextsOfAnyCharacters) {
    for (std::wstring const text :
         {L"", L" ", L"a|b.c[0]", L"<&>\"'", L"\t\n\r", L"\x1b\x241b\xfffe\xd800", L"\x1f600"}) {
        Node* n = make(text);
        get<StringAttribute>(n, L"String").setValue(text);
        get<StringArrayAttribute>(n, L"StringArray").setValue({text, L"", text});
        Node* back = again(n);
        EXPECT_EQ(back->getNodeName(), n->getNodeName());
        EXPECT_EQ(get<StringAttribute>(back, L"String").getValue(), text);
        EXPECT_EQ(get<StringArrayAttribute>(back, L"StringArray").getElement(2), text);
    }
}

TEST_F(Documents, HoldElementsWithTheirIds) {
    Node* n = make(L"n");
    auto& elements = get<AttributeArray>(n, L"Elements");
    for (int i = 0; i < 5; ++i) elements.add();
    elements.removeAt(1);
    elements.getElement(2)->asCompound()->findAttribute(L"Second")->asString()->setValue(L"");
    Node* back = again(n);
    auto& found = get<AttributeArray>(back, L"Elements");
    ASSERT_EQ(found.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(found[i]->getID(), elements[i]->getID());
        EXPECT_TRUE(found[i]->compare(*elements[i]));
    }
}

TEST_F(Documents, HoldReferencesAndForgetThoseThatLeadNowhere) {
    Node *n = make(L"n"), *target = make(L"t"), *gone = make(L"gone");
    Attribute* added = target->addDynamicFloat(L"Elements[1]", 0, 0, 1);
    get<AttributeArray>(target, L"Elements").resize(1);
    Attribute* inner = get<AttributeArray>(target, L"Elements")[0]->asCompound()->findAttribute(L"First");
    auto& all = get<PointerArrayAttribute>(n, L"PointerArray");
    for (Attribute* a : {static_cast<Attribute*>(target), static_cast<Attribute*>(gone), inner, added}) all.add(a);
    all.add(&database);
    get<PointerAttribute>(n, L"Pointer").setValue(gone);
    gone->remove();
    Node* back = again(n);
    Node* t = other.lookupNode(target->getID());
    auto& found = get<PointerArrayAttribute>(back, L"PointerArray");
    ASSERT_EQ(found.size(), 5u);
    EXPECT_EQ(found.getElement(0), t);
    EXPECT_EQ(found.getElement(1), nullptr);
    EXPECT_EQ(found.getElement(2), get<AttributeArray>(t, L"Elements")[0]->asCompound()->findAttribute(L"First"));
    EXPECT_EQ(found.getElement(3), other.lookupAttribute(added->getID()));
    EXPECT_EQ(found.getElement(4), nullptr);
    EXPECT_EQ(get<PointerAttribute>(back, L"Pointer").getValue(), nullptr);
}

// An added attribute whose name later became a path of elements was legal when it was added.
TEST_F(Documents, HoldAddedAttributesThatAreNamedLikeElements) {
    Node* n = make(L"n");
    n->addDynamicFloat(L"Elements[0]", 0.25f, 0, 1);
    get<AttributeArray>(n, L"Elements").resize(2);
    EXPECT_EQ(again(n)->dynamicCount(), 1u);
}

TEST_F(Documents, KeepTheOrderOfChildrenThatHaveSeveralParents) {
    Node *a = make(L"a"), *b = make(L"b"), *shared = make(L"shared"), *last = make(L"last");
    b->addChild(*shared);
    a->addChild(*shared);
    a->addChild(*last);
    b->addChild(*last);
    Node* back = again(shared);
    ASSERT_EQ(back->getParentCount(), 2u);
    EXPECT_EQ(back->getParent(0)->getNodeName(), L"b");
    EXPECT_EQ(back->getParent(1)->getNodeName(), L"a");
    for (wchar_t const* parent : {L"a", L"b"}) {
        Node* p = other.findNodeByPath(parent);
        ASSERT_EQ(p->getChildCount(), 2u) << parent;
        EXPECT_EQ(p->getChild(0)->getNodeName(), L"shared");
        EXPECT_EQ(p->getChild(1)->getNodeName(), L"last");
    }
}

TEST_F(Documents, GetUniqueNamesWhereTheFileRepeatsThem) {
    ASSERT_TRUE(load(other, "<tavo format=\"1\"><node id=\"16\" space=\"test\" type=\"All\" name=\"n\"/>"
                            "<node id=\"64\" space=\"test\" type=\"All\" name=\"n\"/></tavo>"));
    EXPECT_NE(other.findNodeByPath(L"n"), nullptr);
    EXPECT_NE(other.findNodeByPath(L"n1"), nullptr);
}

// As when a type got more attributes: its nodes reach into the ids of what follows.
TEST_F(Documents, GiveNewIdsOnlyWhereThoseOfTheFileClash) {
    ASSERT_TRUE(load(other, "<tavo format=\"1\" ids=\"160\"><node id=\"16\" space=\"test\" type=\"All\" name=\"a\"/>"
                            "<node id=\"32\" space=\"test\" type=\"All\" name=\"b\"><a n=\"Pointer\">32</a></node>"
                            "<node id=\"112\" space=\"test\" type=\"All\" name=\"c\" parent=\"32\">"
                            "<a n=\"Pointer\">32.Float</a></node></tavo>"));
    Node *a = other.findNodeByPath(L"a"), *b = other.findNodeByPath(L"b"), *c = other.findNodeByPath(L"b|c");
    ASSERT_TRUE(a && b && c);
    EXPECT_EQ(a->getID(), 16);
    EXPECT_GE(b->getID(), 160);
    EXPECT_EQ(c->getID(), 112);
    EXPECT_EQ(get<PointerAttribute>(b, L"Pointer").getValue(), b);
    EXPECT_EQ(get<PointerAttribute>(c, L"Pointer").getValue(), b->findAttribute(L"Float"));
    EXPECT_GT(other.createNode(allDef(), L"new")->getID(), b->getID());
}

TEST_F(Documents, TellObserversWhatCameAndWhatWent) {
    struct Counter : DatabaseObserver {
        void onDatabaseChanged(ChangeSet const& set, bool) override {
            added += set.AddedNodes().size();
            removed += set.RemovedNodes().size();
            for (Node const* n : set.RemovedNodes()) EXPECT_TRUE(n->isRemovedNode());
        }
        std::size_t added = 0, removed = 0;
    } counter;
    make(L"a");
    make(L"b");
    document = saved(database);
    database.commitTransient();
    make(L"c");
    database.commitTransient();
    database.addObserver(&counter);
    load(database, document);
    database.commitTransient();
    EXPECT_EQ(counter.added, 2u);
    EXPECT_EQ(counter.removed, 3u);
}

TEST_F(Documents, CanBeLoadedWhileObserversAreTold) {
    struct Opener : DatabaseObserver {
        void onDatabaseChanged(ChangeSet const& set, bool) override {
            if (!opened) opened = load(*database, document);
            for (Node const* n : set.AddedNodes()) names += n->getNodeName();
        }
        Database* database;
        std::string document;
        std::wstring names;
        bool opened = false;
    } opener;
    opener.database = &database;
    make(L"old");
    opener.document = saved(database);
    NodeHandle const held(make(L"held"));
    database.addObserver(&opener);
    database.commitTransient();
    database.commitTransient();
    EXPECT_TRUE(opener.opened);
    EXPECT_EQ(opener.names, L"oldheldold");
    EXPECT_EQ(held.getRef(), nullptr);
    EXPECT_EQ(saved(database), opener.document);
}

TEST_F(Documents, EndTheHistoryWhereverItStands) {
    Node* n = make(L"kept");
    document = saved(database);
    database.commitTransient();
    AttributeHandle const added(n->addDynamicFloat(L"x", 0, 0, 1));
    get<AttributeArray>(n, L"Elements").resize(3);
    database.commitTransient();
    n->remove();
    database.commitTransient();
    database.undo();
    database.beginChangeBlock();
    make(L"pending");
    load(database, document);
    EXPECT_TRUE(database.isInChangeBlock());
    database.endChangeBlock(L"load");
    EXPECT_EQ(database.getRedoCount(), 0u);
    EXPECT_EQ(added.getRef(), nullptr);
    while (database.undo()) {}
    EXPECT_EQ(saved(database), document);
}

}  // namespace
}  // namespace db::test
