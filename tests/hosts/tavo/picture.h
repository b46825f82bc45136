// An SVG picture as a test sees it: its elements, in order, each with its attributes, its text and the classes of the
// groups around it. A picture that is no well-formed XML fails the test.
#pragma once
#include <expat.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace hosttest {

struct Element {
    std::string name, text;
    std::map<std::string, std::string> attributes;
    std::vector<std::string> within;  // classes, from the outermost

    std::string attribute(std::string const& key) const {
        auto const found = attributes.find(key);
        return found == attributes.end() ? "" : found->second;
    }
    double number(std::string const& key) const { return std::stod("0" + attribute(key)); }
    bool isClass(std::string const& wanted) const { return attribute("class") == wanted; }
    bool isWithin(std::string const& group) const {
        return std::find(within.begin(), within.end(), group) != within.end();
    }
};

class Picture {
public:
    explicit Picture(std::string const& svg) {
        XML_Parser const parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, &Picture::open, &Picture::close);
        XML_SetCharacterDataHandler(parser, &Picture::characters);
        EXPECT_NE(XML_Parse(parser, svg.data(), int(svg.size()), 1), XML_STATUS_ERROR)
            << XML_ErrorString(XML_GetErrorCode(parser)) << " in line " << XML_GetCurrentLineNumber(parser);
        XML_ParserFree(parser);
        EXPECT_EQ(svg.find("nan"), svg.npos);
        EXPECT_EQ(svg.find("inf\""), svg.npos);
    }
    std::vector<Element> ofClass(std::string const& wanted, std::string const& group = "") const {
        std::vector<Element> found;
        for (Element const& e : elements)
            if (e.isClass(wanted) && (group.empty() || e.isWithin(group))) found.push_back(e);
        return found;
    }
    std::vector<Element> within(std::string const& group, std::string const& name = "") const {
        std::vector<Element> found;
        for (Element const& e : elements)
            if (e.isWithin(group) && (name.empty() || e.name == name)) found.push_back(e);
        return found;
    }
    bool says(std::string const& text) const {
        return std::any_of(elements.begin(), elements.end(),
                           [&](Element const& e) { return e.name == "text" && e.text.find(text) != e.text.npos; });
    }

    std::vector<Element> elements;

private:
    static void open(void* self, char const* name, char const** attributes) {
        auto& picture = *static_cast<Picture*>(self);
        Element element{name, "", {}, {}};
        for (; *attributes; attributes += 2) element.attributes[attributes[0]] = attributes[1];
        for (std::string const& group : picture.open_)
            if (!group.empty()) element.within.push_back(group);
        picture.open_.push_back(element.attribute("class"));
        picture.elements.push_back(element);
        picture.isInText_ = element.name == "text";
    }
    static void close(void* self, char const*) {
        static_cast<Picture*>(self)->open_.pop_back();
        static_cast<Picture*>(self)->isInText_ = false;
    }
    static void characters(void* self, char const* text, int length) {
        auto& picture = *static_cast<Picture*>(self);
        if (picture.isInText_) picture.elements.back().text.append(text, std::size_t(length));
    }

    std::vector<std::string> open_;
    bool isInText_ = false;
};

// The corners of a path's data.
inline std::vector<std::pair<double, double>> pointsOf(Element const& path) {
    std::vector<std::pair<double, double>> points;
    std::string data = path.attribute("d");
    std::replace_if(
        data.begin(), data.end(), [](char c) { return c == 'M' || c == 'L' || c == 'Z'; }, ' ');
    std::istringstream stream{data};
    for (double x, y; stream >> x >> y;) points.emplace_back(x, y);
    return points;
}

}  // namespace hosttest
