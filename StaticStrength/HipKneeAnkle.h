// Hip, knee and ankle analysis: the state that its members leave behind.
//
// One instance each for the whole module: a run overwrites what the run before left, whichever analysis
// made it. All zero before the first. Forces in kgf, global axes; points in the world, cm; a weight in
// kg is the same number of kgf.
#pragma once

#include "qc/qVector.h"

extern qVector gravityDir;   ///< along gravity, of length 1

extern float humWt;      ///< the whole figure, kg
extern float humUBWt;    ///< what one leg carries from above the pelvis, kg
extern float pelvisWt;   ///< lower_torso, kg
extern float thighWt;    ///< right_upper_leg, kg
extern float calfWt;     ///< right_lower_leg, kg

extern qVector upperBodyWtVec;   ///< humUBWt, pelvisWt, thighWt and calfWt as forces along gravity
extern qVector pelvisWtVec;      ///< its y component is halved by each solveReactionForces()
extern qVector thighWtVec;
extern qVector calfWtVec;

extern qVector upperBodyWtPt;   ///< t8.proximal
extern qVector pelvisWtPt;      ///< lower_torso.h_point
extern qVector hipPt;           ///< the same: the pivot
extern qVector anklePt;         ///< right_lower_leg.distal
extern qVector kneePt;          ///< right_lower_leg.proximal; enters nothing
extern qVector thighWtPt;       ///< right_upper_leg's centre of mass
extern qVector calfWtPt;        ///< right_lower_leg's centre of mass

extern qVector ankleReaction;
extern qVector hipReaction;
extern qVector kneeReaction;   ///< only its y component is ever other than 0
