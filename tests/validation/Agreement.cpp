// Agreement.
#include "Agreement.h"

#include "NumberText.h"
#include "WalkSums.h"

#include <algorithm>

namespace {

constexpr double kNegligible = 0.01;    // kgf and N·m
constexpr float kPlaceholder = 1e-5f;   // N·m, each component
constexpr int kMessages = 3;

enum Size { kSmall, kLarge, kUnsure };
enum Decision { kWhole, kReplaced, kRemoved };

// Whether a length is negligible, where the analysis's own, from squares, two sums and a root, errs by 3 roundings
// more.
Size sizeOf(double value, double bound)
{
    const double slack = bound + 3 * rounding() * value;
    return value > kNegligible + slack ? kLarge : value < kNegligible - slack ? kSmall : kUnsure;
}

bool isPossible(Decision decision, Size force, Size moment)
{
    switch (decision) {
    case kRemoved:
        return force != kLarge && moment != kLarge;
    case kReplaced:
        return force != kSmall && moment != kLarge;
    default:
        return moment != kSmall;
    }
}

Decision decisionBy(double force, double moment)
{
    return moment > kNegligible ? kWhole : force > kNegligible ? kReplaced : kRemoved;
}

std::string text(const Vec& v)
{
    return "(" + numberText(hostComponent(v, 0)) + ", " + numberText(hostComponent(v, 1)) + ", "
           + numberText(hostComponent(v, 2)) + ")";
}

std::string text(double number)
{
    return numberText(number, 3);
}

class Comparison {
public:
    Comparison(const std::vector<WalkStep>& walked, const Testimony& told, const Loading& loading,
               const HostFigure& ofHost, const qmStaticStrength& own, const std::string& leads, Tally& counted)
        : steps(walked), testimony(told), sums(walked, told, loading), host(ofHost), analysis(own), about(leads),
          tally(counted), isPassed(walked.size(), false)
    {
        for (const WalkStep& step : steps)
            if (step.before >= 0)
                isPassed[static_cast<std::size_t>(step.before)] = true;
    }

    void run()
    {
        const bool onFoot = std::find(isPassed.begin(), isPassed.end(), true) != isPassed.end();
        if (onFoot
            && !(length(testimony.held.force) <= sums.doubleForce()
                 && length(testimony.held.moment) <= sums.doubleMoment()))
            tally.disagree(about + ": the foot does not carry the whole body");
        for (std::size_t i = 0; i < steps.size(); ++i)
            finish(i);
    }

private:
    void finish(std::size_t index)
    {
        const WalkSums::Sum& sum = sums.sum(index);
        const Vec force = sum.exact.force * (1 / kNewtonsPerKgf);
        const double forceBound = sum.forceBound / kNewtonsPerKgf;
        const Size forceSize = sizeOf(length(force), forceBound);
        const Size momentSize = sizeOf(length(sum.exact.moment), sum.momentBound);
        Decision decision = decisionBy(length(force), length(sum.exact.moment));
        if (isPassed[index]) {
            // the next step has written over what the analysis decided here
            if (momentSize == kUnsure || (momentSize == kSmall && forceSize == kUnsure))
                tally.disagree(where(index) + ": nobody can tell what was negligible before the foot was added");
        } else {
            Vec ownForce, ownMoment;
            const Decision own = read(index, ownForce, ownMoment);
            if (isPossible(own, forceSize, momentSize)) {
                decision = own;
                if (own != kRemoved)
                    check(index, "force, kgf", ownForce, force, forceBound, tally.force);
                if (own == kWhole)
                    check(index, "moment, N·m", ownMoment, sum.exact.moment, sum.momentBound, tally.moment);
            } else {
                tally.disagree(where(index) + ": negligible for one and not for the other: analysis " + text(ownForce)
                               + " kgf, " + text(ownMoment) + " N·m, witness " + text(force) + " kgf, "
                               + text(sum.exact.moment) + " N·m");
            }
            ++(decision == kWhole ? tally.whole : decision == kReplaced ? tally.replaced : tally.removed);
        }
        constexpr double kEach = double(kPlaceholder);
        if (decision == kWhole)
            sums.keepWhole(index);
        else if (decision == kReplaced)
            sums.replaceMoment(index, {kEach, kEach, kEach});
        else
            sums.drop(index);
    }

    Decision read(std::size_t index, Vec& force, Vec& moment) const
    {
        qVector ownForce, ownMoment;
        const int found = analysis.getJointForces(host.joint(steps[index].joint), ownForce, ownMoment);
        force = fromHost(ownForce, 1);
        moment = fromHost(ownMoment, 1);
        if (!found)
            return kRemoved;
        const bool replaced =
            ownMoment[0] == kPlaceholder && ownMoment[1] == kPlaceholder && ownMoment[2] == kPlaceholder;
        return replaced ? kReplaced : kWhole;
    }

    void check(std::size_t index, const char* what, const Vec& own, const Vec& witness, double bound, Worst& worst)
    {
        bool agrees = true;
        for (int i = 0; i < 3; ++i) {
            const double difference = std::fabs(hostComponent(own, i) - hostComponent(witness, i));
            worst.add(difference, bound);
            agrees = agrees && difference <= bound;
        }
        if (!agrees)
            tally.disagree(where(index) + ": " + what + ": analysis " + text(own) + ", witness " + text(witness)
                           + ", difference " + text(length(own - witness)) + ", bound " + text(bound));
    }

    std::string where(std::size_t index) const
    {
        return about + ", joint " + host.joint(steps[index].joint)->getName();
    }

    const std::vector<WalkStep>& steps;
    const Testimony& testimony;
    WalkSums sums;
    const HostFigure& host;
    const qmStaticStrength& analysis;
    const std::string& about;
    Tally& tally;
    std::vector<bool> isPassed;   // by step: another one goes on with the same joint
};

}   // namespace

void Worst::add(double newDifference, double bound)
{
    // not a number is the worst of all
    if (!(newDifference <= difference))
        difference = newDifference;
    const double share = newDifference == 0 ? 0 : newDifference / bound;
    if (!(share <= ofBound))
        ofBound = share;
}

void Tally::disagree(const std::string& message)
{
    if (++disagreements <= kMessages)
        messages.push_back(message);
}

void compare(const std::vector<WalkStep>& steps, const Testimony& testimony, const Loading& loading,
             const HostFigure& host, const qmStaticStrength& analysis, const std::string& about, Tally& tally)
{
    Comparison(steps, testimony, loading, host, analysis, about, tally).run();
}
