// Anthropometric scale: from the figure's own base values to sex, stature and body mass.
#include "qc/qcAnthroScale.h"

#include "Posture.h"

#include "qc/qcFigure.h"
#include "qc/qcMessages.h"

#include <vector>

namespace {

constexpr double kSmallestStature = 30, kLargestStature = 300;   // cm
constexpr double kLargestMass = 1e6;                             // g

}   // namespace

qcAnthroScale::~qcAnthroScale() = default;

void qcAnthroScale::applyScale()
{
    Posture& posture = *figure->posture;
    const BodyBase& base = posture.base;
    const bool otherSex = getSex() != base.sex;
    if (!sexIsSet && !hasStature() && !hasMass())
        return;

    if (base.stature > 0 && !figure->isPosed())
        posture.scaleLengths(getStature() / base.stature);
    if ((sexIsSet || hasMass()) && (otherSex || base.mass > 0)) {
        std::vector<double> grams(figure->segments.size());
        for (std::size_t i = 0; i < grams.size(); ++i)
            grams[i] = otherSex ? base.otherMassPercent[i] * 0.01 * getMass()
                                : posture.baseMassOf(i) * (getMass() / base.mass);
        posture.scaleMasses(grams);
    }
    figure->stale = qcFigure::kTransforms | qcFigure::kBalancePoint;
}

int qcAnthroScale::setSex(qcSex newSex)
{
    const BodyBase& base = figure->posture->base;
    if (newSex != base.sex && !base.hasOtherSex)
        return error("figure %s: its roles file tells no masses for the other sex (key \"other_sex\").",
                     figure->getName());
    sex = newSex;
    sexIsSet = true;
    applyScale();
    return 1;
}

int qcAnthroScale::setStature(double centimetres)
{
    if (!(centimetres >= kSmallestStature && centimetres <= kLargestStature))
        return error("figure %s: expected a stature of %g to %g cm, found %g.", figure->getName(), kSmallestStature,
                     kLargestStature, centimetres);
    if (figure->isPosed())
        return error("figure %s: a posed figure has fixed positions; its stature cannot be changed.",
                     figure->getName());
    if (!(figure->posture->base.stature > 0))
        return error("figure %s: its roles file tells no stature to scale from (key \"base\", \"stature_cm\").",
                     figure->getName());
    stature = centimetres;
    applyScale();
    return 1;
}

int qcAnthroScale::setMass(double grams)
{
    if (!(grams > 0 && grams <= kLargestMass))
        return error("figure %s: expected a body mass above 0 up to %g kg, found %g.", figure->getName(),
                     kLargestMass / 1000, grams / 1000);
    if (!(figure->posture->base.mass > 0))
        return error("figure %s: its segments have no mass to scale from.", figure->getName());
    mass = grams;
    applyScale();
    return 1;
}

qcSex qcAnthroScale::getSex() const
{
    return sexIsSet ? sex : figure->posture->base.sex;
}

double qcAnthroScale::getStature() const
{
    const BodyBase& base = figure->posture->base;
    const bool other = getSex() != base.sex && base.otherStature > 0;
    return hasStature() ? stature : other ? base.otherStature : base.stature;
}

double qcAnthroScale::getMass() const
{
    const BodyBase& base = figure->posture->base;
    const bool other = getSex() != base.sex && base.otherMass > 0;
    return hasMass() ? mass : other ? base.otherMass : base.mass;
}
