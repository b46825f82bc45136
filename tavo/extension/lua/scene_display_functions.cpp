// A scene's tools and views. Without a display nothing is drawn; what views show is kept with the scene all the same,
// for the host that shows it, and the first view stays the active one.
#include "tavo/extension/lua/scene_rows.h"
#include "tavo/interaction/tool.h"
#include "tavo/interaction/viewport_settings.h"
#include "tavo/kinematics/camera.h"
#include "tavo/objects/object_def.h"
#include <algorithm>
#include <iterator>

namespace Tavo {
namespace {

constexpr XWord colourModes[] = {L"Object", L"DisplayGroup", L"SelectionGroup", L"CollisionGroup"};
constexpr int displayModes = 2;  // 0 normal, 1 x-ray

// Nothing for an empty word.
void setActiveTool(XScriptCall& call, XScene& scene, XScriptKey const& tool) {
    if (!tool.isNumber && tool.text.empty()) return;
    auto const named = std::find(std::begin(ToolNames), std::end(ToolNames), tool.text);
    int const number = tool.isNumber ? tool.number : int(named - std::begin(ToolNames));
    if (number < 0 || number >= int(std::size(ToolNames))) call.Fail("argument 1 (tool) names no tool");
    scene.SetActiveTool(unsigned(number));
}

// ---- the active view ----

int activeView(XScene const& scene) { return scene.ActiveViewportIndex(); }

// The array with an entry for each view.
XAttribute forWriting(XAttribute attribute) {
    if (attribute.IsValid() && attribute.ArraySize() < XScene::ViewportCount)
        attribute.SetArraySize(XScene::ViewportCount);
    return attribute;
}

void setActiveViewport(XScriptCall& call, XScene&, int index) {
    if (index < 0 || index > XScene::ViewportCount)
        call.Fail("argument 1 (index) must be from 1 to " + std::to_string(XScene::ViewportCount));
}

XCamera activeCamera(XScene const& scene) {
    std::wstring const path = scene.ViewportSettings().Camera().String(activeView(scene));
    return XCamera(path.empty() ? XObject() : scene.Object(path));
}

void setActiveCamera(XScene& scene, XCamera const& camera) {
    if (!camera.IsValid() || &camera.Database() != &scene) return;
    forWriting(scene.ViewportSettings().Camera()).SetString(camera.Path(), activeView(scene));
}

int displayMode(XScene const& scene) { return scene.ViewportSettings().DisplayMode().Enumeration(activeView(scene)); }

void setDisplayMode(XScriptCall& call, XScene& scene, int mode) {
    if (mode < 0 || mode >= displayModes) call.Fail("argument 1 (mode) must be 0 or 1");
    forWriting(scene.ViewportSettings().DisplayMode()).SetEnumeration(mode, activeView(scene));
}

std::wstring colourMode(XScene const& scene) {
    int const mode = scene.ViewportSettings().ColourMode().Integer(activeView(scene));
    return colourModes[mode >= 0 && mode < int(std::size(colourModes)) ? mode : ObjectColour];
}

void setColourMode(XScriptCall& call, XScene& scene, XScriptKey const& key) {
    auto const named = std::find(std::begin(colourModes), std::end(colourModes), key.text);
    int const number = key.isNumber ? key.number : named == std::end(colourModes) ? 0 : int(named - colourModes);
    if (number < 0 || number >= int(std::size(colourModes))) call.Fail("argument 1 (mode) must be from 0 to 3");
    forWriting(scene.ViewportSettings().ColourMode()).SetInteger(number, activeView(scene));
}

// ---- the types that it hides ----

XAttribute hiddenTypes(XScene const& scene) {
    XAttribute const filter = scene.ViewportSettings().DisplayFilter();
    return filter.ArraySize() > activeView(scene) ? filter.Attribute(activeView(scene)) : XAttribute();
}

bool isShown(XScene const& scene, std::wstring const& type) { return hiddenTypes(scene).FindString(type) < 0; }

void show(XScene& scene, std::wstring const& type) {
    XAttribute hidden = hiddenTypes(scene);
    for (int i = hidden.ArraySize(); i-- > 0;)
        if (hidden.String(i) == type) hidden.Delete(i);
}

void hide(XScene& scene, std::wstring const& type) {
    XObjectDef const* const definition = scene.ObjectDefinition(type);
    if (!definition || !definition->SupportsType(type) || !isShown(scene, type)) return;
    forWriting(scene.ViewportSettings().DisplayFilter());
    hiddenTypes(scene).AddString(type);
}

void showAll(XScene& scene) { hiddenTypes(scene).Clear(); }

void hideAll(XScene& scene) {
    Qelutils::Vector<XObjectDef*> definitions;
    scene.ObjectDefinitions(definitions);
    for (XObjectDef const* definition : definitions)
        if (definition->SupportsType(XRenderObject::TypeID.c_str())) hide(scene, definition->ObjectType());
}

void toggleShown(XScene& scene, std::wstring const& type) {
    isShown(scene, type) ? hide(scene, type) : show(scene, type);
}

std::vector<XScriptFunction> typeRows() {
    return {
        {"showAllObjectTypes", showAll, {}, "The active view shows objects of all types."},
        {"hideAllObjectTypes", hideAll, {}, "The active view shows no objects."},
        {"showObjectType", show, {"type"}, "The active view shows objects of exactly that type."},
        {"hideObjectType", hide, {"type"}, "The active view hides objects of exactly that type."},
        {"toggleObjectTypeShown",
         toggleShown,
         {"type"},
         "Shows that type in the active view or, if it is shown, hides it."},
        {"isObjectTypeShown", isShown, {"type"}, "Whether the active view shows objects of that type."},
    };
}

}  // namespace

std::vector<XScriptFunction> sceneDisplayRows() {
    std::vector<XScriptFunction> rows = {
        {"activeTool", &XScene::ActiveToolName, {}, "The name of the active tool: \"SelectTool\"."},
        {"activeViewport",
         [](XScene const& scene) { return activeView(scene) + 1; },
         {},
         "The active view, from 1 to 4."},
        {"activeCamera", activeCamera, {}, "The camera of the active view."},
        {"displayMode",
         displayMode,
         {},
         "How the active view draws: 0 normally, 1 as if objects could be seen through."},
        {"colourMode",
         colourMode,
         {},
         "Whose colours the active view shows: Object, DisplayGroup, SelectionGroup or CollisionGroup."},
        {"setActiveTool", setActiveTool, {"tool"}, "Makes a tool active, by its name or its number from 0 on."},
        {"setActiveViewport",
         setActiveViewport,
         {"index"},
         "Makes a view active, from 1 to 4; without a display the first one stays so."},
        {"setActiveCamera", setActiveCamera, {"camera"}, "The camera of the active view."},
        {"setDisplayMode",
         setDisplayMode,
         {"mode"},
         "How the active view draws: 0 normally, 1 as if objects could be seen through."},
        {"setColourMode",
         setColourMode,
         {"mode"},
         "Whose colours the active view shows, by the word or its number from 0 on; an unknown word is Object."},
        {"toggleDisplayMode",
         [](XScriptCall& call, XScene& scene) { setDisplayMode(call, scene, displayMode(scene) == 0 ? 1 : 0); },
         {},
         "Goes over from the one display mode to the other."},
        {"changeEditMode",
         [](XScene& scene, int mode) { scene.ChangeEditMode(mode); },
         {"mode"},
         "What of the one selected object is edited: 0 itself, from 1 on its parts."},
        {"toggleToolAxis",
         &XScene::ToggleActiveToolOrientation,
         {},
         "Has the active tool move or turn along the axes of the object instead of the world's, or back."},
        {"zoomToFit", &XScene::ZoomToFit, {}, "Brings all into view; nothing without a display."},
    };
    std::vector<XScriptFunction> const types = typeRows();
    rows.insert(rows.end(), types.begin(), types.end());
    return rows;
}

}  // namespace Tavo
