// A started application with a little scene, such as an import leaves: joints with curves, a shape, a selection.
#pragma once
#include "qel/db/saver_xml.h"
#include "tests/app/fixture.h"

namespace Tavo {

inline std::string documentBytes(XDatabase& document) {
    db::StringOutputStream stream;
    db::SaverXML saver(stream);
    EXPECT_TRUE(saver.save(*document.SceneGraph())) << Qelutils::toUtf8(saver.error());
    return stream.text();
}

class CommandTest : public StartedApplication {
protected:
    CommandTest() { build(); }

    static XSettings& settings() { return application().Settings(); }
    static std::string bytes() { return documentBytes(scene()); }
    static XObject run(std::wstring const& name) { return scene().RunCommand(name); }
    static void undo() { scene().RunCommand(L"Undo"); }
    static void redo() { scene().RunCommand(L"Redo"); }
    static int stepCount() { return undoCount() + int(scene().SceneGraph()->getRedoCount()); }
    // The parameters of a command: its node in the settings.
    template<class Command> static Command parameters() { return Command(settings().Object(Command::TypeID)); }

    static void select(std::vector<XObject> const& objects) {
        scene().Selection().Clear();
        for (XObject const& object : objects) scene().Selection().Append(object);
    }
    static std::vector<XObject> selected() {
        Qelutils::Vector<XObject> out;
        scene().Selection().Objects(out);
        return {out.begin(), out.end()};
    }
    static std::vector<XObject> childrenOf(XObject const& object) {
        Qelutils::Vector<XObject> out;
        object.ChildObjects(out);
        return {out.begin(), out.end()};
    }

    // A new scene: hips > (spine > chest, leg) with Euler curves, the hips' place among them; prop > box.
    void build() {
        scene().New();
        XChangeBlock const block(scene(), label);
        hips = joint(L"hips", scene().RootObject(), {0, 1, 0});
        spine = joint(L"spine", hips, {0, 0.3f, 0.1f});
        chest = joint(L"chest", spine, {0.05f, 0.2f, 0});
        leg = joint(L"leg", hips, {0.1f, -0.1f, 0});
        prop = XTransform(scene().CreateObject(XTransform::TypeID));
        prop.SetName(L"prop");
        prop.SetTranslation(2, 0, 0);
        box = XPrimitive(scene().CreateObject(XPrimitive::TypeID, prop));
        for (XJoint const& animated : {hips, spine})
            for (XAttribute channel : {animated.RotationX(), animated.RotationY(), animated.RotationZ()})
                keyed(channel);
        keyed(hips.TranslationY());
        time().Time().SetFloat(0.25f);
        scene().SetActiveTool(unsigned(MoveTool));
    }

    XJoint hips, spine, chest, leg;
    XTransform prop;
    XPrimitive box;

protected:
    static XJoint joint(std::wstring const& name, XObject const& parent, XVector3 const& at) {
        XJoint made(scene().CreateObject(XJoint::TypeID, parent));
        made.SetName(name);
        made.RotationInterpolation().SetEnumeration(XTransform::EulerInterpolation);
        made.SetTranslation(at);
        return made;
    }
    static void keyed(XAttribute channel) {
        float const value = channel.Float();
        for (int i = 0; i < 4; ++i) channel.SetKeyframe(0.5f * float(i), value + 0.1f * float(i));
    }
    static inline std::wstring const label = L"build";
};

}  // namespace Tavo
