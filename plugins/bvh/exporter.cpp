#include "plugins/bvh/exporter.h"

#include "plugins/bvh/importer.h"
#include "plugins/bvh/lexical.h"
#include "plugins/bvh/scene_notes.h"
#include "plugins/bvh/units.h"
#include "plugins/bvh/writer.h"
#include "tavo/animation/animation.h"
#include "tavo/interaction/selection.h"
#include "tavo/objects/matrix.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

namespace bvh {
namespace {

using namespace Tavo;

constexpr int usualOrder = 2;  // "YXZ": channels Z, X, Y, the most usual in files

// The frames to write.
struct Frames {
    double start = 0;  // seconds
    double step = 1;
    int count = 0;

    float time(int frame) const { return float(start + frame * step); }
};

// One column of the motion: internal values to the file's numbers.
struct Column {
    double toInternal;  // metres or radians per unit
    double rest = 0;    // what the position is counted from, in the file's unit
    int decimals = 0;   // that sufficed for the values before
    double last = 0;    // the value before

    float internal(double value) const { return float((rest + value) * toInternal); }

    // The shortest decimal that is the same float in the scene: when the value came from a file, the file's own, as far
    // as a float can tell. Files keep to a number of decimals, so the search starts with those of the values before;
    // not with more than a float of that size has, for these would be noise.
    double external(float value) {
        static constexpr double powers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12};
        double const exact = value / toInternal - rest, size = std::abs(exact);
        if (!(size < 1e6)) return exact;
        int const told = size < 10 ? 6 : size < 100 ? 5 : size < 1000 ? 4 : 0;
        for (int tried = std::min(decimals, told); tried <= 12; ++tried) {
            auto const whole = std::int64_t(exact * powers[tried] + std::copysign(0.5, exact));
            double const rounded = double(whole) / powers[tried];
            if (internal(rounded) != value) continue;
            if (size >= 1) decimals = tried;
            return rounded;
        }
        return exact;
    }
    // An angle is the same a full turn on; this one is next to the value before.
    double continued(double angle) {
        double const turn = fullTurn / toInternal;
        return last = angle - turn * std::round((angle - last) / turn);
    }
};

// ---- what to write of one joint ----

struct Source {
    XJoint joint;
    std::optional<JointNotes> notes;
    bool plain = true;  // translation and Euler angles say it all
    int order = 0;      // RotationEulerOrder of the angles
    XTransform above;   // of a joint that is not plain: what its place is relative to; invalid: the world
};

bool isAtDefault(XAttribute const& attribute, float value) {
    return !attribute.IsConnectedInput() && attribute.Float() == value;
}

bool isPlain(XJoint const& joint, bool standsOnJoint) {
    constexpr int scale = 27, pivots = 30, end = 45;  // scale, then pivots, pre translation, pre and post rotation
    if (!standsOnJoint || joint.TransformDataSource().Enumeration() != XTransform::EulerSource) return false;
    for (int number = scale; number < end; ++number)
        if (!isAtDefault(joint.Attribute(number), number < pivots ? 1.0f : 0.0f)) return false;
    return true;
}

// It stands at the origin and nothing moves it, as the parts of a character do.
bool isAsTheOrigin(XScene const& scene, XObject up) {
    for (; up.IsValid() && !scene.IsRootObject(up); up = up.Parent())
        if (up.HasInputAttributes() || !XTransform(up).LocalMatrix().Matrix().IsIdentity(0)) return false;
    return up.IsValid();
}

bool isMoved(XJoint const& joint, int axis) { return translation(joint, axis).IsConnectedInput(); }

Qelutils::Vector<XObject> jointsOf(XScene const& scene) {
    Qelutils::Vector<XObject> joints;
    scene.RootObject().DescendantObjects(joints, XJoint::TypeID, SupportsObjectType);
    return joints;
}

Qelutils::Vector<XObject> selectedJointsOf(XScene const& scene) {
    Qelutils::Vector<XObject> selected, all, joints;
    scene.Selection().Objects(selected);
    std::unordered_set<int> chosen;
    for (XObject const& object : selected) chosen.insert(object.ObjectID());
    scene.RootObject().DescendantObjects(all);  // parents before children
    for (XObject const& object : all) {
        if (!chosen.count(object.ObjectID()) && !chosen.count(object.Parent().ObjectID())) continue;
        chosen.insert(object.ObjectID());
        if (object.SupportsType(XJoint::TypeID)) joints.push_back(object);
    }
    return joints;
}

// Of the first of the joints whose clip is known: by itself, or by a joint above that is not among them.
std::optional<ClipNotes> clipNotesOf(Qelutils::Vector<XObject> const& joints) {
    std::optional<ClipNotes> notes;
    if (joints.empty()) return notes;
    for (XObject up = joints.front().Parent(); up.IsValid() && !notes; up = up.Parent()) notes = recallClip(XJoint(up));
    for (std::size_t i = 0; i < joints.size() && !notes; ++i) notes = recallClip(XJoint(joints[i]));
    return notes;
}

FrameTime frameTime(XSceneSettings const& settings, std::optional<ClipNotes> const& notes) {
    int const rate = settings.FrameRate().Integer();
    Clip clip;
    if (notes && Qelutils::parseNumber(notes->frameTime, clip.frameTime)) {
        clip.frameTimeText = notes->frameTime;
        bool const usable = clip.frameTime >= shortestFrameTime && clip.frameTime <= longestFrameTime;
        if (usable && wholeFrameRate(clip) == rate) return {clip.frameTime, notes->frameTime};
    }
    double const seconds = 1.0 / (rate > 0 ? rate : XSceneSettings::DefaultFrameRate);
    return {seconds, Qelutils::number(seconds)};
}

class Exporter {
public:
    Exporter(XScene& scene, Qelutils::Vector<XObject> const& joints, ExportOptions const& options) :
        scene_(scene), settings_(scene.SceneSettings()), joints_(joints), unit_(options.unit),
        angle_(radiansPer(options.angles)) {}

    bool run(Clip& clip, Error& error) {
        collect();
        readClipNotes();
        for (std::size_t i = 0; i < sources_.size(); ++i) describe(i);
        if (!planFrames(error)) return false;
        fill();
        if (!check(clip_, error)) return false;
        clip = std::move(clip_);
        return true;
    }

private:
    // ---- hierarchy ----
    void collect() {
        std::unordered_map<int, int> places;
        for (XObject const& object : joints_) {
            Source source{XJoint(object), {}, true, 0, {}};
            Joint joint;
            XObject up = object.Parent();
            bool const direct = places.count(up.ObjectID()) || isAsTheOrigin(scene_, up);
            while (up.IsValid() && !places.count(up.ObjectID())) up = up.Parent();
            if (up.IsValid()) joint.parent = places[up.ObjectID()];
            source.above = XTransform(up);
            source.plain = isPlain(source.joint, direct);
            source.order = source.plain ? source.joint.RotationEulerOrder().Enumeration() : usualOrder;
            source.notes = recallJoint(source.joint);
            places[object.ObjectID()] = int(sources_.size());
            sources_.push_back(std::move(source));
            clip_.joints.push_back(std::move(joint));
        }
    }
    void readClipNotes() {
        notes_ = clipNotesOf(joints_);
        unit_ = unit_ ? unit_ : notes_ ? notes_->unit : Unit::centimetre;
        metres_ = metresPer(*unit_);
    }

    // ---- a joint's head ----
    void describe(std::size_t i) {
        Source const& source = sources_[i];
        Joint& joint = clip_.joints[i];
        joint.name = fileName(source);
        joint.channels = channelsOf(source, joint.parent < 0);
        describeOffset(source, joint);
        joint.column = clip_.channels;
        clip_.channels += int(joint.channels.size());
        for (Channel const channel : joint.channels) columns_.push_back(columnOf(joint, channel));
        if (source.notes)
            joint.endSites = endSitesOf(*source.notes);
        else if (source.joint.ChildJointCount() == 0)
            joint.endSites.emplace_back();
    }
    std::vector<EndSite> endSitesOf(JointNotes const& notes) const {
        std::vector<EndSite> sites = notes.endSites;
        for (EndSite& site : sites)
            for (double& x : site.offset) x *= fileScale();
        return sites;
    }
    // From the unit of the file that was read to that of the one to write.
    double fileScale() const { return notes_ && notes_->unit != *unit_ ? metresPer(notes_->unit) / metres_ : 1; }
    // The file's name, as long as the scene's is that name with no more than a number appended.
    static std::string fileName(Source const& source) {
        std::wstring const name = source.joint.Name();
        if (!source.notes || source.notes->name.empty()) return Qelutils::toUtf8(name);
        std::wstring const given = sceneName(source.notes->name);
        bool const same = name.compare(0, given.size(), given) == 0 &&
                          name.find_first_not_of(L"0123456789", given.size()) == std::wstring::npos;
        return same ? source.notes->name : Qelutils::toUtf8(name);
    }
    std::vector<Channel> channelsOf(Source const& source, bool isRoot) const {
        std::vector<Channel> listed = source.notes ? source.notes->channels : usualChannels(source, isRoot);
        for (int axis = 0; axis < 3; ++axis) {
            addIfMissing(listed, axis, needsPosition(source, axis));
            addIfMissing(listed, 3 + axis, needsRotation(source, axis));
        }
        return inOrder(listed, source.order);
    }
    static void addIfMissing(std::vector<Channel>& channels, int kind, bool needed) {
        auto const channel = static_cast<Channel>(kind);
        if (needed && std::find(channels.begin(), channels.end(), channel) == channels.end())
            channels.push_back(channel);
    }
    static std::vector<Channel> usualChannels(Source const& source, bool isRoot) {
        std::vector<Channel> channels;
        bool const moves = isMoved(source.joint, 0) || isMoved(source.joint, 1) || isMoved(source.joint, 2);
        if (isRoot || moves || !source.plain) channels = {Channel::xPosition, Channel::yPosition, Channel::zPosition};
        channels.insert(channels.end(), {Channel::xRotation, Channel::yRotation, Channel::zRotation});
        return channels;
    }
    static bool needsPosition(Source const& source, int axis) { return !source.plain || isMoved(source.joint, axis); }
    static bool needsRotation(Source const& source, int axis) {
        return !source.plain || !isAtDefault(rotation(source.joint, axis), 0);
    }
    // Positions keep their places; the rotations stand in those of the rotations, last turned first.
    static std::vector<Channel> inOrder(std::vector<Channel> const& listed, int order) {
        std::vector<Channel> channels = listed;
        auto place = channels.begin();
        for (int turn = 2; turn >= 0; --turn) {
            auto const channel = static_cast<Channel>(3 + turningAxes[order][turn]);
            if (std::find(listed.begin(), listed.end(), channel) == listed.end()) continue;
            place = std::find_if(place, channels.end(), isRotation);
            *place++ = channel;
        }
        return channels;
    }
    // An axis with a position channel has the OFFSET of the file, or takes that of the first frame later.
    void describeOffset(Source const& source, Joint& joint) const {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double const noted = source.notes ? source.notes->offset[axis] * fileScale() : 0;
            float const value = translation(source.joint, int(axis)).Float();
            bool const isNoted = hasChannel(joint, int(axis)) || (source.notes && toMetres(noted, metres_) == value);
            joint.offset[axis] = isNoted ? noted : Column{metres_}.external(value);
        }
    }
    static bool hasChannel(Joint const& joint, int kind) {
        auto const& all = joint.channels;
        return std::find(all.begin(), all.end(), static_cast<Channel>(kind)) != all.end();
    }
    Column columnOf(Joint const& joint, Channel channel) const {
        if (isRotation(channel)) return {angle_};
        return {metres_, adds() ? joint.offset[std::size_t(axisOf(channel))] : 0};
    }
    bool adds() const { return notes_ && notes_->positions == Positions::add; }

    // ---- frames ----
    bool planFrames(Error& error) {
        FrameTime const step = frameTime(settings_, notes_);
        clip_.frameTime = step.seconds;
        clip_.frameTimeText = step.text;
        double const count = frameCountOf(scene_, step.seconds);
        if (!(count * std::max(1, clip_.channels) <= mostExportedValues))
            return error = {"the scene's time range has too many frames to write"}, false;
        clip_.frames = int(count);
        frames_ = {settings_.StartTime().Float(), clip_.frameTime, clip_.frames};
        return true;
    }
    static XAttribute attributeOf(XJoint const& joint, Joint const& written, std::size_t place) {
        if (place >= written.channels.size()) return {};
        Channel const channel = written.channels[place];
        return isRotation(channel) ? rotation(joint, axisOf(channel)) : translation(joint, axisOf(channel));
    }

    // ---- values ----
    void fill() {
        clip_.values.resize(std::size_t(clip_.frames) * std::size_t(clip_.channels));
        std::vector<std::size_t> composed;
        std::vector<std::pair<int, XAttribute>> sampled;
        for (std::size_t i = 0; i < sources_.size(); ++i) {
            if (!sources_[i].plain) composed.push_back(i);
            for (std::size_t k = 0; sources_[i].plain && k < clip_.joints[i].channels.size(); ++k) {
                XAttribute const attribute = attributeOf(sources_[i].joint, clip_.joints[i], k);
                int const column = clip_.joints[i].column + int(k);
                if (!fillFromKeys(attribute, column)) sampled.emplace_back(column, attribute);
            }
        }
        if (!composed.empty() || !sampled.empty()) sample(composed, sampled);
        for (std::size_t i = 0; i < sources_.size(); ++i) offsetOfFirstFrame(i);
    }
    void put(int frame, int column, double value) {
        clip_.values[std::size_t(frame) * std::size_t(clip_.channels) + std::size_t(column)] = value;
    }
    // True if the attribute is a curve over the scene's time with a key at each frame, or nothing moves it.
    bool fillFromKeys(XAttribute const& attribute, int column) {
        float still = attribute.Float();
        int inputs = clip_.frames, outputs = clip_.frames;
        float const *times = nullptr, *values = nullptr;
        if (attribute.IsConnectedInput()) {
            XAnimation const curve = attribute.Animation();
            if (!curve.IsValid() || curve.InputValue().InputAttribute() != settings_.Time()) return false;
            if (curve.OutputMode().Enumeration() != XAnimation::FloatOutputMode) return false;
            times = curve.KeyframeInputValues().FloatData(inputs);
            values = curve.KeyframeOutputValues().FloatData(outputs);
            if (!times || !values || inputs < clip_.frames || outputs < clip_.frames) return false;
            for (int k = 0; k < clip_.frames; ++k)
                if (times[k] != frames_.time(k)) return false;
        }
        Column& form = columns_[std::size_t(column)];
        for (int k = 0; k < clip_.frames; ++k) put(k, column, form.external(values ? values[k] : still));
        return true;
    }
    void sample(std::vector<std::size_t> const& composed, std::vector<std::pair<int, XAttribute>> const& sampled) {
        XAttribute time = settings_.Time();
        float const now = time.Float();
        scene_.BeginChangeBlock(true);
        for (int frame = 0; frame < clip_.frames; ++frame) {
            time.SetFloat(frames_.time(frame));
            for (auto const& [column, attribute] : sampled)
                put(frame, column, columns_[std::size_t(column)].external(attribute.Float()));
            for (std::size_t const i : composed) compose(frame, i);
        }
        time.SetFloat(now);
        scene_.EndChangeBlock();
    }
    void compose(int frame, std::size_t i) {
        Source const& source = sources_[i];
        XMatrix place = source.joint.WorldMatrix().Matrix();
        if (source.above.IsValid())
            place = XMatrix::MatrixTransformToLocalSpace(place, source.above.WorldMatrix().Matrix());
        XVector3 const position = place.Translation();
        XVector3 const angles = place.Orthonormalize().RotationEulerAngles(source.order);
        for (std::size_t k = 0; k < clip_.joints[i].channels.size(); ++k) {
            Channel const channel = clip_.joints[i].channels[k];
            int const column = clip_.joints[i].column + int(k);
            Column& form = columns_[std::size_t(column)];
            auto const axis = unsigned(axisOf(channel));
            put(frame, column,
                isPosition(channel) ? form.external(position[axis]) : form.continued(form.external(angles[axis])));
        }
    }
    // Of joints that came from no file; where positions add up, their OFFSET stays zero.
    void offsetOfFirstFrame(std::size_t i) {
        Joint& joint = clip_.joints[i];
        if (sources_[i].notes || adds()) return;
        for (std::size_t k = 0; k < joint.channels.size(); ++k)
            if (isPosition(joint.channels[k]))
                joint.offset[std::size_t(axisOf(joint.channels[k]))] = clip_.value(0, joint.column + int(k));
    }

    XScene& scene_;
    XSceneSettings settings_;
    Qelutils::Vector<XObject> const& joints_;
    std::optional<Unit> unit_;
    double angle_, metres_ = 1;
    std::vector<Source> sources_;
    std::optional<ClipNotes> notes_;
    Clip clip_;
    std::vector<Column> columns_;
    Frames frames_;
};

}  // namespace

FrameTime frameTimeOf(XScene const& scene) { return frameTime(scene.SceneSettings(), clipNotesOf(jointsOf(scene))); }

double frameCountOf(XScene const& scene, double frameTime) {
    double const start = scene.SceneSettings().StartTime().Float(), end = scene.SceneSettings().EndTime().Float();
    return std::floor(std::max(0.0, end - start) / frameTime + 0.5) + 1;
}

bool exportClip(XScene& scene, Clip& clip, Error& error, ExportOptions const& options) {
    if (!scene.IsValid()) return error = {"there is no scene"}, false;
    Qelutils::Vector<XObject> const joints = options.selectedOnly ? selectedJointsOf(scene) : jointsOf(scene);
    if (joints.empty())
        return error = {options.selectedOnly ? "no joints are selected" : "there are no joints in the scene"}, false;
    return Exporter(scene, joints, options).run(clip, error);
}

}  // namespace bvh
