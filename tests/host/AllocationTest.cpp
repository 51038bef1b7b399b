// Allocation: storing a result where one is stored already takes no memory from the heap. Not built under
// the address sanitizer, where every value is the heap's own.
#include "qc/qcObject.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

int allocations = 0;

}   // namespace

// Every allocation of this program and of the libraries that it loads comes through here. Valgrind puts
// its own in this place unless it is told --soname-synonyms=somalloc=nouserintercepts.
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

// A list of two vectors, as every joint carries one, stored and read back.
void storeAndRead(qcObject& object, float x)
{
    const qVector force(x, 2, 3), moment(4, 5, 6);
    qcValue* first = new qcValue;
    first->set(&force);
    first->next = new qcValue;
    first->next->set(&moment);
    qcValue* list = new qcValue;
    list->setList(first);
    object.setProperty("SSTR_Force_Moment", *list);
    qcValue::destroy(list);

    qcValue read;
    object.getProperty("SSTR_Force_Moment", &read);
    qVector back;
    qVector* pointer = &back;
    ASSERT_EQ(read.firstElement()->get(pointer), 1);
    ASSERT_EQ(back[0], x);
}

}   // namespace

TEST(Allocation, TheCounterSeesTheHostsOwnAllocations)
{
    qcObject object;
    const int before = allocations;
    object.setName("a name that is too long to be kept inside a string object");
    EXPECT_GT(allocations, before);
}

TEST(Allocation, AResultStoredAgainIsReadBack)
{
    qcObject object;
    for (int i = 0; i < 3; ++i)
        storeAndRead(object, static_cast<float>(i));
}

TEST(Allocation, StoringAResultAgainTakesNoneFromTheHeap)
{
    qcObject object;
    for (int i = 0; i < 3; ++i)
        storeAndRead(object, static_cast<float>(i));
    const int before = allocations;
    for (int i = 0; i < 1000; ++i)
        storeAndRead(object, static_cast<float>(i));
    EXPECT_EQ(allocations, before);
}
