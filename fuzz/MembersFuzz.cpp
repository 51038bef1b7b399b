// Members fuzzer: arbitrary sequences of calls on up to six analyses of two humans, beside a plain model.
//
// The model keeps what each call has to leave; after every call the properties and all getters are compared with it. A
// second mode changes properties behind the analyses' backs, where only memory is checked.
#include "AnalysedHuman.h"
#include "Check.h"
#include "FigureModel.h"
#include "SmallFigure.h"
#include "SpelledValues.h"

#include "qmStaticStrength.h"

#include "qc/qcPy.h"
#include "qc/qcSim.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Strategy = qmStaticStrength::Strategy;

constexpr const char* kStrategies[] = {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"};
constexpr float kNumbers[] = {0, 1, -2.5f, 0.000009f, 1500, -0.0f, 1e30f, NAN};
constexpr std::size_t kMostObjects = 6;

// Four segments in a row. Both humans have sites and joints of the same names, and each has some that the other lacks.
// Two joints of each share a name.
SmallFigure smallHuman(const std::string& name)
{
    SmallFigure figure(name);
    figure.segment("pelvis", 1000)
        .site("pelvis", "top", {0, 100, 0})
        .segment("torso", 2000)
        .site("torso", "bottom", {0, 100, 0})
        .site("torso", name + "_palmcenter", {20, 90, 5}, {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}})
        .segment("head", 500)
        .site("head", "neck", {0, 150, 0})
        .site("torso", "neck", {0, 150, 0})
        .joint("waist", "pelvis.top", "torso.bottom")
        .site("head", "top", {0, 170, 0})
        .segment("hat", 10)
        .site("hat", "bottom", {0, 170, 0})
        .joint(name + "_neck", "torso.neck", "head.neck", {}, name + ".neck")
        .joint(name + "_neck", "head.top", "hat.bottom", {}, name + ".hat")
        .pelvisSite("pelvis.top")
        .waist("waist")
        .referenceSite("pelvis.top");
    return figure;
}

// ---- The model ----

using Records = std::vector<OffsetLoad>;

/// An analysis, and what it keeps itself. Copies share the records.
struct Object {
    qmStaticStrength* real;
    FigureModel* of;
    qVector gravity{0, -980.665f, 0};
    int strategy = 0;
    std::shared_ptr<Records> records = std::make_shared<Records>();
    int callback = 0;   // 0: none; shared by copies
    int script = 0;
    bool registered = true;
};

/// Everything there is while an input runs.
class World {
public:
    World(FuzzedDataProvider& source, const std::vector<AnalysedHuman*>& humans) : data(source)
    {
        for (AnalysedHuman* human : humans) {
            human->wipe();
            figures.push_back(std::make_unique<FigureModel>());
            figures.back()->human = human;
        }
        qcPy::registerInterpreter(
            [](const char* script, void* self) { return static_cast<World*>(self)->runScript(script); }, this);
        construct();
        while (objects[0]->real->reportLoads(0))   // the report of an earlier input
            ;
    }
    ~World()
    {
        while (!objects.empty())
            destroy(objects.size() - 1);
        qcPy::registerInterpreter(nullptr, nullptr);
        check(qcSim::getNumBound() == 0, "no callback outlives its analysis");
        for (const auto& figure : figures)
            figure->human->wipe();
    }
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    void callOne();
    void compareAll() const;
    void meddle();
    void forgetModel() { modelled = false; }

private:
    using Index = std::size_t;

    bool oneIn(int n) { return data.ConsumeIntegralInRange(1, n) == n; }
    float number() { return oneIn(8) ? data.ConsumeFloatingPoint<float>() : data.PickValueInArray(kNumbers); }
    qVector vector()
    {
        const float x = number(), y = number();
        return {x, y, number()};
    }
    Index index(Index count) { return data.ConsumeIntegralInRange<Index>(0, count - 1); }
    FigureModel& anyFigure() { return *figures[index(figures.size())]; }
    Object& anyObject() { return *objects[index(objects.size())]; }
    qcSite* anySite()   // now and then of the other human, or none
    {
        const auto& all = anyFigure().human->sites();
        return oneIn(16) ? nullptr : all[index(all.size())];
    }
    qcJoint* anyJoint()
    {
        const auto& all = anyFigure().human->joints();
        return oneIn(16) ? nullptr : all[index(all.size())];
    }
    FigureModel* figureOf(const qcFigure* figure)
    {
        for (const auto& model : figures)
            if (model->human->figure() == figure)
                return model.get();
        return nullptr;
    }

    void construct();
    void handle();
    void copy();
    void assign();
    void destroy(Index which);
    void release(Object& object, const Object* keeper);
    void endCallback(Object& object);
    void activate(Object& object);
    void step();
    int runScript(const char* script);
    void setLoad(Object& object);
    void removeLoad(Object& object);
    void setOffsetLoad(Object& object);
    void removeOffsetLoad(Object& object);
    void setTorque(Object& object);
    void removeTorque(Object& object);
    void setStrategy(Object& object);
    void clear(Object& object);
    void reset(Object& object, const qVector* gravity);
    void report(Object& object);
    void useResults(Object& object);

    void modelClear(Object& object);
    int modelReset(Object& object);
    void modelSave(Object& object);
    void modelRestoreOffsets(Object& object, const std::vector<OffsetLoad>& saved);

    void compareFigure(const FigureModel& figure) const;
    void compareObject(const Object& object) const;

    FuzzedDataProvider& data;
    std::vector<std::unique_ptr<FigureModel>> figures;
    std::vector<std::unique_ptr<Object>> objects;   // in the order of their making
    std::map<int, const Object*> binderOf;          // by callback
    std::vector<loadWithOffset*> formerRecords;     // gone; good for being refused
    int lastId = 0;
    int scriptDepth = 0;
    bool modelled = true;
};

// ---- Life ----

void World::construct()
{
    if (objects.size() >= kMostObjects)
        return;
    objects.push_back(std::make_unique<Object>());
    Object& made = *objects.back();
    made.of = &anyFigure();
    made.real = new qmStaticStrength(made.of->human->human());
    modelReset(made);
}

void World::handle()
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
    objects.push_back(std::make_unique<Object>());
    objects.back()->of = &figure;
    objects.back()->real = qmStaticStrength::getHandle(figure.human->human());
    modelReset(*objects.back());
}

void World::copy()
{
    if (objects.size() >= kMostObjects)
        return;
    const Object& original = anyObject();
    objects.push_back(std::make_unique<Object>(original));
    objects.back()->real = new qmStaticStrength(*original.real);
    objects.back()->registered = false;
}

void World::assign()
{
    Object& to = anyObject();
    const Object& from = anyObject();
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

void World::destroy(Index which)
{
    release(*objects[which], nullptr);
    delete objects[which]->real;
    objects.erase(objects.begin() + static_cast<std::ptrdiff_t>(which));
}

// A callback ends with the object that bound it, unless the object takes the same one over.
void World::release(Object& object, const Object* keeper)
{
    if (keeper && keeper->callback == object.callback && keeper->script == object.script)
        return;
    if (object.callback && binderOf[object.callback] == &object)
        endCallback(object);
}

void World::endCallback(Object& object)
{
    const int callback = object.callback, script = object.script;
    for (const auto& other : objects) {
        other->callback = other->callback == callback ? 0 : other->callback;
        other->script = other->script == script ? 0 : other->script;
    }
}

// ---- Callback and scripts ----

void World::activate(Object& object)
{
    // letters that say what the script does; see runScript()
    const std::string script = data.ConsumeRandomLengthString(6);
    const int bound = object.real->activate(oneIn(8) ? nullptr : script.c_str());
    check(bound == (object.callback == 0 ? 1 : 0), "an analysis is activated once");
    if (!bound)
        return;
    object.callback = ++lastId;
    object.script = ++lastId;
    binderOf[object.callback] = &object;
}

void World::step()
{
    if (scriptDepth > 3)
        return;
    int active = 0;
    for (const auto& object : objects)
        active += object->callback && binderOf[object->callback] == object.get() ? 1 : 0;
    const int steps = scriptDepth == 0 ? data.ConsumeIntegralInRange(0, 2) : 1;
    check(qcSim::step(steps) <= steps * int(kMostObjects), "an analysis runs once a step");
    if (active == 0 && scriptDepth == 0)
        check(qcSim::getNumResults() == 0, "without an active analysis nothing runs");
}

// A letter a call, for the object of the number that follows from it.
int World::runScript(const char* script)
{
    ++scriptDepth;
    for (const char* c = script; *c && !objects.empty() && scriptDepth < 4; ++c) {
        const Index which = static_cast<unsigned char>(*c) / 8 % objects.size();
        Object& object = *objects[which];
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

// ---- Loads ----

void World::setLoad(Object& object)
{
    qcSite* site = anySite();
    const bool weight = data.ConsumeBool();
    Load load{weight ? 2 : data.ConsumeIntegralInRange(-1, 3), weight ? qVector() : vector(), weight ? number() : 0};
    const bool own = site && figureOf(site->getSegment()->getFigure()) == object.of;
    if (weight) {
        load.load = weightForce(object.gravity, load.grams);
        check(object.real->setWeightLoad(site, load.grams) == (own ? 1 : 0), "a weight goes on the own figure's sites");
    } else {
        check(object.real->setLoad(site, load.load, load.kind) == (site ? 1 : 0), "a force goes on every site");
    }
    if (!site || (weight && !own))
        return;
    figureOf(site->getSegment()->getFigure())->siteLoads[site] = load;
    setEntry(object.of->loads, keyOf(site), load);
}

void World::removeLoad(Object& object)
{
    qcSite* site = anySite();
    FigureModel* figure = site ? figureOf(site->getSegment()->getFigure()) : nullptr;
    const bool had = figure && figure->siteLoads.erase(site) > 0;
    const int removed = object.real->removeLoad(site);
    check(!modelled || removed == (had ? 1 : 0), "a load that is there is removed");
    if (had)
        removeEntry(object.of->loads, keyOf(site));
}

void World::setOffsetLoad(Object& object)
{
    if (object.records->size() > 12)
        return;
    qcSite* site = anySite();
    const bool weight = data.ConsumeBool();
    const qVector offset = vector();
    Load load{weight ? 2 : data.ConsumeIntegralInRange(0, 1), weight ? qVector() : vector(), weight ? number() : 0};
    const bool own = site && figureOf(site->getSegment()->getFigure()) == object.of;
    const loadWithOffset* record;
    if (weight) {
        load.load = weightForce(object.gravity, load.grams);
        record = object.real->setWeightLoadWithOffset(site, offset, load.grams);
        check((record != nullptr) == own, "a weight goes on the own figure's sites, with an offset too");
    } else {
        record = object.real->setLoadWithOffset(site, offset, load.load, load.kind);
        check((record != nullptr) == (site != nullptr), "a force goes on every site, with an offset too");
    }
    if (!record)
        return;
    object.records->push_back({site, offset, load, weight ? load.grams : -1.0f, record});
    modelSave(object);
}

void World::removeOffsetLoad(Object& object)
{
    if (!modelled) {
        object.real->removeLoadWithOffset(object.real->getNthLoadWithOffset(data.ConsumeIntegralInRange(-1, 12)));
        return;
    }
    loadWithOffset* record = nullptr;
    const Object& owner = anyObject();   // perhaps another one
    if (!owner.records->empty() && !oneIn(8))
        record = const_cast<loadWithOffset*>((*owner.records)[index(owner.records->size())].record);
    else if (!formerRecords.empty())
        record = formerRecords[index(formerRecords.size())];
    const auto place = std::find_if(object.records->begin(), object.records->end(),
                                    [record](const OffsetLoad& known) { return known.record == record; });
    const bool known = place != object.records->end();
    check(object.real->removeLoadWithOffset(record) == (known ? 1 : 0),
          "a record of the analysis is removed, no other");
    if (!known)
        return;
    formerRecords.push_back(record);
    object.records->erase(place);
    modelSave(object);
}

void World::setTorque(Object& object)
{
    qcJoint* joint = anyJoint();
    qVector torque = vector();
    check(object.real->setDefinedTorque(joint, torque) == (joint ? 1 : 0), "a torque goes on every joint");
    if (!joint)
        return;
    figureOf(joint->getFigure())->jointTorques[joint] = torque;
    setEntry(object.of->torques, joint->getName(), torque);
}

void World::removeTorque(Object& object)
{
    qcJoint* joint = anyJoint();
    FigureModel* figure = joint ? figureOf(joint->getFigure()) : nullptr;
    const bool had = figure && figure->jointTorques.erase(joint) > 0;
    const int removed = object.real->removeDefinedTorque(joint);
    check(!modelled || removed == (had ? 1 : 0), "a torque that is there is removed");
    if (had)
        removeEntry(object.of->torques, joint->getName());
}

void World::setStrategy(Object& object)
{
    object.strategy = data.ConsumeIntegralInRange(-1, 8);
    object.real->setStrategy(static_cast<Strategy>(object.strategy));
    if (qmStaticStrength::getStrategyName(static_cast<Strategy>(object.strategy)))
        object.of->strategy = object.strategy;
    check(object.real->compute() == 1, "a computation returns 1 under every strategy");
}

// ---- Clear and reset ----

void World::clear(Object& object)
{
    object.real->clear();
    modelClear(object);
}

void World::reset(Object& object, const qVector* gravity)
{
    if (gravity) {
        object.gravity = *gravity;
        object.real->setGravity(*gravity);
        modelReset(object);
    } else {
        const int result = object.real->reset();
        const int meant = modelReset(object);
        check(!modelled || result == meant, "a reset tells whether a list was restored whole");
    }
}

void World::modelClear(Object& object)
{
    FigureModel& figure = *object.of;
    figure.siteLoads.clear();
    figure.siteOffsets.clear();
    figure.jointTorques.clear();
    figure.loads.clear();
    figure.torques.clear();
    figure.hasOffsetList = false;
    figure.offsets.clear();
    figure.strategy = -1;
    object.records->clear();
}

int World::modelReset(Object& object)
{
    FigureModel& figure = *object.of;
    const FigureModel saved = figure;
    modelClear(object);
    object.strategy = figure.strategy = saved.strategy < 0 ? 0 : saved.strategy;

    bool whole = true;
    for (auto [key, load] : saved.loads) {
        qcSite* site = figure.siteOf(key);
        if (!site || !load.readable() || double(load.load.mag()) < 1e-5) {
            whole = false;
            continue;
        }
        if (load.kind == 2)
            load.load = weightForce(object.gravity, load.grams);
        figure.siteLoads[site] = load;
        setEntry(figure.loads, key, load);
    }
    bool result = whole && !saved.loads.empty();
    whole = true;
    for (const auto& [name, torque] : saved.torques) {
        qcJoint* joint = figure.jointOf(name);
        whole &= joint != nullptr;
        if (!joint)
            continue;
        figure.jointTorques[joint] = torque;
        setEntry(figure.torques, name, torque);
    }
    result |= whole && !saved.torques.empty();
    if (saved.hasOffsetList) {
        modelRestoreOffsets(object, saved.offsets);
        result = true;
    }
    return result ? 1 : 0;
}

void World::modelRestoreOffsets(Object& object, const std::vector<OffsetLoad>& saved)
{
    for (OffsetLoad load : saved) {
        load.site = object.of->siteOf(keyOf(load.site));
        if (!load.site)
            continue;
        load.mass = 0;
        if (load.load.kind == 2) {
            load.load.load = weightForce(object.gravity, load.load.grams);
            load.mass = load.load.grams;
        }
        load.record = object.real->getNthLoadWithOffset(static_cast<int>(object.records->size()));
        object.records->push_back(load);
    }
    modelSave(object);
}

// Sites that have no record any more keep what they had.
void World::modelSave(Object& object)
{
    object.of->hasOffsetList = true;
    object.of->offsets = *object.records;
    std::map<qcSite*, std::string> bySite;
    for (const OffsetLoad& load : *object.records)
        bySite[load.site] += spelledList(load.spelling());
    for (const auto& [site, text] : bySite)
        figureOf(site->getSegment()->getFigure())->siteOffsets[site] = spelledList(text);
}

// ---- Report and results ----

void World::report(Object& object)
{
    if (data.ConsumeBool()) {
        object.real->reportLoads(data.ConsumeIntegralInRange(-1, 1));
        return;
    }
    std::size_t lines = 0;
    for (const char* line = object.real->reportLoads(1); line; line = object.real->reportLoads(0)) {
        check(std::strlen(line) < 2048, "a line of the report fits");
        check(!modelled || ++lines <= object.of->loads.size() + 2, "a report ends");
    }
    check(!modelled || lines == std::max<std::size_t>(object.of->loads.size() + 2, 2),
          "a report has a line a load, the strategy and gravity");
}

void World::useResults(Object& object)
{
    qcJoint* joint = anyJoint();
    qVector force(1, 2, 3), moment(4, 5, 6);
    switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
        check(object.real->compute() == 1, "a computation returns 1");
        break;
    case 1: {
        const qVector givenForce = vector(), givenMoment = vector();
        object.real->setFMonJoint(joint, givenForce, givenMoment);
        check(object.real->getJointForces(joint, force, moment) == (joint ? 1 : 0), "a result that was set is there");
        if (joint)
            check(spelled(force) == spelled(givenForce) && spelled(moment) == spelled(givenMoment),
                  "a result is what was set");
        break;
    }
    case 2: {
        qVector point = vector(), position = vector(), load = vector();
        object.real->calcForcesAt(position, point, load, force, moment);
        break;
    }
    default:
        object.real->getSplitFactor(joint, data.ConsumeIntegralInRange(-1, 4), joint ? joint->getName() : nullptr);
    }
}

// ---- One call ----

void World::callOne()
{
    if (objects.empty())
        construct();
    Object& object = anyObject();
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
        if (scriptDepth == 0)
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

// ---- What has to agree ----

void World::compareAll() const
{
    for (const auto& figure : figures)
        compareFigure(*figure);
    for (const auto& object : objects)
        compareObject(*object);
}

void World::compareFigure(const FigureModel& figure) const
{
    const qcFigure* real = figure.human->figure();
    std::string loads, torques, offsets;
    for (const auto& [key, load] : figure.loads)
        loads += spelledList(spelled(key.c_str()) + load.spelling());
    for (const auto& [name, torque] : figure.torques)
        torques += spelledList(spelled(name.c_str()) + spelled(torque));
    for (const OffsetLoad& load : figure.offsets)
        offsets += spelledList(spelled(keyOf(load.site).c_str()) + load.spelling());
    check(spelledProperty(real, "SSTR_LoadList") == (loads.empty() ? "" : spelledList(loads)), "the load list");
    check(spelledProperty(real, "SSTR_TorqueList") == (torques.empty() ? "" : spelledList(torques)), "the torque list");
    const std::string offsetList = !figure.hasOffsetList ? "" : offsets.empty() ? "e" : spelledList(offsets);
    check(spelledProperty(real, "SSTR_LoadWithOffsetList") == offsetList, "the list of loads with offsets");
    check(spelledProperty(real, "SSTR_Strategy") == (figure.strategy < 0 ? "" : spelled(kStrategies[figure.strategy])),
          "the stored strategy");
    for (qcSite* site : figure.human->sites()) {
        const auto load = figure.siteLoads.find(site);
        check(spelledProperty(site, "SSTR_Load")
                  == (load == figure.siteLoads.end() ? "" : spelledList(load->second.spelling())),
              "a site's load");
        const auto ofSite = figure.siteOffsets.find(site);
        check(spelledProperty(site, "SSTR_LoadsWithOffsets")
                  == (ofSite == figure.siteOffsets.end() ? "" : ofSite->second),
              "a site's loads with offsets");
    }
    for (qcJoint* joint : figure.human->joints()) {
        const auto torque = figure.jointTorques.find(joint);
        check(spelledProperty(joint, "SSTR_Torque")
                  == (torque == figure.jointTorques.end() ? "" : spelledList(spelled(torque->second))),
              "a joint's torque");
    }
}

void World::compareObject(const Object& object) const
{
    qmStaticStrength& real = *object.real;
    const FigureModel& figure = *object.of;
    check(real.getHuman() == figure.human->human(), "the human");
    check(real.getStrategy() == object.strategy, "the strategy");
    check(real.isActive() == (object.callback ? 1 : 0), "whether it is active");
    qVector read;
    real.getGravity(read);
    check(spelled(read) == spelled(object.gravity), "gravity");

    check(real.getNumLoads() == static_cast<int>(figure.loads.size()), "the number of loads");
    for (int n = 0; n <= real.getNumLoads(); ++n) {
        const bool inside = n < real.getNumLoads();
        check(real.getNthLoadSite(n) == (inside ? figure.siteOf(figure.loads[static_cast<Index>(n)].first) : nullptr),
              "the site of the n-th load");
    }
    check(real.getNthLoadSite(-3) == real.getNthLoadSite(0), "the site of a load before the first is the first's");
    for (qcSite* site : figure.human->sites()) {
        const auto load = figure.siteLoads.find(site);
        const bool readable = load != figure.siteLoads.end() && load->second.readable();
        check(real.getSiteLoad(site, read) == (readable ? 1 : 0), "whether a site has a load");
        const char* type = real.getLoadType(site);
        check((type != nullptr) == readable, "whether a load has a type");
        if (!readable)
            continue;
        const Load& meant = load->second;
        const float grams = meant.kind == 2 ? meant.grams : -1;
        check(spelled(read) == spelled(meant.load), "the load of a site");
        check(spelled(real.getSiteWeight(site)) == spelled(grams), "the weight on a site");
        check(std::strcmp(type, grams >= 0 ? "weight" : meant.kind == 1 ? "local" : "global") == 0, "a load's type");
    }

    check(real.getNumDefinedTorques() == static_cast<int>(figure.torques.size()), "the number of torques");
    for (int n = 0; n < real.getNumDefinedTorques(); ++n)
        check(real.getNthDefinedTorqueJoint(n) == figure.jointOf(figure.torques[static_cast<Index>(n)].first),
              "the joint of the n-th torque");
    for (qcJoint* joint : figure.human->joints()) {
        const auto torque = figure.jointTorques.find(joint);
        const bool has = torque != figure.jointTorques.end();
        check(real.getDefinedTorque(joint, read) == (has ? 1 : 0), "whether a joint has a torque");
        check(!has || spelled(read) == spelled(torque->second), "the torque of a joint");
    }

    const Records& records = *object.records;
    check(real.getNumLoadsWithOffset() == static_cast<int>(records.size()), "the number of records");
    check(!real.getNthLoadWithOffset(-1) && !real.getNthLoadWithOffset(real.getNumLoadsWithOffset()),
          "no record before the first or after the last");
    for (Index n = 0; n < records.size(); ++n) {
        const OffsetLoad& meant = records[n];
        const loadWithOffset* record = real.getNthLoadWithOffset(static_cast<int>(n));
        check(record == meant.record && record->site == meant.site, "the n-th record");
        check(spelled(record->offset) == spelled(meant.offset) && spelled(record->load) == spelled(meant.load.load),
              "a record's vectors");
        check(std::strcmp(record->type, meant.load.kindText()) == 0 && record->local == (meant.load.kind == 1)
                  && spelled(record->mass) == spelled(meant.mass),
              "a record's kind");
    }
}

// ---- Behind their backs ----

// Any property of any object gets a value of any other, alone or in a list, or none.
void World::meddle()
{
    static constexpr const char* keys[] = {"SSTR_LoadList", "SSTR_TorqueList",  "SSTR_LoadWithOffsetList",
                                           "SSTR_Strategy", "SSTR_Load",        "SSTR_LoadsWithOffsets",
                                           "SSTR_Torque",   "SSTR_Force_Moment"};
    const auto anyPart = [this]() -> qcObject* {
        const int kind = data.ConsumeIntegralInRange(0, 2);
        qcFigure* figure = anyFigure().human->figure();
        qcSite* site = anySite();
        qcJoint* joint = anyJoint();
        if (kind == 1 && site)
            return site;
        if (kind == 2 && joint)
            return joint;
        return figure;
    };
    qcValue value;
    const qcObject* from = anyPart();
    from->getProperty(data.PickValueInArray(keys), &value);
    if (oneIn(4)) {   // its own first element
        const qcValue whole = value;
        if (const qcValue* first = whole.firstElement())
            value = *first;
    } else if (oneIn(3)) {
        const qcValue alone = value;
        value.setList(dupval(&alone));
    }
    qcObject* to = anyPart();
    const char* key = data.PickValueInArray(keys);
    if (oneIn(4))
        to->removeProperty(key);
    else
        to->setProperty(key, value);
}

}   // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    silenceOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    static AnalysedHuman man(smallHuman("man").text()), child(smallHuman("child").text());
    FuzzedDataProvider data(bytes, size);
    const SilentMessages messages;
    World world(data, {&man, &child});
    const bool behindTheirBacks = data.ConsumeIntegralInRange(0, 3) == 0;
    if (behindTheirBacks)
        world.forgetModel();
    for (int calls = 0; data.remaining_bytes() > 0 && calls < 100; ++calls) {
        world.callOne();
        if (behindTheirBacks)
            world.meddle();
        else
            world.compareAll();
    }
    return 0;
}
