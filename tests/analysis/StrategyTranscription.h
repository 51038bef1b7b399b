// Strategy transcription: what each strategy computes, written down once more in single precision. The
// same steps in the same order give the same bits. The walks are PlainWalk's, the legs on two feet NaiveLegs'.
#pragma once

#include "NaiveAnalysis.h"
#include "PlainWalk.h"

#include "qmStaticStrength.h"

#include <string>
#include <utility>

class StrategyTranscription {
public:
    using Vector = PlainWalk::Vector;

    /// @param told  gravity, loads and torques; its results and shares are found here
    StrategyTranscription(qcHuman* human, PlainWalk told)
        : found(std::move(told)), human(*human), figure(*human->getFigure())
    {}

    PlainWalk found;

    /// What a computation finds. @param strategy  an effective one: not walking
    void follow(qmStaticStrength::Strategy strategy)
    {
        switch (strategy) {
        case qmStaticStrength::TwoFeet:
            share(human.getFootSite(qcRight), human.getFootSite(qcLeft), found.rightHip, found.leftHip);
            upperBody();
            legsOnTwoFeet();
            break;
        case qmStaticStrength::RightFoot:
        case qmStaticStrength::LeftFoot:
            standOn(strategy == qmStaticStrength::RightFoot ? qcRight : qcLeft);
            break;
        case qmStaticStrength::Sitting:
            upperBody();
            for (const qcSide side : {qcRight, qcLeft})
                sittingLeg(side, side == qcRight ? "right_" : "left_");
            break;
        case qmStaticStrength::SittingNoFeet:
            upperBody();
            for (const qcSide side : {qcRight, qcLeft})
                found.walk(human.getHipJoint(side), human.getHipJoint(side)->siteOnSegment(pelvis()));
            break;
        default:
            handsAndKnees();
        }
    }

private:
    static Vector of(const qVector& v) { return {v[0], v[1], v[2]}; }
    static Vector at(qcSite* site) { return of(site->getGlobalTransform().getTranslation()); }
    qcSegment* pelvis() const { return human.getPelvisSite()->getSegment(); }

    // The far support's distance from the balance point, across gravity, over the sum of both.
    void share(qcSite* right, qcSite* left, float& rightShare, float& leftShare) const
    {
        const Vector down = unit(found.gravity);
        const auto across = [&](qcSite* site) { return at(site) - down * dot(at(site), down); };
        const Vector balance = across(figure.getReferenceSite());
        const float dRight = length(across(right) - balance), dLeft = length(across(left) - balance);
        rightShare = dLeft / (dRight + dLeft);
        leftShare = oneMinus(rightShare);
    }

    void upperBody(const qcSegment* stop = nullptr)
    {
        found.walk(human.getWaistJoint(), human.getWaistJoint()->siteOnSegment(pelvis()), stop);
    }

    void standOn(qcSide foot)
    {
        qcJoint* ankle = human.getAnkleJoint(foot);
        qcSite* onFoot = ankle->siteOnSegment(human.getFootSite(foot)->getSegment());
        const PlainSums body = found.walk(ankle, onFoot);
        found.walk(ankle, ankle->otherSite(onFoot), nullptr, &body);
    }

    void legsOnTwoFeet()
    {
        const qVector gravity(found.gravity.x, found.gravity.y, found.gravity.z);
        qVector hPointLoad;
        bool hasLoad = false;
        for (const auto& [site, force] : found.loads)
            if (force && std::string(site->getSegment()->getName()) + "." + site->getName() == "lower_torso.h_point") {
                hPointLoad = qVector(force->load.x, force->load.y, force->load.z);
                hasLoad = true;
            }
        const PlainSums waist = found.results[human.getWaistJoint()];
        const NaiveLegs<float> legs(&human, gravity, waist.force, waist.moment, hasLoad ? &hPointLoad : nullptr);
        for (const auto& store : legs.stores)
            found.results[store.joint] = {store.force, store.moment};
    }

    //   T  = (ML + MU) in kgf·cm - FL × (PH - PK)
    //   FH = unit(FU + FL) · |T| / |PH - PA|        MH = (T · unit(PA - PH)) unit(PA - PH) · 0.01
    //   FA = FU + FL - FH
    void sittingLeg(qcSide side, const std::string& prefix)
    {
        qcJoint *hip = human.getHipJoint(side), *knee = human.getKneeJoint(side), *ankle = human.getAnkleJoint(side);
        const qcSegment* upper = figure.findSegment((prefix + "upper_leg").c_str());
        const qcSegment* lower = figure.findSegment((prefix + "lower_leg").c_str());
        const Vector PH = of(hip->siteOnSegment(upper)->getSecondTransform().getTranslation());
        const Vector PK = at(knee->siteOnSegment(upper)), PA = at(ankle->siteOnSegment(lower));

        found.alone = true;
        const PlainSums U = found.walk(hip, hip->otherSite(hip->siteOnSegment(upper)));
        const PlainSums L = found.walk(knee, knee->otherSite(knee->siteOnSegment(lower)));
        found.alone = false;
        constexpr auto kToKgfCm = static_cast<float>(1.0 / (double(980.665f) * 0.0001));
        const Vector T = (L.moment + U.moment) * kToKgfCm - cross(L.force, PH - PK);
        const Vector S = U.force + L.force, alongLeg = unit(PA - PH);
        const Vector FH = unit(S) * (length(T) / length(PH - PA));
        found.results[hip] = {FH, alongLeg * dot(T, alongLeg) * 0.01f};
        found.results.erase(knee);
        found.results[ankle] = {S - FH, {}};
    }

    void handsAndKnees()
    {
        found.sharing = PlainWalk::kHipsAndClavicles;
        share(human.getKneeJoint(qcRight)->getInboardSite(), human.getKneeJoint(qcLeft)->getInboardSite(),
              found.rightHip, found.leftHip);
        share(human.getHandSite(qcRight), human.getHandSite(qcLeft), found.rightClavicle, found.leftClavicle);

        const qcSegment* l5 = figure.findSegment("l5");
        upperBody(l5);
        for (const qcSide side : {qcRight, qcLeft}) {
            qcJoint* knee = human.getKneeJoint(side);
            qcSite* inboard = knee->getInboardSite();
            const PlainSums lowerLeg = found.walk(knee, inboard);
            found.walk(knee, knee->otherSite(inboard), pelvis(), &lowerLeg);
        }
        qcSegment* upperTorso = figure.findSegment("upper_torso");
        qcJoint* solarPlexus = figure.findJoint("solar_plexus");
        found.walk(solarPlexus, solarPlexus->siteOnSegment(upperTorso), l5);
        for (const qcSide side : {qcRight, qcLeft}) {
            qcSite* attachment = human.getHandSite(side)->getSegment()->getAttachmentSite();
            found.walk(attachment->getJoint(), attachment, upperTorso);
        }
    }

    qcHuman& human;
    qcFigure& figure;
};
