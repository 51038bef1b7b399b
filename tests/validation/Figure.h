// Figure: a URDF model as the witnesses see it, a tree of bodies on hinges, read here and not by the host.
#pragma once

#include "Geometry.h"

#include <map>
#include <string>
#include <vector>

/// One turn of a joint.
struct Hinge {
    std::string name;      // of the URDF joint
    Vec axis;              // unit vector, in the body's frame when all angles are zero
    double lower, upper;   // rad; -π and π when the file tells none
};

/// A rigid body and the joint by which it hangs on its parent.
///
/// A chain of URDF joints through massless links is one joint with several hinges, which turn in the chain's
/// order, the one nearest the parent first; their axes meet in the body's origin.
struct Body {
    std::string link;     // its URDF name
    std::string name;     // what the roles file calls it
    int parent = -1;      // -1: the root
    Pose jointInParent;   // the frame of the chain's first joint
    Pose inParent;        // the body's frame when all angles are zero
    std::vector<Hinge> hinges;
    int firstHinge = 0;   // number of hinges of the bodies before it
    double mass = 0;      // kg
    Vec center;           // of mass, m
};

/// A frame fixed to a body.
struct Place {
    int body = -1;
    Pose inBody;
};

struct Figure {
    std::vector<Body> bodies;             // a parent before its children, a child's subtree before the next child
    std::map<std::string, Place> sites;   // links that are points of a body, and added ones: "segment.site"
    int hinges = 0;                       // of all bodies

    int findBody(const std::string& name) const;   ///< -1: there is none
};

/// Reads a model and the names that its roles file gives.
///
///   with mass above 1e-5 kg, or the root                a body
///   lighter, on a fixed joint                           a site of what it hangs on
///   lighter, on a moving joint, carrying one more       part of a chain
///
/// The mass of a lighter link counts with the body further in, at its place when all angles are zero.
/// @throws std::runtime_error for a model that is something else
Figure readFigure(const std::string& urdfPath, const std::string& rolesPath);
