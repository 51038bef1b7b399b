// URDF outline: the elements of a URDF file in its own order, with their lines, checked one by one.
#pragma once

#include <string>
#include <vector>

/// A number as it is written in the file; known to be finite.
using NumberText = std::string;

struct UrdfPoseText {
    std::vector<NumberText> xyz, rpy;   // three each, or empty: not told
};

struct UrdfLinkText {
    std::string name;
    int line = 0;
    bool hasInertial = false;
    NumberText mass;   // kg
    UrdfPoseText center;
};

struct UrdfJointText {
    std::string name;
    int line = 0;
    std::string type;   // revolute, continuous or fixed
    int parent = -1;    // indices of links
    int child = -1;
    UrdfPoseText origin;
    std::vector<NumberText> axis;   // three, not all zero; or empty: not told
    NumberText lower, upper;        // rad; empty: not told
};

/// What a URDF file says about statics. The joints make one tree of the links.
struct UrdfOutline {
    std::string name;
    std::vector<UrdfLinkText> links;
    std::vector<UrdfJointText> joints;
    int root = -1;
    std::vector<int> outward;         // all links, each after its parent
    std::vector<std::string> notes;   // elements that were passed over
};

/// Checks a file's text and lists its elements.
/// @throws InputError with file, line, element, what was found, what was expected and what to do
UrdfOutline outlineUrdf(const std::string& text, const std::string& file);
