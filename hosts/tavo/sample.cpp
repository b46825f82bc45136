// sample: what attributes say at moments of time, as a table.
#include "hosts/tavo/find.h"
#include "hosts/tavo/json.h"
#include "hosts/tavo/reading.h"
#include "hosts/tavo/session.h"
#include "hosts/tavo/time_steps.h"
#include "plugins/bvh/exporter.h"
#include "qel/utils/text.h"

#include <cmath>
#include <fmt/format.h>

namespace host {
namespace {

using namespace Tavo;
using Qelutils::toUtf8;

constexpr double mostNumbers = 1e8;  // of a table: beyond lies a slip of the hand

struct Moments {
    double from = 0, step = 1;
    std::int64_t count = 1;

    float at(std::int64_t i) const { return float(from + double(i) * step); }
};

Moments momentsOf(Session& session, SampleVerb const& verb) {
    Moments moments;
    moments.from = verb.from.value_or(session.settings().StartTime().Float());
    moments.step = verb.step ? *verb.step : bvh::frameTimeOf(session.scene()).seconds;
    double const to = verb.to.value_or(std::max<double>(moments.from, session.settings().EndTime().Float()));
    if (!(moments.step > 0) || !std::isfinite(moments.step)) throw wrongCall("--step is a time above 0, in seconds");
    if (!(to >= moments.from) || !std::isfinite(to - moments.from))
        throw wrongCall(fmt::format("there is no time from {} to {} s", moments.from, to));
    double const steps = std::floor((to - moments.from) / moments.step + 1e-4);
    if (steps >= mostNumbers) throw wrongCall("that is too many moments; a larger --step gives fewer");
    moments.count = std::int64_t(steps) + 1;
    return moments;
}

std::vector<Reading> readingsOf(XScene& scene, SampleVerb const& verb) {
    std::vector<XObject> const objects = findObjects(scene, verb.objects);
    std::vector<Reading> readings;
    for (XObject const& object : objects)
        if (std::optional<Reading> reading = Reading::of(object, verb.attribute))
            readings.push_back(std::move(*reading));
    if (!readings.empty()) return readings;
    std::wstring const name = Qelutils::fromUtf8(verb.attribute);
    for (XObject const& object : objects)
        if (object.HasAttribute(name)) throw wrongCall(fmt::format("\"{}\" holds no numbers", verb.attribute));
    std::vector<std::wstring> names = attributeNames(objects);
    names.insert(names.end(), {L"WorldTranslation", L"WorldRotation"});
    throw wrongCall(fmt::format("no object that matches \"{}\" has an attribute \"{}\"", verb.objects, verb.attribute),
                    verb.attribute, names);
}

std::string numberText(double value, bool single) {
    return single ? Qelutils::number(float(value)) : Qelutils::number(value);
}

// As RFC 4180 has it.
std::string inQuotes(std::string const& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string result = "\"";
    for (char const c : text) result.append(c == '"' ? 2 : 1, c);
    return result + '"';
}

class Table {
public:
    Table(SampleVerb const& verb, std::vector<Reading> const& readings) : verb_(verb), readings_(readings) {
        for (Reading const& reading : readings) paths_.push_back(toUtf8(reading.object().Path()));
        if (verb.json)
            json_.open('{')
                .member("attribute", verb.attribute)
                .member("display", verb.display)
                .key("samples")
                .open('[');
        else
            addHeader();
    }
    void addMoment(float time) {
        for (std::size_t i = 0; i < readings_.size(); ++i) {
            values_.clear();
            readings_[i].read(values_, verb_.display);
            if (verb_.json)
                addObject(time, i);
            else
                addLine(time, i);
        }
    }
    std::string take() { return verb_.json ? json_.close(']').close('}').take() : std::move(csv_); }

private:
    void addHeader() {
        csv_ = "time,object";
        for (std::string const& part : readings_[0].parts()) csv_ += ',' + inQuotes(verb_.attribute + part);
        csv_ += '\n';
        for (std::string& path : paths_) path = inQuotes(path);
    }
    void addLine(float time, std::size_t i) {
        csv_ += Qelutils::number(time) + ',' + paths_[i];
        for (double const value : values_) (csv_ += ',') += numberText(value, readings_[i].isSingle());
        csv_ += '\n';
    }
    void addObject(float time, std::size_t i) {
        json_.open('{').member("time", time).member("object", paths_[i]).key("value");
        if (values_.size() > 1) json_.open('[');
        for (double const value : values_) readings_[i].isSingle() ? json_.value(float(value)) : json_.value(value);
        if (values_.size() > 1) json_.close(']');
        json_.close('}');
    }

    SampleVerb const& verb_;
    std::vector<Reading> const& readings_;
    std::vector<std::string> paths_;
    std::vector<double> values_;
    std::string csv_;
    Json json_;
};

}  // namespace

void run(SampleVerb const& verb) {
    Session session(verb.input);
    std::vector<Reading> readings = readingsOf(session.scene(), verb);
    std::size_t const columns = readings[0].parts().size();
    for (Reading const& reading : readings)
        if (reading.parts().size() != columns)
            throw wrongCall(fmt::format("\"{}\" is not alike in all objects", verb.attribute));
    Moments const moments = momentsOf(session, verb);
    if (double(moments.count) * double(readings.size() * columns) > mostNumbers)
        throw wrongCall("that is too large a table; a larger --step or fewer --objects give a smaller one");
    Table table(verb, readings);
    {
        Progress progress("sampling", moments.count);
        TimeSteps steps(session.scene());
        for (std::int64_t i = 0; i < moments.count; ++i) {
            steps.go(moments.at(i));
            table.addMoment(moments.at(i));
            progress.advance(i + 1);
        }
    }
    writeResult(table.take(), verb.output);
}

}  // namespace host
