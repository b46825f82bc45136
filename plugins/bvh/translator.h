// The motion clip format as a file translator: register it with the application's settings (an observer's
// OnSettingsRegistered is the moment), and XSettings::ImportFile and ExportFile know the extension "BVH", and with them
// the commands "ImportFile" and "ExportFile".
//
// The parameters are those of these commands, read from the settings' nodes of their names; without a node their
// defaults hold. Automatic units: lengths are judged by the clip, or written in the unit they came in, and angles are
// in degrees. Whether positions replace or add is always judged; who knows better calls importClip.
#pragma once
#include "tavo/objects/translator.h"

namespace Tavo {

class XBvhTranslatorDef : public XTranslatorDef {
public:
    XBvhTranslatorDef() { appendObjectType(L"BvhTranslator"); }

    std::wstring Extension() const override { return L"BVH"; }
    std::wstring Filter() const override { return L"Motion clips (*.bvh)|*.bvh"; }
    bool SupportsImport() const override { return true; }
    bool SupportsExport() const override { return true; }
    // Both log one error with the reason, and the place in the file if there is one, when they fail; then neither the
    // scene nor the file is touched.
    bool Import(XScene& scene, std::wstring const& path) override;
    bool Export(XScene& scene, std::wstring const& path) override;
};

}  // namespace Tavo
