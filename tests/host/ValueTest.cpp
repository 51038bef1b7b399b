// Values: kinds, ownership, deep copies, chains and lists, texts.
#include "qc/qcValue.h"

#include "Support.h"

#include <limits>
#include <memory>

using ::testing::ElementsAre;

namespace {

struct Destroy {
    void operator()(qcValue* value) const { qcValue::destroy(value); }
};
using OwnedValue = std::unique_ptr<qcValue, Destroy>;

qcValue* newVector(float x, float y, float z)
{
    qcValue* value = new qcValue;
    const qVector vector(x, y, z);
    value->set(&vector);
    return value;
}

// A list made as callers make it: kind code, payload and links are theirs to write.
qcValue* newList(std::initializer_list<qcValue*> elements)
{
    qcValue* list = new qcValue;
    list->kind = 9;
    list->payload.first = nullptr;
    qcValue** link = &list->payload.first;
    for (qcValue* element : elements) {
        *link = element;
        link = &element->next;
    }
    return list;
}

// (2.5 "text" (1 2 3) ("inner") ())
qcValue* newSample()
{
    return newList(
        {new qcValue(2.5f), new qcValue("text"), newVector(1, 2, 3), newList({new qcValue("inner")}), new qcValue});
}

const char* const kSampleText = R"((2.5 "text" (1 2 3) ("inner") ()))";

qcValue* newNest(int depth)
{
    qcValue* value = new qcValue("innermost");
    for (int i = 0; i < depth; ++i)
        value = newList({value});
    return value;
}

std::string textOf(const qcValue& value)
{
    char* text = nullptr;
    return value.get(text) ? text : "no text";
}

// Which of the three reads succeed; each that fails must leave its output as it was.
std::string readableAs(const qcValue& value)
{
    std::string kinds;
    float number = -77;
    char untouched[] = "untouched";
    char* text = untouched;
    qVector vector(-7, -8, -9);
    qVector* vectorPointer = &vector;

    if (value.get(number))
        kinds += "float ";
    else
        EXPECT_EQ(number, -77);
    if (value.get(text))
        kinds += "text ";
    else
        EXPECT_EQ(text, untouched);
    if (value.get(vectorPointer))
        kinds += "vector ";
    else
        EXPECT_THAT(components(vector), ElementsAre(-7, -8, -9));
    EXPECT_EQ(vectorPointer, &vector);
    return kinds;
}

}   // namespace

TEST(Value, IsReadOnlyAsWhatItIs)
{
    const OwnedValue vector(newVector(1, 2, 3)), list(newSample()), emptyList(newList({}));
    EXPECT_EQ(readableAs(qcValue()), "");
    EXPECT_EQ(readableAs(qcValue(1.5f)), "float ");
    EXPECT_EQ(readableAs(qcValue("a")), "text ");
    EXPECT_EQ(readableAs(*vector), "vector ");
    EXPECT_EQ(readableAs(*list), "");
    EXPECT_EQ(readableAs(*emptyList), "");
}

TEST(Value, TextsHaveKindSevenAndListsKindNine)
{
    qcValue list;
    list.setList(nullptr);
    EXPECT_EQ(qcValue("a").kind, 7);
    EXPECT_EQ(list.kind, 9);
    EXPECT_NE(qcValue().kind, 7);
    EXPECT_NE(qcValue().kind, 9);
}

TEST(Value, FloatsComeBackToTheBit)
{
    for (const float number : {0.1f, -0.0f, 1e-45f, std::numeric_limits<float>::max()}) {
        float read = 1;
        EXPECT_EQ(qcValue(number).get(read), 1);
        EXPECT_EQ(read, number);
        EXPECT_EQ(std::signbit(read), std::signbit(number));
    }
}

TEST(Value, TextIsCopiedIn)
{
    char buffer[] = "before";
    qcValue value(buffer);
    buffer[0] = 'X';
    EXPECT_EQ(textOf(value), "before");

    value.set(buffer);
    buffer[0] = 'Y';
    EXPECT_EQ(textOf(value), "Xefore");
}

TEST(Value, TextReadIsTheValuesOwn)
{
    qcValue value("own");
    char *first = nullptr, *second = nullptr;
    value.get(first);
    value.get(second);
    EXPECT_EQ(first, second);
}

TEST(Value, TextsOfAnyLengthComeBackWhole)
{
    for (const std::size_t length : {0u, 1u, 14u, 15u, 16u, 17u, 62u, 63u, 64u, 65u, 100000u}) {
        const std::string text(length, 'x');
        qcValue value(text.c_str());
        const qcValue copy(value);
        value.set("other");
        EXPECT_EQ(textOf(copy), text);
        EXPECT_EQ(textOf(value), "other");
    }
}

TEST(Value, NullTextIsTheEmptyText)
{
    EXPECT_EQ(textOf(qcValue(static_cast<const char*>(nullptr))), "");
}

TEST(Value, VectorIsCopiedInAndWrittenToTheCallersOwn)
{
    qVector source(1, 2, 3);
    qcValue value;
    value.set(&source);
    source.set(0, 0, 0);

    qVector own;
    qVector* pointer = &own;
    EXPECT_EQ(value.get(pointer), 1);
    EXPECT_EQ(pointer, &own);
    own[0] = 99;   // the value keeps its own

    qVector again;
    pointer = &again;
    value.get(pointer);
    EXPECT_THAT(components(again), ElementsAre(1, 2, 3));
}

TEST(Value, SetReplacesAnyKindByAnyOther)
{
    const qVector vector(1, 2, 3);
    for (int from = 0; from < 5; ++from) {
        const auto start = [&] {
            OwnedValue value(from == 4 ? newSample() : new qcValue);
            if (from == 1)
                value->set(1.0f);
            if (from == 2)
                value->set("text");
            if (from == 3)
                value->set(&vector);
            return value;
        };
        const OwnedValue number = start(), text = start(), place = start(), list = start();
        number->set(2.0f);
        text->set("new");
        place->set(&vector);
        list->setList(new qcValue("element"));
        EXPECT_EQ(readableAs(*number), "float ");
        EXPECT_EQ(readableAs(*text), "text ");
        EXPECT_EQ(readableAs(*place), "vector ");
        EXPECT_STREQ(list->toText(), R"(("element"))");
    }
}

TEST(Value, SetFromItsOwnTextOrVectorKeepsIt)
{
    qcValue text("abcdef");
    char* own = nullptr;
    text.get(own);
    text.set(own + 2);
    EXPECT_EQ(textOf(text), "cdef");

    const OwnedValue vector(newVector(1, 2, 3));
    vector->set(&vector->payload.vector);
    EXPECT_STREQ(vector->toText(), "(1 2 3)");
}

TEST(Value, CopyFromAPointerIsDeep)
{
    OwnedValue original(newSample());
    const qcValue copy(original.get());
    original->payload.first->set(99.0f);
    original->payload.first->next->set("changed");
    original.reset();
    EXPECT_STREQ(copy.toText(), kSampleText);
}

TEST(Value, CopyOfANullPointerIsEmpty)
{
    EXPECT_STREQ(qcValue(static_cast<qcValue*>(nullptr)).toText(), "()");
}

TEST(Value, CopiesShareNoElement)
{
    const OwnedValue original(newSample());
    const qcValue copy(*original);
    const qcValue* b = copy.firstElement();
    for (const qcValue* a = original->firstElement(); a; a = a->next, b = b->next) {
        ASSERT_NE(b, nullptr);
        EXPECT_NE(a, b);
    }
    EXPECT_EQ(b, nullptr);
}

TEST(Value, CopiesHaveNoNextLink)
{
    const OwnedValue list(newList({new qcValue("a"), new qcValue("b")}));
    qcValue* first = list->firstElement();
    ASSERT_NE(first->next, nullptr);

    const qcValue byReference(*first), byPointer(first);
    qcValue* duplicate = dupval(first);
    EXPECT_EQ(byReference.next, nullptr);
    EXPECT_EQ(byPointer.next, nullptr);
    EXPECT_EQ(duplicate->next, nullptr);
    freeval(duplicate);

    const qcValue taken(std::move(*first));
    EXPECT_EQ(taken.next, nullptr);
    EXPECT_STREQ(list->toText(), R"((() "b"))");   // what was taken leaves an empty value in its place
}

TEST(Value, AssignmentKeepsItsOwnNextLink)
{
    const OwnedValue list(newList({new qcValue("a"), new qcValue("b")}));
    const OwnedValue sample(newSample());
    *list->firstElement() = *sample;
    EXPECT_EQ(list->toText(), "(" + std::string(kSampleText) + " \"b\")");
    *list->firstElement() = qcValue(1.0f);
    EXPECT_STREQ(list->toText(), "(1 \"b\")");
    list->firstElement()->set("c");
    EXPECT_STREQ(list->toText(), R"(("c" "b"))");
    list->firstElement()->clear();
    EXPECT_STREQ(list->toText(), R"((() "b"))");
}

TEST(Value, AssignmentToItselfChangesNothing)
{
    OwnedValue value(newSample());
    qcValue& same = *value;
    *value = same;
    EXPECT_STREQ(value->toText(), kSampleText);
    *value = std::move(same);
    EXPECT_STREQ(value->toText(), kSampleText);

    qcValue text("text");
    const qcValue& sameText = text;
    text = sameText;
    EXPECT_EQ(textOf(text), "text");
}

// The element lies in what the assignment frees.
TEST(Value, TakesTheContentOfItsOwnElement)
{
    const char* const expected[] = {"2.5", "\"text\"", "(1 2 3)", "(\"inner\")", "()"};
    for (int n = 0; n < 5; ++n)
        for (const bool moves : {false, true}) {
            const OwnedValue value(newSample());
            qcValue* element = value->firstElement();
            for (int i = 0; i < n; ++i)
                element = element->next;
            if (moves)
                *value = std::move(*element);
            else
                *value = *element;
            EXPECT_STREQ(value->toText(), expected[n]) << n << (moves ? " moved" : " copied");
        }
}

TEST(Value, AnElementTakesACopyOfItsOwnList)
{
    const OwnedValue list(newList({new qcValue("a"), new qcValue("b")}));
    *list->firstElement() = *list;
    EXPECT_STREQ(list->toText(), R"((("a" "b") "b"))");
}

TEST(Value, DestroyFreesOneValueAndLeavesWhatItLinksTo)
{
    qcValue* second = new qcValue("second");
    qcValue* first = new qcValue("first");
    first->next = second;
    qcValue::destroy(first);
    EXPECT_EQ(textOf(*second), "second");
    qcValue::destroy(second);
    qcValue::destroy(nullptr);
}

TEST(Value, DupvalIsADeepCopyWithTheWholeChainOfElements)
{
    OwnedValue original(newSample());
    qcValue* duplicate = dupval(original.get());
    ASSERT_NE(duplicate, nullptr);
    original.reset();
    EXPECT_STREQ(duplicate->toText(), kSampleText);
    freeval(duplicate);
    EXPECT_EQ(dupval(nullptr), nullptr);
}

// Nothing to compare: the leak checkers tell whether the chain went as a whole.
TEST(Value, FreevalFreesTheChainThatAValueLinksTo)
{
    const qcValue text("text");
    qcValue* first = dupval(&text);
    first->next = newSample();
    first->next->next = dupval(&text);
    EXPECT_EQ(textOf(*first->next->next), "text");
    freeval(first);
    freeval(nullptr);
}

TEST(Value, FirstElementIsNullForWhatIsNoList)
{
    const OwnedValue vector(newVector(1, 2, 3)), list(newList({}));
    EXPECT_EQ(qcValue().firstElement(), nullptr);
    EXPECT_EQ(qcValue(1.0f).firstElement(), nullptr);
    EXPECT_EQ(qcValue("a").firstElement(), nullptr);
    EXPECT_EQ(vector->firstElement(), nullptr);
    EXPECT_EQ(list->firstElement(), nullptr);
}

TEST(Value, ListsNestedDeeplyAreFreedWithoutDeepRecursion)
{
    constexpr int kDepth = 100000;
    qcValue::destroy(newNest(kDepth));
    freeval(newNest(kDepth));

    const OwnedValue replaced(newNest(kDepth));
    replaced->set("flat");
    EXPECT_EQ(textOf(*replaced), "flat");

    const OwnedValue wide(newList({newNest(kDepth), newNest(kDepth)}));
    qcValue* innermost = wide->firstElement();
    while (innermost->kind == qcValue::List)
        innermost = innermost->firstElement();
    *wide = *innermost;
    EXPECT_EQ(textOf(*wide), "innermost");
}

TEST(Value, LongListsAreCopiedAndFreedWhole)
{
    constexpr int kElements = 200000;
    qcValue list;
    qcValue* first = nullptr;
    for (int i = kElements; i > 0; --i) {
        qcValue* element = new qcValue(static_cast<float>(i));
        element->next = first;
        first = element;
    }
    list.setList(first);
    const qcValue copy(list);
    list.clear();
    int count = 0;
    for (const qcValue* element = copy.firstElement(); element; element = element->next) {
        float number = 0;
        ASSERT_EQ(element->get(number), 1);
        ASSERT_EQ(number, static_cast<float>(++count));
    }
    EXPECT_EQ(count, kElements);
}

TEST(Value, MovingLeavesAnEmptyValue)
{
    qcValue text("text");
    const qcValue taken(std::move(text));
    EXPECT_EQ(textOf(taken), "text");
    EXPECT_STREQ(text.toText(), "()");   // NOLINT(bugprone-use-after-move): what it then is, is what is tested
    text.set("again");
    EXPECT_EQ(textOf(text), "again");
    EXPECT_EQ(textOf(taken), "text");
}

TEST(Value, PrintsEveryKind)
{
    const OwnedValue sample(newSample()), emptyList(newList({})), vector(newVector(-1, 0.5f, 1e10f));
    EXPECT_STREQ(qcValue().toText(), "()");
    EXPECT_STREQ(emptyList->toText(), "()");
    EXPECT_STREQ(qcValue(0.1f).toText(), "0.1");
    EXPECT_STREQ(qcValue(-3.0f).toText(), "-3");
    EXPECT_STREQ(qcValue("a b").toText(), "\"a b\"");
    EXPECT_STREQ(vector->toText(), "(-1 0.5 1e+10)");
    EXPECT_STREQ(sample->toText(), kSampleText);
}
