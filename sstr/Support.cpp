// Support.
#include "Support.h"

#include "Names.h"

#include <cmath>
#include <cstring>
#include <string>

namespace {

using Strategy = qmStaticStrength::Strategy;

constexpr int kOtherJointsResult = 1;   // the mode of getSplitFactor()

// A right share and its complement, in percent.
void set(std::optional<float> (&shares)[2], float right)
{
    if (!std::isfinite(right))
        return;
    shares[qcRight] = static_cast<float>(double(right) * 100.0);
    shares[qcLeft] = static_cast<float>((1.0 - double(right)) * 100.0);
}

// The first joint whose name begins with "r" and ends as told: what the analysis takes for a right one.
qcJoint* rightJoint(const qcFigure& figure, const char* ending)
{
    qcJoint* found = nullptr;
    const std::size_t length = std::strlen(ending);
    forEach<qcJoint>(figure.getJoints(), [&](qcJoint* joint) {
        const std::string name = joint->getName();
        const bool fits =
            name.size() > length && name[0] == 'r' && name.compare(name.size() - length, length, ending) == 0;
        if (!found && fits)
            found = joint;
    });
    return found;
}

// The right hip's share of the last computation; nothing for a figure without joints. The analysis tells it
// under two feet only, so that is asked for a moment; the strategy's text on the figure is back afterwards.
//
// Asked for a joint that it does not take for a right one, the analysis tells the left hip's share.
std::optional<float> rightHipShare(qmStaticStrength& analysis)
{
    const qcFigure& figure = *analysis.getHuman()->getFigure();
    qcJoint* right = rightJoint(figure, "");
    qcJoint* any = right ? right : figure.getJoints() ? static_cast<qcJoint*>(figure.getJoints()->getData()) : nullptr;
    if (!any)
        return std::nullopt;
    const Strategy chosen = analysis.getStrategy();
    if (chosen == qmStaticStrength::Walking)
        analysis.setStrategy(qmStaticStrength::TwoFeet);
    const float share = analysis.getSplitFactor(any, kOtherJointsResult, "waist");
    if (chosen == qmStaticStrength::Walking)
        analysis.setStrategy(chosen);
    return right ? share : static_cast<float>(1.0 - double(share));
}

}   // namespace

Support readSupport(qmStaticStrength& analysis)
{
    const qcFigure& figure = *analysis.getHuman()->getFigure();
    Support support;
    support.effective = analysis.getStrategy();
    switch (support.effective) {
    case qmStaticStrength::TwoFeet:
        if (const std::optional<float> share = rightHipShare(analysis))
            set(support.foot, *share);
        break;
    case qmStaticStrength::Walking:
        if (const std::optional<float> share = rightHipShare(analysis)) {
            set(support.foot, *share);
            support.effective = *share == 1.0f   ? qmStaticStrength::RightFoot
                                : *share == 0.0f ? qmStaticStrength::LeftFoot
                                                 : qmStaticStrength::TwoFeet;
        }
        break;
    case qmStaticStrength::RightFoot:
        set(support.foot, 1.0f);
        break;
    case qmStaticStrength::LeftFoot:
        set(support.foot, 0.0f);
        break;
    case qmStaticStrength::HandsAndKnees:
        if (qcJoint* hip = rightJoint(figure, "_hip"))
            set(support.knee, analysis.getSplitFactor(hip, kOtherJointsResult, "waist"));
        if (qcJoint* clavicle = rightJoint(figure, "_clavicle_joint"))
            set(support.hand, analysis.getSplitFactor(clavicle, kOtherJointsResult, "solar_plexus"));
        break;
    default:   // on the buttocks
        break;
    }
    return support;
}
