// From the names of a command line to objects and attributes. Patterns: '*' stands for any run of characters of a name,
// '?' for one; without '|' a pattern matches at any depth, with it whole paths.
#pragma once
#include "tavo/objects/scene.h"

#include <string>
#include <vector>

namespace host {

// In the order of the hierarchy, never none: throws a wrong call that proposes the nearest names.
std::vector<Tavo::XObject> findObjects(Tavo::XScene& scene, std::string const& pattern);

// Of "OBJECT.ATTRIBUTE", where OBJECT is a pattern, in the same order. Names may hold dots: the split is the first that
// makes sense. Throws likewise.
std::vector<Tavo::XAttribute> findAttributes(Tavo::XScene& scene, std::string const& text);

// All names of attributes among the objects, each once.
std::vector<std::wstring> attributeNames(std::vector<Tavo::XObject> const& objects);

}  // namespace host
