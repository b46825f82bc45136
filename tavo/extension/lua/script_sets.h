// All that scripts can call, table by table; each set stands in a source of its own name. The numbers of the functions
// are their places.
#pragma once
#include "tavo/extension/lua/script_function.h"

namespace Tavo {

XScriptSet const& AppFunctions();
XScriptSet const& SceneFunctions();
XScriptSet const& ObjectFunctions();
XScriptSet const& RenderObjectFunctions();
XScriptSet const& TransformFunctions();
XScriptSet const& JointFunctions();
XScriptSet const& IKHandleFunctions();
XScriptSet const& TrajectoryFunctions();
XScriptSet const& KeyframeFunctions();
XScriptSet const& Vector3Functions();
XScriptSet const& QuaternionFunctions();
XScriptSet const& MatrixFunctions();
XScriptSet const& AttributeFunctions();

// In the order above.
std::vector<XScriptSet const*> const& AllScriptSets();
// Those of an object type, by its word; null for a type that has none of its own.
XScriptSet const* FunctionsOfType(std::wstring_view type);

}  // namespace Tavo
