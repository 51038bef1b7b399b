// Functions: everything that the module's table lists.
#pragma once

#include "wrapping/Wrapping.h"

namespace functions {

// VectorFunctions.cpp
PyFunction newQVector, deleteQVector, vectorGet, vectorSet;

// SceneFunctions.cpp
PyFunction sceneOpen, sceneNew, sceneAddHuman, sceneAddPosedHuman, sceneGetHumans, sceneSave, sceneClose,
    sceneGetGravity, sceneSetGravity, sceneGetUnstoredStrategy, sceneSetUnstoredStrategy;

// HumanFunctions.cpp
PyFunction humanGetFigure, humanGetFootSite, humanGetHandSite, humanGetKneeJoint, humanGetAnkleJoint, humanGetHipJoint,
    humanGetPelvisSite, humanGetWaistJoint;

// FigureFunctions.cpp
PyFunction figureGetName, figureGetSegments, figureGetSites, figureGetJoints, figureFindSegment, figureFindJoint,
    figureFindSite, figureGetReferenceSite, figureGetPosed, figureSetRoot;

// BodyFunctions.cpp
PyFunction humanGetName, humanGetSex, humanSetSex, humanGetStature, humanSetStature, humanSetMass;

// PlaceFunctions.cpp
PyFunction figureIsPosed, figureGetRoot, figureStandOnFloor, figureIsOnFloor, figureGetBodyMass,
    figureGetBodyCenterOfMass, jointGetAngleLimits, jointGetAngleName;

// BatchFunctions.cpp
PyFunction figureSetAngles, figureGetJointVectors, figureRemoveJointProperty;

// PartFunctions.cpp
PyFunction segmentGetName, segmentGetFullName, segmentGetMass, segmentSetMass, segmentGetCenterOfMass,
    segmentGetTransform, segmentGetSites, segmentGetAttachmentSite;
PyFunction siteGetName, siteGetFullName, siteGetSegment, siteGetJoints, siteGetTransform, siteGetSecondTransform;
PyFunction jointGetName, jointGetFullName, jointGetSites, jointGetInboardSite, jointGetNumAngles, jointGetAngle,
    jointSetAngle;

// ObjectFunctions.cpp
PyFunction objectGetProperty, objectSetProperty, objectRemoveProperty, objectGetTimestamp;

// SimulationFunctions.cpp
PyFunction simStep, simGetBound;

// Messages.cpp
PyFunction messagesTake;

}   // namespace functions
