#include "tavo/commands/command.h"
#include "tavo/app/application.h"
#include "tavo/commands/transport.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"
#include <memory>

namespace Tavo {

XScene& XCommand::Scene() const { return _scene ? *_scene : XApplication::Instance().ActiveScene(); }

XSettings& XCommand::Settings() const { return XApplication::Instance().Settings(); }

XCommand& XCommand::SetWorkingScene(XScene* scene) {
    _scene = scene;
    return *this;
}

XCommand& XCommand::Results(Qelutils::Vector<XObject>& out) const {
    out = _results;
    return const_cast<XCommand&>(*this);
}

void XCommand::onConstruct() {
    _results.clear();
    _scene = nullptr;
}

void XCommand::onInitialize() {
    XObject::onInitialize();
    onConstruct();
    if (!IsValid()) return;
    for (int i = FirstParameter, count = AttributeCount(); i < count; ++i)
        if (XAttribute const parameter = Attribute(i); parameter.IsValid())
            parameter.getAttribute()->setToDefaultValue();
}

void XCommand::CopyParametersTo(XObject const& object) const {
    for (int i = FirstParameter, count = AttributeCount(); i < count; ++i)
        if (std::wstring const name = Attribute(i).Name(); object.HasAttribute(name))
            object.Attribute(name).CopyValue(Attribute(i));
}

// ---- the run ----

XObject XCommand::Run(XScene* scene, Qelutils::Vector<XObject>& results) {
    _results.clear();
    _scene = scene;
    if (IsValid()) {
        std::unique_ptr<XObject> const typed(CreateObject(&Settings()));
        if (auto* const command = dynamic_cast<XCommand*>(typed.get())) runTyped(*command);
    } else {
        XDatabase document;
        document.Register();
        XObject const node = document.CreateNode(definition()->NodeType());
        std::unique_ptr<XObject> const typed(definition()->CreateObject(&document, node.ObjectID()));
        if (auto* const command = dynamic_cast<XCommand*>(typed.get())) {
            command->onInitialize();
            runTyped(*command);
        }
    }
    results = _results;
    return results.empty() ? XObject() : results.front();
}

void XCommand::runTyped(XCommand& typed) {
    typed.SetWorkingScene(_scene);
    if (!typed.isRunAllowed()) return;
    typed.onPreRun();
    typed.onRun();
    typed.onPostRun();
    _results.insert(_results.end(), typed._results.begin(), typed._results.end());
}

// Also a run that changes nothing is a step: who ran a command can take it back.
void XCommand::onPreRun() {
    Scene().BeginChangeBlock();
    if (XSceneGraph* const graph = Scene().SceneGraph()) graph->keepStep();
}

void XCommand::onPreRun(bool transient) { Scene().BeginChangeBlock(transient); }

// Without a label: the step of a command has no name of its own.
void XCommand::onPostRun() { Scene().EndChangeBlock(); }

bool XCommand::isRunAllowed() const {
    XSceneMode const mode = Scene().SceneMode();
    if (mode == ReadOnlyMode) return false;
    return mode != SimulationMode || definition() == &XPlayToggle::Definition() || definition() == &XStop::Definition();
}

}  // namespace Tavo
