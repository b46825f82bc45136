// XSettings: the application's own document. It holds the persistent command nodes with their parameters, the
// registered file translators, and one settings object. It is saved as XML from one run of the host to the next;
// loading it cannot be undone.
#pragma once
#include "tavo/objects/database.h"
#include "tavo/objects/scene_settings.h"

namespace Tavo {

class XSettingsChange;

class XSettings : public XDatabase {
public:
    static constexpr int MaximumUndoSteps = 100000;
    static constexpr XWord Name = L"Settings";

    XSettings();
    ~XSettings() override;

    void Register() override;  // told to the observers: the time to register commands
    XSettings& New();          // empty, with the defaults
    XSettings& Open();         // after the database has been loaded
    XSceneSettings SceneSettings() const { return _sceneSettings; }

    // Find a translator by the file's extension and have it work on the active scene. A failure is logged; before it,
    // where no translator knows the extension or can do this, so is the extension: all that follows the first "." of
    // the whole path, in upper case.
    void ImportFile(std::wstring const& file);
    void ExportFile(std::wstring const& file);

    void NotifySettingsCreated() { doNotifySettingsCreated(); }
    void NotifySettingsLoaded() { doNotifySettingsLoaded(); }
    void NotifySettingsRegistered() { doNotifySettingsRegistered(); }
    void NotifySettingsChanged(XSettingsChange const& change, bool transient) {
        doNotifySettingsChanged(change, transient);
    }

    void onSceneLoaded(XDatabaseChange const& change) override;
    void onSceneChanged(XDatabaseChange const& change, bool transient) override;

protected:
    void beginDocumentLevelChange();
    void endDocumentLevelChange();

private:
    void bindSettingsObjects();
    void finish();  // what New and Open end with
    void doNotifySettingsCreated();
    void doNotifySettingsLoaded();
    void doNotifySettingsRegistered();
    void doNotifySettingsChanged(XSettingsChange const& change, bool transient);

    XSceneSettings _sceneSettings;
};

}  // namespace Tavo
