// XCommand: anything a user can invoke by name. Its parameters are the attributes of a node in the settings document,
// so that they persist, can be edited like those of any object, and stay between runs; its virtual operations do the
// work in the working scene. A run is one change block, and so one step of the history when no block is open around it:
// a command has no undo code of its own. There is no rollback: what a command wrote before it gave up stays.
//
// A command is declared with the pattern of tavo/commands/command_pattern.h, and run by its name with
// XScene::RunCommand. Each run makes a typed handle and drops it afterwards: data members do not survive between runs,
// attributes do. Main thread only; a command may run while observers are told, its block then nests.
#pragma once
#include "qel/sg/node_types.h"
#include "tavo/objects/attribute.h"
#include "tavo/objects/object_pattern.h"

namespace Tavo {

class XSettings;

class XCommand : public XTyped<XCommand, XObject, sg::CommandBaseNode> {
public:
    static constexpr XWord TypeID = L"Command";
    static constexpr bool IsUndoable = true;     // a run makes a step of the history
    static constexpr bool ReachesFiles = false;  // of the user's; scripts in a sandbox may not run it
    static constexpr int FirstParameter = 8;     // the attribute number at which parameters begin

    using XTyped::XTyped;
    XCommand(XCommand const& other) : XTyped(other) {}  // without the results of the other
    XCommand& operator=(XCommand const&) = default;

    // Runs on `scene`; null stands for the active one. Fills `results` with what the run created or changed and gives
    // the first of them, or an invalid handle. Silent and without effect where isRunAllowed says no. A handle without a
    // node runs on a node of its own, with the defaults, that goes after the run.
    XObject Run(XScene* scene, Qelutils::Vector<XObject>& results);
    XCommand& Results(Qelutils::Vector<XObject>& out) const;  // of the last run
    XScene& Scene() const;                                    // the working scene, or the active one
    XSettings& Settings() const;                              // the application's
    XCommand& SetWorkingScene(XScene* scene);

    // The values of the parameters, by name, given to those of an object's attributes that bear the same names.
    void CopyParametersTo(XObject const& object) const;

    bool supportsDeletion() const override { return false; }
    bool supportsRenaming() const override { return false; }
    bool supportsReparenting() const override { return false; }
    void onConstruct() override;
    void onInitialize() override;  // the parameters to their defaults

    // ---- what a command overrides, in their order ----
    virtual void onRun() {}
    virtual void onPreRun();  // opens the block of the run; those that move the history or the time open none
    virtual void onPreRun(bool transient);
    virtual void onPostRun();
    // Not in the read-only mode; during simulation only what stops it.
    virtual bool isRunAllowed() const;

protected:
    void addResult(XObject const& object) { _results.push_back(object); }

private:
    void runTyped(XCommand& typed);

    Qelutils::Vector<XObject> _results;
    XScene* _scene = nullptr;
};
using XCommandDef = XTypedDef<XCommand>;

}  // namespace Tavo
