// New objects of the hierarchy, made from a command's parameters.
#include "tests/commands/fixture.h"

namespace Tavo {
namespace {

using Objects = std::vector<XObject>;

class CreationCommands : public CommandTest {
protected:
    // Gives every parameter another value than its default.
    static void changeAll(XCommand const& command) {
        for (int i = XCommand::FirstParameter; i < command.AttributeCount(); ++i) change(command.Attribute(i));
    }
    static void change(XAttribute parameter) {
        if (parameter.IsCompositeAttribute())
            for (int i = 0; i < parameter.AttributeCount(); ++i) change(parameter.Attribute(i));
        else if (parameter.IsBool())
            parameter.SetBoolean(!parameter.Boolean());
        else if (parameter.IsEnum())
            parameter.SetEnumeration(parameter.Enumeration() == 0 ? 1 : 0);
        else if (parameter.IsInt())
            parameter.SetInteger(parameter.Integer() + 3);
        else
            parameter.SetFloat(parameter.Float() + 0.01f * float(1 + parameter.Index()));
    }
    // The parameters whose values the object does not have.
    static std::vector<std::wstring> missing(XCommand const& command, XObject const& object) {
        std::vector<std::wstring> names;
        for (int i = XCommand::FirstParameter; i < command.AttributeCount(); ++i) {
            XAttribute const parameter = command.Attribute(i);
            if (!object.HasAttribute(parameter.Name()) || !isSame(parameter, object.Attribute(parameter.Name())))
                names.push_back(parameter.Name());
        }
        return names;
    }
    static bool isSame(XAttribute const& a, XAttribute const& b) {
        return a.getAttribute()->compare(*b.getAttribute());
    }
    static Objects runAll(std::wstring const& name) {
        Qelutils::Vector<XObject> results;
        scene().RunCommand(name, results);
        return {results.begin(), results.end()};
    }
};

// ---- transforms ----

TEST_F(CreationCommands, ATransformGetsTheParametersAndIsSelectedAndTheResult) {
    select({});
    auto const command = parameters<XCreateTransform>();
    changeAll(command);
    Objects const results = runAll(L"CreateTransform");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].ObjectType(), XTransform::TypeID);
    EXPECT_EQ(results[0].Parent(), scene().RootObject());
    EXPECT_EQ(missing(command, results[0]), std::vector<std::wstring>{});
    EXPECT_EQ(selected(), results);
}

TEST_F(CreationCommands, ATransformWithoutChangesStandsWhereItsParentStands) {
    select({spine});
    XTransform const made(run(L"CreateTransform"));
    EXPECT_EQ(made.Parent(), spine);
    EXPECT_EQ(made.LocalMatrix().Matrix(), XMatrix());
    XColour const colour = XTransform::DefaultColour;
    EXPECT_EQ(made.Attribute(L"Colour").Attribute(0).Float(), colour.Red());
}

TEST_F(CreationCommands, OnlyAFirstSelectedTransformBecomesTheParent) {
    select({spine, leg});
    EXPECT_EQ(run(L"CreateTransform").Parent(), spine);
    select({box, spine});
    EXPECT_EQ(run(L"CreateTransform").Parent(), scene().RootObject());
}

// ---- joints ----

TEST_F(CreationCommands, AJointGetsTheParametersAndItsName) {
    select({leg});
    auto const command = parameters<XCreateJoint>();
    changeAll(command);
    Objects const results = runAll(L"CreateJoint");
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].ObjectType(), XJoint::TypeID);
    EXPECT_EQ(results[0].Name(), XJoint::DefaultName);
    EXPECT_EQ(missing(command, results[0]), std::vector<std::wstring>{L"Characterize"});
    EXPECT_EQ(selected(), results);
}

TEST_F(CreationCommands, RepeatedJointsAreAChainAlongX) {
    select({leg});
    float const x = leg.WorldTranslation().X();
    XObject above = leg;
    for (int i = 1; i <= 3; ++i) {
        XJoint const made(run(L"CreateJoint"));
        EXPECT_EQ(made.Parent(), above);
        EXPECT_EQ(made.LocalTranslation(), XVector3(0.2f, 0, 0));
        EXPECT_NE(x, made.WorldTranslation().X());
        above = made;
    }
    XColour const colour = XJoint::DefaultBoneColour;
    EXPECT_EQ(above.Attribute(L"Colour").Attribute(2).Float(), colour.Blue());
    for (int i = 0; i < 3; ++i) undo();
    EXPECT_FALSE(above.IsValid());
    EXPECT_EQ(selected(), Objects{leg});
}

// Also where the root, below which it is made, has one of that name.
TEST_F(CreationCommands, AJointIsNamedAmongTheChildrenOfItsParent) {
    select({});
    EXPECT_EQ(run(L"CreateJoint").Name(), L"joint");
    select({leg});
    EXPECT_EQ(run(L"CreateJoint").Name(), L"joint");
    select({leg});
    EXPECT_EQ(run(L"CreateJoint").Name(), L"joint1");
}

TEST_F(CreationCommands, AJointThatIsToBeginNoCharacterHangsBelowTheRoot) {
    parameters<XCreateJoint>().Characterize().SetBoolean(false);
    for (std::wstring const name : {L"joint", L"joint1"}) {
        select({});
        XJoint const made(run(L"CreateJoint"));
        EXPECT_EQ(made.Parent(), scene().RootObject());
        EXPECT_EQ(made.TranslationX().Float(), 0.2f);
        EXPECT_EQ(made.Name(), name);
    }
}

// ---- shapes ----

TEST_F(CreationCommands, EachSelectedTransformGetsAShapeWithTheParameters) {
    select({spine, box, leg});
    auto const command = parameters<XCreatePrimitive>();
    changeAll(command);
    Objects const results = runAll(L"CreateShape");
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(results[0].Parent(), spine);
    EXPECT_EQ(results[1].Parent(), leg);
    for (XObject const& made : results) {
        EXPECT_EQ(made.ObjectType(), XPrimitive::TypeID);
        EXPECT_EQ(missing(command, made), std::vector<std::wstring>{});
    }
    EXPECT_EQ(selected(), (Objects{spine, box, leg}));
}

TEST_F(CreationCommands, AShapeIsAlsoCreatedUnderTheWordOfTheCommandsNodeType) {
    select({leg});
    EXPECT_EQ(run(L"CreatePrimitive").Parent(), leg);
    EXPECT_EQ(application().LastCommandName(), L"CreatePrimitive");
}

TEST_F(CreationCommands, AShapeWithoutChangesHasTheCommandsColour) {
    select({leg});
    XObject const made = run(L"CreateShape");
    float const expected[] = {0, 0.5f, 0.7f, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(made.Attribute(L"Colour").Attribute(i).Float(), expected[i]);
    EXPECT_EQ(made.Attribute(L"DisplayStyle").Enumeration(), 3);
}

TEST_F(CreationCommands, WithoutATransformSelectedThereIsNoShape) {
    select({box});
    std::string const before = bytes();
    EXPECT_TRUE(runAll(L"CreateShape").empty());
    EXPECT_TRUE(bytes() == before);
}

TEST_F(CreationCommands, ParametersGoBackToTheirDefaults) {
    for (std::wstring const name : {L"CreateTransform", L"CreateJoint", L"CreateShape"}) {
        XCommand command(settings().Object(name));
        std::string const before = documentBytes(settings());
        changeAll(command);
        EXPECT_FALSE(documentBytes(settings()) == before);
        command.Initialize();
        EXPECT_TRUE(documentBytes(settings()) == before) << Qelutils::toUtf8(name);
    }
}

}  // namespace
}  // namespace Tavo
