// URDF model: the links and joints of a URDF file, checked, in the host's units and axes.
#pragma once

#include "Posture.h"

#include <string>
#include <vector>

/// A link as the file tells it.
struct UrdfLink {
    std::string name;
    int line = 0;                // in the file, from 1
    double mass = 0;             // g; 0: no inertial, or none in it
    Point center{0, 0, 0};       // centre of mass, cm, in the link's frame
    int parentJoint = -1;        // index; -1: the root
    std::vector<int> children;   // indices of the joints that hang on it, in the file's order
};

/// A joint as the file tells it. Its frame, in which the child stands at angle zero, is `origin`.
struct UrdfJoint {
    std::string name;
    int line = 0;
    bool moves = false;   // revolute or continuous; otherwise fixed
    int parent = -1;      // indices of links
    int child = -1;
    Placement origin;      // of the child's frame in the parent's, at angle zero
    Point axis{0, 0, 0};   // unit vector in the child's frame
    bool limited = false;
    double lower = 0;   // rad
    double upper = 0;   // rad
};

/// One tree of links. Both lists are in the file's order.
struct UrdfModel {
    std::string name;   // empty: the file tells none
    std::vector<UrdfLink> links;
    std::vector<UrdfJoint> joints;
    int root = -1;
    std::vector<int> outward;         // all links, each after its parent
    std::vector<std::string> notes;   // what was passed over
};

/// Reads the text of a URDF file. What does not matter to statics (shapes, inertias, materials,
/// sensors, efforts) may be missing or wrong.
/// @param file  what to call the text in messages
/// @throws InputError with file, line, element, what was found and what was expected
UrdfModel readUrdfModel(const std::string& text, const std::string& file);
