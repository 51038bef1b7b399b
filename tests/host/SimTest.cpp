// Simulation: which callbacks run, in which order, and what may happen while they run.
#include "qc/qcSim.h"

#include "Support.h"

#include <functional>
#include <memory>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

// Binds callbacks that write their names into a protocol, and unbinds what is left at the end.
class Sim : public ::testing::Test {
protected:
    struct Bound {
        Sim* test;
        std::string name;
        int result;
        std::function<void()> action;
        qcCallback* handle;
    };

    ~Sim() override
    {
        for (const auto& one : bound)
            qcSim::unbindCallback(one->handle);
        qcSim::step(1);   // forgets the last results
    }

    Bound* bind(const std::string& name, int result = 1, std::function<void()> action = nullptr,
                const char* kind = "qc_simfunc")
    {
        bound.push_back(std::make_unique<Bound>(Bound{this, name, result, std::move(action), nullptr}));
        bound.back()->handle = qcSim::bindCallback(kind, name.c_str(), run, bound.back().get());
        EXPECT_NE(bound.back()->handle, nullptr);
        return bound.back().get();
    }

    static int run(void* data)
    {
        Bound* self = static_cast<Bound*>(data);
        self->test->calls.push_back(self->name);
        const int result = self->result;
        if (self->action)
            self->action();
        return result;
    }

    static std::vector<int> results()
    {
        std::vector<int> all;
        for (int i = 0; i < qcSim::getNumResults(); ++i)
            all.push_back(qcSim::getResult(i));
        return all;
    }

    static std::vector<std::string> owners()
    {
        std::vector<std::string> all;
        for (int i = 0; i < qcSim::getNumBound(); ++i)
            all.push_back(qcSim::getBoundOwner(i));
        return all;
    }

    std::vector<std::string> calls;
    std::vector<std::unique_ptr<Bound>> bound;
};

}   // namespace

TEST_F(Sim, RunsNothingWhenNothingIsBound)
{
    EXPECT_EQ(qcSim::step(3), 0);
    EXPECT_EQ(qcSim::getNumResults(), 0);
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

TEST_F(Sim, RunsTheCallbacksInTheOrderInWhichTheyWereBound)
{
    bind("a", 10);
    bind("b", 20);
    bind("c", 0);
    EXPECT_EQ(qcSim::step(1), 3);
    EXPECT_THAT(calls, ElementsAre("a", "b", "c"));
    EXPECT_THAT(results(), ElementsAre(10, 20, 0));
}

TEST_F(Sim, RunsOnlyCallbacksOfTheSimulationsKind)
{
    bind("other", 1, nullptr, "qc_drawfunc");
    bind("longer", 1, nullptr, "qc_simfunc2");
    bind("shorter", 1, nullptr, "qc_simfun");
    bind("right", 5);
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(calls, ElementsAre("right"));
    EXPECT_THAT(results(), ElementsAre(5));
}

TEST_F(Sim, RunsAsManyStepsAsAsked)
{
    bind("a");
    bind("b");
    EXPECT_EQ(qcSim::step(3), 6);
    EXPECT_THAT(calls, ElementsAre("a", "b", "a", "b", "a", "b"));
    EXPECT_EQ(qcSim::step(0), 0);
    EXPECT_EQ(qcSim::step(-1), 0);
    EXPECT_EQ(calls.size(), 6u);
}

TEST_F(Sim, KeepsTheResultsOfTheLastStep)
{
    Bound* counter = bind("counter", 0);
    counter->action = [&] { ++counter->result; };   // returns 0, 1, 2, …
    qcSim::step(3);
    EXPECT_THAT(results(), ElementsAre(2));
}

TEST_F(Sim, ForgetsResultsWhenAStepRunsNothing)
{
    Bound* a = bind("a", 7);
    qcSim::step(1);
    qcSim::unbindCallback(a->handle);
    qcSim::step(1);
    EXPECT_THAT(results(), IsEmpty());
}

TEST_F(Sim, ResultsOutsideAreZero)
{
    bind("a", 7);
    qcSim::step(1);
    EXPECT_EQ(qcSim::getResult(-1), 0);
    EXPECT_EQ(qcSim::getResult(0), 7);
    EXPECT_EQ(qcSim::getResult(1), 0);
}

TEST_F(Sim, TellsKindAndOwnerOfWhatIsBound)
{
    bind("a");
    bind("b", 1, nullptr, "other_kind");
    ASSERT_EQ(qcSim::getNumBound(), 2);
    EXPECT_STREQ(qcSim::getBoundKind(0), "qc_simfunc");
    EXPECT_STREQ(qcSim::getBoundOwner(0), "a");
    EXPECT_STREQ(qcSim::getBoundKind(1), "other_kind");
    EXPECT_STREQ(qcSim::getBoundOwner(1), "b");
    EXPECT_EQ(qcSim::getBoundKind(2), nullptr);
    EXPECT_EQ(qcSim::getBoundOwner(-1), nullptr);
}

TEST_F(Sim, CopiesKindAndOwner)
{
    char kind[] = "qc_simfunc", owner[] = "owner";
    Bound data{this, "a", 1, nullptr, nullptr};
    qcCallback* handle = qcSim::bindCallback(kind, owner, run, &data);
    kind[0] = owner[0] = 'X';
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_STREQ(qcSim::getBoundOwner(0), "owner");
    EXPECT_EQ(qcSim::unbindCallback(handle), 1);
}

TEST_F(Sim, TakesANullKindOrOwnerForAnEmptyText)
{
    Bound data{this, "a", 1, nullptr, nullptr};
    qcCallback* handle = qcSim::bindCallback(nullptr, nullptr, run, &data);
    EXPECT_STREQ(qcSim::getBoundKind(0), "");
    EXPECT_STREQ(qcSim::getBoundOwner(0), "");
    EXPECT_EQ(qcSim::step(1), 0);
    EXPECT_EQ(qcSim::unbindCallback(handle), 1);
}

TEST_F(Sim, UnboundCallbacksRunNoMore)
{
    bind("a");
    Bound* b = bind("b");
    bind("c");
    EXPECT_EQ(qcSim::unbindCallback(b->handle), 1);
    EXPECT_THAT(owners(), ElementsAre("a", "c"));
    qcSim::step(1);
    EXPECT_THAT(calls, ElementsAre("a", "c"));
}

TEST_F(Sim, UnbindingTwiceOrNothingGivesZero)
{
    Bound* a = bind("a");
    EXPECT_EQ(qcSim::unbindCallback(nullptr), 0);
    EXPECT_EQ(qcSim::unbindCallback(a->handle), 1);
    EXPECT_EQ(qcSim::unbindCallback(a->handle), 0);
}

TEST_F(Sim, OneFunctionMayBeBoundTwice)
{
    Bound data{this, "a", 1, nullptr, nullptr};
    qcCallback* first = qcSim::bindCallback("qc_simfunc", "one", run, &data);
    qcCallback* second = qcSim::bindCallback("qc_simfunc", "two", run, &data);
    EXPECT_NE(first, second);
    EXPECT_EQ(qcSim::step(1), 2);
    qcSim::unbindCallback(first);
    EXPECT_EQ(qcSim::step(1), 1);
    qcSim::unbindCallback(second);
}

TEST_F(Sim, ACallbackMayUnbindItself)
{
    Bound* a = bind("a", 8);
    a->action = [&] {
        EXPECT_EQ(qcSim::unbindCallback(a->handle), 1);
        EXPECT_EQ(qcSim::unbindCallback(a->handle), 0);
        EXPECT_THAT(owners(), ElementsAre("b"));
    };
    bind("b", 9);
    qcSim::step(1);
    EXPECT_THAT(results(), ElementsAre(8, 9));   // its own result counts all the same
    qcSim::step(1);
    EXPECT_THAT(calls, ElementsAre("a", "b", "b"));
}

TEST_F(Sim, ACallbackMayUnbindOthersBeforeAndAfterIt)
{
    Bound* a = bind("a");
    Bound* b = bind("b");
    Bound* c = bind("c");
    bind("d");
    b->action = [&] {
        qcSim::unbindCallback(a->handle);
        qcSim::unbindCallback(c->handle);
    };
    qcSim::step(2);
    EXPECT_THAT(calls, ElementsAre("a", "b", "d", "b", "d"));
}

TEST_F(Sim, ACallbackMayUnbindAllAndBindNewOnes)
{
    bind("a");
    Bound* b = bind("b");
    bind("c");
    b->action = [&] {
        for (const auto& each : bound)
            qcSim::unbindCallback(each->handle);
        bind("new");   // a store that reused the places would run it in this step
    };
    EXPECT_EQ(qcSim::step(1), 2);
    EXPECT_THAT(owners(), ElementsAre("new"));
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_THAT(calls, ElementsAre("a", "b", "new"));
}

TEST_F(Sim, OneBoundDuringAStepRunsFromTheNextStepOn)
{
    Bound* a = bind("a");
    a->action = [&] {
        a->action = nullptr;
        for (int i = 0; i < 100; ++i)   // enough to make any store grow
            bind("new" + std::to_string(i));
    };
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_EQ(qcSim::getNumBound(), 101);
    EXPECT_EQ(qcSim::step(1), 101);
}

TEST_F(Sim, OneBoundAndUnboundDuringAStepNeverRuns)
{
    Bound* a = bind("a");
    a->action = [&] { qcSim::unbindCallback(bind("short")->handle); };
    qcSim::step(2);
    EXPECT_THAT(calls, ElementsAre("a", "a"));
    EXPECT_THAT(owners(), ElementsAre("a"));
}

TEST_F(Sim, ACallbackMayStepTheSimulation)
{
    Bound* a = bind("a", 1);
    Bound* b = bind("b", 2);
    a->action = [&] {
        a->action = nullptr;
        EXPECT_EQ(qcSim::step(1), 2);
        EXPECT_EQ(qcSim::unbindCallback(b->handle), 1);
    };
    EXPECT_EQ(qcSim::step(1), 1);   // b ran in the inner step and is gone for the outer one
    EXPECT_THAT(calls, ElementsAre("a", "a", "b"));
    EXPECT_THAT(results(), ElementsAre(1));   // of the outer step, which ended last
}

TEST_F(Sim, UnbindingInAnInnerStepIsSafeForTheOuterOne)
{
    Bound* a = bind("a");
    Bound* b = bind("b");
    bind("c");
    b->action = [&] { qcSim::unbindCallback(b->handle); };
    a->action = [&] {
        a->action = nullptr;
        qcSim::step(1);
    };
    qcSim::step(1);
    EXPECT_THAT(calls, ElementsAre("a", "a", "b", "c", "c"));
    EXPECT_THAT(owners(), ElementsAre("a", "c"));
}

TEST_F(Sim, ACallbackMayDeleteItsOwner)
{
    struct Owner {
        qcCallback* handle;
        bool* gone;
        ~Owner()
        {
            qcSim::unbindCallback(handle);
            *gone = true;
        }
    };
    bool gone = false;
    auto* owner = new Owner{nullptr, &gone};
    const auto deleteOwner = [](void* data) {
        delete static_cast<Owner*>(data);
        return 6;
    };
    owner->handle = qcSim::bindCallback("qc_simfunc", "owner", deleteOwner, owner);
    bind("b", 7);
    EXPECT_EQ(qcSim::step(2), 3);
    EXPECT_TRUE(gone);
    EXPECT_THAT(results(), ElementsAre(7));
    EXPECT_THAT(owners(), ElementsAre("b"));
}
