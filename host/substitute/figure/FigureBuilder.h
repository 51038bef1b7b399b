// Figure builder: how the readers of figure files put a figure together, part by part.
#pragma once

#include "Posture.h"

#include "qc/qcFigure.h"

#include <memory>
#include <string>
#include <vector>

/// Builds one figure. Parts are listed in the order in which they are added; everything that the
/// builder hands out belongs to the figure.
class FigureBuilder {
public:
    explicit FigureBuilder(const std::string& figureName);
    ~FigureBuilder();

    // Parts.
    qcSegmentImp* addSegment(const std::string& name, float grams, const qVector& centerOfMass);
    qcSiteImp* addSite(qcSegmentImp* segment, const std::string& name);
    /// @param fullName  empty: "figure.joint"
    qcJointImp* addJoint(const std::string& name, const std::string& fullName, qcSiteImp* first, qcSiteImp* second,
                         qcSiteImp* inboard);
    /// Appends an angle to a joint; all of them before the joint is used in place().
    static void addAngle(qcJointImp* joint, const std::string& name, double radians);
    static void addAngle(qcJointImp* joint, const std::string& name, double radians, double lower, double upper);

    // The order of a segment's sites and of a site's joints.
    static void listSite(qcSegmentImp* segment, qcSiteImp* site);
    static void listJoint(qcSiteImp* site, qcJointImp* joint);
    static void setAttachment(qcSegmentImp* segment, qcSiteImp* site);

    // A figure that moves: where each part sits on its parent. Parents before children; the root has
    // no parent, no joint and no steps. Every site is placed on its segment.
    void place(qcSegmentImp* segment, qcSegmentImp* parent, const qcJointImp* joint, const std::vector<Step>& steps);
    void place(qcSiteImp* site, const Placement& placement);

    // A posed figure: where each part is.
    static void setTransform(qcSegmentImp* segment, const qMatrix& transform);
    static void setTransforms(qcSiteImp* site, const qMatrix& transform, const qMatrix& second);

    // The rest.
    void setReferenceSite(qcSiteImp* site);
    qcRoles& roles();
    void addMissingRole(const std::string& what);             ///< a figure that misses one makes no human
    void setScaling(bool scaleAtHand, bool scaleCanBeMade);   ///< by default both are true
    static bool scaleIsAtHand(const qcFigure& built);
    static bool scaleCanBeMade(const qcFigure& built);
    BodyBase& base();   ///< its total mass is filled in by the finish
    void addNote(const std::string& line);

    /// The finished figure, in its zero posture. For a moving figure the reference site is kept at
    /// the body's centre of mass. The builder is empty afterwards.
    std::unique_ptr<qcFigure> finishMoving();
    std::unique_ptr<qcFigure> finishPosed();

private:
    std::unique_ptr<qcFigure> finish();

    std::unique_ptr<qcFigure> figure;
};
