// Edits of all objects that a pattern matches. The matches are found once and held as handles: what an edit takes along
// reads invalid and is skipped, so that n objects cost n steps and changed paths mislead nobody.
#include "tavo/objects/database.h"
#include "tavo/objects/object_deletion.h"
#include <algorithm>
#include <functional>
#include <iterator>

namespace Tavo {
namespace {

// Labels of undo steps: change blocks hold them by reference.
std::wstring const deletingLabel = L"Deleting objects", removingLabel = L"Removing objects",
                   renamingLabel = L"Renaming objects", reparentingLabel = L"Reparenting objects",
                   unparentLabel = L"Unparent Objects", noLabel;

}  // namespace

Qelutils::Vector<XObject> XDatabase::collect(std::vector<std::wstring> const& patterns,
                                             bool (XObject::*accepts)() const) const {
    Qelutils::Vector<XObject> out, matches;
    for (std::wstring const& pattern : patterns) {
        findMatchingObjects(pattern, matches);
        std::copy_if(matches.begin(), matches.end(), std::back_inserter(out), std::mem_fn(accepts));
    }
    return out;
}

void XDatabase::CopyObjects(std::vector<std::wstring> const& patterns) {
    XChangeBlock const block(*this, noLabel);
    for (std::wstring const& pattern : patterns)
        for (XObject& object : collect({pattern}, &XObject::IsValid)) object.Copy();
}

// A delete that frees nothing ends the edit.
void XDatabase::DeleteObjects(std::wstring const& pattern) {
    XChangeBlock const block(*this, deletingLabel);
    for (XObject& object : collect({pattern}, &XObject::SupportsDeletion)) {
        if (!object.IsValid()) continue;
        object.DeleteChildObjects();
        object.Delete();
        if (object.IsValid()) break;
    }
}
void XDatabase::DeleteObjects(std::vector<std::wstring> const& patterns) {
    XChangeBlock const block(*this, deletingLabel);
    for (std::wstring const& pattern : patterns) DeleteObjects(pattern);
}

// From the last match to the first: what lies deeper moves up before its parent goes.
void XDatabase::RemoveObjects(std::wstring const& pattern) {
    XChangeBlock const block(*this, removingLabel);
    Qelutils::Vector<XObject> matches = collect({pattern}, &XObject::SupportsDeletion);
    for (auto object = matches.rbegin(); object != matches.rend(); ++object) {
        if (!object->IsValid()) continue;
        ReparentChildObjects(*object);
        XObject::Deletion(XObjectEvents::Removed).Run(*object);
        if (object->IsValid()) break;
    }
}
void XDatabase::RemoveObjects(std::vector<std::wstring> const& patterns) {
    XChangeBlock const block(*this, removingLabel);
    for (std::wstring const& pattern : patterns) RemoveObjects(pattern);
}

void XDatabase::RenameObjects(std::wstring const& pattern, std::wstring const& newName) {
    XChangeBlock const block(*this, renamingLabel);
    for (XObject& object : collect({pattern}, &XObject::SupportsRenaming)) object.SetName(newName);
}
void XDatabase::RenameObjects(std::vector<std::wstring> const& patterns, std::wstring const& newName) {
    XChangeBlock const block(*this, renamingLabel);
    for (std::wstring const& pattern : patterns) RenameObjects(pattern, newName);
}

void XDatabase::ReparentObjects(std::wstring const& pattern, std::wstring const& parentPath) {
    ReparentObjects(std::vector<std::wstring>{pattern}, parentPath);
}
void XDatabase::ReparentObjects(std::vector<std::wstring> const& patterns, std::wstring const& parentPath) {
    XChangeBlock const block(*this, reparentingLabel);
    XObject const parent = Object(parentPath);
    if (!parent.IsValid()) return;
    for (XObject& object : collect(patterns, &XObject::SupportsReparenting)) object.SetParent(parent);
}

void XDatabase::UnparentObjects(std::wstring const& pattern) {
    for (XObject& object : collect({pattern}, &XObject::SupportsReparenting)) object.Unparent();
}

// The block ends twice, first without a label, which is the one that the step gets: a decision of this system. The
// second end finds no block unless the caller has one open.
void XDatabase::UnparentObjects(std::vector<std::wstring> const& patterns) {
    XChangeBlock const block(*this, unparentLabel);
    for (XObject& object : collect(patterns, &XObject::SupportsReparenting)) object.Unparent();
    EndChangeBlock();
}

}  // namespace Tavo
