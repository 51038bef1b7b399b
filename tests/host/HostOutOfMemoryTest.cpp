// Out of memory in the host's core: std::bad_alloc at every allocation, the object as it was, nothing lost.
#include "CountedHeap.h"

#include "qc/qList.h"
#include "qc/qcMessages.h"
#include "qc/qcObject.h"
#include "qc/qcObserver.h"
#include "qc/qcSim.h"

#include <gtest/gtest.h>

#include <new>
#include <ostream>
#include <string>

namespace {

constexpr const char* kLong = "a text that is too long to be kept inside a string object";
constexpr const char* kLonger = "another text, and longer still, so that it needs more memory than the one before";

/// A list of a number, a text and a list.
qcValue nested()
{
    qcValue* first = new qcValue(1.0f);
    first->next = new qcValue(kLong);
    first->next->next = new qcValue;
    first->next->next->setList(new qcValue("inner"));
    qcValue value;
    value.setList(first);
    return value;
}

struct World {
    World()
    {
        object.setName(kLong);
        object.setFullName(kLong, kLong);
        object.setProperty("first", qcValue(1.0f));
        object.setProperty("second", qcValue(kLong));
        source.setProperty("of the source", nested());
        qList::append(&list, &object);
    }
    ~World()
    {
        while (list)
            qList::deleteNode(&list, list, nullptr);
        if (bound)
            qcSim::unbindCallback(bound);
    }
    const qcValue& stored() const { return source.getPropertyValue(0); }
    std::string state()
    {
        char text[2000];
        object.toText(text, sizeof text);
        return std::string(object.getName()) + " " + text + " " + std::to_string(object.getTimestamp()) + " "
               + value.toText() + " " + std::to_string(qcSim::getNumBound()) + (list && list->getData() ? " list" : "")
               + (qList::iterator(nullptr, list) ? " of two" : "");
    }

    qcObject object, source;
    qcValue value = qcValue("a value");
    qList* list = nullptr;
    qcCallback* bound = nullptr;
};

struct Case {
    const char* operation;
    void (*run)(World&);
};

std::ostream& operator<<(std::ostream& out, const Case& each)
{
    return out << each.operation;
}

const Case cases[] = {
    {"a new property", [](World& w) { w.object.setProperty("third", w.stored()); }},
    {"a property in place of another", [](World& w) { w.object.setProperty("second", w.stored()); }},
    {"reading a property", [](World& w) { w.source.getProperty("of the source", &w.value); }},
    {"a name", [](World& w) { w.object.setName(kLonger); }},
    {"a full name", [](World& w) { w.object.setFullName(kLonger, kLonger); }},
    {"copying an object", [](World& w) { const qcObject copy(w.object); }},
    {"assigning an object", [](World& w) { w.object = w.source; }},
    {"a text", [](World& w) { w.value.set(kLong); }},
    {"assigning a list", [](World& w) { w.value = w.stored(); }},
    {"copying a value", [](World& w) { const qcValue copy(w.stored()); }},
    {"dupval and freeval", [](World& w) { freeval(dupval(w.stored().firstElement()->next->next)); }},
    {"a node of a list", [](World& w) { qList::append(&w.list, &w.source); }},
    {"an observer of an object", [](World& w) { (new qcRefObserver(&w.object, nullptr))->destroy(); }},
    {"a callback",
     [](World& w) {
         w.bound = qcSim::bindCallback(
             kLong, kLong, [](void*) { return 1; }, nullptr);
     }},
};

class HostOutOfMemory : public ::testing::TestWithParam<Case> {};

// Fails the n-th allocation. @return whether the operation came to it
bool tryOnce(const Case& each, long n)
{
    World world;
    const std::string before = world.state();
    CountedHeap::failAllocation(n);
    bool thrown = false;
    try {
        each.run(world);
    } catch (const std::bad_alloc&) {
        thrown = true;
    }
    const bool failed = CountedHeap::stopFailing();
    EXPECT_EQ(thrown, failed);
    if (failed) {
        EXPECT_EQ(world.state(), before);
        each.run(world);   // with memory
    }
    return failed;
}

TEST_P(HostOutOfMemory, IsThrownAndLeavesTheObjectAsItWas)
{
    tryOnce(GetParam(), 0);   // what is made once for the whole process
    const long alive = CountedHeap::liveBlocks();
    long n = 1;
    while (tryOnce(GetParam(), n)) {
        EXPECT_EQ(CountedHeap::liveBlocks(), alive) << "after failure " << n;
        ASSERT_FALSE(HasFailure()) << "at failure " << n;
        ++n;
    }
    EXPECT_GT(n, 1) << "it allocates nothing";
    RecordProperty("failures", static_cast<int>(n - 1));
}

INSTANTIATE_TEST_SUITE_P(EveryOperation, HostOutOfMemory, ::testing::ValuesIn(cases));

// An error that tells of missing memory must not need any.
TEST(OutOfMemoryMessages, AnErrorOfUsualLengthNeedsNone)
{
    FixedMessageLog log;
    CountedHeap::failAllocation(1);
    error("%s: %d", kLonger, 4711);
    EXPECT_FALSE(CountedHeap::stopFailing());
    EXPECT_EQ(log.take(), std::string(kLonger) + ": 4711\n");
}

TEST(OutOfMemoryMessages, ALongErrorIsWholeWithMemoryAndCutWithout)
{
    const std::string text(2000, 'x');
    FixedMessageLog log;
    error("%s", text.c_str());
    EXPECT_EQ(log.take(), text + "\n");
    CountedHeap::failAllocation(1);
    error("%s", text.c_str());
    EXPECT_TRUE(CountedHeap::stopFailing());
    EXPECT_EQ(log.take(), text.substr(0, 1023) + "\n");
}

TEST(OutOfMemoryMessages, WhatASinkCannotKeepGoesToStandardError)
{
    qcMessages::setSink([](qcMessageKind, const char*, void*) { throw std::bad_alloc(); }, nullptr);
    ::testing::internal::CaptureStderr();
    error("kept nowhere else");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "error: kept nowhere else\n");
    qcMessages::setSink(nullptr, nullptr);
}

// Observers are told without memory, so that a change is never half announced.
TEST(OutOfMemoryObservers, AreToldWithout)
{
    struct Counter : qcObserver {
        void update(updateProtocol) override { ++told; }
        int told = 0;
    };
    qcObject object;
    Counter counters[20];
    for (Counter& counter : counters)
        object.attach(&counter, qcChanged);
    CountedHeap::failAllocation(1);
    object.setTimestamp();
    EXPECT_FALSE(CountedHeap::stopFailing());
    for (Counter& counter : counters) {
        EXPECT_EQ(counter.told, 1);
        object.detach(&counter);
    }
}

// A step that lacks memory runs no callback, and the next one runs them all.
TEST(OutOfMemoryStep, RunsNoCallback)
{
    int calls = 0;
    qcCallback* bound = qcSim::bindCallback(
        "qc_simfunc", "test", [](void* data) { return ++*static_cast<int*>(data); }, &calls);
    CountedHeap::failAllocation(1);
    EXPECT_THROW(qcSim::step(1), std::bad_alloc);
    EXPECT_TRUE(CountedHeap::stopFailing());
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(qcSim::step(1), 1);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(qcSim::unbindCallback(bound), 1);
    EXPECT_EQ(qcSim::getNumBound(), 0);
}

}   // namespace
