// Hand load fuzzer: whatever other tools wrote on the figure for its hands.
//
// Each of the four properties is missing, of another kind or an arbitrary text. The load read is compared with
// a scan of its own, and the result at the waist with the sum of both hands.
#include "AnalysedHuman.h"
#include "Check.h"
#include "SmallFigure.h"

#include "HandLoads.h"
#include "qmStaticStrength.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>

namespace {

constexpr const char* kLoadKeys[] = {"RightZelHandLoads", "LeftZelHandLoads"};
constexpr const char* kLocalKeys[] = {"RightZelHandLoadsLocal", "LeftZelHandLoadsLocal"};

bool isSpace(char c)
{
    return c != '\0' && std::strchr(" \t\n\v\f\r", c);
}
bool isDigit(char c, int base)
{
    const char lower = static_cast<char>(c | 0x20);
    return (c >= '0' && c <= '9') || (base == 16 && lower >= 'a' && lower <= 'f');
}

// How many letters of a word a text begins with, whatever their case.
std::size_t lettersOf(const char* word, const char* text)
{
    std::size_t n = 0;
    while (word[n] && (text[n] | 0x20) == word[n])
        ++n;
    return n;
}

/// A number at the beginning of a text.
struct Number {
    enum Kind { kNone, kRead, kUnclear } kind;   // unclear: how C libraries read it differs ("1e", "0x", "nan(")
    float value;
    const char* end;
};

constexpr Number kNoNumber = {Number::kNone, 0, nullptr};
constexpr Number kUnclearNumber = {Number::kUnclear, 0, nullptr};

// The longest beginning of a text that is a floating-point number as C writes them.
Number readNumber(const char* text)
{
    while (isSpace(*text))
        ++text;
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    const float sign = negative ? -1.0f : 1.0f;

    if (const std::size_t n = lettersOf("infinity", text); n >= 3)
        return n == 3 || n == 8 ? Number{Number::kRead, sign * HUGE_VALF, text + n} : kUnclearNumber;
    if (lettersOf("nan", text) == 3)
        return text[3] == '(' ? kUnclearNumber : Number{Number::kRead, NAN, text + 3};

    const int base = text[0] == '0' && (text[1] | 0x20) == 'x' ? 16 : 10;
    const char* begin = base == 16 ? text + 2 : text;
    const char* end = begin;
    bool point = false, digits = false;
    for (; isDigit(*end, base) || (*end == '.' && !point); ++end)
        (*end == '.' ? point : digits) = true;
    if (!digits)
        return base == 16 ? kUnclearNumber : kNoNumber;
    if ((*end | 0x20) == (base == 16 ? 'p' : 'e')) {
        ++end;
        if (*end == '-' || *end == '+')
            ++end;
        if (!isDigit(*end, 10))
            return kUnclearNumber;
        while (isDigit(*end, 10))
            ++end;
    }

    float value;
    const auto read =
        std::from_chars(begin, end, value, base == 16 ? std::chars_format::hex : std::chars_format::general);
    if (read.ec == std::errc::result_out_of_range)
        return kUnclearNumber;   // too large or too small: the test of the module has these
    check(read.ec == std::errc() && read.ptr == end, "the fuzzer's own scan finds the whole number");
    return {Number::kRead, sign * value, end};
}

// The load that a text means; nothing where that is unclear.
std::optional<qVector> meantLoad(const std::string* text)
{
    float numbers[3] = {7777, 0, 0};
    int count = 0;
    const char* at = text ? text->c_str() : "";
    for (; count < 3; ++count) {
        const Number number = readNumber(at);
        if (number.kind == Number::kUnclear)
            return {};
        if (number.kind == Number::kNone)
            break;
        numbers[count] = number.value;
        at = number.end;
    }
    return count == 1 ? qVector(0, numbers[0], 0) : qVector(numbers[0], numbers[1], numbers[2]);
}

// The integer that a text begins with, 0 without one; nothing where it is none of an int.
std::optional<int> meantFlag(const std::string* text)
{
    const char* at = text ? text->c_str() : "";
    while (isSpace(*at))
        ++at;
    if (*at == '+' && at[1] != '-')
        ++at;
    int value = 0;
    if (std::from_chars(at, at + std::strlen(at), value).ec == std::errc::result_out_of_range)
        return {};
    return value;
}

bool same(float a, float b)
{
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}
bool same(const qVector& a, const qVector& b)
{
    return same(a[0], b[0]) && same(a[1], b[1]) && same(a[2], b[2]);
}

/// A property: missing, a text, or a value of another kind, which counts as missing.
class Property {
public:
    Property(FuzzedDataProvider& data, qcFigure* figure, const char* key)
    {
        switch (data.ConsumeIntegralInRange(0, 7)) {
        case 0:
            return;
        case 1:
            figure->setProperty(key, qcValue());
            return;
        case 2:
            figure->setProperty(key, qcValue(data.ConsumeFloatingPoint<float>()));
            return;
        case 3: {
            qcValue list;
            list.setList(new qcValue("1 2 3"));
            figure->setProperty(key, list);
            return;
        }
        default:
            content = data.ConsumeRandomLengthString(200).c_str();   // up to a NUL
            figure->setProperty(key, qcValue(content->c_str()));
        }
    }
    const std::string* text() const { return content ? &*content : nullptr; }

private:
    std::optional<std::string> content;
};

// A pelvis and a torso without weight, both palms at the waist. The right palm's x, y and z point along the world's
// y, z and x.
AnalysedHuman& weightlessHuman()
{
    static AnalysedHuman human(SmallFigure()
                                   .segment("pelvis", 0)
                                   .site("pelvis", "top", {0, 0, 0})
                                   .segment("torso", 0)
                                   .site("torso", "bottom", {0, 0, 0})
                                   .site("torso", "right_palmcenter", {0, 0, 0}, {{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}})
                                   .site("torso", "left_palmcenter", {0, 0, 0})
                                   .joint("waist", "pelvis.top", "torso.bottom")
                                   .pelvisSite("pelvis.top")
                                   .waist("waist")
                                   .text());
    return human;
}

// The waist carries what the hands carry; not more than 0.01 kgf is nothing.
void checkWaist(AnalysedHuman& human)
{
    qVector sum;
    for (const qcSide hand : {qcRight, qcLeft}) {
        const qVector load = readHandLoad(human.figure(), hand);
        const bool turned = hand == qcRight && readHandLoadLocal(human.figure(), hand) != 0;
        if (load[0] != 7777)
            sum.add(turned ? qVector(load[2], load[0], load[1]) : load);
    }
    qmStaticStrength analysis(human.human());
    analysis.setStrategy(qmStaticStrength::SittingNoFeet);
    check(analysis.compute() == 1, "a computation returns 1");
    qVector force, moment;
    const int stored = analysis.getJointForces(human.joints().front(), force, moment);
    if (!std::isfinite(sum.dotProd(sum)))
        return;
    check(stored == (double(sum.mag()) > 0.01), "the waist has a result when the hands have a load");
    if (stored)
        check(force[0] == sum[0] && force[1] == sum[1] && force[2] == sum[2], "the waist carries both hands");
}

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    FuzzedDataProvider data(bytes, size);
    const SilentMessages messages;
    AnalysedHuman& human = weightlessHuman();
    qcFigure* figure = human.figure();

    bool anyText = false;
    for (const qcSide hand : {qcRight, qcLeft}) {
        const Property load(data, figure, kLoadKeys[hand]);
        const Property local(data, figure, kLocalKeys[hand]);
        if (const auto meant = meantLoad(load.text()))
            check(same(readHandLoad(figure, hand), *meant), "a hand load is what its text says");
        if (const auto meant = meantFlag(local.text()))
            check(readHandLoadLocal(figure, hand) == *meant, "the flag of a hand load is what its text says");
        anyText |= load.text() != nullptr;
    }
    check(hasHandLoads(figure) == anyText, "there are hand loads when there is a text");
    checkWaist(human);
    human.wipe();
    return 0;
}
