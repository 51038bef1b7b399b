// Figure: a tree of rigid segments that joints connect at named sites, in its present posture.
//
//   lengths  cm      masses  g      angles  rad
//   axes     global: x to the figure's left, y up, z forward
//   transforms place a frame in the world: row vectors, p' = p · M; the translation is row 3
//
// Transforms are worked out when first asked for after a change of posture.
#pragma once

#include "qc/qList.h"
#include "qc/qMatrix.h"
#include "qc/qVector.h"
#include "qc/qcExport.h"
#include "qc/qcObject.h"

#include <memory>
#include <string>
#include <vector>

class qcFigure;
class qcJointImp;
class qcSegmentImp;
class qcSiteImp;

/// The handles that callers pass are the records themselves.
typedef qcJointImp qcJoint;
typedef qcSegmentImp qcSegment;
typedef qcSiteImp qcSite;

enum qcSide { qcRight = 0, qcLeft = 1 };

/// The parts of a figure that play a human's roles. Null: the figure has no such part.
struct qcRoles {
    qcSiteImp* foot[2] = {nullptr, nullptr};   // by qcSide, as all pairs here
    qcSiteImp* hand[2] = {nullptr, nullptr};
    qcJointImp* knee[2] = {nullptr, nullptr};
    qcJointImp* ankle[2] = {nullptr, nullptr};
    qcJointImp* hip[2] = {nullptr, nullptr};
    qcSiteImp* pelvis = nullptr;
    qcJointImp* waist = nullptr;
};

/// A rigid segment.
class QC_API qcSegmentImp : public qcObject {
public:
    qcFigure* getFigure() const { return figure; }

    /// Its sites (qcSiteImp*), in a stable order. Null: none.
    qList* getSites() const { return sites; }

    /// The site by which it hangs on its parent; null for the root.
    qcSiteImp* getAttachmentSite() const { return attachment; }

    /// Mass, g; zero or less means weightless.
    float getMass() const { return mass; }

    /// Sets the mass by hand, g; no scale changes it from then on.
    void setMass(float grams);
    bool hasOwnMass() const { return massByHand; }

    /// Centre of mass, cm, in the segment's own frame.
    const qVector& getCenterOfMass() const { return centerOfMass; }

    inline const qMatrix& getGlobalTransform();

    int setName(const char* name) override;   ///< its sites' full names follow

private:
    friend class FigureBuilder;
    friend class Posture;
    friend class qcFigure;
    qcSegmentImp() = default;

    qcFigure* figure = nullptr;
    qList* sites = nullptr;
    qcSiteImp* attachment = nullptr;
    float mass = 0.0f;
    bool massByHand = false;
    qVector centerOfMass;
    qMatrix globalTransform;
};

/// A named frame on a segment, at which joints attach and loads are applied.
class QC_API qcSiteImp : public qcObject {
public:
    qcSegmentImp* getSegment() const { return segment; }

    /// The joints (qcJointImp*) attached here, in a stable order. Null: none.
    qList* getJoints() const { return joints; }

    /// The first joint attached here; null when there is none.
    qcJointImp* getJoint() const { return joints ? static_cast<qcJointImp*>(joints->getData()) : nullptr; }

    inline const qMatrix& getGlobalTransform();

    /// A transform that the host keeps beside the global one; the same unless the figure's file says otherwise.
    inline const qMatrix& getSecondTransform();

    int setName(const char* name) override;   ///< its full name follows

private:
    friend class FigureBuilder;
    friend class Posture;
    friend class qcFigure;
    qcSiteImp() = default;

    qcSegmentImp* segment = nullptr;
    qList* joints = nullptr;
    unsigned staleMask = 0;   // which of the figure's stale parts this site's transform depends on
    qMatrix globalTransform;
    std::unique_ptr<qMatrix> secondTransform;   // null: the global transform
};

/// A joint: it connects two sites on two segments and turns by a number of angles.
class QC_API qcJointImp : public qcObject {
public:
    qcFigure* getFigure() const { return figure; }

    /// Its sites: 0 the first, 1 the second; null for any other index.
    qcSiteImp* getSite(int i) const { return i == 0 || i == 1 ? sites[i] : nullptr; }

    /// The other one of its two sites; null when `site` is none of them.
    qcSiteImp* otherSite(const qcSiteImp* site) const
    {
        return site == sites[0] ? sites[1] : site == sites[1] ? sites[0] : nullptr;
    }

    /// The one of its sites that lies on the segment, the first tried first; null when neither does.
    qcSiteImp* siteOnSegment(const qcSegmentImp* segment) const
    {
        return segment && sites[0]->getSegment() == segment   ? sites[0]
               : segment && sites[1]->getSegment() == segment ? sites[1]
                                                              : nullptr;
    }

    /// The site on the segment nearer the trunk.
    qcSiteImp* getInboardSite() const { return inboard; }

    int getNumAngles() const { return static_cast<int>(angles.size()); }

    /// Angle i, counted from 1, rad; 0 for an index outside.
    float getAngle(int i) const { return static_cast<float>(getAngleExactly(i)); }
    double getAngleExactly(int i) const;

    /// Sets angle i, counted from 1, rad.
    /// @return 1; or 0 after an error message, nothing changed, when there is no such angle or the
    ///         value lies outside the limits or is not a finite number
    int setAngle(int i, double radians);

    /// Says what is wrong with a value for angle i; empty when nothing is. As setAngle() would.
    std::string angleProblem(int i, double radians) const;

    /// The limits of angle i, rad. @return 1; 0 when it has none or there is no such angle
    int getAngleLimits(int i, double& lower, double& upper) const;

    /// The name of angle i; empty when it has none or there is no such angle.
    const char* getAngleName(int i) const;

    int setName(const char* name) override;   ///< its full name follows

private:
    friend class FigureBuilder;
    friend class Posture;
    friend class qcFigure;
    qcJointImp() = default;

    struct Angle {
        double value = 0;   // rad
        double lower = 0;   // rad; with upper, when limited
        double upper = 0;   // rad
        bool limited = false;
        std::string name;
    };

    qcFigure* figure = nullptr;
    qcSiteImp* sites[2] = {nullptr, nullptr};
    qcSiteImp* inboard = nullptr;
    std::vector<Angle> angles;
};

class Posture;

/// A figure. It owns its segments, sites and joints, and lists each kind in a stable order.
class QC_API qcFigure : public qcObject {
public:
    ~qcFigure() override;
    qcFigure(const qcFigure&) = delete;
    qcFigure& operator=(const qcFigure&) = delete;

    /// Each finds a part by its exact name, the first where several share it; null when there is none.
    qcSegmentImp* findSegment(const char* name) const;
    qcJointImp* findJoint(const char* name) const;
    qcSiteImp* findSiteByFullName(const char* fullName) const;   ///< "figure.segment.site"

    /// The site whose position stands for the body's balance point.
    qcSiteImp* getReferenceSite() const { return referenceSite; }

    /// All parts: qcSegmentImp*, qcSiteImp*, qcJointImp*.
    qList* getSegments() const { return segmentList; }
    qList* getSites() const { return siteList; }
    qList* getJoints() const { return jointList; }

    const qcRoles& getRoles() const { return roles; }

    /// Names the figure, and its parts' full names after it.
    int setName(const char* name) override;

    /// Places the root segment: its origin, cm, and its turn about the world's x, then y, then z
    /// axis, degrees. @return 1; 0 after an error message when a number is not finite,
    /// a position beyond 1e5 cm or a turn beyond 1e4 degrees. A posed
    /// figure keeps the numbers and does not move.
    int setRoot(double x, double y, double z, double rxDegrees, double ryDegrees, double rzDegrees);

    /// The root's origin as it was set, cm (its height too, also while standing on the floor), and its turn, degrees.
    void getRoot(double position[3], double rotationDegrees[3]) const;

    /// From now on the figure's height is such that its lowest site on a foot (or, for a figure
    /// without feet, its lowest site) lies on y = 0; until setRoot(). Position x, z and turn stay.
    void standOnFloor();
    bool isOnFloor() const;

    /// The whole body's mass, g, and centre of mass, cm, in the world; segments without weight count
    /// nothing. A massless figure has its centre at the root's origin.
    double getBodyMass();
    qVector getBodyCenterOfMass();

    /// Whether the figure was given posed: its transforms are fixed and angles move nothing.
    bool isPosed() const;

    /// What the figure's file was read as: what was joined, merged or dropped, one line each.
    const std::vector<std::string>& getNotes() const { return notes; }

private:
    friend class FigureBuilder;
    friend class Posture;
    friend class qcAnthroScale;
    friend class qcHuman;
    friend class qcJointImp;
    friend class qcSegmentImp;
    friend class qcSiteImp;
    qcFigure();

    // What is out of date.
    enum Stale : unsigned { kTransforms = 1, kBalancePoint = 2 };
    void refresh(unsigned mask);
    void refreshIf(unsigned mask)
    {
        if (stale & mask)
            refresh(mask);
    }
    void partRenamed();

    struct Index;   // parts by name

    std::vector<std::unique_ptr<qcSegmentImp>> segments;
    std::vector<std::unique_ptr<qcSiteImp>> sites;
    std::vector<std::unique_ptr<qcJointImp>> joints;
    qList* segmentList = nullptr;
    qList* siteList = nullptr;
    qList* jointList = nullptr;
    qcSiteImp* referenceSite = nullptr;
    qcRoles roles;
    std::vector<std::string> missingRoles;   // what keeps the figure from being a human
    bool scaleAtHand = true;                 // the human has a scale from the start
    bool scaleCanBeMade = true;
    unsigned stale = kTransforms | kBalancePoint;
    std::unique_ptr<Posture> posture;
    std::unique_ptr<Index> index;
    std::vector<std::string> notes;
};

inline const qMatrix& qcSegmentImp::getGlobalTransform()
{
    figure->refreshIf(qcFigure::kTransforms);
    return globalTransform;
}

inline const qMatrix& qcSiteImp::getGlobalTransform()
{
    segment->getFigure()->refreshIf(staleMask);
    return globalTransform;
}

inline const qMatrix& qcSiteImp::getSecondTransform()
{
    return secondTransform ? *secondTransform : getGlobalTransform();
}
