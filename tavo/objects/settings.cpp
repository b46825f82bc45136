#include "tavo/objects/settings.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/app/observers.h"
#include "tavo/objects/database_change.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/translator.h"

namespace Tavo {
namespace {

using SupportsFormat = bool (XTranslatorDef::*)() const;
using Translate = bool (XTranslatorDef::*)(XScene&, std::wstring const&);

struct Translation {
    SupportsFormat supports;
    Translate run;
    wchar_t const *noTranslator, *failure;
};
constexpr Translation importing = {&XTranslatorDef::SupportsImport, &XTranslatorDef::Import,
                                   L"There are no file translators which support importing from the format (\"%s\")",
                                   L"Unable to import the file at \"%s\""};
constexpr Translation exporting = {&XTranslatorDef::SupportsExport, &XTranslatorDef::Export,
                                   L"There are no file translators which support exporting to the format (\"%s\")",
                                   L"Unable to export the file to \"%s\""};

// What follows the first "." of the whole path, so that a dot in a folder's name gives a wrong extension: it stays.
std::wstring extensionOf(std::wstring const& file) {
    std::size_t const dot = file.find(L'.');
    return dot == std::wstring::npos ? std::wstring() : Qelutils::toUpper(file.substr(dot + 1));
}

bool translate(XSettings const& settings, std::wstring const& file, Translation const& task) {
    std::wstring const extension = extensionOf(file);
    auto const found = settings.Translators().find(extension);
    XTranslatorDef* const translator = found == settings.Translators().end() ? nullptr : found->second;
    XApplication& application = XApplication::Instance();
    if (translator && (translator->*task.supports)()) return (translator->*task.run)(application.ActiveScene(), file);
    application.LogError(task.noTranslator, extension);
    return false;
}

}  // namespace

XSettings::XSettings() { setFlag(SettingsFlag); }

XSettings::~XSettings() = default;

void XSettings::Register() {
    XDatabase::Register();
    SceneGraph()->setLogger(XApplication::Instance().Logger());
    doNotifySettingsRegistered();
}

void XSettings::bindSettingsObjects() {
    XObject namesake(SceneGraph()->Node(Name));
    _sceneSettings = XSceneSettings(namesake);
    if (_sceneSettings.IsValid()) return;
    // An object of another type gives the name up: else each load of the file would add a settings object.
    namesake.SetName(namesake.ObjectType(), true);
    _sceneSettings = XSceneSettings(CreateObject(XSceneSettings::TypeID));
    _sceneSettings.SetName(Name, true);
}

void XSettings::finish() {
    bindSettingsObjects();
    SceneGraph()->setName(Name);
    doNotifySettingsCreated();
    endDocumentLevelChange();
}

XSettings& XSettings::New() {
    if (!IsValid()) return *this;
    beginDocumentLevelChange();
    clearNodes();
    finish();
    return *this;
}

XSettings& XSettings::Open() {
    if (!IsValid()) return *this;
    beginDocumentLevelChange();
    repairSceneFileErrors();
    finish();
    return *this;
}

void XSettings::beginDocumentLevelChange() { beginUnrecorded(); }

void XSettings::endDocumentLevelChange() {
    endUnrecorded(MaximumUndoSteps);
    doNotifySettingsLoaded();
}

void XSettings::ImportFile(std::wstring const& file) {
    if (!translate(XApplication::Instance().Settings(), file, importing))
        XApplication::Instance().LogError(importing.failure, file);
}

void XSettings::ExportFile(std::wstring const& file) {
    if (!translate(*this, file, exporting)) XApplication::Instance().LogError(exporting.failure, file);
}

void XSettings::onSceneLoaded(XDatabaseChange const&) { doNotifySettingsLoaded(); }

void XSettings::onSceneChanged(XDatabaseChange const& change, bool transient) {
    doNotifySettingsChanged(XSettingsChange(*this, change.ChangeSet()), transient);
}

void XSettings::doNotifySettingsCreated() {
    XApplication::Instance().ForEachSettingsObserver([&](XSettingsObserver& each) { each.OnSettingsCreated(*this); });
}

void XSettings::doNotifySettingsLoaded() {
    XApplication::Instance().ForEachSettingsObserver([&](XSettingsObserver& each) { each.OnSettingsLoaded(*this); });
}

void XSettings::doNotifySettingsRegistered() {
    XApplication::Instance().ForEachSettingsObserver(
        [&](XSettingsObserver& each) { each.OnSettingsRegistered(*this); });
}

void XSettings::doNotifySettingsChanged(XSettingsChange const& change, bool transient) {
    XApplication::Instance().ForEachSettingsObserver(
        [&](XSettingsObserver& each) { each.OnSettingsChanged(change, transient); });
}

}  // namespace Tavo
