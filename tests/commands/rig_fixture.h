// Skeletons for rigs, and questions to the graph that the tests of rigs have in common.
#pragma once
#include "qel/db/loader_xml.h"
#include "tests/commands/fixture.h"

namespace Tavo {

class RigTest : public CommandTest {
protected:
    using Objects = std::vector<XObject>;
    using Numbers = std::vector<int>;

    static std::vector<XObject> objectsOf(XAttribute const& references) {
        Qelutils::Vector<XObject> out;
        references.ObjectRefs(out);
        return {out.begin(), out.end()};
    }
    static Numbers integersOf(XAttribute const& array) {
        Qelutils::Vector<int> out;
        array.Integers(out);
        return {out.begin(), out.end()};
    }
    static std::vector<float> numbers(XMatrix const& m) {
        std::vector<float> out;
        for (int i = 0; i < 16; ++i) out.push_back(m.Element(i / 4, i % 4));
        return out;
    }
    static std::vector<float> numbers(XAttribute const& matrix) { return numbers(matrix.Matrix()); }
    static Objects childrenOf(XObject const& object, db::NodeDef const& def) {
        Objects children = CommandTest::childrenOf(object);
        std::erase_if(children, [&](XObject const& child) { return !child.getNode()->isOfType(def); });
        return children;
    }
    // The children with something that flows in, and whether each is fed by the source of its number.
    static void expectFed(XAttribute const& compound, int first, std::vector<XAttribute> const& sources) {
        for (std::size_t i = 0; i < sources.size(); ++i) {
            XAttribute const part = compound.Attribute(first + int(i));
            EXPECT_EQ(part.InputAttribute(), sources[i]) << Qelutils::toUtf8(part.Path());
            EXPECT_TRUE(part.getAttribute()->compare(*sources[i].getAttribute())) << Qelutils::toUtf8(part.Path());
        }
    }
    static XJointLimit limited(XJoint joint) {
        XJointLimit const limit = joint.CreateJointLimit();
        limit.LimitType().SetEnumeration(1);
        limit.Swing1Angle().SetFloat(0.3f);
        limit.Swing2Active().SetBoolean(false);
        limit.TwistOffset().SetFloat(0.1f);
        return limit;
    }
    static std::vector<XAttribute> partsOf(XJointLimit const& limit) {
        return {limit.LimitType(),   limit.LocalMatrix(),  limit.MovingOffsetMatrix(), limit.Swing1Active(),
                limit.Swing1Angle(), limit.Swing2Active(), limit.Swing2Angle(),        limit.TwistActive(),
                limit.TwistAngle(),  limit.TwistOffset()};
    }
    // The matrix drives the joint: along a conversion that knows the joint's pre and post rotation.
    static void expectDriven(XTransform const& joint, XAttribute const& matrix, bool translation,
                             XObject const& associated) {
        XMatrixConversion const conversion(joint.RotationX().InputObject());
        ASSERT_TRUE(conversion.IsValid()) << Qelutils::toUtf8(joint.Name());
        EXPECT_EQ(associated, conversion);
        EXPECT_EQ(conversion.InputMatrix().InputAttribute(), matrix);
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(joint.Attribute(24 + axis).InputAttribute(), conversion.Attribute(21 + axis));
            EXPECT_EQ(conversion.Attribute(12 + axis).InputAttribute(), joint.Attribute(39 + axis));
            EXPECT_EQ(conversion.Attribute(15 + axis).InputAttribute(), joint.Attribute(42 + axis));
            EXPECT_EQ(joint.Attribute(21 + axis).InputAttribute(),
                      translation ? conversion.Attribute(18 + axis) : XAttribute());
        }
    }
    // The command is one step, and undo and redo move it to the byte.
    static void expectUndoable(std::wstring const& command) {
        scene().CommitTransient();
        std::string const before = bytes();
        int const steps = undoCount();
        run(command);
        EXPECT_EQ(undoCount(), steps + 1);
        std::string const after = bytes();
        EXPECT_FALSE(before == after);
        undo();
        EXPECT_TRUE(bytes() == before);
        redo();
        EXPECT_TRUE(bytes() == after);
    }
    static bool changesNothing(Objects const& selection, std::wstring const& command) {
        select(selection);
        std::string const before = bytes();
        Qelutils::Vector<XObject> results;
        scene().RunCommand(command, results);
        return bytes() == before && results.empty();
    }
    static void load(std::string const& text) {
        db::StringInputStream stream(text);
        db::LoaderXML loader(stream);
        ASSERT_TRUE(loader.load(*scene().SceneGraph())) << Qelutils::toUtf8(loader.error());
        scene().Open();
    }
    // Every node of the document in the order of the hierarchy, but the connections.
    static Objects allObjects() {
        std::vector<db::Node*> nodes;
        scene().SceneGraph()->getDescendents(nodes);
        return {nodes.begin(), nodes.end()};
    }
    static void readAll() {
        for (XObject const& object : allObjects())
            if (XTransform const transform(object); transform.IsValid()) {
                std::vector<float> const world = numbers(transform.WorldMatrix());
                EXPECT_TRUE(std::all_of(world.begin(), world.end(), [](float f) { return std::isfinite(f); }));
            }
    }
};

#define EXPECT_SAME_MATRIX(a, b) EXPECT_THAT(numbers(a), testing::Pointwise(testing::FloatNear(1e-5f), numbers(b)))

}  // namespace Tavo
