#include "hosts/tavo/paths.h"

#include "hosts/tavo/console.h"
#include "hosts/tavo/find.h"
#include "qel/utils/text.h"
#include "tavo/kinematics/matrix_conversion.h"

#include <algorithm>
#include <fmt/format.h>
#include <numeric>

namespace host {

using namespace Tavo;
using Qelutils::toUtf8;

namespace {

enum KeyPart : int { KeyParameter = 0, KeyPosition = 2 };

// "Hips_trajectory", and "Hips_trajectory1" for the next one.
bool isNamedAfter(XTrajectory const& path, XObject const& object) {
    std::wstring const stem = object.Name() + L'_' + std::wstring(XTrajectory::DefaultName), name = path.Name();
    return name.starts_with(stem) && name.find_first_not_of(L"0123456789", stem.size()) == std::wstring::npos;
}

bool belongsTo(XTrajectory const& path, XObject const& object) {
    if (path == object || isNamedAfter(path, object)) return true;
    std::vector<XObject> const followers = followersOf(path);
    return std::find(followers.begin(), followers.end(), object) != followers.end();
}

std::vector<std::wstring> namesOf(std::vector<XTrajectory> const& paths) {
    std::vector<std::wstring> names;
    for (XTrajectory const& path : paths) names.push_back(path.Name());
    return names;
}

}  // namespace

std::vector<XTrajectory> allTrajectories(XScene& scene) {
    Qelutils::Vector<XObject> found;
    scene.Objects(XTrajectory::TypeID, SupportsObjectType, found);
    return {found.begin(), found.end()};
}

std::vector<XTrajectory> findTrajectories(XScene& scene, std::vector<std::string> const& patterns) {
    std::vector<XTrajectory> const all = allTrajectories(scene);
    std::vector<XTrajectory> found;
    for (std::string const& pattern : patterns) {
        bool any = false;
        for (XObject const& object : findObjects(scene, pattern))
            for (XTrajectory const& path : all) {
                if (!belongsTo(path, object)) continue;
                any = true;
                if (std::find(found.begin(), found.end(), path) == found.end()) found.push_back(path);
            }
        if (!any)
            throw wrongCall(fmt::format("\"{}\" has no trajectory", pattern), pattern, namesOf(all),
                            "; `tavo trajectory generate` makes one");
    }
    return found;
}

XTrajectory findTrajectory(XScene& scene, std::string const& pattern) {
    std::vector<XTrajectory> const found = findTrajectories(scene, {pattern});
    if (found.size() > 1)
        throw wrongCall(fmt::format("\"{}\" has {} trajectories, and one is edited at a time: {}, {}{}", pattern,
                                    found.size(), pathOf(found[0]), pathOf(found[1]), found.size() > 2 ? ", ..." : ""));
    return found.front();
}

std::vector<XObject> followersOf(XTrajectory const& path) {
    std::vector<XObject> followers;
    Qelutils::Vector<XObject> conversions;
    path.WorldCurveMatrix().OutputObjects(conversions);
    for (XObject const& conversion : conversions) {
        if (!conversion.SupportsType(XMatrixConversion::TypeID)) continue;
        Qelutils::Vector<XObject> driven;
        XMatrixConversion(conversion).TranslationX().OutputObjects(driven);
        followers.insert(followers.end(), driven.begin(), driven.end());
    }
    return followers;
}

int keyCountOf(XTrajectory const& path) { return path.TranslationKeyframesArray().AttributeCount(); }

Qelutils::Vector<Qelp::Vector3> positionsOf(XTrajectory const& path) {
    XAttribute const keys = path.TranslationKeyframesArray();
    Qelutils::Vector<Qelp::Vector3> positions;
    for (int slot = 0; slot < keys.AttributeCount(); ++slot)
        positions.push_back(keys.Attribute(slot).Attribute(KeyPosition).Vector().AsVector());
    return positions;
}

XVector3 keyPosition(XTrajectory const& path, int key, std::string const& option) {
    int const count = keyCountOf(path), slot = key >= 0 && key < count ? path.ParameterIndex(float(key)) : -1;
    if (slot < 0)
        throw wrongCall(fmt::format("{}: {} has no key {}; it has {}", option, pathOf(path), key,
                                    counted(std::size_t(count), "key") + ", from 0 on"));
    return path.TranslationKeyframesArray().Attribute(slot).Attribute(KeyPosition).Vector();
}

Qelutils::Vector<XSafeGuard> guardsOf(XTrajectory const& path) {
    XAttribute const array = path.SafeGuardsArray();
    Qelutils::Vector<XSafeGuard> guards;
    for (int i = 0; i < array.AttributeCount(); ++i) {
        XAttribute const guard = array.Attribute(i);
        auto const number = [&](int part) { return guard.Attribute(part).Float(); };
        XDropOff const dropoff(number(2), XDropOff::CurveDropoff, number(3), number(4));
        guards.push_back({guard.Attribute(0).Vector().AsVector(), number(1), dropoff});
    }
    return guards;
}

std::vector<int> timingOrder(XTrajectory const& path) {
    Qelutils::Vector<float> times;
    path.TimingCurve().KeyframeInputValues().Floats(times);
    std::vector<int> order(times.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return times[std::size_t(a)] < times[std::size_t(b)]; });
    return order;
}

std::string keepOf(XTrajectory const& path) {
    constexpr char const* words[] = {"feel", "constraints", "none"};
    return words[std::clamp(path.SmartEditing().Enumeration(), 0, 2)];
}

std::string pathOf(XObject const& object) { return toUtf8(object.Path()); }

std::string figure(double value) { return fmt::format("{:.4g}", value); }

}  // namespace host
