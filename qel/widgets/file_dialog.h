// Asking the user for a file. The core knows only this interface: a host with windows fills
// Mirrel::gMirrel.fileDialogs, one without leaves it null.
#pragma once
#include <string>

namespace wxUtils {

enum FileDialogStyle : int { OpenFile = 1, SaveFile = 2 };

// What a dialog returns, in the numbers of the widget toolkit.
inline constexpr int DialogOK = 5100, DialogCancelled = 5101;

struct FileDialogRequest {
    std::wstring title, directory, file;  // what stands in the dialog when it opens
    std::wstring filter;  // descriptions and patterns in turn: "All Files (*.*)|*.*|Motion (*.bvh)|*.bvh"
    FileDialogStyle style = OpenFile;
};

class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    virtual int show(FileDialogRequest const& request, std::wstring& path) = 0;  // DialogOK: `path` is the answer
    virtual void raiseMainWindow() {}  // after a dialog: the main window comes up again
};

}  // namespace wxUtils
