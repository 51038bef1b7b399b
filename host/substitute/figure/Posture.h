// Posture: where the segments and sites of a figure are for its joint angles, root placement and scale.
#pragma once

#include "Frames.h"

#include "qc/qcAnthroScale.h"
#include "qc/qcFigure.h"

#include <unordered_map>
#include <vector>

/// One step from a parent frame outward: a fixed placement, then a turn by one angle of the joint.
struct Step {
    Placement placement;
    int angle = 0;         // the angle that turns, from 1 as the joint counts them; 0: none
    Point axis{0, 0, 0};   // unit vector in the placed frame; positive angles turn right-handed
};

/// What a figure's file tells of the body that it was made from.
struct BodyBase {
    qcSex sex = qcMale;
    double stature = 0;   // cm; 0: not told
    double mass = 0;      // g: the sum of the segments' masses as loaded
    bool hasOtherSex = false;
    double otherStature = 0;                // cm; 0: not told, the same
    double otherMass = 0;                   // g; 0: not told, the same
    std::vector<double> otherMassPercent;   // of the body's mass, by segment in the figure's order
};

/// The kinematics of one figure. Works in double precision and narrows once, into the transforms
/// that the figure's parts hand out.
class Posture {
public:
    explicit Posture(qcFigure& posed) : figure(posed) {}

    // Set-up, by the builder.
    void addLink(qcSegmentImp* segment, qcSegmentImp* parent, const qcJointImp* joint, const std::vector<Step>& steps);
    void addPlace(qcSiteImp* site, const Placement& placement);
    void setFixed() { fixed = true; }   // transforms are as the file gave them
    void keepBase();                    // masses and centres as they are now are the base
    BodyBase base;

    /// Brings every segment and site to the present angles, root and scale.
    void update();

    /// Puts the reference site at the body's centre of mass.
    void updateBalancePoint();

    /// The body's mass, g, and centre of mass, cm, in the world.
    double bodyMass() const;
    Point bodyCenter();

    /// Scales every length, or the masses, from the base. Masses go by segment in the figure's order,
    /// which need not be the order of the links.
    void scaleLengths(double factor);
    void scaleMasses(const std::vector<double>& grams);
    double baseMassOf(std::size_t segment) const;   ///< g

    bool isFixed() const { return fixed; }

    Point rootPosition{0, 0, 0};   // cm
    Point rootDegrees{0, 0, 0};    // turn about the world's x, then y, then z axis
    bool onFloor = false;

private:
    struct FastStep {
        Point base;          // offset at the base size, cm
        Point offset;        // scaled, cm
        Rotation rotation;   // used when `turned`
        bool turned;
        int kind;      // -1: no angle; 0, 1, 2: about x, y, z; 3: about `axis`
        double sign;   // of an angle about a coordinate axis
        Point axis;
        const double* angle;   // rad
    };
    struct Link {
        qcSegmentImp* segment;
        int parent;   // index of a link before this one; -1: the root
        std::vector<FastStep> steps;
        Rotation rotation;    // world
        Point position;       // world, cm
        double baseMass;      // g
        qVector baseCenter;   // cm
    };
    struct Place {
        qcSiteImp* site;
        int link;
        Rotation rotation;   // used when `turned`
        bool turned;
        Point base;
        Point offset;
    };

    int linkOf(const qcSegmentImp* segment) const;
    void placeRoot(Link& root) const;
    static void walkSteps(Link& link, const Link& parent);
    void liftToFloor();
    void writeTransforms();

    qcFigure& figure;
    bool fixed = false;
    std::vector<Link> links;   // parents before children
    std::vector<Place> places;
    std::vector<int> floorPlaces;   // sites that may touch the floor
    bool floorPlacesKnown = false;
    void findFloorPlaces();
    std::unordered_map<const qcSegmentImp*, int> linkIndex;
};
