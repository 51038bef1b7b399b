// Large figures: a small body on which a long chain or a wide fan hangs, as the text of a posed figure.
#pragma once

#include "SmallFigure.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

/// The links of a chain that is called deep: 100 000, or SSTR_TEST_DEPTH of the environment, where programs are slow.
inline int deepLinks()
{
    const char* text = std::getenv("SSTR_TEST_DEPTH");
    if (!text)
        return 100000;
    const int links = std::stoi(text);
    if (links < 1000 || std::to_string(links) != text)
        throw std::invalid_argument("SSTR_TEST_DEPTH: expected a number from 1000 on");
    return links;
}

/// A body on which further segments hang. They are written as text at once: there may be a hundred thousand.
class LargeFigure {
public:
    /// @param hook  "segment.site" of the body, a new site at `position`, cm, from which everything hangs
    LargeFigure(SmallFigure body, const std::string& hookSegment, const SmallFigure::Vector& position)
        : document(body.site(hookSegment, "hook", position).document()), hook(hookSegment + ".hook"), at(position)
    {}

    /// A chain of links "k1", "k2", …: link i weighs `grams`, and its only site "a", which is also its centre of mass,
    /// is i steps from the hook. Joint "c<i>" carries it.
    LargeFigure& chain(int links, double grams, const SmallFigure::Vector& step)
    {
        std::string inner = hook;
        for (int i = 1; i <= links; ++i) {
            const std::string name = "k" + std::to_string(i), joint = "c" + std::to_string(i);
            std::string jointsThere = "\"" + joint + "\"";
            if (i < links)
                jointsThere += ",\"c" + std::to_string(i + 1) + "\"";
            addSegment(name, grams, {at[0] + i * step[0], at[1] + i * step[1], at[2] + i * step[2]}, jointsThere);
            addJoint(joint, inner, name + ".a");
            inner = name + ".a";
        }
        if (links > 0)
            atHook.emplace_back("c1");
        return *this;
    }

    /// Segments "w1", "w2", … side by side, all of which hang on the hook by joints "f<i>", each as a link of a chain
    /// of one.
    LargeFigure& fan(int segments, double grams, const SmallFigure::Vector& step)
    {
        for (int i = 1; i <= segments; ++i) {
            const std::string name = "w" + std::to_string(i), joint = "f" + std::to_string(i);
            addSegment(name, grams, {at[0] + i * step[0], at[1] + i * step[1], at[2] + i * step[2]},
                       "\"" + joint + "\"");
            addJoint(joint, hook, name + ".a");
            atHook.push_back(joint);
        }
        return *this;
    }

    std::string text()
    {
        document["sites"].back()["joints"] = atHook;
        std::string rest;
        for (const auto& [key, value] : document.items())
            if (key != "segments" && key != "sites" && key != "joints")
                rest += ",\"" + key + "\":" + value.dump();
        return "{" + list("segments", segments) + "," + list("sites", sites) + "," + list("joints", joints) + rest
               + "}";
    }

private:
    static std::string number(double value) { return nlohmann::json(value).dump(); }

    void addSegment(const std::string& name, double grams, const SmallFigure::Vector& position,
                    const std::string& jointList)
    {
        const std::string transform = "[[1,0,0,0],[0,1,0,0],[0,0,1,0],[" + number(position[0]) + ","
                                      + number(position[1]) + "," + number(position[2]) + ",1]]";
        segments += ",{\"name\":\"" + name + "\",\"mass\":" + number(grams) + ",\"com\":[0,0,0],\"transform\":"
                    + transform + ",\"sites\":[\"" + name + ".a\"],\"attachment\":\"" + name + ".a\"}";
        sites += ",{\"key\":\"" + name + ".a\",\"segment\":\"" + name + "\",\"name\":\"a\",\"transform\":" + transform
                 + ",\"joints\":[" + jointList + "]}";
    }

    void addJoint(const std::string& name, const std::string& inner, const std::string& outer)
    {
        joints += ",{\"name\":\"" + name + "\",\"sites\":[\"" + inner + "\",\"" + outer + "\"]}";
    }

    // What the body has, and then what hangs on it.
    std::string list(const char* key, const std::string& added) const
    {
        std::string text = document[key].dump();
        text.pop_back();
        return "\"" + std::string(key) + "\":" + text + added + "]";
    }

    nlohmann::json document;
    std::string hook;
    SmallFigure::Vector at;
    std::vector<std::string> atHook;
    std::string segments, sites, joints;
};
