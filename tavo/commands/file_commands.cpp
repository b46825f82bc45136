#include "tavo/commands/file_commands.h"
#include "qel/utils/text.h"
#include "qel/widgets/app_main_loop.h"
#include "qel/widgets/file_dialog.h"
#include "tavo/app/application.h"
#include "tavo/objects/scene.h"
#include "tavo/objects/settings.h"
#include "tavo/objects/translator.h"
#include <algorithm>
#include <filesystem>

namespace Tavo {
namespace {

std::wstring filterOf(XSettings const& settings, bool (XTranslatorDef::*supports)() const) {
    std::wstring filter = L"All Files (*.*)|*.*";
    for (auto const& [extension, translator] : settings.Translators())
        if ((translator->*supports)()) filter += L"|" + translator->Filter();
    return filter;
}

// Whether a file was chosen. A host without dialogs is told once, and goes on as if the dialog had been cancelled.
bool askForFile(wxUtils::FileDialogRequest const& request, std::wstring& path) {
    wxUtils::FileDialogs* const dialogs = Mirrel::gMirrel.fileDialogs;
    if (!dialogs) {
        XApplication::Instance().LogWarning(L"%s: this host has no file dialog", request.title);
        return false;
    }
    int const answer = dialogs->show(request, path);
    dialogs->raiseMainWindow();
    return answer == wxUtils::DialogOK;
}

// Without steps such as ./ and ../, which the settings would take for the beginning of the file's extension.
std::wstring withoutSteps(std::wstring const& file) {
    std::filesystem::path const path = Qelutils::toUtf8(file);
    if (std::none_of(path.begin(), path.end(), [](auto const& part) { return part == "." || part == ".."; }))
        return file;
    std::error_code failed;
    std::filesystem::path const whole = std::filesystem::absolute(path, failed);
    return failed ? file : Qelutils::fromUtf8(whole.lexically_normal().string());
}

// For one run: whoever runs the command next is asked again.
std::wstring takeFile(XAttribute parameter) {
    std::wstring file = parameter.String();
    if (file.empty()) return file;
    XDatabase& settings = parameter.Database();
    settings.BeginChangeBlock();
    parameter.SetString({});
    settings.EndChangeBlock();
    return withoutSteps(file);
}

}  // namespace

void XImportFile::onRun() {
    std::wstring const file = takeFile(File());
    file.empty() ? ImportFileWithDialogue() : Settings().ImportFile(file);
}

void XExportFile::onRun() {
    std::wstring const file = takeFile(File());
    file.empty() ? ExportFileWithDialogue() : Settings().ExportFile(file);
}

void XImportFile::ImportFileWithDialogue() {
    std::wstring path;
    if (askForFile({XScene::FileImportDialogTitle,
                    {},
                    {},
                    filterOf(Settings(), &XTranslatorDef::SupportsImport),
                    wxUtils::OpenFile},
                   path))
        Settings().ImportFile(path);
}

void XExportFile::ExportFileWithDialogue() {
    std::wstring path;
    if (askForFile({XScene::FileExportDialogTitle,
                    {},
                    {},
                    filterOf(Settings(), &XTranslatorDef::SupportsExport),
                    wxUtils::SaveFile},
                   path))
        Settings().ExportFile(path);
}

}  // namespace Tavo
