// Lifecycle: the registry of all analyses, gravity, strategy, and the simulation callback.
#include "FigureParts.h"
#include "StrategyNames.h"
#include "Units.h"
#include "qmStaticStrength.h"

#include "qc/qList.h"
#include "qc/qcMessages.h"
#include "qc/qcPy.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

namespace {

constexpr const char* kStrategyNames[qmStaticStrength::N_STRS] = {"Two Feet", "Right Foot", "Left Foot",
                                                                  "Walking",  "Sitting",    "Sitting, No Feet"};

constexpr const char* kCallbackKind = "qc_simfunc";
constexpr const char* kCallbackOwner = "StaticStrength";

qList* registry = nullptr;   // of qmStaticStrength*, in the order of their construction

int belongsToOtherHuman(int* data, void* human)
{
    void* object = data;
    return static_cast<qmStaticStrength*>(object)->getHuman() == human ? 0 : 1;
}

// The result is taken before the script: a script may delete its own analysis.
int computeAndRunScript(void* data)
{
    qmStaticStrength* analysis = static_cast<qmStaticStrength*>(data);
    const int result = analysis->compute();
    analysis->run_script();
    return result;
}

}   // namespace

int strategyIndex(const char* name)
{
    if (!name)
        return 0;
    for (int i = 0; i < qmStaticStrength::N_STRS; ++i)
        if (std::strcmp(name, kStrategyNames[i]) == 0)
            return i;
    return qmStaticStrength::N_STRS;
}

qmStaticStrength::qmStaticStrength(qcHuman* analysed)
    : human(analysed), figure(analysed->getFigure()), gravity(0.0f, -STD_G, 0.0f),
      strategy(TwoFeet), splitFactors{0, 0, 0, 0}, l5Segment(nullptr), anthroScale(nullptr), callback(nullptr),
      script(nullptr), observer(nullptr), offsetLoads(new std::vector<loadWithOffset*>)
{
    setName(figure->getName());
    setFullName("static_strength", figure->getName());
    humanInfo();
    reset();
    observer = new qcRefObserver(figure, this);
    qList::append(&registry, this);
}

qmStaticStrength::qmStaticStrength(const qmStaticStrength&) = default;

qmStaticStrength& qmStaticStrength::operator=(const qmStaticStrength& other)
{
    if (this == &other)
        return *this;
    if (isRegistered())
        releaseOwned();
    qcObject::operator=(other);
    human = other.human;
    figure = other.figure;
    gravity = other.gravity;
    strategy = other.strategy;
    std::copy(std::begin(other.splitFactors), std::end(other.splitFactors), splitFactors);
    l5Segment = other.l5Segment;
    anthroScale = other.anthroScale;
    callback = other.callback;
    script = other.script;
    observer = other.observer;
    offsetLoads = other.offsetLoads;
    return *this;
}

// A copy is not in the registry and owns nothing.
qmStaticStrength::~qmStaticStrength()
{
    if (!isRegistered())
        return;
    releaseOwned();
    qList::deleteNode(&registry, registry->findNode(this, nullptr), nullptr);
}

bool qmStaticStrength::isRegistered()
{
    return registry && registry->findNode(this, nullptr);
}

// Frees what no other registered analysis holds too: an assignment shares the pointers.
void qmStaticStrength::releaseOwned()
{
    bool othersHoldCallback = false, othersHoldObserver = false, othersHoldLoads = false;
    forEach<qmStaticStrength>(registry, [&](const qmStaticStrength* other) {
        if (other == this)
            return;
        othersHoldCallback = othersHoldCallback || (other->callback && other->callback == callback)
                             || (other->script && other->script == script);
        othersHoldObserver = othersHoldObserver || other->observer == observer;
        othersHoldLoads = othersHoldLoads || other->offsetLoads == offsetLoads;
    });
    if (!othersHoldCallback)
        deactivate();
    if (!othersHoldObserver && observer)
        observer->destroy();
    if (othersHoldLoads)
        return;
    dropOffsetLoads();
    delete offsetLoads;
}

qmStaticStrength* qmStaticStrength::getHandle(qcHuman* human)
{
    qList* node = registry ? registry->findNode(human, belongsToOtherHuman) : nullptr;
    return node ? static_cast<qmStaticStrength*>(node->getData()) : new qmStaticStrength(human);
}

qcHuman* qmStaticStrength::getHuman()
{
    return human;
}

int qmStaticStrength::humanInfo()
{
    anthroScale = human->getAnthroscale();
    if (!anthroScale)
        anthroScale = human->initAnthroscale(nullptr);
    if (!anthroScale)
        return error("StaticStrength ERROR: cannot init AnthroScale(%s)", figure->getName());
    anthroScale->applyScale();
    return 1;
}

void qmStaticStrength::setGravity(const qVector& newGravity)
{
    gravity = newGravity;
    reset();
}

float qmStaticStrength::getGravity(qVector& out)
{
    out = gravity;
    return gravity.mag();
}

void qmStaticStrength::setStrategy(Strategy newStrategy)
{
    strategy = newStrategy;
    if (const char* name = getStrategyName(newStrategy))
        figure->setProperty(kStrategyKey, qcValue(name));
    figure->setTimestamp();
}

qmStaticStrength::Strategy qmStaticStrength::getStrategy()
{
    return strategy;
}

const char* qmStaticStrength::getStrategyName(Strategy strategy)
{
    return strategy >= 0 && strategy < N_STRS ? kStrategyNames[strategy] : nullptr;
}

int qmStaticStrength::activate(const char* newScript)
{
    std::printf("activate callback\n");
    if (callback)
        return 0;
    if (newScript && *newScript)
        script = strdup(newScript);
    callback = qcSim::bindCallback(kCallbackKind, kCallbackOwner, computeAndRunScript, this);
    return 1;
}

int qmStaticStrength::deactivate()
{
    if (callback) {
        qcSim::unbindCallback(callback);
        callback = nullptr;
    }
    std::free(script);
    script = nullptr;
    return 1;
}

int qmStaticStrength::isActive()
{
    return callback ? 1 : 0;
}

void qmStaticStrength::run_script()
{
    if (!script)
        return;
    const std::string text = script;   // the script may replace or drop itself
    qcPy::evalSimple(text.c_str());
}
