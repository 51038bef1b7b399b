// Lists: appending, looking for nodes, and taking them out at every place.
#include "qc/qList.h"

#include "Support.h"

#include <algorithm>
#include <random>

using ::testing::ElementsAre;

namespace {

int freed = 0;
int countFreed()
{
    ++freed;
    return 1;
}

// A list of whole numbers kept in the test, freed at its end.
class List : public ::testing::Test {
protected:
    ~List() override
    {
        while (list)
            qList::deleteNode(&list, list, nullptr);
    }

    int append(int i) { return qList::append(&list, &numbers[i]); }
    qList* node(int i) { return list->findNode(&numbers[i], nullptr); }
    int remove(int i) { return qList::deleteNode(&list, node(i), nullptr); }

    std::vector<int> content() const
    {
        std::vector<int> found;
        for (qList* n = qList::iterator(list, nullptr); n; n = qList::iterator(list, n))
            found.push_back(*static_cast<int*>(n->getData()));
        return found;
    }

    int numbers[8] = {0, 1, 2, 3, 4, 5, 6, 7};
    qList* list = nullptr;
};

int compareNumbers(int* data, void* key)
{
    return *data - *static_cast<int*>(key);
}

int neverEqual(int*, void*)
{
    return -1;
}

// Callers may ask a null list. The sanitizer would stop at the call itself, which is what is wanted here.
__attribute__((no_sanitize("null"), noinline)) qList* findIn(qList* list, void* key, int (*compare)(int*, void*))
{
    qList* volatile asked = list;   // the compiler is not to see that it is null
    return asked->findNode(key, compare);
}

}   // namespace

TEST_F(List, AppendsAtTheEndAndReturnsOne)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(append(i), 1);
    EXPECT_THAT(content(), ElementsAre(0, 1, 2, 3));
}

TEST_F(List, KeepsTheHeadWhileAppending)
{
    append(0);
    qList* head = list;
    append(1);
    EXPECT_EQ(list, head);
    EXPECT_EQ(list->getData(), &numbers[0]);
}

TEST_F(List, HoldsTheSameDataTwiceAndNullData)
{
    append(1);
    append(1);
    EXPECT_THAT(content(), ElementsAre(1, 1));
    qList::append(&list, nullptr);
    qList* third = list->findNode(nullptr, nullptr);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(third->getData(), nullptr);
    EXPECT_EQ(qList::iterator(list, third), nullptr);
}

TEST_F(List, IteratorStartsAtTheFirstAndEndsAfterTheLast)
{
    EXPECT_EQ(qList::iterator(nullptr, nullptr), nullptr);
    append(0);
    append(1);
    qList* first = qList::iterator(list, nullptr);
    EXPECT_EQ(first, list);
    qList* second = qList::iterator(list, first);
    EXPECT_EQ(second->getData(), &numbers[1]);
    EXPECT_EQ(qList::iterator(list, second), nullptr);
}

TEST_F(List, FindsDataByItsPointerWithoutAComparison)
{
    append(3);
    append(4);
    int equalButElsewhere = 4;
    EXPECT_EQ(list->findNode(&numbers[4], nullptr)->getData(), &numbers[4]);
    EXPECT_EQ(list->findNode(&equalButElsewhere, nullptr), nullptr);
}

TEST_F(List, FindsTheFirstForWhichTheComparisonGivesZero)
{
    int anotherFour = 4;
    append(3);
    append(4);
    qList::append(&list, &anotherFour);
    int key = 4;
    qList* found = list->findNode(&key, compareNumbers);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->getData(), &numbers[4]);
    key = 5;
    EXPECT_EQ(list->findNode(&key, compareNumbers), nullptr);
    EXPECT_EQ(list->findNode(&numbers[3], neverEqual), nullptr);   // the comparison decides, not the pointer
}

TEST_F(List, NothingIsFoundInANullList)
{
    int key = 0;
    EXPECT_EQ(findIn(nullptr, &key, nullptr), nullptr);
    EXPECT_EQ(findIn(nullptr, &key, compareNumbers), nullptr);
    EXPECT_EQ(findIn(nullptr, nullptr, nullptr), nullptr);
}

TEST_F(List, TakesOutTheFirstNode)
{
    for (int i = 0; i < 3; ++i)
        append(i);
    EXPECT_EQ(remove(0), 1);
    EXPECT_THAT(content(), ElementsAre(1, 2));
    append(5);
    EXPECT_THAT(content(), ElementsAre(1, 2, 5));
}

TEST_F(List, TakesOutAMiddleNode)
{
    for (int i = 0; i < 3; ++i)
        append(i);
    EXPECT_EQ(remove(1), 1);
    EXPECT_THAT(content(), ElementsAre(0, 2));
    append(5);
    EXPECT_THAT(content(), ElementsAre(0, 2, 5));
}

TEST_F(List, TakesOutTheLastNode)
{
    for (int i = 0; i < 3; ++i)
        append(i);
    EXPECT_EQ(remove(2), 1);
    EXPECT_THAT(content(), ElementsAre(0, 1));
    append(5);
    EXPECT_THAT(content(), ElementsAre(0, 1, 5));
}

TEST_F(List, TakesOutTheOnlyNodeAndStartsAnew)
{
    append(0);
    EXPECT_EQ(remove(0), 1);
    EXPECT_EQ(list, nullptr);
    append(1);
    append(2);
    EXPECT_THAT(content(), ElementsAre(1, 2));
}

TEST_F(List, ANodeThatItDoesNotHoldChangesNothing)
{
    append(0);
    append(1);
    qList* other = nullptr;
    qList::append(&other, &numbers[0]);
    freed = 0;
    EXPECT_EQ(qList::deleteNode(&list, other, countFreed), 0);
    EXPECT_EQ(qList::deleteNode(&list, nullptr, countFreed), 0);
    EXPECT_EQ(freed, 0);
    EXPECT_THAT(content(), ElementsAre(0, 1));
    EXPECT_EQ(other->getData(), &numbers[0]);

    qList* none = nullptr;
    EXPECT_EQ(qList::deleteNode(&none, other, nullptr), 0);
    EXPECT_EQ(qList::deleteNode(&other, other, nullptr), 1);
}

TEST_F(List, FreesTheDataOnceThroughTheGivenFunction)
{
    append(0);
    append(1);
    freed = 0;
    EXPECT_EQ(qList::deleteNode(&list, node(1), countFreed), 1);
    EXPECT_EQ(freed, 1);
    EXPECT_THAT(content(), ElementsAre(0));
}

TEST_F(List, LeavesTheDataAloneWithoutAFunction)
{
    append(6);
    remove(6);
    EXPECT_EQ(numbers[6], 6);
}

// Against a vector that gets the same operations. The end that the list remembers is what could go wrong.
TEST_F(List, FollowsAVectorThroughAnyOrderOfChanges)
{
    std::mt19937 random(20240611);
    std::vector<int> model;
    for (int round = 0; round < 20000; ++round) {
        const int number = static_cast<int>(random() % 8);
        const auto place = std::find(model.begin(), model.end(), number);
        if (place == model.end()) {
            append(number);
            model.push_back(number);
        } else {
            ASSERT_EQ(remove(number), 1);
            model.erase(place);
        }
        ASSERT_EQ(content(), model) << "round " << round;
    }
}
