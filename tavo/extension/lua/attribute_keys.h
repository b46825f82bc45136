// The functions of an attribute that reach its curve. An attribute without a curve has no keys: what reads gives 0 or
// an empty list or text, what edits does nothing; createKey and setKey make the curve of an attribute that is
// animatable. Nothing happens to an attribute that can't be edited.
//
// Two ways lead to keys. By time, that is by x: a single key is the one with exactly that x, in the precision of
// curves. By index, in the functions that say so in their name and in keyAtIndex: the key's place in the curve, from 1,
// which is key:index(); a key that moves past another keeps it, one that is added comes last, and a key that is deleted
// leaves no gap. So for a curve whose keys were made in order the first index is the first key.
//
// The system's own ways stay as they are: createKey(x, y) without continuity gives the key the value x, and
// deleteKeys(from, to) takes all keys from the later bound on.
#pragma once
#include "tavo/extension/lua/script_function.h"

namespace Tavo {

// In the order of the vocabulary, where they are the last ones of the attribute's set.
std::vector<XScriptFunction> attributeKeyFunctions();

}  // namespace Tavo
