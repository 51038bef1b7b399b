// Scenes: opened, made, filled, saved and closed by Python.
#include "Functions.h"
#include "Results.h"

#include <unordered_set>

namespace {

// Scenes that Python has open: a pointer string outlives its scene, and using it then is caught here.
std::unordered_set<const qcScene*>& openScenes()
{
    static auto* all = new std::unordered_set<const qcScene*>;   // never destroyed, like what is left in it
    return *all;
}

// Hands a scene, null too, over to Python.
PyObject* opened(std::unique_ptr<qcScene> scene)
{
    Reference result(pointerToPython(scene.get()));
    if (!result)
        return nullptr;
    if (scene)
        openScenes().insert(scene.get());
    (void)scene.release();   // Python's from now on
    return result.release();
}

// Decodes the scene, a function's first argument. @return false with an exception set
bool decodeOpen(const char* function, Object<qcScene>& scene)
{
    if (!decode(function, scene))
        return false;
    if (openScenes().count(scene) != 0)
        return true;
    PyErr_Format(PyExc_ValueError, "%s: this scene is not open; it may have been closed already.", function);
    return false;
}

}   // namespace

namespace functions {

// qcScene_open(path) -> a scene; "NULL" after an error message
PyObject* sceneOpen(PyObject*, PyObject* args)
{
    FileName path;
    if (!PyArg_ParseTuple(args, "O&:qcScene_open", pyFileName, &path.bytes))
        return nullptr;
    return opened(std::unique_ptr<qcScene>(qcScene::open(path.text())));
}

// qcScene_new() -> an empty scene
PyObject* sceneNew(PyObject*, PyObject* args)
{
    if (!PyArg_ParseTuple(args, ":qcScene_new"))
        return nullptr;
    return opened(std::make_unique<qcScene>());
}

// qcScene_addHuman(scene, path, name) -> the human; "NULL" after an error message
PyObject* sceneAddHuman(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    FileName path;
    char* name;
    if (!PyArg_ParseTuple(args, "sO&s:qcScene_addHuman", &scene.text, pyFileName, &path.bytes, &name)
        || !decodeOpen("qcScene_addHuman", scene))
        return nullptr;
    return pointerToPython(scene->addHuman(path.text(), name));
}

// qcScene_addPosedHuman(scene, json_text) -> the human; "NULL" after an error message
PyObject* sceneAddPosedHuman(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    char* json;
    if (!PyArg_ParseTuple(args, "ss:qcScene_addPosedHuman", &scene.text, &json)
        || !decodeOpen("qcScene_addPosedHuman", scene))
        return nullptr;
    return pointerToPython(scene->addPosedHuman(json));
}

// qcScene_getHumans(scene) -> a list of humans
PyObject* sceneGetHumans(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    if (!PyArg_ParseTuple(args, "s:qcScene_getHumans", &scene.text) || !decodeOpen("qcScene_getHumans", scene))
        return nullptr;
    return pointersToPython<qcHuman>(scene->getHumans());
}

// qcScene_save(scene, path) -> 1; 0 after an error message
PyObject* sceneSave(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    FileName path;
    if (!PyArg_ParseTuple(args, "sO&:qcScene_save", &scene.text, pyFileName, &path.bytes)
        || !decodeOpen("qcScene_save", scene))
        return nullptr;
    return toPython(scene->save(path.text()));
}

// qcScene_getGravity(scene) -> (x, y, z), cm/s²
PyObject* sceneGetGravity(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    if (!PyArg_ParseTuple(args, "s:qcScene_getGravity", &scene.text) || !decodeOpen("qcScene_getGravity", scene))
        return nullptr;
    return toPython(scene->getGravity());
}

// qcScene_setGravity(scene, x, y, z) -> None; cm/s²
PyObject* sceneSetGravity(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    double numbers[3];
    qVector gravity;
    if (!PyArg_ParseTuple(args, "sddd:qcScene_setGravity", &scene.text, &numbers[0], &numbers[1], &numbers[2])
        || !decodeOpen("qcScene_setGravity", scene))
        return nullptr;
    for (int i = 0; i < 3; ++i)
        if (!toSingle("qcScene_setGravity", 2 + i, numbers[i], gravity[i]))
            return nullptr;
    scene->setGravity(gravity);
    return none();
}

// qcScene_getUnstoredStrategy(scene, human) -> the strategy that no property can hold; empty: none
PyObject* sceneGetUnstoredStrategy(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    Object<qcHuman> human;
    if (!PyArg_ParseTuple(args, "ss:qcScene_getUnstoredStrategy", &scene.text, &human.text)
        || !decode("qcScene_getUnstoredStrategy", scene, human) || !decodeOpen("qcScene_getUnstoredStrategy", scene))
        return nullptr;
    return toPython(scene->getUnstoredStrategy(human));
}

// qcScene_setUnstoredStrategy(scene, human, text) -> None; saved with the scene
PyObject* sceneSetUnstoredStrategy(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    Object<qcHuman> human;
    char* strategy;
    if (!PyArg_ParseTuple(args, "sss:qcScene_setUnstoredStrategy", &scene.text, &human.text, &strategy)
        || !decode("qcScene_setUnstoredStrategy", scene, human) || !decodeOpen("qcScene_setUnstoredStrategy", scene))
        return nullptr;
    scene->setUnstoredStrategy(human, strategy);
    return none();
}

// qcScene_close(scene) -> None; its humans and their figures are gone
PyObject* sceneClose(PyObject*, PyObject* args)
{
    Object<qcScene> scene;
    if (!PyArg_ParseTuple(args, "s:qcScene_close", &scene.text) || !decodeOpen("qcScene_close", scene))
        return nullptr;
    openScenes().erase(scene);
    delete scene.object;
    return none();
}

}   // namespace functions
