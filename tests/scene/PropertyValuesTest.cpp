// Property values in files: every kind comes back as it was, bit for bit, and nothing else is taken.
#include "SceneSupport.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool same(const qcValue& a, const qcValue& b)
{
    if (a.kind != b.kind)
        return false;
    if (a.kind == qcValue::Float)
        return sameBits(a.payload.number, b.payload.number);
    if (a.kind == qcValue::String)
        return std::strcmp(a.payload.text, b.payload.text) == 0;
    if (a.kind == qcValue::Vector) {
        for (int i = 0; i < 3; ++i)
            if (!sameBits(a.payload.vector[i], b.payload.vector[i]))
                return false;
        return true;
    }
    const qcValue* x = a.firstElement();
    const qcValue* y = b.firstElement();
    for (; x && y; x = x->next, y = y->next)
        if (!same(*x, *y))
            return false;
    return !x && !y;
}

qcValue listOf(std::initializer_list<qcValue> elements)
{
    qcValue list;
    list.setList(nullptr);
    qcValue** link = &list.payload.first;
    for (const qcValue& element : elements) {
        *link = new qcValue(element);
        link = &(*link)->next;
    }
    return list;
}

qcValue vectorOf(float x, float y, float z)
{
    qcValue value;
    const qVector vector(x, y, z);
    value.set(&vector);
    return value;
}

qcValue nested(int depth)
{
    qcValue value = listOf({});
    for (int i = 1; i < depth; ++i)
        value = listOf({value});
    return value;
}

std::vector<qcValue> valuesOfEveryKind()
{
    std::vector<qcValue> values;
    for (const float number : {0.0f, -0.0f, 1.0f, 0.1f, -981.5f, FLT_MAX, -FLT_MAX, FLT_MIN, FLT_TRUE_MIN,
                               -3 * FLT_TRUE_MIN, FLT_EPSILON, 16777216.0f, kInfinity, -kInfinity, kNaN})
        values.emplace_back(number);
    for (const char* text : {"", " ", "Two Feet", "\"quoted\" \\ back", "two\nlines\tand\rmore\x01\x7f", "Zoë 力 😀",
                             "caf\xe9", "\xff\xfe", "cut \xe5\x8a", "nan"})
        values.emplace_back(text);
    values.push_back(vectorOf(1, -2.5f, 0.3f));
    values.push_back(vectorOf(-0.0f, kNaN, -kInfinity));
    values.emplace_back();
    values.push_back(listOf({}));
    values.push_back(listOf({qcValue(), listOf({}), listOf({qcValue(1.5f), qcValue("x")}), vectorOf(1, 2, 3)}));
    values.push_back(nested(100));
    return values;
}

class PropertyValues : public MessageTest {
protected:
    void SetUp() override
    {
        figure = readPosed(twoSegments());
        ASSERT_TRUE(figure);
    }
    std::unique_ptr<qcFigure> figure;
    TemporaryFolder folder;
};

TEST_F(PropertyValues, ComeBackFromAPosedFigure)
{
    for (const qcValue& value : valuesOfEveryKind()) {
        figure->setProperty("key \"1\"", value);
        const std::string text = qcFigureFile::posedText(*figure);
        const std::unique_ptr<qcFigure> again(qcFigureFile::readPosedText(text.c_str(), "again"));
        ASSERT_TRUE(again) << text;
        qcValue found;
        ASSERT_TRUE(again->getProperty("key \"1\"", &found));
        EXPECT_TRUE(same(found, value)) << value.toText() << " became " << found.toText();
    }
}

TEST_F(PropertyValues, ComeBackFromAScene)
{
    qcScene scene;
    qcHuman* human = scene.addPosedHuman(twoSegments().dump().c_str());
    ASSERT_TRUE(human);
    qcObject* const objects[] = {human,
                                 human->figure,
                                 human->figure->findSegment("arm"),
                                 human->figure->findSiteByFullName("pair.arm.grip"),
                                 human->figure->findJoint("right_shoulder"),
                                 &scene};
    const std::vector<qcValue> values = valuesOfEveryKind();
    for (qcObject* object : objects)
        for (std::size_t i = 0; i < values.size(); ++i)
            object->setProperty(("key" + std::to_string(i)).c_str(), values[i]);
    const std::string path = folder.file("values.json");
    ASSERT_TRUE(scene.save(path.c_str()));

    const auto opened = openScene(path);
    ASSERT_TRUE(opened);
    qcHuman* again = opened->findHuman("pair");
    ASSERT_TRUE(again);
    const qcObject* found[] = {again,
                               again->figure,
                               again->figure->findSegment("arm"),
                               again->figure->findSiteByFullName("pair.arm.grip"),
                               again->figure->findJoint("right_shoulder"),
                               opened.get()};
    for (const qcObject* object : found) {
        ASSERT_EQ(object->getNumProperties(), static_cast<int>(values.size()));
        for (std::size_t i = 0; i < values.size(); ++i) {
            qcValue value;
            ASSERT_TRUE(object->getProperty(("key" + std::to_string(i)).c_str(), &value));
            EXPECT_TRUE(same(value, values[i])) << values[i].toText() << " became " << value.toText();
        }
    }
}

TEST_F(PropertyValues, AreWrittenAsTheFormatSays)
{
    const std::pair<qcValue, const char*> cases[] = {
        {qcValue(0.5f), R"(["f", 0.5])"},
        {qcValue(-0.0f), R"(["f", -0.0])"},
        {qcValue(3.0f), R"(["f", 3])"},
        {qcValue(0.1f), R"(["f", 0.10000000149011612])"},
        {qcValue(kNaN), R"(["f", "nan"])"},
        {qcValue(-kInfinity), R"(["f", "-inf"])"},
        {qcValue("nan"), R"(["s", "nan"])"},
        {qcValue("caf\xe9"), R"(["x", "636166e9"])"},
        {vectorOf(0, kNaN, 1), R"(["v", [0, "nan", 1]])"},
        {qcValue(), R"(["e"])"},
        {listOf({qcValue("x"), qcValue()}), R"(["l", [["s", "x"], ["e"]]])"},
        {listOf({}), R"(["l", []])"}};
    for (const auto& [value, expected] : cases) {
        figure->setProperty("k", value);
        EXPECT_THAT(qcFigureFile::posedText(*figure), HasSubstr("[[[\"figure\"], {\"k\": " + std::string(expected)));
    }
}

TEST_F(PropertyValues, OfAnotherShapeAreRefused)
{
    const std::pair<const char*, const char*> cases[] = {
        {"5", ": expected a value: [\"f\", number]"},
        {"[]", ": expected a value: [\"f\", number]"},
        {"[5]", ": expected a value: [\"f\", number]"},
        {R"(["f"])", ": expected a value: [\"f\", number]"},
        {R"(["e", 1])", ": expected a value: [\"f\", number]"},
        {R"(["f", 1, 2])", ": expected a value: [\"f\", number]"},
        {R"(["q", 1])", "/0: expected the kind of a value: \"f\", \"s\", \"v\", \"l\" or \"e\", found \"q\"."},
        {R"(["", 1])", "/0: expected the kind of a value"},
        {R"(["f", "x"])", "/1: expected a number, \"nan\", \"inf\" or \"-inf\", found \"x\"."},
        {R"(["f", "NaN"])", "/1: expected a number, \"nan\", \"inf\" or \"-inf\", found \"NaN\"."},
        {R"(["f", 1e39])", "/1: expected a number of at most"},
        {R"(["f", 1e999])", "/1: expected a finite number, found 1e999."},
        {R"(["f", null])", "/1: expected a number, \"nan\", \"inf\" or \"-inf\", found null."},
        {R"(["s", 1])", "/1: expected a text, found 1."},
        {R"(["s", "a\u0000b"])", "/1: expected a text without a null character, found \"a\\x00b\"."},
        {R"(["v", [1, 2]])", "/1: expected an array of 3 numbers, found an array of 2 elements."},
        {R"(["v", [1, 2, "x"]])", "/1/2: expected a number, \"nan\", \"inf\" or \"-inf\", found \"x\"."},
        {R"(["l", 1])", "/1: expected an array of values, found 1."},
        {R"(["l", [["f", true]]])", "/1/0/1: expected a number"},
        {R"(["x", "0"])", "/1: expected bytes"},
        {R"(["x", "6100"])", "/1: expected bytes"},
        {"null", ": expected a value"}};
    for (const auto& [value, problem] : cases) {
        std::string text = twoSegments().dump();
        text.back() = ',';
        text += R"("properties": [[["figure"], {"k": )" + std::string(value) + "}]]}";
        EXPECT_FALSE(std::unique_ptr<qcFigure>(qcFigureFile::readPosedText(text.c_str(), "p")));
        const std::vector<std::string> messages = log.takeTexts();
        ASSERT_EQ(messages.size(), 1u) << value;
        EXPECT_THAT(messages[0], StartsWith("p: /properties/0/1/k" + std::string(problem)));
    }
}

TEST_F(PropertyValues, OfListsDeeperThanAHundredAreRefused)
{
    figure->setProperty("deep", nested(101));
    EXPECT_EQ(qcFigureFile::posedText(*figure), "");
    EXPECT_THAT(log.takeTexts(), ::testing::ElementsAre("figure pair cannot be written: pair: its property \"deep\" "
                                                        "cannot be saved: it nests lists deeper than 100 levels."));
    std::string value = "[\"e\"]";
    for (int i = 0; i < 101; ++i)
        value = "[\"l\",[" + value + "]]";
    std::string text = twoSegments().dump();
    text.back() = ',';
    text += R"("properties": [[["figure"], {"k": )" + value + "}]]}";
    EXPECT_FALSE(std::unique_ptr<qcFigure>(qcFigureFile::readPosedText(text.c_str(), "p")));
    const std::vector<std::string> messages = log.takeTexts();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_THAT(messages[0], HasSubstr(": lists are nested deeper than 100 levels."));
}

}   // namespace
