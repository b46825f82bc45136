// File translators: a plug-in adds a foreign format by registering a definition derived from XTranslatorDef with the
// settings. Commands and the settings find it by the file's extension.
#pragma once
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

// The object handle of a translator's definition; it has no node.
class XTranslator : public XTyped<XTranslator, XObject> {
public:
    static constexpr XWord TypeID = L"Translator";
    using XTyped::XTyped;
};

// A subclass overrides Extension, Filter, one of the two Supports operations and the operation that goes with it.
class XTranslatorDef : public XTypedDef<XTranslator> {
public:
    bool IsTranslator() const override { return true; }
    virtual std::wstring Extension() const { return {}; }  // upper case, without a dot
    virtual std::wstring Filter() const { return {}; }     // "Motion (*.bvh)|*.bvh"
    virtual bool SupportsImport() const { return false; }
    virtual bool SupportsExport() const { return false; }
    // True on success. The caller brackets an import in a change block.
    virtual bool Import(XScene& /*scene*/, std::wstring const& /*path*/) { return false; }
    virtual bool Export(XScene& /*scene*/, std::wstring const& /*path*/) { return false; }
};

}  // namespace Tavo
