#include "tests/extension/lua/row_checks.h"
#include <set>
#include <sys/resource.h>

namespace Tavo {
namespace {

// An array that a script makes as large as it likes has to fail, and not to take the machine's memory.
class MemoryLimit {
public:
    MemoryLimit() {
        getrlimit(RLIMIT_AS, &_before);
#if !defined(__SANITIZE_ADDRESS__)
        rlimit limit = _before;
        limit.rlim_cur = rlim_t(4) << 30;
        setrlimit(RLIMIT_AS, &limit);
#endif
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &_before); }
    MemoryLimit(MemoryLimit const&) = delete;
    MemoryLimit& operator=(MemoryLimit const&) = delete;

private:
    rlimit _before{};
};

class RowTest : public RowChecks, public testing::WithParamInterface<XScriptSet const*> {
protected:
    static XScriptSet const& set() { return *GetParam(); }
    static bool isOfValues() {
        std::string const table = set().table;
        return table == "Vector3" || table == "Quaternion" || table == "Matrix" || table == AppFunctions().table;
    }

    // The function on each of these, without arguments.
    void callOnEach(ScriptTexts const& selves) {
        forEachRow(set(), [&](XScriptFunction const& row) {
            for (std::string const& self : selves) call(set(), row, self, {});
        });
    }
    // A good call with each of these in each place that takes what `wants` says.
    template<class Wants> void callWithEach(ScriptTexts const& values, Wants const& wants) {
        forEachArgument(set(), [&](XScriptFunction const& row, std::size_t i) {
            if (!wants(row.ArgumentTypes()[i].kind)) return;
            for (std::string const& value : values) {
                call(set(), row, good(set()), only(i, value));
                call(set(), row, good(set()), only(i, "{" + value + "}"));
            }
        });
    }

private:
    MemoryLimit _limit;
};

std::string nameOf(testing::TestParamInfo<XScriptSet const*> const& info) { return info.param->table; }
INSTANTIATE_TEST_SUITE_P(Sets, RowTest, testing::ValuesIn(AllScriptSets()), nameOf);

// ---- the rows themselves ----

TEST_P(RowTest, EachSaysWhatItDoes) {
    EXPECT_TRUE(std::string(set().help).ends_with('.'));
    for (XScriptFunction const& row : set().functions) {
        SCOPED_TRACE(row.Name());
        EXPECT_GT(std::string(row.Name()).size(), 0u);
        EXPECT_TRUE(std::string(row.Help()).ends_with('.'));
        EXPECT_FALSE(std::string(row.Help()).ends_with(".."));
    }
}

TEST_P(RowTest, EachHasANameOfItsOwn) {
    std::set<std::string> names;
    for (XScriptFunction const& row : set().functions) EXPECT_TRUE(names.insert(row.Name()).second) << row.Name();
}

TEST_P(RowTest, EachNamesAllThatItTakes) {
    for (XScriptFunction const& row : set().functions) {
        SCOPED_TRACE(row.Name());
        EXPECT_EQ(row.ArgumentTypes().size(), row.Arguments().size());
        std::set<std::string> names;
        for (XScriptArgument const& argument : row.Arguments())
            EXPECT_TRUE(*argument.name && names.insert(argument.name).second) << argument.name;
    }
}

TEST_P(RowTest, EachIsThereOnWhatItIsFor) {
    for (XScriptFunction const& row : set().functions)
        EXPECT_EQ("function", eval("return type(" + good(set()) + "['" + row.Name() + "'])")) << row.Name();
}

// ---- calls ----

TEST_P(RowTest, MayBeCalledWithNothing) { callOnEach({good(set())}); }

// An argument that may be left out in front of others leaves what it can't take to the next: that one is named then.
bool namesArgument(std::string const& error, XScriptFunction const& row, std::size_t from) {
    auto const isNamed = [&](XScriptArgument const& argument) {
        return error.find(std::string("(") + argument.name + ")") != std::string::npos;
    };
    return std::any_of(row.Arguments().begin() + std::ptrdiff_t(from), row.Arguments().end(), isNamed);
}

TEST_P(RowTest, RefuseWhatIsOfAnotherKindByName) {
    auto const wrong = [](XScriptKind kind) -> ScriptTexts {
        switch (kind) {
        case XScriptKind::Any: return {};
        case XScriptKind::Boolean: return {"print", "'x'", "{}"};
        case XScriptKind::Integer:
        case XScriptKind::Number: return {"print", "true", "'x'", "{}"};
        case XScriptKind::Text:
        case XScriptKind::Key: return {"print", "true", "{}"};
        default: return {"print", "true"};
        }
    };
    forEachArgument(set(), [&](XScriptFunction const& row, std::size_t i) {
        std::string const before = bytes();
        for (std::string const& value : wrong(row.ArgumentTypes()[i].kind)) {
            std::string const error = call(set(), row, good(set()), only(i, value));
            EXPECT_NE(std::string::npos, error.find(std::string(set().table) + ":" + row.Name() + ": ")) << error;
            EXPECT_TRUE(namesArgument(error, row, i)) << error;
        }
        EXPECT_TRUE(before == bytes());
    });
}

TEST_P(RowTest, ChangeNothingOnWhatIsGone) {
    if (isOfValues()) return;
    forEachRow(set(), [&](XScriptFunction const& row) {
        std::string const table = set().table, whole = bytes();
        call(set(), row, "dead_" + table, {});
        EXPECT_TRUE(whole == bytes()) << "destroyed";
        if (table == "Scene") return;
        removeSpares();
        std::string const rest = bytes();
        call(set(), row, "removed_" + table, {});
        EXPECT_TRUE(rest == bytes()) << "removed";
    });
}

TEST_P(RowTest, MayBeCalledOnWhatIsOfAnotherScene) { callOnEach({std::string("foreign_") + set().table}); }

TEST_P(RowTest, MayBeCalledOnWhatIsOfAnotherType) {
    ScriptTexts selves{"document", "true", "nil", "5", "'x'", "print"};
    for (XScriptSet const* other : AllScriptSets())
        for (char const* prefix : {"good_", "foreign_", "dead_"}) selves.push_back(std::string(prefix) + other->table);
    callOnEach(selves);
}

// ---- forged tables ----

ScriptTexts forgedTables() {
    ScriptTexts out{"{}"};
    for (char const* id : {"-1", "0", "2147483647", "2147483648", "9223372036854775807", "math.mininteger", "0.5",
                           "0/0", "1/0", "1e300", "'x'", "'1'", "{}", "print"}) {
        std::string const value = id;
        out.push_back("{__sceneID = S, __objectID = " + value + "}");
        out.push_back("{__sceneID = " + value + ", __objectID = O}");
        out.push_back("{__sceneID = S, __objectID = O, __objectSubID = " + value + "}");
        out.push_back("{__sceneID = " + value + ", __objectID = " + value + ", __objectSubID = " + value + "}");
    }
    return out;
}

TEST_P(RowTest, MayBeCalledOnForgedTables) { callOnEach(forgedTables()); }

bool takesTables(XScriptKind kind) {
    switch (kind) {
    case XScriptKind::Boolean:
    case XScriptKind::Integer:
    case XScriptKind::Number:
    case XScriptKind::Text:
    case XScriptKind::Key: return false;
    default: return true;
    }
}

TEST_P(RowTest, MayBeGivenForgedTables) { callWithEach(forgedTables(), takesTables); }

TEST_P(RowTest, MayBeGivenWhatIsGoneOrOfAnotherDocument) {
    ScriptTexts values{"document"};
    for (XScriptSet const* other : AllScriptSets())
        for (char const* prefix : {"good_", "foreign_", "dead_"}) values.push_back(std::string(prefix) + other->table);
    callWithEach(values, takesTables);
}

// ---- numbers and texts ----

// That number in the shape that the kind takes.
std::string inShape(XScriptKind kind, std::string const& number) {
    auto const list = [&](int count) {
        std::string out = "{" + number;
        for (int i = 1; i < count; ++i) out += ", " + number;
        return out + "}";
    };
    switch (kind) {
    case XScriptKind::Vector: return list(3);
    case XScriptKind::Quaternion: return list(4);
    case XScriptKind::Matrix: return list(16);
    case XScriptKind::Integers:
    case XScriptKind::Numbers: return list(5);
    case XScriptKind::Integer:
    case XScriptKind::Number:
    case XScriptKind::Key:
    case XScriptKind::Any: return number;
    default: return "nil";
    }
}

TEST_P(RowTest, MayBeGivenAnyNumber) {
    forEachRow(set(), [&](XScriptFunction const& row) {
        for (char const* value : {"0/0", "1/0", "-1/0", "1e300", "-1e300", "3e38", "1e-45", "2147483647", "-2147483648",
                                  "0.5", "-1", "0", "1", "3"}) {
            ScriptTexts all;
            for (XScriptType const& type : row.ArgumentTypes()) all.push_back(inShape(type.kind, value));
            call(set(), row, good(set()), all);
            call(set(), row, good(set()), ScriptTexts(20, value));
            for (std::size_t i = 0; i < all.size(); ++i) call(set(), row, good(set()), only(i, all[i]));
        }
    });
}

bool takesTexts(XScriptKind kind) { return kind != XScriptKind::Integer && kind != XScriptKind::Number; }

TEST_P(RowTest, MayBeGivenAnyText) {
    callWithEach({"''", "('x'):rep(100000)", "('a|'):rep(1000)", "'|'", "'.'", "'*'", "'*|*.*'", "'\\0'", "'a\\0b'",
                  "'\\xff\\xfe'", "'%s%n'", "'-1'", "' '", "'Scene'", "'Scene.Name'"},
                 takesTexts);
}

// ---- the vocabulary, in its order ----

ScriptTexts namesOf(XScriptSet const& set) {
    ScriptTexts names;
    for (XScriptFunction const& row : set.functions) names.push_back(row.Name());
    return names;
}

TEST(Vocabulary, OfObjects) {
    EXPECT_EQ((ScriptTexts{"isValid",
                           "createObject",
                           "copy",
                           "delete",
                           "deleteChild",
                           "deleteChildren",
                           "deselect",
                           "attribute",
                           "attributeCount",
                           "attributes",
                           "addCustomBool",
                           "addCustomFloat",
                           "addCustomInteger",
                           "addCustomString",
                           "addCustomVector",
                           "addCustomMatrix",
                           "child",
                           "childCount",
                           "children",
                           "descendants",
                           "id",
                           "name",
                           "parent",
                           "path",
                           "type",
                           "hasAttribute",
                           "hasChildren",
                           "hasParent",
                           "supportsType",
                           "isType",
                           "types",
                           "remove",
                           "select",
                           "selectAppend",
                           "isSelected",
                           "setName",
                           "setParent",
                           "unparent"}),
              namesOf(ObjectFunctions()));
    EXPECT_EQ((ScriptTexts{"colour", "visible", "setColour", "setVisible"}), namesOf(RenderObjectFunctions()));
}

TEST(Vocabulary, OfTransforms) {
    EXPECT_EQ((ScriptTexts{"alignAxis",
                           "createTrajectory",
                           "freeze",
                           "matrix",
                           "translation",
                           "rotation",
                           "rotationOrder",
                           "rotationAxis",
                           "rotationAngle",
                           "scale",
                           "worldMatrix",
                           "worldTranslation",
                           "worldRotation",
                           "worldRotationAxis",
                           "worldRotationAngle",
                           "worldScale",
                           "setIdentity",
                           "setMatrix",
                           "setTranslation",
                           "setRotation",
                           "setRotationOrder",
                           "setRotationAxisAngle",
                           "setScale",
                           "setWorldTranslation",
                           "setWorldMatrix",
                           "setWorldRotation",
                           "setWorldRotationAxisAngle",
                           "translate",
                           "rotate",
                           "rotateAxisAngle",
                           "worldTranslate",
                           "worldRotate",
                           "worldRotateAxisAngle"}),
              namesOf(TransformFunctions()));
    EXPECT_EQ((ScriptTexts{"alignLimit", "snapOffsetClosestAxis"}), namesOf(JointFunctions()));
    EXPECT_EQ((ScriptTexts{"solver", "root", "endEffector"}), namesOf(IKHandleFunctions()));
}

}  // namespace
}  // namespace Tavo
