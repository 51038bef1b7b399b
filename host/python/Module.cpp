// Module: the function table and the initialisation of libqcc.
#include "Functions.h"
#include "HostTypes.h"
#include "Messages.h"
#include "Results.h"
#include "Scripts.h"

namespace {

PyMethodDef table[] = {
    row<functions::newQVector>("new_qVector", "(x, y, z) -> a new vector"),
    row<functions::deleteQVector>("delete_qVector", "(vector) -> None; nothing for \"NULL\""),
    row<functions::vectorGet>("qVector_get", "(vector) -> (x, y, z)"),
    row<functions::vectorSet>("qVector_set", "(vector, x, y, z) -> 1, the vector written"),
    row<functions::sceneOpen>("qcScene_open", "(path) -> a scene; \"NULL\" after an error message"),
    row<functions::sceneNew>("qcScene_new", "() -> an empty scene"),
    row<functions::sceneAddHuman>("qcScene_addHuman", "(scene, path, name) -> the human of a .urdf or .figure.json"
                                                      " file, under that name or, for \"\", the figure's; \"NULL\""
                                                      " after an error message"),
    row<functions::sceneAddPosedHuman>("qcScene_addPosedHuman", "(scene, json_text) -> the human of a posed figure's"
                                                                " text; \"NULL\" after an error message"),
    row<functions::sceneGetHumans>("qcScene_getHumans", "(scene) -> a list of its humans"),
    row<functions::sceneSave>("qcScene_save", "(scene, path) -> 1; 0 after an error message"),
    row<functions::sceneClose>("qcScene_close", "(scene) -> None, its humans and their parts are gone; delete their"
                                                " analyses before"),
    row<functions::sceneGetGravity>("qcScene_getGravity", "(scene) -> (x, y, z), cm/s²"),
    row<functions::sceneSetGravity>("qcScene_setGravity", "(scene, x, y, z) -> None; cm/s²"),
    row<functions::sceneGetUnstoredStrategy>("qcScene_getUnstoredStrategy",
                                             "(scene, human) -> the strategy that no property can hold,"
                                             " \"hands-and-knees\"; empty: the properties tell"),
    row<functions::sceneSetUnstoredStrategy>("qcScene_setUnstoredStrategy",
                                             "(scene, human, text) -> None; kept and saved by the scene"),
    row<functions::humanGetName>("qcHuman_getName", "(human) -> its name"),
    row<functions::humanGetSex>("qcHuman_getSex", "(human) -> \"male\" or \"female\"; None when nothing tells it"),
    row<functions::humanSetSex>("qcHuman_setSex", "(human, sex) -> 1; 0 after an error message; \"male\" or"
                                                  " \"female\""),
    row<functions::humanGetStature>("qcHuman_getStature", "(human) -> cm; None when nothing tells it"),
    row<functions::humanSetStature>("qcHuman_setStature", "(human, cm) -> 1, the figure scaled; 0 after an error"
                                                          " message"),
    row<functions::humanSetMass>("qcHuman_setMass", "(human, grams) -> 1, the segments scaled; 0 after an error"
                                                    " message"),
    row<functions::humanGetFigure>("qcHuman_getFigure", "(human) -> its figure"),
    row<functions::humanGetFootSite>("qcHuman_getFootSite",
                                     "(human, side) -> the foot's support point; side 0 right, 1 left"),
    row<functions::humanGetHandSite>("qcHuman_getHandSite", "(human, side) -> the hand's site; side 0 right, 1 left"),
    row<functions::humanGetKneeJoint>("qcHuman_getKneeJoint", "(human, side) -> the knee; side 0 right, 1 left"),
    row<functions::humanGetAnkleJoint>("qcHuman_getAnkleJoint", "(human, side) -> the ankle; side 0 right, 1 left"),
    row<functions::humanGetHipJoint>("qcHuman_getHipJoint", "(human, side) -> the hip; side 0 right, 1 left"),
    row<functions::humanGetPelvisSite>("qcHuman_getPelvisSite", "(human) -> a site on the lower torso"),
    row<functions::humanGetWaistJoint>("qcHuman_getWaistJoint", "(human) -> the waist"),
    row<functions::figureGetName>("qcFigure_getName", "(figure) -> its name"),
    row<functions::figureGetSegments>("qcFigure_getSegments", "(figure) -> a list of its segments"),
    row<functions::figureGetSites>("qcFigure_getSites", "(figure) -> a list of its sites"),
    row<functions::figureGetJoints>("qcFigure_getJoints", "(figure) -> a list of its joints"),
    row<functions::figureFindSegment>("qcFigure_findSegment",
                                      "(figure, name) -> the segment; \"NULL\" when there is none"),
    row<functions::figureFindJoint>("qcFigure_findJoint", "(figure, name) -> the joint; \"NULL\" when there is none"),
    row<functions::figureFindSite>("qcFigure_findSite",
                                   "(figure, \"segment.site\") -> the site; \"NULL\" when there is none"),
    row<functions::figureGetReferenceSite>("qcFigure_getReferenceSite",
                                           "(figure) -> the site that stands for the balance point"),
    row<functions::figureGetPosed>("qcFigure_getPosed", "(figure) -> its posture and properties as posed-figure"
                                                        " JSON; None after an error message"),
    row<functions::figureSetRoot>("qcFigure_setRoot", "(figure, x, y, z, rx_deg, ry_deg, rz_deg) -> 1; 0 after an"
                                                      " error message; cm, degrees about the world's x, then y, then"
                                                      " z axis"),
    row<functions::figureIsPosed>("qcFigure_isPosed", "(figure) -> 1 when its transforms are fixed, else 0"),
    row<functions::figureGetRoot>("qcFigure_getRoot", "(figure) -> ((x, y, z), (rx_deg, ry_deg, rz_deg)) as set, cm,"
                                                      " degrees"),
    row<functions::figureStandOnFloor>("qcFigure_standOnFloor",
                                       "(figure) -> None; its lowest site on a foot lies on y = 0 until the root is"
                                       " set"),
    row<functions::figureIsOnFloor>("qcFigure_isOnFloor", "(figure) -> 1 while it stands on the floor, else 0"),
    row<functions::figureGetBodyMass>("qcFigure_getBodyMass", "(figure) -> grams"),
    row<functions::figureGetBodyCenterOfMass>("qcFigure_getBodyCenterOfMass",
                                              "(figure) -> (x, y, z), cm, in the world"),
    row<functions::figureSetAngles>("qcFigure_setAngles", "(figure, angles, first, unit) -> 1, all joints' angles set"
                                                          " to an array of doubles from element first on, times unit,"
                                                          " radians; 0 after an error message, none set"),
    row<functions::figureGetJointVectors>("qcFigure_getJointVectors",
                                          "(figure, key, count, array, first) -> how many joints have the property, a"
                                          " list of count vectors; all joints' written into an array of singles from"
                                          " element first on, not-a-numbers without"),
    row<functions::figureRemoveJointProperty>("qcFigure_removeJointProperty",
                                              "(figure, key) -> how many joints had the property"),
    row<functions::segmentGetName>("qcSegment_getName", "(segment) -> its name"),
    row<functions::segmentGetFullName>("qcSegment_getFullName", "(segment) -> \"figure.segment\""),
    row<functions::segmentGetMass>("qcSegment_getMass", "(segment) -> grams"),
    row<functions::segmentSetMass>("qcSegment_setMass", "(segment, grams) -> None"),
    row<functions::segmentGetCenterOfMass>("qcSegment_getCenterOfMass",
                                           "(segment) -> (x, y, z), cm, in the segment's frame"),
    row<functions::segmentGetTransform>("qcSegment_getTransform", "(segment) -> its frame in the world, four rows of"
                                                                  " four; the translation is row 3, cm"),
    row<functions::segmentGetSites>("qcSegment_getSites", "(segment) -> a list of its sites"),
    row<functions::segmentGetAttachmentSite>(
        "qcSegment_getAttachmentSite", "(segment) -> the site by which it hangs on its parent; \"NULL\" for the root"),
    row<functions::siteGetName>("qcSite_getName", "(site) -> its name"),
    row<functions::siteGetFullName>("qcSite_getFullName", "(site) -> \"figure.segment.site\""),
    row<functions::siteGetSegment>("qcSite_getSegment", "(site) -> the segment it lies on"),
    row<functions::siteGetJoints>("qcSite_getJoints", "(site) -> a list of the joints attached there"),
    row<functions::siteGetTransform>("qcSite_getTransform", "(site) -> its frame in the world, four rows of four; the"
                                                            " translation is row 3, cm"),
    row<functions::siteGetSecondTransform>("qcSite_getSecondTransform",
                                           "(site) -> the transform that the host keeps beside the first, likewise"),
    row<functions::jointGetName>("qcJoint_getName", "(joint) -> its name"),
    row<functions::jointGetFullName>("qcJoint_getFullName", "(joint) -> its full name"),
    row<functions::jointGetSites>("qcJoint_getSites", "(joint) -> [the first site, the second]"),
    row<functions::jointGetInboardSite>("qcJoint_getInboardSite", "(joint) -> its site nearer the trunk"),
    row<functions::jointGetNumAngles>("qcJoint_getNumAngles", "(joint) -> how many angles"),
    row<functions::jointGetAngle>("qcJoint_getAngle", "(joint, i) -> angle i, from 1, radians; 0 outside"),
    row<functions::jointSetAngle>("qcJoint_setAngle", "(joint, i, radians) -> 1; 0 after an error message"),
    row<functions::jointGetAngleLimits>("qcJoint_getAngleLimits",
                                        "(joint, i) -> (lower, upper) of angle i, from 1, radians; None without"
                                        " limits"),
    row<functions::jointGetAngleName>("qcJoint_getAngleName", "(joint, i) -> the name of angle i, from 1"),
    row<functions::objectGetProperty>("qcObject_getProperty",
                                      "(object, key) -> the value; None when there is no such property"),
    row<functions::objectSetProperty>("qcObject_setProperty", "(object, key, value) -> 1; a float, a text, a tuple of"
                                                              " three numbers, a list of such values or ()"),
    row<functions::objectRemoveProperty>("qcObject_removeProperty",
                                         "(object, key) -> 1; 0 when there is no such property"),
    row<functions::objectGetTimestamp>("qcObject_getTimestamp", "(object) -> an integer that grows with each change"),
    row<functions::simStep>("qcSim_step", "(n) -> a list of the callbacks' results of the last of n steps"),
    row<functions::simGetBound>("qcSim_getBound", "() -> a list of (kind, owner) of the callbacks bound"),
    row<functions::messagesTake>("qcMessages_take", "() -> a list of (\"error\" or \"warning\", text) since the last"
                                                    " call"),
    {nullptr, nullptr, 0, nullptr}   // end of table
};

PyModuleDef definition = {PyModuleDef_HEAD_INIT, "libqcc", nullptr, -1, table, nullptr, nullptr, nullptr, nullptr};

bool servesHost = false;

// Called when the interpreter is gone.
void leaveHost()
{
    servesHost = false;
    scripts::end();
    messages::release();
}

// From now on the host's scripts and messages come here. @return false with an exception set
bool serveHost()
{
    if (servesHost)
        return true;
    try {
        registerObjectTypes();
    } catch (const std::exception&) {
        return toPythonException() != nullptr;
    }
    if (Py_AtExit(leaveHost) != 0) {
        PyErr_SetString(PyExc_ImportError, "libqcc cannot be told when the interpreter ends: too many modules are.");
        return false;
    }
    servesHost = true;
    messages::keep();
    scripts::serve();
    return true;
}

}   // namespace

DECLARE_MODULE_INIT(libqcc);

MODULE_INIT_FUNC(libqcc)
{
    PyObject* module = PyModule_Create(&definition);
    return module && serveHost() ? module : pyDropModule(module);
}
