// Lifecycle: the registry of all analyses, gravity, strategy, and the simulation callback.
#include "FigureParts.h"
#include "OutOfMemory.h"
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
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kStrategyNames[qmStaticStrength::N_STRS] = {"Two Feet", "Right Foot", "Left Foot",
                                                                  "Walking",  "Sitting",    "Sitting, No Feet"};

constexpr const char* kCallbackKind = "qc_simfunc";
constexpr const char* kCallbackOwner = "StaticStrength";

qList* registry = nullptr;   // of qmStaticStrength*, in the order of their construction; without copies

// Every object there is, copies too: they share what they own. Never destroyed: objects may outlive it.
std::vector<qmStaticStrength*>& living()
{
    static auto* objects = new std::vector<qmStaticStrength*>;
    return *objects;
}

// Who bound a callback and is run by it.
struct Binding {
    qcCallback* callback;
    qmStaticStrength* binder;
};

std::vector<Binding>& bindings()
{
    static auto* all = new std::vector<Binding>;
    return *all;
}

const qmStaticStrength* binderOf(const qcCallback* callback)
{
    for (const Binding& binding : bindings())
        if (binding.callback == callback)
            return binding.binder;
    return nullptr;
}

// Ties an analysis to its figure, and to its human, which may go by itself.
class Lifeline final : public qcRefObserver {
public:
    Lifeline(qcFigure* figure, qcHuman* human, qcObject* analysis)
        : qcRefObserver(figure, analysis), ofHuman(human, analysis)
    {}
    bool holds() const { return getSubject() && ofHuman.getSubject(); }
    bool isOf(const qcHuman* human) const { return ofHuman.getSubject() == human; }   // still there

private:
    qcRefObserver ofHuman;
};

// Whether this human is there, be its figure gone.
bool isOf(const qcRefObserver* observer, const qcHuman* human)
{
    return observer && static_cast<const Lifeline*>(observer)->isOf(human);
}

// Whether figure and human are there; they are while there is no observer yet.
bool holds(const qcRefObserver* observer)
{
    return !observer || static_cast<const Lifeline*>(observer)->holds();
}

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};
using OwnedText = std::unique_ptr<char, FreeText>;

// A copy from malloc; null of null or the empty text.
OwnedText copyOf(const char* text)
{
    if (!text || !*text)
        return nullptr;
    OwnedText copy(strdup(text));
    if (!copy)
        throw std::bad_alloc();
    return copy;
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

// Once this part is done, the destructor ends what the rest of the construction began.
qmStaticStrength::qmStaticStrength(qcHuman* analysed, Beginning)
    : human(analysed), figure(analysed->getFigure()), gravity(0.0f, -STD_G, 0.0f),
      strategy(TwoFeet), splitFactors{0, 0, 0, 0}, l5Segment(nullptr), anthroScale(nullptr), callback(nullptr),
      script(nullptr), observer(nullptr), offsetLoads(nullptr)
{
    living().push_back(this);
}

qmStaticStrength::qmStaticStrength(qcHuman* human) : qmStaticStrength(human, Beginning())
{
    offsetLoads = new std::vector<loadWithOffset*>;
    setName(figure->getName());
    setFullName("static_strength", figure->getName());
    observer = new Lifeline(figure, human, this);
    qList::append(&registry, this);
    humanInfo();
    rebuild();   // last: where memory runs out, the figure is as it was
}

qmStaticStrength::qmStaticStrength(const qmStaticStrength& other)
    : qcObject(other), human(other.human), figure(other.figure), gravity(other.gravity),
      strategy(other.strategy), splitFactors{other.splitFactors[0], other.splitFactors[1], other.splitFactors[2],
                                             other.splitFactors[3]},
      l5Segment(other.l5Segment), anthroScale(other.anthroScale), callback(other.callback), script(other.script),
      observer(other.observer), offsetLoads(other.offsetLoads)
{
    living().push_back(this);
}

qmStaticStrength& qmStaticStrength::operator=(const qmStaticStrength& other)
{
    if (this == &other || !hasMemoryFor("operator=", [&] { qcObject::operator=(other); }))
        return *this;
    releaseOwned(&other);
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

qmStaticStrength::~qmStaticStrength()
{
    releaseOwned(nullptr);
    if (qList* node = registry ? registry->findNode(this, nullptr) : nullptr)
        qList::deleteNode(&registry, node, nullptr);
    living().erase(std::find(living().begin(), living().end(), this));
}

// Lets go of what the object owns, and frees what no other object shares. A callback runs the object
// that bound it and ends with it, unless `keeper`, whose members this object is about to take over,
// has the same one.
void qmStaticStrength::releaseOwned(const qmStaticStrength* keeper)
{
    const auto shared = [this](auto held) {
        return std::any_of(living().begin(), living().end(),
                           [&](const qmStaticStrength* other) { return other != this && held(*other); });
    };
    const bool keepsCallback = keeper && keeper->callback == callback && keeper->script == script;
    const bool scriptShared = shared([this](const qmStaticStrength& other) { return other.script == script; });
    if (!keepsCallback && (binderOf(callback) == this || (!callback && !scriptShared)))
        deactivate();
    if (!shared([this](const qmStaticStrength& other) { return other.observer == observer; }) && observer)
        observer->destroy();
    if (offsetLoads && !shared([this](const qmStaticStrength& other) { return other.offsetLoads == offsetLoads; })) {
        dropOffsetLoads();
        delete offsetLoads;
    }
}

qmStaticStrength* qmStaticStrength::getHandle(qcHuman* human)
{
    if (!human)
        return nullptr;
    // Another human may lie where one was whose analysis outlived it: that analysis is nobody's.
    const auto differs = [](int* data, void* wanted) {
        void* object = data;
        const qmStaticStrength* analysis = static_cast<qmStaticStrength*>(object);
        return analysis->human == wanted && holds(analysis->observer) ? 0 : 1;
    };
    qList* node = registry ? registry->findNode(human, differs) : nullptr;
    if (node)
        return static_cast<qmStaticStrength*>(node->getData());
    for (const qmStaticStrength* object : living())
        if (isOf(object->observer, human) && object->isOrphaned("getHandle"))
            return nullptr;   // the human stands, but its figure, of which the new analysis would be, does not
    return resultOr<qmStaticStrength*>(nullptr, "getHandle", [human] { return new qmStaticStrength(human); });
}

qcHuman* qmStaticStrength::getHuman()
{
    return holds(observer) ? human : nullptr;
}

// Whether the host has destroyed the human or the figure: nothing of them is to be touched then.
// Required: members that need no field of their object may be called on a null one, as Python's "NULL" does. This file
// is built so that the compiler keeps the test.
bool qmStaticStrength::isOrphaned(const char* member) const
{
    const qmStaticStrength* asked = this;
    if (!asked || holds(observer))
        return false;
    error("StaticStrength ERROR: %s: the human of %s is gone", member, getName());
    return true;
}

int qmStaticStrength::humanInfo()
{
    anthroScale = human->getAnthroscale();
    if (!anthroScale)
        anthroScale = human->initAnthroscale(nullptr);
    if (!anthroScale) {
        error("StaticStrength ERROR: cannot init AnthroScale(%s)", figure->getName());
        return 0;
    }
    anthroScale->applyScale();
    return 1;
}

void qmStaticStrength::setGravity(const qVector& newGravity)
{
    if (isOrphaned("setGravity"))
        return;
    const qVector former = gravity;
    gravity = newGravity;
    if (!hasMemoryFor("setGravity", [this] { rebuild(); }))
        gravity = former;
}

float qmStaticStrength::getGravity(qVector& out)
{
    out = gravity;
    return gravity.mag();
}

void qmStaticStrength::setStrategy(Strategy newStrategy)
{
    if (isOrphaned("setStrategy"))
        return;
    hasMemoryFor("setStrategy", [&] { takeStrategy(newStrategy, textOf(newStrategy)); });
}

// A strategy as the figure keeps it; empty when it has no name.
qcValue qmStaticStrength::textOf(Strategy named)
{
    const char* name = getStrategyName(named);
    return name ? qcValue(name) : qcValue();
}

// Memory runs out before anything changes, and only where the figure has no room for the property.
void qmStaticStrength::takeStrategy(Strategy chosen, qcValue text)
{
    if (text.kind != qcValue::Empty)
        figure->setProperty(kStrategyKey, std::move(text));
    strategy = chosen;
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
    if (callback || isOrphaned("activate"))
        return 0;
    return hasMemoryFor("activate", [&] {
        OwnedText copy = copyOf(newScript);
        bindings().reserve(bindings().size() + 1);
        callback = qcSim::bindCallback(kCallbackKind, kCallbackOwner, computeAndRunScript, this);

        // from here on nothing needs memory
        if (callback)
            bindings().push_back({callback, this});
        if (copy) {
            std::free(script);
            script = copy.release();
        }
    });
}

// Objects that share the callback or the script lose it with this one.
int qmStaticStrength::deactivate()
{
    qcCallback* const ended = callback;
    char* const dropped = script;
    for (qmStaticStrength* object : living()) {
        if (object->callback == ended)
            object->callback = nullptr;
        if (object->script == dropped)
            object->script = nullptr;
    }
    if (ended) {
        qcSim::unbindCallback(ended);
        auto& all = bindings();
        all.erase(std::remove_if(all.begin(), all.end(), [ended](const Binding& b) { return b.callback == ended; }),
                  all.end());
    }
    std::free(dropped);
    return 1;
}

int qmStaticStrength::isActive()
{
    return callback ? 1 : 0;
}

void qmStaticStrength::run_script()
{
    std::string text;   // the script may replace or drop itself
    if (script && hasMemoryFor("run_script", [&] { text = script; }))
        qcPy::evalSimple(text.c_str());
}
