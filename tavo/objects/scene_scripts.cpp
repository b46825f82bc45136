// A scene's scripts and the files beside it.
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"
#include <wx/dir.h>
#include <wx/filename.h>

namespace Tavo {
namespace {

// The names of the files that match, in the order of the directory; none when it is missing, which is no error.
Qelutils::Vector<std::wstring> filesIn(std::wstring const& directory, std::wstring const& filter) {
    Qelutils::Vector<std::wstring> names;
    wxString const path(directory);
    if (!wxDir::Exists(path)) return names;
    wxDir const folder(path);
    wxString name;
    for (bool more = folder.IsOpened() && folder.GetFirst(&name, filter, wxDIR_FILES); more;
         more = folder.GetNext(&name))
        names.push_back(name.ToStdWstring());
    return names;
}

std::wstring joined(std::wstring const& directory, std::wstring const& name) {
    return directory + wxString(wxFileName::GetPathSeparator()).ToStdWstring() + name;
}

}  // namespace

XScene& XScene::SetScriptPath(std::wstring const& path) {
    _scriptPath = path;
    return *this;
}

bool XScene::LoadScripts() { return LoadScripts(L""); }

bool XScene::LoadScripts(std::wstring const& path) {
    for (std::wstring const& name : filesIn(path, ScriptFileExtension))
        if (!XApplication::Instance().RunScriptFromFile(joined(path, name))) return false;
    return true;
}

// A script that is missing or fails does not stop the scene.
void XScene::runSceneInitializationLuaScript() {
    XApplication::Instance().RunScriptFromFile(_scriptPath + InitializationScriptName);
}

void XScene::Assets(std::wstring const& directory, std::wstring const& filter,
                    Qelutils::Vector<std::wstring>& out) const {
    out.clear();
    for (std::wstring const& name : filesIn(directory, filter)) out.push_back(joined(directory, name));
}

}  // namespace Tavo
