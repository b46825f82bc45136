#include "tests/objects/fixture.h"

namespace Tavo {
namespace {

using testing::ElementsAre;

class AttributeConnection : public ObjectModel {
protected:
    XObject a = named(L"a"), b = named(L"b");
    XAttribute x = a.AddFloatAttribute(L"x"), y = b.AddFloatAttribute(L"y"), z = b.AddFloatAttribute(L"z");
};

TEST_F(AttributeConnection, AValueFlowsAndStaysWhenItIsCutOff) {
    EXPECT_TRUE(y.ConnectInputTo(x));
    x.SetFloat(3);
    EXPECT_EQ(y.Float(), 3);
    EXPECT_EQ(y.InputAttribute(), x);
    EXPECT_EQ(y.InputObject(), a);
    EXPECT_TRUE(y.IsConnectedInput() && y.HasInput() && y.IsConnected() && x.IsConnectedOutput() && x.HasOutput());
    EXPECT_FALSE(y.IsConnectedOutput() || x.IsConnectedInput());
    y.DisconnectInput();
    x.SetFloat(4);
    EXPECT_EQ(y.Float(), 3);
    EXPECT_FALSE(y.IsConnected() || x.IsConnected());
}

TEST_F(AttributeConnection, ConnectingToTheInputThatIsThereChangesNothing) {
    inBlock([&] { y.ConnectInputTo(x); });
    int const steps = undoCount();
    EXPECT_TRUE(y.ConnectInputTo(x) && y.ConnectInputTo(L"a", L"x") && x.ConnectOutputTo(y) &&
                x.ConnectOutputTo(L"b", L"y"));
    scene().CommitTransient();
    EXPECT_EQ(undoCount(), steps);
    EXPECT_EQ(x.OutputConnectionCount(), 1);
}

TEST_F(AttributeConnection, OutputsKeepTheirOrder) {
    y.ConnectInputTo(x);
    z.ConnectInputTo(x);
    Qelutils::Vector<XAttribute> outputs;
    x.OutputAttributes(outputs);
    EXPECT_THAT(outputs, ElementsAre(y, z));
    EXPECT_EQ(x.OutputAttribute(1), z);
    EXPECT_EQ(x.OutputObject(0), b);
    EXPECT_FALSE(x.OutputAttribute(2).IsValid() || x.OutputAttribute(-1).IsValid());
    x.DisconnectOutputs();
    EXPECT_EQ(x.OutputConnectionCount(), 0);
}

TEST_F(AttributeConnection, ConnectingReplacesTheInput) {
    XAttribute const other = a.AddFloatAttribute(L"other");
    EXPECT_TRUE(x.ConnectOutputTo(y) && other.Object().Attribute(L"other").ConnectOutputTo(L"b", L"y"));
    EXPECT_EQ(y.InputAttribute(), other);
    EXPECT_TRUE(y.ConnectInputTo(L"a", L"x"));
    EXPECT_EQ(y.InputAttribute(), x);
}

TEST_F(AttributeConnection, WhatIsMissingIsLoggedByThePathFormAlone) {
    EXPECT_FALSE(y.ConnectInputTo(XAttribute()) || XAttribute().ConnectInputTo(x) || x.ConnectOutputTo(XAttribute()));
    EXPECT_EQ(errors(), none());
    EXPECT_FALSE(y.ConnectInputTo(L"a", L"missing"));
    EXPECT_THAT(errors(), ElementsAre(L"Unable to find a node with the path \"a.missing\""));
}

TEST_F(AttributeConnection, AnotherDatabaseIsRefused) {
    TestDocument document;
    XAttribute foreign = document.CreateObject(L"Null").AddFloatAttribute(L"f");
    EXPECT_FALSE(y.ConnectInputTo(foreign) || foreign.ConnectInputTo(x) || x.ConnectOutputTo(foreign));
}

TEST_F(AttributeConnection, OnlyTheHandleFormOfConnectInputConnectsWhatIsNotEditable) {
    TestDocument document;
    XObject object = document.CreateObject(L"Null"), source = document.CreateObject(L"Null");
    XAttribute in = object.AddFloatAttribute(L"in"), out = source.AddFloatAttribute(L"out");
    document.editable = false;
    EXPECT_FALSE(in.ConnectInputTo(source.Path(), L"out"));
    EXPECT_FALSE(out.ConnectOutputTo(in) || out.ConnectOutputTo(object.Path(), L"in"));
    EXPECT_TRUE(in.ConnectInputTo(out));
    in.Disconnect().DisconnectInput();
    out.DisconnectOutputs();
    EXPECT_TRUE(in.IsConnected());
}

TEST_F(AttributeConnection, ACycleIsRefused) {
    EXPECT_TRUE(y.ConnectInputTo(x));
    EXPECT_FALSE(x.ConnectInputTo(y));
    EXPECT_EQ(errors().size(), 1u);
    y.SetFloat(1);
    EXPECT_EQ(x.Float(), 0);
}

TEST_F(AttributeConnection, ConnectionsAreUndone) {
    graph().ClearUndoHistory();
    inBlock([&] { y.ConnectInputTo(x); });
    graph().Undo();
    EXPECT_FALSE(y.IsConnected());
    graph().Redo();
    EXPECT_EQ(y.InputAttribute(), x);
}

TEST_F(AttributeConnection, ComputedIsWhatSomethingAffects) {
    XJoint const joint(make(L"Joint"));
    EXPECT_TRUE(joint.WorldMatrix().IsComputed());
    EXPECT_FALSE(joint.TranslationX().IsComputed());
    y.ConnectInputTo(x);
    EXPECT_TRUE(y.IsComputed() && !y.IsAssigned() && x.IsAssigned());
}

TEST_F(AttributeConnection, AnInvalidHandleIsAssignedAndNotComputed) {
    EXPECT_TRUE(XAttribute().IsAssigned());
    EXPECT_FALSE(XAttribute().IsComputed());
    XAttribute invalid;
    invalid.Compute().Disconnect();
}

TEST_F(AttributeConnection, ComputeBringsAnOutputUpToDate) {
    XJoint joint(make(L"Joint"));
    joint.TranslationX().SetFloat(2);
    XAttribute local = joint.LocalMatrix();
    EXPECT_EQ(local.Compute().Matrix().Translation().X(), 2);
}

}  // namespace
}  // namespace Tavo
