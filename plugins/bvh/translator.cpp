#include "plugins/bvh/translator.h"

#include "plugins/bvh/exporter.h"
#include "plugins/bvh/importer.h"
#include "plugins/bvh/reader.h"
#include "plugins/bvh/writer.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"
#include "tavo/commands/file_commands.h"
#include "tavo/objects/scene_graph.h"
#include "tavo/objects/settings.h"

namespace Tavo {
namespace {

bool failed(std::wstring const& path, bvh::Error const& error) {
    XApplication::Instance().LogError(L"%s: %s", path, Qelutils::fromUtf8(error.text()));
    return false;
}

// The settings' node of that command; an invalid handle when there is none.
template<class Command> Command parameters() {
    return Command(XApplication::Instance().Settings().SceneGraph()->Node(Command::TypeID));
}

std::optional<bvh::Unit> unitOf(XAttribute const& choice) {
    static_assert(int(bvh::Unit::yard) + 1 == file_units::AutomaticLength);  // both lists go from millimetres to yards
    int const number = choice.Enumeration();
    if (number < 0 || number >= file_units::AutomaticLength) return {};
    return static_cast<bvh::Unit>(number);
}

bvh::Angles anglesOf(XAttribute const& choice) {
    return choice.Enumeration() == int(sg::AngularUnit::Radians) ? bvh::Angles::radians : bvh::Angles::degrees;
}

bvh::ImportOptions optionsOf(XImportFile const& command) {
    bvh::ImportOptions options;
    if (!command.IsValid()) return options;
    options.unit = unitOf(command.LinearUnits());
    options.angles = anglesOf(command.AngularUnits());
    options.replace = command.ImportMode().Enumeration() == XImportFile::ReplaceObjects;
    options.resetTimeline = command.ResetTimeline().Boolean();
    options.characterize = command.Characterize().Boolean();
    return options;
}

bvh::ExportOptions optionsOf(XExportFile const& command) {
    bvh::ExportOptions options;
    if (!command.IsValid()) return options;
    options.unit = unitOf(command.LinearUnits());
    options.angles = anglesOf(command.AngularUnits());
    options.selectedOnly = command.ExportSelected().Boolean();
    return options;
}

}  // namespace

bool XBvhTranslatorDef::Import(XScene& scene, std::wstring const& path) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::readFile(Qelutils::toUtf8(path), clip, error)) return failed(path, error);
    return bvh::importClip(clip, scene, optionsOf(parameters<XImportFile>()));
}

bool XBvhTranslatorDef::Export(XScene& scene, std::wstring const& path) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::exportClip(scene, clip, error, optionsOf(parameters<XExportFile>()))) return failed(path, error);
    return bvh::writeFile(Qelutils::toUtf8(path), clip, error) || failed(path, error);
}

}  // namespace Tavo
