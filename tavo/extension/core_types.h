// XCoreTypes: one visible list of the object types that the system offers. A host adds it to the application's
// observers before it opens documents, and each document then gets the definitions when it is registered: scenes the
// scene objects, the settings the object that they hold themselves and the commands, which also get their nodes there.
// The application registers none by itself.
#pragma once
#include "tavo/app/observers.h"

namespace Tavo {

class XDatabase;

class XCoreTypes : public XSceneObserver, public XSettingsObserver {
public:
    void OnSceneRegistered(XScene& scene) override;
    void OnSettingsRegistered(XSettings& settings) override;
    void OnSettingsCreated(XSettings& settings) override;

    // What the two do, for a document of another origin.
    static void RegisterSceneTypes(XDatabase& database);
    static void RegisterSettingsTypes(XDatabase& database);
};

}  // namespace Tavo
