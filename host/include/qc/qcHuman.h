// Human: the owner of a figure, with the parts that play a human's roles.
#pragma once

#include "qc/qcAnthroScale.h"
#include "qc/qcExport.h"
#include "qc/qcFigure.h"
#include "qc/qcObject.h"

#include <memory>

/// A human. Its parts are borrowed from its figure; each may be null where the figure has none.
class QC_API qcHuman : public qcObject {
public:
    /// Makes a human of a figure whose roles are known.
    /// @param ownFigure  borrowed; must outlive the human
    /// @return a new human, which the caller deletes; or null after an error message that names the
    ///         roles that are missing
    static qcHuman* create(qcFigure* ownFigure);
    ~qcHuman() override;

    qcFigure* figure;   ///< the same as getFigure()
    qcFigure* getFigure() { return figure; }

    /// The anthropometric scale, owned by the human; null when there is none yet.
    qcAnthroScale* getAnthroscale() { return scale.get(); }

    /// Creates the scale, if there is none yet.
    /// @param name  null: the figure stays as loaded; "male" or "female" sets the sex
    /// @return the scale, or null when this human cannot have one or the name is another
    qcAnthroScale* initAnthroscale(const char* name);

    qcSiteImp* getFootSite(qcSide side) { return figure->getRoles().foot[side]; }   ///< the foot's support point
    qcSiteImp* getHandSite(qcSide side) { return figure->getRoles().hand[side]; }
    qcJointImp* getKneeJoint(qcSide side) { return figure->getRoles().knee[side]; }
    qcJointImp* getAnkleJoint(qcSide side) { return figure->getRoles().ankle[side]; }
    qcJointImp* getHipJoint(qcSide side) { return figure->getRoles().hip[side]; }
    qcSiteImp* getPelvisSite() { return figure->getRoles().pelvis; }   ///< a site on the lower torso
    qcJointImp* getWaistJoint() { return figure->getRoles().waist; }

private:
    explicit qcHuman(qcFigure* ownFigure);

    std::unique_ptr<qcAnthroScale> scale;
};
