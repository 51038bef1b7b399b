// Anthropometric scale: a human's sex, stature and body mass.
#pragma once

#include "qc/qcExport.h"

class qcFigure;

enum qcSex { qcMale = 0, qcFemale = 1 };

/// Scales a figure to sex, stature and body mass, always from the figure's own base values, so that
/// applying it twice gives the same as once.
///
///   every length, offset and centre of mass   base · stature / base stature
///   every mass                                base · mass / base mass; for the other sex
///                                             that sex's share of the body mass
///
/// A new scale keeps the figure as loaded.
class QC_API qcAnthroScale {
public:
    explicit qcAnthroScale(qcFigure* scaled) : figure(scaled) {}
    qcAnthroScale(const qcAnthroScale&) = delete;
    qcAnthroScale& operator=(const qcAnthroScale&) = delete;

    /// Brings the figure to the scale's sex, stature and mass; changes nothing while none is set.
    /// Segments whose mass was set by hand keep it.
    virtual void applyScale();

    virtual ~qcAnthroScale();

    /// Each sets one measure and applies the scale.
    /// @return 1, or 0 after an error message when the value is out of range (stature 30 to 300 cm,
    ///         mass above 0 up to 1000 kg) or the figure has no base value to scale from
    int setSex(qcSex sex);
    int setStature(double centimetres);
    int setMass(double grams);

    /// The measures in force: those set, else those of the figure as loaded.
    qcSex getSex() const;
    double getStature() const;   ///< cm; 0 when nothing tells it
    double getMass() const;      ///< g

    /// Which measures were set, rather than taken from the figure.
    bool hasSex() const { return sexIsSet; }
    bool hasStature() const { return stature > 0; }
    bool hasMass() const { return mass > 0; }

private:
    qcFigure* figure;
    qcSex sex = qcMale;
    bool sexIsSet = false;
    double stature = 0;   // cm, 0: as loaded
    double mass = 0;      // g, 0: as loaded
};
