// Joint forces: the walk that sums what the body beyond each joint puts on it, and the stored results.
#include "Diagnostics.h"
#include "FigureParts.h"
#include "ForceMoment.h"
#include "HandLoads.h"
#include "LoadValues.h"
#include "OffsetLoadIndex.h"
#include "OutOfMemory.h"
#include "SavedLists.h"
#include "SupportSplit.h"
#include "TorqueValues.h"
#include "Units.h"
#include "qmStaticStrength.h"

#include "qc/qcMessages.h"

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace {

constexpr double kNegligible = 0.01;    // kgf and N·m: at most this is "no result"
constexpr float kPlaceholder = 1e-5f;   // N·m: stands for a negligible moment in a stored result

// A walk through a tree meets each joint once. One that meets them a thousand times on average has no end in sight.
constexpr std::size_t kMostMeetings = 1000;
constexpr std::size_t kMeetingsBetweenChecks = 1 << 20;   // counting the joints takes time

}   // namespace

qcValue makeForceMomentValue(const qVector& force, const qVector& moment)
{
    qcValue result;
    ListBuilder elements;
    elements.append(force);
    elements.append(moment);
    elements.moveInto(result);
    return result;
}

int decodeForceMomentValue(const qcValue& value, qVector& force, qVector& moment)
{
    const qcValue* forceElement = value.firstElement();
    qVector storedForce, storedMoment;
    if (!readVector(forceElement, storedForce) || !readVector(forceElement->next, storedMoment))
        return 0;
    force = storedForce;
    moment = storedMoment;
    return 1;
}

int readResult(const qcJoint* joint, qVector& force, qVector& moment)
{
    qcValue value;
    if (joint && joint->getProperty(kForceMomentKey, &value))
        return decodeForceMomentValue(value, force, moment);
    force = moment = qVector();
    return 0;
}

void storeResult(qcJoint* joint, const qVector& force, const qVector& moment)
{
    if (joint)
        joint->setProperty(kForceMomentKey, makeForceMomentValue(force, moment));
}

int qmStaticStrength::getJointForces(qcJoint* joint, qVector& force, qVector& moment) const
{
    if (isOrphaned("getJointForces"))
        return readResult(nullptr, force, moment);
    return resultOr(0, "getJointForces", [&] { return readResult(joint, force, moment); });
}

void qmStaticStrength::setFMonJoint(qcJoint* joint, const qVector& force, const qVector& moment)
{
    if (isOrphaned("setFMonJoint"))
        return;
    hasMemoryFor("setFMonJoint", [&] { storeResult(joint, force, moment); });
}

void qmStaticStrength::calcForcesAt(qVector& jointPos, qVector& point, qVector& f, qVector& sumForce,
                                    qVector& sumMoment)
{
    sumForce.add(f);
    // f × (joint - point) is (point - joint) × f
    qVector arm = jointPos;
    arm.sub(point);
    qVector moment = f;
    moment.cross(arm);
    moment.scale(MOMENT_SCALE);
    sumMoment.add(moment);
}

// What the stop segment's joint `other` contributes to the walk at `joint`: its share of a stored result.
void qmStaticStrength::special_joint_forces(qcJointImp* other, qcJointImp* joint, qVector& force, qVector& moment)
{
    const float share = get_split_factor(joint, kStoredResult, other->getName());
    if (share == 0.0f) {
        force = moment = qVector();
        return;
    }
    readResult(other, force, moment);
    force.scale(share);
    moment.scale(share);
}

// One walk. The tree may be as deep as memory allows: the joints between the root of the walk and
// the present one stand in a list of frames, not on the call stack. Frames and index are kept from
// walk to walk, so that a repeated walk allocates nothing.
struct qmStaticStrength::Walk {
    struct Frame {
        Frame(qcJointImp* ofJoint, qcSegmentImp* beyond, bool stopsThere, const qVector& position,
              const qVector& startForce, const qVector& startMoment)
            : joint(ofJoint), segment(beyond), stops(stopsThere), jointPos(position), force(startForce),
              moment(startMoment)
        {}

        qcJointImp* joint;
        qcSegmentImp* segment;   // beyond the joint
        bool stops;              // at this segment: the joints there are not walked
        qVector jointPos;        // cm
        qVector force, moment;   // sums at the joint
        qList* site = nullptr;   // the site at hand
        qVector sitePos;         // cm
        qList* next = nullptr;   // the joint at that site that comes next
    };

    Walk(qmStaticStrength& owner, qcSegmentImp* stopSegment) : analysis(owner), stop(stopSegment)
    {
        frames.swap(spareFrames());
        std::swap(index, spareIndex());
        index.build(*owner.offsetLoads);
        palmCentersMatter = !index.isEmpty() || hasHandLoads(handLoadFigure());
    }
    ~Walk()
    {
        frames.clear();
        frames.swap(spareFrames());
        std::swap(index, spareIndex());
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    int run(qcJointImp* joint, qcSiteImp* site, qVector& force, qVector& moment, int accumulate);

private:
    static std::vector<Frame>& spareFrames()
    {
        static std::vector<Frame> frames;
        return frames;
    }
    static OffsetLoadIndex& spareIndex()
    {
        static OffsetLoadIndex index;
        return index;
    }

    bool enter(qcJointImp* joint, qcSiteImp* site, const qVector& force, const qVector& moment);
    bool isEndless(const qcJointImp* joint, const qcSegmentImp* beyond);
    bool comesRound(const qcJointImp* joint, const qcSegmentImp* beyond);
    static void goToSite(Frame& frame, qList* site);
    void takeSiteLoads(Frame& frame);
    void take(Frame& frame, qcSiteImp* site, qVector load, bool local, const qVector& offset);
    void takeOffsetLoads(Frame& frame, qcSiteImp* site);
    void takeWeight(Frame& frame);
    void store(Frame& frame);
    void reportFailure() const;

    const qcFigure* handLoadFigure() const { return analysis.human ? analysis.human->getFigure() : nullptr; }

    qmStaticStrength& analysis;
    qcSegmentImp* stop;
    bool palmCentersMatter;   // false: no hand load and no load with offset, so they are sites like any other
    std::vector<Frame> frames;
    OffsetLoadIndex index;
    std::size_t meetings = 0;   // with joints, so far
};

int qmStaticStrength::compute_joint_forces(qcJointImp* joint, qcSiteImp* site, qVector& force, qVector& moment,
                                           qcSegmentImp* stop, int accumulate)
{
    Walk walk(*this, stop);
    return walk.run(joint, site, force, moment, accumulate);
}

int qmStaticStrength::Walk::run(qcJointImp* joint, qcSiteImp* site, qVector& force, qVector& moment, int accumulate)
{
    const qVector zero;
    if (!enter(joint, site, accumulate ? force : zero, accumulate ? moment : zero))
        return 0;

    for (;;) {
        Frame& frame = frames.back();

        // every joint at the site, each with all that hangs on it, before the site's own loads
        if (frame.next) {
            qcSiteImp* here = static_cast<qcSiteImp*>(frame.site->getData());
            qcJointImp* other = static_cast<qcJointImp*>(frame.next->getData());
            frame.next = qList::iterator(nullptr, frame.next);
            if (other == frame.joint || segmentOnly)
                continue;
            if (frame.stops) {
                qVector otherForce, otherMoment;
                analysis.special_joint_forces(other, frame.joint, otherForce, otherMoment);
                analysis.calcForcesAt(frame.jointPos, frame.sitePos, otherForce, frame.force, frame.moment);
                frame.moment.add(otherMoment);
            } else if (!enter(other, here, zero, zero)) {
                error("StaticStrength ERROR: failed on %s", other ? other->getFullName() : "???");
                reportFailure();
                force = frames.front().force;
                moment = frames.front().moment;
                return 0;
            }
            continue;
        }
        if (frame.site) {
            takeSiteLoads(frame);
            goToSite(frame, qList::iterator(nullptr, frame.site));
            continue;
        }

        // the whole segment is summed: its weight, then the result
        takeWeight(frame);
        store(frame);
        qVector carriedForce = frame.force;
        const qVector carriedMoment = frame.moment;
        frames.pop_back();
        if (frames.empty()) {
            force = carriedForce;
            moment = carriedMoment;
            return 1;
        }
        Frame& inner = frames.back();
        analysis.calcForcesAt(inner.jointPos, inner.sitePos, carriedForce, inner.force, inner.moment);
        inner.moment.add(carriedMoment);
    }
}

// Whether the walk would never end, or not before long. Figures are trees, but nothing makes a host's lists, or those
// of a posed figure, form one.
bool qmStaticStrength::Walk::isEndless(const qcJointImp* joint, const qcSegmentImp* beyond)
{
    if (comesRound(joint, beyond)) {
        error("StaticStrength ERROR: joint %s lies beyond itself: the joints form a circle", joint->getFullName());
        return true;
    }
    if (++meetings % kMeetingsBetweenChecks != 0)
        return false;
    std::size_t joints = 0;
    forEach<qcJointImp>(analysis.figure->getJoints(), [&](const qcJointImp*) { ++joints; });
    if (meetings <= kMostMeetings * joints)
        return false;
    error("StaticStrength ERROR: joint %s is met over and over: the joints form no tree", joint->getFullName());
    return true;
}

// Whether the walk is on its way beyond this very joint already. Where it goes from a joint depends on nothing else, so
// that it then goes round for ever; and so it is enough to look at one frame, the last whose number is a power of two.
// Of the frames each of the circle's joints is left once, for the report.
bool qmStaticStrength::Walk::comesRound(const qcJointImp* joint, const qcSegmentImp* beyond)
{
    std::size_t mark = 1;
    while (mark * 2 <= frames.size())
        mark *= 2;
    if (frames.empty() || frames[mark - 1].joint != joint || frames[mark - 1].segment != beyond)
        return false;
    const auto period = static_cast<std::ptrdiff_t>(frames.size() - (mark - 1));
    auto start = frames.begin();
    while (frames.end() - start > period
           && (start->joint != start[period].joint || start->segment != start[period].segment))
        ++start;
    frames.erase(start + period, frames.end());
    return true;
}

// Begins the sums of a joint. Refuses a null joint or site, after a message.
bool qmStaticStrength::Walk::enter(qcJointImp* joint, qcSiteImp* site, const qVector& force, const qVector& moment)
{
    qcSiteImp* beyond = otherSite(joint, site);
    if (!beyond) {
        error("StaticStrength ERROR: joint %s site %s\n", joint ? joint->getName() : "???",
              site ? site->getFullName() : "???");
        return false;
    }
    qcSegmentImp* segment = beyond->getSegment();
    if (isEndless(joint, segment))
        return false;
    Frame& frame = frames.emplace_back(joint, segment, segment == stop, positionOf(site), force, moment);

    qcValue torqueValue;
    qVector torque;
    if (joint->getProperty(kTorqueKey, &torqueValue) && decodeTorqueValue(torqueValue, torque))
        frame.moment.add(torque);

    goToSite(frame, frame.segment->getSites());
    return true;
}

void qmStaticStrength::Walk::goToSite(Frame& frame, qList* site)
{
    frame.site = site;
    frame.next = nullptr;
    if (!site)
        return;
    qcSiteImp* here = static_cast<qcSiteImp*>(site->getData());
    frame.sitePos = positionOf(here);
    frame.next = here->getJoints();
}

// The loads of a site: its own load, or at a palm centre without one the hand load, and its loads
// with offsets.
//
// Required: a palm centre's loads with offsets count only when it also carries a load of its own.
void qmStaticStrength::Walk::takeSiteLoads(Frame& frame)
{
    qcSiteImp* site = static_cast<qcSiteImp*>(frame.site->getData());
    if (!palmCentersMatter && site->getNumProperties() == 0)
        return;
    const qVector noOffset;
    qcValue value;
    if (site->getProperty(kLoadKey, &value)) {
        qVector load;
        int local;
        if (!decodeLoadValue(value, load, local, nullptr)) {
            error("StaticStrength ERROR: illegal load at site %s", site->getFullName());
            return;
        }
        take(frame, site, load, local, noOffset);
    } else if (palmCentersMatter && std::strstr(site->getFullName(), "palmcenter")) {
        const qcSide hand = std::strstr(site->getFullName(), "right") ? qcRight : qcLeft;
        const qVector load = readHandLoad(handLoadFigure(), hand);
        if (load[0] != kNoHandLoad)
            take(frame, site, load, readHandLoadLocal(handLoadFigure(), hand), noOffset);
        return;
    }
    takeOffsetLoads(frame, site);
}

// Required: the offset is added as stored, unrotated, for local loads too.
void qmStaticStrength::Walk::takeOffsetLoads(Frame& frame, qcSiteImp* site)
{
    for (int i = index.firstOf(site); i != OffsetLoadIndex::kNone; i = index.nextOf(i)) {
        const loadWithOffset& record = *(*analysis.offsetLoads)[static_cast<std::size_t>(i)];
        take(frame, site, record.load, record.local, record.offset);
    }
}

// A load at a displacement from a site; half of it on the stop segment.
void qmStaticStrength::Walk::take(Frame& frame, qcSiteImp* site, qVector load, bool local, const qVector& offset)
{
    if (local)
        rotateToGlobal(load, site->getGlobalTransform());
    if (frame.stops)
        load.scale(analysis.get_split_factor(frame.joint, kSiteLoad, site->getName()));
    qVector point = frame.sitePos + offset;
    analysis.calcForcesAt(frame.jointPos, point, load, frame.force, frame.moment);
}

// Required: on the stop segment all that was gathered so far is halved here, torque and already halved
// loads included; the weight is not.
void qmStaticStrength::Walk::takeWeight(Frame& frame)
{
    const float mass = frame.segment->getMass();
    if (!(mass > 0.0f))
        return;
    qVector center = centerOfMassInWorld(frame.segment);
    qVector weight = weightToLoad(analysis.gravity, mass);
    if (frame.stops) {
        const float share = analysis.get_split_factor(frame.joint, kSegmentWeight, nullptr);
        frame.force.scale(share);
        frame.moment.scale(share);
    }
    printVector("wvec", weight);
    analysis.calcForcesAt(frame.jointPos, center, weight, frame.force, frame.moment);
}

// A negligible result is removed. Required: a negligible moment beside a force becomes a placeholder, so
// that a stored moment is never the zero vector.
void qmStaticStrength::Walk::store(Frame& frame)
{
    const bool noForce = double(frame.force.mag()) <= kNegligible;
    const bool noMoment = double(frame.moment.mag()) <= kNegligible;
    if (noForce && noMoment) {
        frame.joint->removeProperty(kForceMomentKey);
        frame.force = frame.moment = qVector();
        return;
    }
    if (noMoment)
        frame.moment.set(kPlaceholder, kPlaceholder, kPlaceholder);
    storeResult(frame.joint, frame.force, frame.moment);
}

// Each joint on the way back to the root of the walk, by the joint whose subtree failed.
void qmStaticStrength::Walk::reportFailure() const
{
    for (std::size_t i = frames.size(); i > 1; --i)
        error("StaticStrength ERROR: failed on %s", frames[i - 1].joint->getFullName());
}
