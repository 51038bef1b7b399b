// Members world: the objects' lives, their callbacks and scripts, and which member is called next.
#include "MembersWorld.h"

#include "Check.h"

#include "qc/qcPy.h"
#include "qc/qcSim.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// ---- Life ----

MembersWorld::MembersWorld(FuzzedDataProvider& source, const std::vector<AnalysedHuman*>& humans) : data(source)
{
    for (AnalysedHuman* human : humans) {
        human->wipe();
        figures.push_back(std::make_unique<FigureModel>());
        figures.back()->human = human;
    }
    qcPy::registerInterpreter(
        [](const char* script, void* self) { return static_cast<MembersWorld*>(self)->runScript(script); }, this);
    construct();
    while (objects[0]->real->reportLoads(0))   // the report of an earlier input
        ;
}

MembersWorld::~MembersWorld()
{
    while (!objects.empty())
        destroy(objects.size() - 1);
    qcPy::registerInterpreter(nullptr, nullptr);
    check(qcSim::getNumBound() == 0, "no callback outlives its analysis");
    for (const auto& figure : figures)
        figure->human->wipe();
}

void MembersWorld::construct()
{
    if (objects.size() >= kMostObjects)
        return;
    objects.push_back(std::make_unique<ModelledAnalysis>());
    ModelledAnalysis& made = *objects.back();
    made.of = &anyFigure();
    made.real = new qmStaticStrength(made.of->human->human());
    modelReset(made);
}

void MembersWorld::handle()
{
    check(qmStaticStrength::getHandle(nullptr) == nullptr, "no human has no analysis");
    FigureModel& figure = anyFigure();
    for (const auto& object : objects) {
        if (!object->registered || object->of != &figure)
            continue;
        check(qmStaticStrength::getHandle(figure.human->human()) == object->real, "the oldest analysis is the human's");
        return;
    }
    if (objects.size() >= kMostObjects)
        return;
    objects.push_back(std::make_unique<ModelledAnalysis>());
    objects.back()->of = &figure;
    objects.back()->real = qmStaticStrength::getHandle(figure.human->human());
    modelReset(*objects.back());
}

void MembersWorld::copy()
{
    if (objects.size() >= kMostObjects)
        return;
    const ModelledAnalysis& original = anyObject();
    objects.push_back(std::make_unique<ModelledAnalysis>(original));
    objects.back()->real = new qmStaticStrength(*original.real);
    objects.back()->registered = false;
}

void MembersWorld::assign()
{
    ModelledAnalysis& to = anyObject();
    const ModelledAnalysis& from = anyObject();
    check(&(*to.real = *from.real) == to.real, "an assignment gives the object assigned to");
    if (&to == &from)
        return;
    release(to, &from);
    qmStaticStrength* const real = to.real;
    const bool registered = to.registered;
    to = from;
    to.real = real;
    to.registered = registered;
}

void MembersWorld::destroy(Index which)
{
    release(*objects[which], nullptr);
    delete objects[which]->real;
    objects.erase(objects.begin() + static_cast<std::ptrdiff_t>(which));
}

// A callback ends with the object that bound it, unless the object takes the same one over.
void MembersWorld::release(ModelledAnalysis& object, const ModelledAnalysis* keeper)
{
    if (keeper && keeper->callback == object.callback && keeper->script == object.script)
        return;
    if (object.callback && binderOf[object.callback] == &object)
        endCallback(object);
}

void MembersWorld::endCallback(ModelledAnalysis& object)
{
    const int callback = object.callback, script = object.script;
    for (const auto& other : objects) {
        other->callback = other->callback == callback ? 0 : other->callback;
        other->script = other->script == script ? 0 : other->script;
    }
}

// ---- Callback and scripts ----

void MembersWorld::activate(ModelledAnalysis& object)
{
    // letters that say what the script does; see runScript()
    const std::string script = data.ConsumeRandomLengthString(6);
    const char* given = oneIn(8) ? nullptr : script.c_str();
    const int bound = object.real->activate(given);
    check(bound == (object.callback == 0 ? 1 : 0), "an analysis is activated once");
    if (!bound)
        return;
    object.callback = ++lastId;
    object.script = ++lastId;
    object.talks = given && *given;
    binderOf[object.callback] = &object;
}

void MembersWorld::step()
{
    if (scriptDepth > 3)
        return;
    int active = 0;
    bool silent = true;
    for (const auto& object : objects) {
        active += object->callback && binderOf[object->callback] == object.get() ? 1 : 0;
        silent &= !object->callback || !object->talks;
    }
    const int steps = scriptDepth == 0 ? data.ConsumeIntegralInRange(0, 2) : 1;
    const int calls = qcSim::step(steps);
    check(calls <= steps * int(kMostObjects), "an analysis runs at most once a step");
    if (!silent)   // scripts may end some and begin others
        return;
    check(calls == steps * active, "every active analysis runs once a step, no other");
    check(qcSim::getNumResults() == (steps > 0 ? active : 0), "and each leaves a result");
}

// A letter a call, for the object of the number that follows from it.
int MembersWorld::runScript(const char* script)
{
    ++scriptDepth;
    for (const char* c = script; *c && !objects.empty() && scriptDepth < 4; ++c) {
        const Index which = static_cast<unsigned char>(*c) / 8 % objects.size();
        ModelledAnalysis& object = *objects[which];
        switch (static_cast<unsigned char>(*c) % 8) {
        case 0:
            endCallback(object);
            object.real->deactivate();
            break;
        case 1:
            if (objects.size() > 1)
                destroy(which);
            break;
        case 2:
            object.real->compute();
            break;
        case 3:
            step();
            break;
        case 4:
            copy();
            break;
        case 5:
            reset(object, nullptr);
            break;
        case 6:
            activate(object);
            break;
        default:
            assign();
        }
    }
    --scriptDepth;
    return 1;
}

// ---- One call ----

void MembersWorld::callOne()
{
    if (objects.empty())
        construct();
    ModelledAnalysis& object = anyObject();
    switch (data.ConsumeIntegralInRange(0, 23)) {
    case 0:
        construct();
        break;
    case 1:
        handle();
        break;
    case 2:
        copy();
        break;
    case 3:
    case 4:
        assign();
        break;
    case 5:
        destroy(index(objects.size()));
        break;
    case 6:
        activate(object);
        break;
    case 7:
        endCallback(object);
        check(object.real->deactivate() == 1, "an analysis can always be deactivated");
        break;
    case 8:
        step();
        break;
    case 9:
        object.real->run_script();
        break;
    case 10:
    case 11:
    case 12:
        setLoad(object);
        break;
    case 13:
        removeLoad(object);
        break;
    case 14:
    case 15:
        setOffsetLoad(object);
        break;
    case 16:
        removeOffsetLoad(object);
        break;
    case 17:
        setTorque(object);
        break;
    case 18:
        removeTorque(object);
        break;
    case 19:
        setStrategy(object);
        break;
    case 20:
        if (oneIn(4))
            clear(object);
        else
            useResults(object);
        break;
    case 21:
        reset(object, nullptr);
        break;
    case 22: {
        const qVector gravity = vector();
        reset(object, &gravity);
        break;
    }
    default:
        report(object);
    }
}
