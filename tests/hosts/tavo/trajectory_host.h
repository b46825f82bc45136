// What the tests of `tavo trajectory` share: a path of the walk, and figures from what is printed.
#pragma once
#include "tests/hosts/tavo/host.h"

#include <array>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace hosttest {

class TrajectoryHostTest : public HostTest {
protected:
    // path.tavo: the walk with the path of its hips, which follow it. The host makes it once for all tests.
    void makePath() const {
        static std::string const scene = [this] {
            result("trajectory generate walk.bvh Hips -o path.tavo --connect");
            return text("path.tavo");
        }();
        write(folder / "path.tavo", scene);
    }

    // The first number after `"key":`.
    static double number(std::string const& json, std::string const& key) {
        std::size_t const at = json.find('"' + key + "\":");
        EXPECT_NE(at, std::string::npos) << key << " in " << json;
        return at == std::string::npos ? std::nan("") : std::atof(json.c_str() + at + key.size() + 3);
    }
    // That of a figure within another: "speed" and "largest".
    static double number(std::string const& json, std::string const& key, std::string const& inner) {
        std::size_t const at = json.find('"' + key + "\":");
        EXPECT_NE(at, std::string::npos) << key << " in " << json;
        return at == std::string::npos ? std::nan("") : number(json.substr(at), inner);
    }

    using Numbers = std::vector<double>;
    // What an attribute says at a moment.
    Numbers sample(std::string const& file, std::string const& object, std::string const& attribute,
                   double time) const {
        std::string const at = std::to_string(time);
        std::string const table = result("sample " + file + " --objects " + object + " --attribute " + attribute +
                                         " --from " + at + " --to " + at);
        std::istringstream line(table.substr(table.find('\n') + 1));
        std::string cell;
        Numbers numbers;
        for (int i = 0; std::getline(line, cell, ','); ++i)
            if (i > 1) numbers.push_back(std::stod(cell));
        return numbers;
    }
    Numbers place(std::string const& file, std::string const& object, double time) const {
        return sample(file, object, "WorldTranslation", time);
    }
    // The places at the frames of the walk, 30 a second.
    std::vector<Numbers> track(std::string const& file, std::string const& object) const {
        std::istringstream table(result("sample " + file + " --objects " + object +
                                        " --attribute WorldTranslation --from 0 --to 3.967 --step 0.03333333333"));
        std::vector<Numbers> places;
        std::string line;
        for (std::getline(table, line); std::getline(table, line);) {
            std::istringstream cells(line.substr(line.find(',', line.find(',') + 1) + 1));
            Numbers& place = places.emplace_back(3);
            char comma = 0;
            cells >> place[0] >> comma >> place[1] >> comma >> place[2];
        }
        return places;
    }
    static void expectNear(Numbers const& a, Numbers const& b, double tolerance) {
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], tolerance) << i;
    }
    // A clip of one joint that moves along x; a value a frame, 30 a second, in metres.
    void writeClip(std::string const& name, std::vector<double> const& places) const {
        std::ostringstream text;
        text << std::setprecision(12)
             << "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Xposition\n}\nMOTION\nFrames: " << places.size()
             << "\nFrame Time: 0.0333333333\n";
        for (double x : places) text << x << '\n';
        write(folder / name, text.str());
    }
};

}  // namespace hosttest
