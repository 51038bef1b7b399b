// URDF plan: what figure a URDF model becomes, before anything is built, so that a roles file can rename.
#pragma once

#include "Posture.h"
#include "UrdfModel.h"

#include <string>
#include <vector>

/// Indices are of the plan's own lists; -1: none. `source` is the name before any renaming.
struct PlannedSegment {
    std::string source, name;
    double mass = 0;           // g
    Point center{0, 0, 0};     // of mass, cm, in the segment's frame
    std::vector<int> sites;    // in their order
    int parent = -1;           // segment
    int joint = -1;            // by which it hangs on its parent
    std::string renamedBy{};   // where in the roles file
};

struct PlannedSite {
    std::string source, name;   // the site's own name
    int segment = -1;
    Placement placement;       // in the segment's frame
    int maker = -1;            // the URDF joint that makes it: orders a segment's sites; -1: before all
    int namesake = -1;         // the joint whose name it bears, for a site made for a joint
    std::string renamedBy{};   // where in the roles file
};

struct PlannedAngle {
    std::string name;
    bool limited = false;
    double lower = 0, upper = 0;   // rad
};

struct PlannedJoint {
    std::string source, name;
    int parentSite = -1, childSite = -1;
    int maker = -1;                     // its first URDF joint: orders the joints
    std::vector<Step> steps;            // from the parent segment's frame to the child's
    std::vector<PlannedAngle> angles;   // as the analysis counts them; a step's angle is an index + 1
    std::string renamedBy{};            // where in the roles file
};

/// The parts that play a human's roles: sites and joints by index.
struct PlannedRoles {
    int foot[2] = {-1, -1}, hand[2] = {-1, -1};   // sites, by qcSide
    int knee[2] = {-1, -1}, ankle[2] = {-1, -1}, hip[2] = {-1, -1};
    int pelvis = -1, waist = -1, reference = -1;
    std::vector<std::string> missing;
};

struct UrdfPlan {
    std::string name;
    std::vector<PlannedSegment> segments;   // in the file's order
    std::vector<PlannedSite> sites;
    std::vector<PlannedJoint> joints;   // in the file's order
    std::vector<int> outward;           // all segments, each after its parent
    PlannedRoles roles;
    BodyBase base;
    std::vector<std::string> notes;

    /// "segment.site", with the names as they are now.
    std::string siteKey(int site) const;
};

/// Decides which links are segments, which are sites, and which only pass a joint on:
///
///   with mass (above 1e-5 kg)                      segment
///   massless, on a fixed joint                     site of what it hangs on
///   massless, on a moving joint, and all that      inside of a joint with several angles
///     hangs on it is one more moving joint
///   massless, on a moving joint, otherwise         segment of mass 0
///   massless root, with exactly one link with      site of that link, which becomes the root;
///     mass fixed to it                             all that hung on the root hangs there
///   massless root, otherwise                       segment of mass 0
///
/// A mass of at most 1e-5 kg is merged into the segment further in, at the place that it has when
/// all angles are zero: masses are added, the centre of mass is the mass-weighted one.
UrdfPlan planFigure(const UrdfModel& model);

/// Checks that the names as they are now tell segments, joints and sites apart.
/// @throws InputError, naming the roles file's entry that renamed, or else the figure's file
void checkNames(const UrdfPlan& plan, const std::string& file);
