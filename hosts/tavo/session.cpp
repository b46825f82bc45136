#include "hosts/tavo/session.h"

#include "plugins/bvh/exporter.h"
#include "plugins/bvh/translator.h"
#include "plugins/bvh/writer.h"
#include "qel/db/loader_xml.h"
#include "qel/db/saver_xml.h"
#include "qel/utils/text.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/scene_graph.h"

#include <filesystem>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::fromUtf8;
using Qelutils::toUtf8;

enum class Kind { clip, scene, unknown };

Failure badInput(std::string const& file, std::string const& why) {
    return {ExitCode::badInput, fmt::format("{}: {}", file, why)};
}

std::string extensionOf(std::string const& file) {
    return toUtf8(Qelutils::toLower(fromUtf8(std::filesystem::path(file).extension().string())));
}

// The first bytes, without a byte order mark and blanks. Throws when there is nothing to read.
std::string beginningOf(std::string const& file) {
    db::FileInputStream stream{fromUtf8(file)};
    std::string text(4096, '\0');
    text.resize(stream.read(text.data(), text.size()));
    if (!stream.ok()) throw Failure{ExitCode::badInput, toUtf8(stream.error())};
    std::size_t const start = text.find_first_not_of("\xEF\xBB\xBF \t\r\n\v\f");
    return start == std::string::npos ? std::string() : text.substr(start);
}

// By what stands in it; the name decides only where that tells nothing.
Kind kindOf(std::string const& file) {
    std::string const text = beginningOf(file);
    if (text.substr(0, 1) == "<") return Kind::scene;
    if (Qelutils::toUpper(fromUtf8(text.substr(0, 9))) == L"HIERARCHY") return Kind::clip;
    std::string const extension = extensionOf(file);
    return extension == ".bvh" ? Kind::clip : extension == ".tavo" ? Kind::scene : Kind::unknown;
}

bvh::Positions positionsOf(std::string const& word) {
    bvh::Positions positions = bvh::Positions::automatic;
    if (!bvh::parsePositions(word, positions))
        throw wrongCall(fmt::format("--positions is auto, replace or add, not \"{}\"", word), word,
                        {L"auto", L"replace", L"add"});
    return positions;
}

}  // namespace

std::optional<bvh::Unit> unitOf(std::string const& word) {
    bvh::Unit unit = bvh::Unit::metre;
    if (Qelutils::toLower(fromUtf8(word)) == L"auto") return {};
    if (!bvh::parseUnit(word, unit))
        throw wrongCall(fmt::format("there is no unit \"{}\"; units are mm, cm, m, in, ft, yd, or auto to guess", word),
                        word, {L"auto", L"mm", L"cm", L"m", L"in", L"ft", L"yd"});
    return unit;
}

void Session::Formats::OnSettingsRegistered(XSettings& settings) {
    settings.CoreModule().Register(new XBvhTranslatorDef);
}

Session::Session(LuaPlus::LuaStateOwner* state) {
    Mirrel::gMirrel.mainLoop = &mainLoop_;
    XApplication& application = XApplication::Instance();
    application.AddSceneObserver(&coreTypes_).AddSettingsObserver(&coreTypes_).AddSettingsObserver(&formats_);
    application.Startup(state, &log_, L"");
    application.Settings().New();  // the defaults, until settings are loaded
}

// What was begun is ended by the destructor also when the file cannot be opened.
Session::Session(Input const& input) : Session() { open(input); }

Session::~Session() { XApplication::Instance().Shutdown(); }

void Session::open(Input const& input) {
    std::optional<bvh::Unit> const unit = unitOf(input.units);
    bvh::Positions const positions = positionsOf(input.positions);
    switch (kindOf(input.file)) {
    case Kind::clip: openClip(input.file, {positions, unit}); break;
    case Kind::scene: openScene(input.file); break;
    case Kind::unknown: throw badInput(input.file, "it is neither a motion clip nor a scene");
    }
}

void Session::openClip(std::string const& file, bvh::ImportOptions const& options) {
    static std::wstring const label = L"Import";
    OpenedClip& opened = clip_.emplace();
    bvh::Error error;
    if (!bvh::readFile(file, opened.clip, error, &opened.notes)) throw badInput(file, error.text());
    scene().New();
    XChangeBlock const block(scene(), label);
    if (!bvh::importClip(opened.clip, scene(), options, &opened.report))
        throw Failure{ExitCode::failed, fmt::format("{}: the clip could not be brought into a scene", file)};
}

void Session::openScene(std::string const& file) {
    db::FileInputStream stream{fromUtf8(file)};
    db::LoaderXML loader{stream};
    if (!loader.load(*scene().SceneGraph())) throw badInput(file, toUtf8(loader.error()));
    scene().Open();
}

std::vector<std::string> Session::errorsOf(std::function<void()> const& work) {
    std::vector<std::string> errors;
    struct Keeping {
        ConsoleLog& log;
        ~Keeping() { log.keepErrorsIn(nullptr); }
    } const keeping{log_};
    log_.keepErrorsIn(&errors);
    work();
    return errors;
}

void Session::save(std::string const& file) {
    if (extensionOf(file) == ".bvh")
        saveClip(file, {});
    else
        saveScene(file);
}

void Session::saveScene(std::string const& file) {
    db::FileOutputStream stream{fromUtf8(file)};
    db::SaverXML saver{stream};
    if (!saver.save(*scene().SceneGraph())) throw Failure{ExitCode::failed, toUtf8(saver.error())};
}

bvh::Clip Session::saveClip(std::string const& file, std::optional<bvh::Unit> unit) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::exportClip(scene(), clip, error, {unit}) || !bvh::writeFile(file, clip, error))
        throw Failure{ExitCode::failed, error.text()};
    return clip;
}

}  // namespace host
