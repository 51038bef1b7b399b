// Figure: its parts, their names, and when their transforms are worked out.
#include "qc/qcFigure.h"

#include "MessageNumber.h"
#include "Posture.h"

#include "qc/qcMessages.h"

#include <cmath>
#include <cstring>
#include <deque>
#include <string_view>
#include <unordered_map>

namespace {

constexpr double kFarthestRoot = 1e5;   // cm: positions are then good to 0.01 cm
constexpr double kLargestTurn = 1e4;    // degrees

constexpr double kDegreesPerRadian = 180.0 / 3.14159265358979323846;

void freeList(qList** list)
{
    while (*list)
        qList::deleteNode(list, *list, nullptr);
}

}   // namespace

// The first part of each name. The texts are the index's own, so that a part may change its names.
struct qcFigure::Index {
    template <class Part> using Map = std::unordered_map<std::string_view, Part*>;

    template <class Part> void add(Map<Part>& map, const char* name, Part* part)
    {
        texts.emplace_back(name);
        map.emplace(texts.back(), part);   // keeps the first
    }

    template <class Part> static Part* find(const Map<Part>& map, const char* name)
    {
        if (!name)
            return nullptr;
        const auto found = map.find(name);
        return found == map.end() ? nullptr : found->second;
    }

    std::deque<std::string> texts;
    Map<qcSegmentImp> segments;
    Map<qcJointImp> joints;
    Map<qcSiteImp> sites;   // by full name
};

qcFigure::qcFigure() : posture(new Posture(*this)), index(new Index) {}

qcFigure::~qcFigure()
{
    notifyDestroyed();
    for (const auto& segment : segments)
        freeList(&segment->sites);
    for (const auto& site : sites)
        freeList(&site->joints);
    freeList(&segmentList);
    freeList(&siteList);
    freeList(&jointList);
}

void qcFigure::partRenamed()
{
    auto renewed = std::make_unique<Index>();
    for (const auto& segment : segments)
        renewed->add(renewed->segments, segment->getName(), segment.get());
    for (const auto& joint : joints)
        renewed->add(renewed->joints, joint->getName(), joint.get());
    for (const auto& site : sites)
        renewed->add(renewed->sites, site->getFullName(), site.get());
    index = std::move(renewed);
}

int qcFigure::setName(const char* name)
{
    const std::string oldPrefix = std::string(getName()) + ".";
    qcObject::setName(name);
    setWholeFullName(getName());
    for (const auto& segment : segments)
        segment->setFullName(getName(), segment->getName());
    for (const auto& site : sites)
        site->setFullName(site->getSegment()->getFullName(), site->getName());
    // a joint's full name may be the host's own: only a leading figure name is replaced
    for (const auto& joint : joints)
        if (std::strncmp(joint->getFullName(), oldPrefix.c_str(), oldPrefix.size()) == 0)
            joint->setFullName(getName(), std::string(joint->getFullName() + oldPrefix.size()).c_str());
    partRenamed();
    return 1;
}

int qcSegmentImp::setName(const char* name)
{
    qcObject::setName(name);
    setFullName(figure->getName(), getName());
    for (const auto& site : figure->sites)
        if (site->getSegment() == this)
            site->setFullName(getFullName(), site->getName());
    figure->partRenamed();
    return 1;
}

int qcSiteImp::setName(const char* name)
{
    qcObject::setName(name);
    setFullName(segment->getFullName(), getName());
    segment->getFigure()->partRenamed();
    return 1;
}

int qcJointImp::setName(const char* name)
{
    qcObject::setName(name);
    setFullName(figure->getName(), getName());
    figure->partRenamed();
    return 1;
}

qcSegmentImp* qcFigure::findSegment(const char* name) const
{
    return Index::find(index->segments, name);
}

qcJointImp* qcFigure::findJoint(const char* name) const
{
    return Index::find(index->joints, name);
}

qcSiteImp* qcFigure::findSiteByFullName(const char* fullName) const
{
    return Index::find(index->sites, fullName);
}

void qcFigure::refresh(unsigned mask)
{
    if (stale & kTransforms) {
        posture->update();
        stale &= ~unsigned(kTransforms);
    }
    if (mask & stale & kBalancePoint) {
        posture->updateBalancePoint();
        stale &= ~unsigned(kBalancePoint);
    }
}

int qcFigure::setRoot(double x, double y, double z, double rxDegrees, double ryDegrees, double rzDegrees)
{
    for (const double value : {x, y, z})
        if (!(std::fabs(value) <= kFarthestRoot))
            return error(
                "figure %s: expected a root position within %g cm of the origin, found %g. Farther out, single "
                "precision cannot tell the parts of a body apart.",
                getName(), kFarthestRoot, value);
    for (const double value : {rxDegrees, ryDegrees, rzDegrees})
        if (!(std::fabs(value) <= kLargestTurn))
            return error("figure %s: expected a turn of the root of at most %g degrees, found %g.", getName(),
                         kLargestTurn, value);
    posture->rootPosition = {x, y, z};
    posture->rootDegrees = {rxDegrees, ryDegrees, rzDegrees};
    posture->onFloor = false;
    stale = kTransforms | kBalancePoint;
    return 1;
}

void qcFigure::getRoot(double position[3], double rotationDegrees[3]) const
{
    for (std::size_t i = 0; i < 3; ++i) {
        position[i] = posture->rootPosition[i];
        rotationDegrees[i] = posture->rootDegrees[i];
    }
}

void qcFigure::standOnFloor()
{
    posture->onFloor = true;
    stale = kTransforms | kBalancePoint;
}

bool qcFigure::isOnFloor() const
{
    return posture->onFloor;
}

double qcFigure::getBodyMass()
{
    return posture->bodyMass();
}

qVector qcFigure::getBodyCenterOfMass()
{
    refreshIf(kTransforms);
    const Point center = posture->bodyCenter();
    return {static_cast<float>(center[0]), static_cast<float>(center[1]), static_cast<float>(center[2])};
}

bool qcFigure::isPosed() const
{
    return posture->isFixed();
}

void qcSegmentImp::setMass(float grams)
{
    mass = grams;
    massByHand = true;
    figure->stale |= qcFigure::kBalancePoint;
}

double qcJointImp::getAngleExactly(int i) const
{
    return i >= 1 && i <= getNumAngles() ? angles[static_cast<std::size_t>(i - 1)].value : 0;
}

const char* qcJointImp::getAngleName(int i) const
{
    return i >= 1 && i <= getNumAngles() ? angles[static_cast<std::size_t>(i - 1)].name.c_str() : "";
}

int qcJointImp::getAngleLimits(int i, double& lower, double& upper) const
{
    if (i < 1 || i > getNumAngles() || !angles[static_cast<std::size_t>(i - 1)].limited)
        return 0;
    lower = angles[static_cast<std::size_t>(i - 1)].lower;
    upper = angles[static_cast<std::size_t>(i - 1)].upper;
    return 1;
}

// A value that a limit rounds to is inside it: limits come from degrees and so do most values.
std::string qcJointImp::angleProblem(int i, double radians) const
{
    constexpr double kRounding = 1e-9;   // rad
    if (i < 1 || i > getNumAngles())
        return "it has no angle " + std::to_string(i) + "; it has " + std::to_string(getNumAngles());
    if (!std::isfinite(radians))
        return "angle " + std::to_string(i) + " must be a finite number";
    const Angle& angle = angles[static_cast<std::size_t>(i - 1)];
    if (!angle.limited || (radians >= angle.lower - kRounding && radians <= angle.upper + kRounding))
        return "";
    return (angle.name.empty() ? "angle " + std::to_string(i) : angle.name) + " of "
           + messageNumber(radians * kDegreesPerRadian) + " degrees is outside its limits, "
           + messageNumber(angle.lower * kDegreesPerRadian) + " to " + messageNumber(angle.upper * kDegreesPerRadian)
           + " degrees";
}

int qcJointImp::setAngle(int i, double radians)
{
    // the plain case first: postures are swept by the thousand
    const bool known = i >= 1 && i <= getNumAngles();
    if (known) {
        Angle& angle = angles[static_cast<std::size_t>(i - 1)];
        const bool inside = angle.limited ? radians >= angle.lower && radians <= angle.upper : std::isfinite(radians);
        if (inside) {
            angle.value = radians;
            figure->stale = qcFigure::kTransforms | qcFigure::kBalancePoint;
            return 1;
        }
    }
    const std::string problem = angleProblem(i, radians);
    if (!problem.empty())
        return error("joint %s: %s.", getFullName(), problem.c_str());
    angles[static_cast<std::size_t>(i - 1)].value = radians;
    figure->stale = qcFigure::kTransforms | qcFigure::kBalancePoint;
    return 1;
}
