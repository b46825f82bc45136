// Reads motion clips: a HIERARCHY of joints and a MOTION block of numbers.
//
// Files of many makers differ, so what has one meaning is accepted: any channel order, keywords in either case, names
// with spaces, colons and dots, braces on the same line or the next, every kind of line end, numbers such as ".5",
// "+2", "1e-3" and "0.0-7.5" (two of them), several roots, a byte order mark. What has none is refused with one message
// and its place: unbalanced braces, counts that differ from what is there, text or nan among the numbers. Nothing is
// guessed or dropped.
//
// Limits: 10,000 joints deep, 6 channels a joint and none twice, a frame time between a microsecond and a million
// seconds. A hostile text costs time and memory in proportion to its own length, whatever counts it claims.
#pragma once
#include "plugins/bvh/clip.h"

#include <filesystem>
#include <string_view>

namespace bvh {

inline constexpr int deepest = 10000;

// Values that are legal, yet so large (beyond a million units or degrees) that the capture most likely failed there.
inline constexpr double suspiciousValue = 1e6;
inline constexpr std::size_t suspiciousKept = 20;

struct Suspicious {
    double value = 0;
    int frame = 0;   // from 0
    int joint = 0;   // index
    int line = 0;    // from 1
    int column = 0;  // from 1, in characters
};

struct Notes {
    std::vector<Suspicious> suspicious;  // the first suspiciousKept of them
    std::size_t suspiciousCount = 0;     // all of them
};

// On failure `clip` and `notes` stay as they were and `error` says what and where. Neither function throws.
bool read(std::string_view text, Clip& clip, Error& error, Notes* notes = nullptr) noexcept;
bool readFile(std::filesystem::path const& path, Clip& clip, Error& error, Notes* notes = nullptr) noexcept;

}  // namespace bvh
