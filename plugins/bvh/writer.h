// Writes motion clips so that reading them gives the same clip: hierarchy, names, channel orders, the frame time as it
// was spelt, and every number in the shortest form that reads back to the same bits.
//
// The same clip always gives the same bytes: tabs, '\n', one frame a line. What the format cannot say is not written:
// a clip that breaks its invariants is refused with a message. Characters that would end a name early ('{' and line
// ends) become '_' and blanks around a name are lost, for a name has no quoting.
#pragma once
#include "plugins/bvh/clip.h"

#include <filesystem>

namespace bvh {

// True if the clip can be written: joints depth first after their parents, no deeper than the reader goes, columns that
// follow each other, no channel twice in a joint, frames x channels values, finite numbers, a frame time in range.
bool check(Clip const& clip, Error& error) noexcept;

// On failure `text` stays as it was. Does not throw.
bool write(Clip const& clip, std::string& text, Error& error) noexcept;

// The file appears whole or not at all: the text goes to a new file in the same folder, is synced and renamed over
// `path`. On failure the new file is removed and an older one stays untouched. Symbolic links are followed; anything
// that is no plain file (a folder, a device) is refused. Does not throw.
bool writeFile(std::filesystem::path const& path, Clip const& clip, Error& error) noexcept;

}  // namespace bvh
