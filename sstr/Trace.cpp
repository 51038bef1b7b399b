// Trace. Every step in the order and the precision in which the analysis takes it: the sums are its own to
// the last bit.
#include "Trace.h"

#include "Names.h"
#include "Walks.h"

#include "FigureParts.h"
#include "HandLoads.h"
#include "SupportSplit.h"
#include "Units.h"

#include <cmath>
#include <cstring>
#include <unordered_map>

namespace {

constexpr double kNegligible = 0.01;       // kgf and N·m: at most this is no result
constexpr float kPlaceholder = 0.00001f;   // N·m: stored for a negligible moment beside a force

/// Goes the walks and keeps the trace of one joint. The joints between the root of a walk and the present one
/// stand in a list, so that the tree may be of any depth.
class Tracer {
public:
    Tracer(qmStaticStrength& traced, qcJoint* joint)
        : analysis(traced), figure(*traced.getHuman()->getFigure()), asked(joint)
    {
        analysis.getGravity(gravity);
        for (int i = 0; i < analysis.getNumLoadsWithOffset(); ++i) {
            const loadWithOffset* record = analysis.getNthLoadWithOffset(i);
            offsetLoads[record->site].push_back(record);
        }
    }

    /// @param ownOnly  the joint's next segment by itself
    void follow(const PlannedWalk& walk, bool ownOnly);

    const Trace& trace() const { return found; }

private:
    struct Frame {
        qcJoint* joint;
        qcSegment* segment;   // beyond the joint
        bool stops;           // at this segment
        qVector jointPos;     // cm
        qVector force, moment;
        qList* site;   // the site at hand
        qVector sitePos;
        qList* next;                           // the joint at that site that comes next
        std::size_t firstTerm, firstLeftOut;   // what was noted before does not lie beyond this joint
    };
    struct ForceMoment {
        qVector force, moment;
    };

    bool enter(qcJoint* joint, qcSite* site, const ForceMoment& start);
    static void goToSite(Frame& frame, qList* site);
    void takeJoint(Frame& frame, qcJoint* other);
    void takeSiteLoads(Frame& frame, qcSite* site);
    void takeLoad(Frame& frame, Contribution term, qcSite* site, qVector load, bool local, const qVector& offset);
    void takeWeight(Frame& frame);
    void store(Frame& frame);

    void add(Frame& frame, qVector point, qVector force)
    {
        analysis.calcForcesAt(frame.jointPos, point, force, frame.force, frame.moment);
    }
    bool isTracing() const { return askedDepth >= 0; }
    void note(Contribution term, const qVector& force, const std::optional<qVector>& point, const qVector& couple);
    void leaveOut(const Frame& frame);

    qmStaticStrength& analysis;
    const qcFigure& figure;
    qcJoint* asked;
    qVector gravity;   // cm/s²
    std::unordered_map<const qcSite*, std::vector<const loadWithOffset*>> offsetLoads;

    // One walk.
    qcSegment* stop = nullptr;
    bool segmentOnly = false;
    std::vector<Frame> frames;
    ForceMoment sums;   // at the root of the walk; the next one may begin with them

    std::unordered_map<const qcJoint*, ForceMoment> results;   // stored so far

    // The joint asked for.
    int askedDepth = -1;   // its frame while the walk is beyond it
    std::vector<Contribution> terms;
    std::vector<LeftOut> leftOut;
    int walks = 0;
    bool stopped = false;
    Trace found;
};

void Tracer::follow(const PlannedWalk& walk, bool ownOnly)
{
    stop = walk.stop;
    segmentOnly = ownOnly;
    frames.clear();
    if (!walk.onTopOfLast) {
        sums = ForceMoment();
        terms.clear();
        leftOut.clear();
        walks = 0;
        stopped = false;
    }
    if (!enter(walk.joint, walk.site, sums))
        return;   // the computation has refused it as well, after a message

    for (;;) {
        Frame& frame = frames.back();
        qcSite* here = frame.site ? static_cast<qcSite*>(frame.site->getData()) : nullptr;
        if (frame.next) {   // every joint at the site, each with all beyond it, before the site's own loads
            qcJoint* other = static_cast<qcJoint*>(frame.next->getData());
            frame.next = qList::iterator(nullptr, frame.next);
            if (other == frame.joint || segmentOnly)
                continue;
            if (frame.stops)
                takeJoint(frame, other);
            else if (!enter(other, here, ForceMoment()))
                return;
            continue;
        }
        if (here) {
            takeSiteLoads(frame, here);
            goToSite(frame, qList::iterator(nullptr, frame.site));
            continue;
        }

        takeWeight(frame);
        store(frame);
        sums = {frame.force, frame.moment};
        frames.pop_back();
        if (frames.empty())
            return;
        add(frames.back(), frames.back().sitePos, sums.force);
        frames.back().moment.add(sums.moment);
    }
}

// Begins the sums of a joint. @return false without the joint or its sites
bool Tracer::enter(qcJoint* joint, qcSite* site, const ForceMoment& start)
{
    qcSite* beyond = joint && site ? joint->otherSite(site) : nullptr;
    if (!beyond)
        return false;
    if (joint == asked) {
        askedDepth = static_cast<int>(frames.size());
        ++walks;
    }
    qcSegment* segment = beyond->getSegment();
    Frame& frame = frames.emplace_back(Frame{joint,
                                             segment,
                                             segment == stop,
                                             positionOf(site),
                                             start.force,
                                             start.moment,
                                             nullptr,
                                             {},
                                             nullptr,
                                             joint == asked ? 0 : terms.size(),
                                             joint == asked ? 0 : leftOut.size()});
    qVector torque;
    if (analysis.getDefinedTorque(joint, torque)) {
        frame.moment.add(torque);
        note({Contribution::kTorque, "", jointName(&figure, joint)}, {}, {}, torque);
    }
    if (frame.stops && isTracing())
        stopped = true;
    goToSite(frame, segment->getSites());
    return true;
}

void Tracer::goToSite(Frame& frame, qList* site)
{
    frame.site = site;
    frame.next = nullptr;
    if (!site)
        return;
    qcSite* here = static_cast<qcSite*>(site->getData());
    frame.sitePos = positionOf(here);
    frame.next = here->getJoints();
}

// On the segment where the walk stops: a share of what another joint has stored.
void Tracer::takeJoint(Frame& frame, qcJoint* other)
{
    const float share = analysis.getSplitFactor(frame.joint, kStoredResult, other->getName());
    const auto result = results.find(other);
    ForceMoment taken;
    if (share != 0.0f && result != results.end())
        taken = result->second;
    if (share != 0.0f) {
        taken.force.scale(share);
        taken.moment.scale(share);
    }
    add(frame, frame.sitePos, taken.force);
    frame.moment.add(taken.moment);
    // a share that is no number makes the sums none, whether there is a result or not
    if (share != 0.0f && (result != results.end() || !std::isfinite(share)))
        note({Contribution::kJointResult, "", jointName(&figure, other), share, {}, {}, {}, {}, {}}, taken.force,
             frame.sitePos, taken.moment);
}

// A site's own load, or at a palm's centre without one the hand's; then the loads with offsets, which at a
// palm's centre count only beside a load of its own.
void Tracer::takeSiteLoads(Frame& frame, qcSite* site)
{
    const auto term = [site](Contribution::Kind kind, const char* type) {
        return Contribution{kind, type, siteKey(site)};
    };
    qVector load;
    if (analysis.getSiteLoad(site, load)) {
        const char* type = analysis.getLoadType(site);
        takeLoad(frame, term(Contribution::kLoad, type), site, load, std::strcmp(type, "local") == 0, {});
    } else if (std::strstr(site->getFullName(), "palmcenter")) {
        const qcSide hand = std::strstr(site->getFullName(), "right") ? qcRight : qcLeft;
        const bool local = readHandLoadLocal(&figure, hand) != 0;
        load = readHandLoad(&figure, hand);
        if (load[0] != kNoHandLoad)
            takeLoad(frame, term(Contribution::kHandLoad, local ? "local" : "global"), site, load, local, {});
        return;
    }
    const auto here = offsetLoads.find(site);
    if (here == offsetLoads.end())
        return;
    for (const loadWithOffset* record : here->second)
        takeLoad(frame, term(Contribution::kOffsetLoad, record->type), site, record->load, record->local,
                 record->offset);
}

// A local load is turned by the site's axes, its offset is not.
void Tracer::takeLoad(Frame& frame, Contribution term, qcSite* site, qVector load, bool local, const qVector& offset)
{
    if (local)
        rotateToGlobal(load, site->getGlobalTransform());
    if (frame.stops) {
        term.factor = analysis.getSplitFactor(frame.joint, kSiteLoad, site->getName());
        load.scale(term.factor);
    }
    const qVector point = frame.sitePos + offset;
    add(frame, point, load);
    note(std::move(term), load, point, {});
}

// Where the walk stops, all that was gathered so far is halved, but not the weight.
void Tracer::takeWeight(Frame& frame)
{
    if (!(frame.segment->getMass() > 0.0f))
        return;
    if (frame.stops) {
        const float share = analysis.getSplitFactor(frame.joint, kSegmentWeight, nullptr);
        frame.force.scale(share);
        frame.moment.scale(share);
        for (std::size_t i = frame.firstTerm; isTracing() && i < terms.size(); ++i) {
            terms[i].factor *= share;
            terms[i].force.scale(share);
            terms[i].moment.scale(share);
        }
    }
    const qVector center = centerOfMassInWorld(frame.segment);
    const qVector weight = weightToLoad(gravity, frame.segment->getMass());
    add(frame, center, weight);
    note({Contribution::kSegmentWeight, "", frame.segment->getName()}, weight, center, {});
}

// Keeps the result of a joint whose segment is summed, as what counts further in.
void Tracer::store(Frame& frame)
{
    const bool isAsked = frame.joint == asked;
    if (isAsked)
        found = {walks, stopped, terms, leftOut, frame.force, frame.moment, false, {}, {}};
    results.erase(frame.joint);
    if (isNegligible(frame.force) && isNegligible(frame.moment)) {
        leaveOut(frame);
        frame.force = frame.moment = qVector();
    } else {
        if (isNegligible(frame.moment)) {
            const qVector placeholder(kPlaceholder, kPlaceholder, kPlaceholder);
            qVector change = placeholder;
            change.sub(frame.moment);
            note({Contribution::kPlaceholder, "", jointName(&figure, frame.joint)}, {}, {}, change);
            frame.moment = placeholder;
        }
        results[frame.joint] = {frame.force, frame.moment};
        if (isAsked) {
            found.stored = true;
            found.storedForce = frame.force;
            found.storedMoment = frame.moment;
        }
    }
    if (isAsked)
        askedDepth = -1;
}

// Notes a force at a point, and a couple, as they act on the joint asked for.
void Tracer::note(Contribution term, const qVector& force, const std::optional<qVector>& point, const qVector& couple)
{
    if (!isTracing())
        return;
    if (point) {
        qVector jointPos = frames[static_cast<std::size_t>(askedDepth)].jointPos, at = *point, f = force;
        analysis.calcForcesAt(jointPos, at, f, term.force, term.moment);
    }
    term.point = point;
    term.moment.add(couple);
    terms.push_back(std::move(term));
}

// Drops what was noted beyond a joint.
void Tracer::leaveOut(const Frame& frame)
{
    if (!isTracing())
        return;
    LeftOut all{jointName(&figure, frame.joint), static_cast<int>(terms.size() - frame.firstTerm), frame.force,
                frame.moment};
    for (std::size_t i = frame.firstLeftOut; i < leftOut.size(); ++i)
        all.contributions += leftOut[i].contributions;
    terms.erase(terms.begin() + static_cast<std::ptrdiff_t>(frame.firstTerm), terms.end());
    leftOut.erase(leftOut.begin() + static_cast<std::ptrdiff_t>(frame.firstLeftOut), leftOut.end());
    if (all.contributions > 0)
        leftOut.push_back(std::move(all));
}

}   // namespace

Trace traceJoint(qmStaticStrength& analysis, qmStaticStrength::Strategy effective, qcJoint* joint)
{
    Tracer tracer(analysis, joint);
    for (const PlannedWalk& walk : walksOf(*analysis.getHuman(), effective))
        tracer.follow(walk, false);
    return tracer.trace();
}

Trace traceSegment(qmStaticStrength& analysis, qcJoint* joint, qcSite* site)
{
    Tracer tracer(analysis, joint);
    tracer.follow({joint, site, nullptr, false}, true);
    return tracer.trace();
}

// The factor in double, narrowed once.
bool isNegligible(const qVector& sum)
{
    return double(sum.mag()) <= kNegligible;
}
