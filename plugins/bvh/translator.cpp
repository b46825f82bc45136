#include "plugins/bvh/translator.h"

#include "plugins/bvh/exporter.h"
#include "plugins/bvh/importer.h"
#include "plugins/bvh/reader.h"
#include "plugins/bvh/writer.h"
#include "qel/utils/text.h"
#include "tavo/app/application.h"

namespace Tavo {
namespace {

bool failed(std::wstring const& path, bvh::Error const& error) {
    XApplication::Instance().LogError(L"%s: %s", path, Qelutils::fromUtf8(error.text()));
    return false;
}

}  // namespace

bool XBvhTranslatorDef::Import(XScene& scene, std::wstring const& path) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::readFile(Qelutils::toUtf8(path), clip, error)) return failed(path, error);
    return bvh::importClip(clip, scene);
}

bool XBvhTranslatorDef::Export(XScene& scene, std::wstring const& path) {
    bvh::Clip clip;
    bvh::Error error;
    if (!bvh::exportClip(scene, clip, error)) return failed(path, error);
    return bvh::writeFile(Qelutils::toUtf8(path), clip, error) || failed(path, error);
}

}  // namespace Tavo
