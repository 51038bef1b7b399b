// Figures for tests, put together part by part with the figure builder.
#pragma once

#include "FigureBuilder.h"

#include "Support.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

constexpr double kPi = 3.14159265358979323846;
constexpr double kRightAngle = kPi / 2;

/// A quarter turn that takes y to z (about x), z to x (about y), x to y (about z).
constexpr Rotation kQuarterAboutX = {1, 0, 0, 0, 0, 1, 0, -1, 0};
constexpr Rotation kQuarterAboutY = {0, 0, -1, 0, 1, 0, 1, 0, 0};
constexpr Rotation kQuarterAboutZ = {0, 1, 0, -1, 0, 0, 0, 0, 1};

/// What hangs a segment on its parent.
struct Hung {
    qcSegmentImp* segment;
    qcSiteImp* proximal;   // on the segment, at its origin
    qcSiteImp* socket;     // on the parent, at the first step's placement; inboard
    qcJointImp* joint;
};

/// Starts a figure with its root segment, placed.
inline qcSegmentImp* addRoot(FigureBuilder& builder, const std::string& name = "root", float grams = 0,
                             const qVector& centerOfMass = {})
{
    qcSegmentImp* root = builder.addSegment(name, grams, centerOfMass);
    builder.place(root, nullptr, nullptr, {});
    return root;
}

/// Hangs a segment on another by a joint "to_NAME" with one unlimited angle for each step that turns.
inline Hung hang(FigureBuilder& builder, qcSegmentImp* parent, const std::string& name, const std::vector<Step>& steps,
                 float grams = 0, const qVector& centerOfMass = {})
{
    Hung hung;
    hung.segment = builder.addSegment(name, grams, centerOfMass);
    hung.socket = builder.addSite(parent, "to_" + name);
    hung.proximal = builder.addSite(hung.segment, "proximal");
    hung.joint = builder.addJoint("to_" + name, "", hung.socket, hung.proximal, hung.socket);
    for (const Step& step : steps)
        if (step.angle > 0)
            FigureBuilder::addAngle(hung.joint, "", 0);
    FigureBuilder::listSite(parent, hung.socket);
    FigureBuilder::listSite(hung.segment, hung.proximal);
    FigureBuilder::listJoint(hung.socket, hung.joint);
    FigureBuilder::listJoint(hung.proximal, hung.joint);
    FigureBuilder::setAttachment(hung.segment, hung.proximal);
    builder.place(hung.segment, parent, hung.joint, steps);
    builder.place(hung.socket, steps.empty() ? Placement{} : steps.front().placement);
    builder.place(hung.proximal, {});
    return hung;
}

/// Adds a site to a segment and places it.
inline qcSiteImp* addPlacedSite(FigureBuilder& builder, qcSegmentImp* segment, const std::string& name,
                                const Placement& placement)
{
    qcSiteImp* site = builder.addSite(segment, name);
    FigureBuilder::listSite(segment, site);
    builder.place(site, placement);
    return site;
}

/// Expects a position, cm. The double-precision part errs by less than 1e-12 cm for figures of this size;
/// each component is then narrowed once, which errs by at most 2^-24 of it.
inline void expectPosition(const qMatrix& transform, double x, double y, double z)
{
    const double size = std::fabs(x) + std::fabs(y) + std::fabs(z) + 1;
    const qVector position = transform.getTranslation();
    EXPECT_NEAR(double(position[0]), x, roundingBound(1, size));
    EXPECT_NEAR(double(position[1]), y, roundingBound(1, size));
    EXPECT_NEAR(double(position[2]), z, roundingBound(1, size));
}

/// The pointers that a list holds.
template <class Part> std::vector<Part*> partsOf(qList* list)
{
    std::vector<Part*> parts;
    for (qList* node = qList::iterator(list, nullptr); node; node = qList::iterator(list, node))
        parts.push_back(static_cast<Part*>(node->getData()));
    return parts;
}
