// A host whose file dialogs are answered by the test.
#pragma once
#include "qel/widgets/app_main_loop.h"
#include "qel/widgets/file_dialog.h"
#include <string>
#include <vector>

namespace Tavo {

class AnsweredDialogs : public wxUtils::FileDialogs {
public:
    AnsweredDialogs() { Mirrel::gMirrel.fileDialogs = this; }
    ~AnsweredDialogs() override { Mirrel::gMirrel.fileDialogs = nullptr; }

    int show(wxUtils::FileDialogRequest const& request, std::wstring& path) override {
        calls.push_back("show");
        requests.push_back(request);
        path = answer;
        return result;
    }
    void raiseMainWindow() override { calls.push_back("raise"); }

    std::wstring answer;
    int result = wxUtils::DialogOK;
    std::vector<std::string> calls;
    std::vector<wxUtils::FileDialogRequest> requests;
};

}  // namespace Tavo
