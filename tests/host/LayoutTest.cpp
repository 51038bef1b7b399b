// Layout: what callers that were compiled apart from this library rely on in memory.
#include "qc/qMatrix.h"
#include "qc/qcAnthroScale.h"
#include "qc/qcObject.h"
#include "qc/qcObserver.h"
#include "qc/qcValue.h"

#include "Support.h"

#include <cstddef>
#include <new>

// Linux on x86-64 and arm64: an object begins with the pointer to its table of virtual operations, the
// destructor takes two entries (complete, deleting), and `this` is passed as a first argument.

namespace {

std::string reached;

struct Probe : qcObject {
    ~Probe() override { reached += "destructor "; }
    static void operator delete(void* memory)
    {
        reached += "delete ";
        ::operator delete(memory);
    }

    void attach(qcObserver*, updateProtocol) override { reached = "attach"; }
    void detach(qcObserver*) override { reached = "detach"; }
    void notify(updateProtocol) override { reached = "notify"; }
    int invalid() override { return set("invalid"); }
    int setName(const char*) override { return set("setName"); }
    int toText(char*, int) override { return set("toText"); }
    void setTimestamp(long) override { reached = "setTimestamp(long)"; }
    void setTimestamp() override { reached = "setTimestamp()"; }
    int sprint(char**) override { return set("sprint"); }
    int searchProperty(const char*, qcValue*) override { return set("searchProperty"); }

    static int set(const char* what)
    {
        reached = what;
        return 4711;
    }
};

struct ProbeObserver : qcRefObserver {
    ProbeObserver() : qcRefObserver(nullptr, nullptr) {}
    ~ProbeObserver() override { reached += "destructor "; }
    static void operator delete(void* memory)
    {
        reached += "delete ";
        ::operator delete(memory);
    }
    void update(updateProtocol) override { reached = "update"; }
};

struct ProbeScale : qcAnthroScale {
    ProbeScale() : qcAnthroScale(nullptr) {}
    void applyScale() override { reached = "applyScale"; }
};

#ifdef __clang__
#define ANY_FUNCTION_TYPE __attribute__((no_sanitize("function")))   // a table entry has no type to check
#else
#define ANY_FUNCTION_TYPE
#endif

// Calls entry `slot` of the object's table.
template <class Result, class... Arguments>
ANY_FUNCTION_TYPE Result callSlot(void* object, int slot, Arguments... arguments)
{
    void** table = *static_cast<void***>(object);
    return reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot])(object, arguments...);
}

}   // namespace

TEST(Layout, AValueIsKindCodeThenPayloadThenLink)
{
    EXPECT_EQ(offsetof(qcValue, kind), 0u);
    EXPECT_EQ(sizeof(qcValue::kind), 4u);
    EXPECT_EQ(offsetof(qcValue, payload), sizeof(void*));
    EXPECT_EQ(offsetof(qcValue, next), offsetof(qcValue, payload) + 16);   // three floats, aligned for a pointer
    EXPECT_EQ(sizeof(qcValue), offsetof(qcValue, next) + sizeof(void*));
}

TEST(Layout, TheKindCodeAndPayloadAreReadFromRawMemory)
{
    qcValue text("abc"), list;
    qcValue* element = new qcValue(1.0f);
    list.setList(element);
    EXPECT_EQ(*reinterpret_cast<const std::int32_t*>(&text), 7);
    EXPECT_EQ(*reinterpret_cast<const std::int32_t*>(&list), 9);
    EXPECT_STREQ(*reinterpret_cast<char**>(reinterpret_cast<char*>(&text) + 8), "abc");
    EXPECT_EQ(*reinterpret_cast<qcValue**>(reinterpret_cast<char*>(&list) + 8), element);
}

TEST(Layout, AVectorIsThreeFloatsAndATransformFourRowsOfFour)
{
    qVector vector(1, 2, 3);
    EXPECT_EQ(sizeof vector, 3 * sizeof(float));
    EXPECT_EQ(&vector[1], &vector[0] + 1);
    EXPECT_EQ(&vector[2], &vector[0] + 2);
    EXPECT_EQ(static_cast<void*>(&vector), &vector[0]);
    EXPECT_EQ(sizeof(qMatrix), 16 * sizeof(float));
    EXPECT_EQ(offsetof(qMatrix, m), 0u);
}

TEST(Layout, VirtualOperationsOfAnObjectComeInTheirOrder)
{
    Probe probe;
    void* object = &probe;
    callSlot<void, qcObserver*, updateProtocol>(object, 2, nullptr, qcChanged);
    EXPECT_EQ(reached, "attach");
    callSlot<void, qcObserver*>(object, 3, nullptr);
    EXPECT_EQ(reached, "detach");
    callSlot<void, updateProtocol>(object, 4, qcChanged);
    EXPECT_EQ(reached, "notify");
    EXPECT_EQ((callSlot<int>(object, 5)), 4711);
    EXPECT_EQ(reached, "invalid");
    EXPECT_EQ((callSlot<int, const char*>(object, 6, "name")), 4711);
    EXPECT_EQ(reached, "setName");
    EXPECT_EQ((callSlot<int, char*, int>(object, 7, nullptr, 0)), 4711);
    EXPECT_EQ(reached, "toText");
    callSlot<void, long>(object, 8, 5L);
    EXPECT_EQ(reached, "setTimestamp(long)");
    callSlot<void>(object, 9);
    EXPECT_EQ(reached, "setTimestamp()");
    EXPECT_EQ((callSlot<int, char**>(object, 10, nullptr)), 4711);
    EXPECT_EQ(reached, "sprint");
    EXPECT_EQ((callSlot<int, const char*, qcValue*>(object, 11, "key", nullptr)), 4711);
    EXPECT_EQ(reached, "searchProperty");
}

TEST(Layout, AnObjectsDestructorComesFirst)
{
    alignas(Probe) char memory[sizeof(Probe)];
    reached.clear();
    callSlot<void>(::new (memory) Probe, 0);
    EXPECT_EQ(reached, "destructor ");

    reached.clear();
    callSlot<void>(::new Probe, 1);
    EXPECT_EQ(reached, "destructor delete ");
}

TEST(Layout, AnObserversUpdateComesBeforeItsDestructor)
{
    alignas(ProbeObserver) char memory[sizeof(ProbeObserver)];
    ProbeObserver* placed = ::new (memory) ProbeObserver;
    callSlot<void, updateProtocol>(placed, 0, qcChanged);
    EXPECT_EQ(reached, "update");
    reached.clear();
    callSlot<void>(placed, 1);
    EXPECT_EQ(reached, "destructor ");

    reached.clear();
    callSlot<void>(::new ProbeObserver, 2);
    EXPECT_EQ(reached, "destructor delete ");
}

TEST(Layout, ApplyScaleIsTheFirstOperationOfAScale)
{
    ProbeScale scale;
    reached.clear();
    callSlot<void>(&scale, 0);
    EXPECT_EQ(reached, "applyScale");
}
