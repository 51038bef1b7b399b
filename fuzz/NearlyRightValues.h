// Nearly right values: property values as the analysis stores them, most of them right and some with one thing off.
#pragma once

#include "AnalysedHuman.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <string>
#include <vector>

/// Builds values, right ones and others.
class NearlyRightValues {
public:
    NearlyRightValues(FuzzedDataProvider& source, const AnalysedHuman& whose) : data(source), human(whose) {}

    bool oneIn(int n) { return data.ConsumeIntegralInRange(1, n) == n; }
    float number()
    {
        return oneIn(4) ? data.ConsumeFloatingPoint<float>()
                        : data.PickValueInArray(
                            {0.0f, 1.0f, -1.0f, 0.00001f, 0.000009f, 1500.0f, -0.0f, 1e30f, INFINITY, NAN});
    }
    qVector vector()
    {
        const float x = number(), y = number();
        return {x, y, number()};
    }
    qcSite* site()
    {
        const auto& all = human.sites();
        return all[data.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1)];
    }
    qcJoint* joint()
    {
        const auto& all = human.joints();
        return all[data.ConsumeIntegralInRange<std::size_t>(0, all.size() - 1)];
    }

    qcValue* load()
    {
        return list({valueOf(vector()),
                     valueOf(data.PickValueInArray({"global", "local", "weight", "Global", "", "weight "})),
                     new qcValue(number())});
    }
    qcValue* torque() { return list({valueOf(vector())}); }
    qcValue* loadEntry() { return list({name(keyOf(site())), valueOf(vector()), kind(), new qcValue(number())}); }
    qcValue* torqueEntry() { return list({name(joint()->getName()), valueOf(vector())}); }
    qcValue* offsetEntry()
    {
        return list({name(keyOf(site())), valueOf(vector()), valueOf(vector()), kind(), new qcValue(number())});
    }
    qcValue* siteOffsetEntry() { return list({valueOf(vector()), valueOf(vector()), kind(), new qcValue(number())}); }
    qcValue* result() { return list({valueOf(vector()), valueOf(vector())}); }
    qcValue* strategy()
    {
        return oneIn(4) ? text()
                        : valueOf(data.PickValueInArray(
                            {"Two Feet", "Right Foot", "Left Foot", "Walking", "Sitting", "Sitting, No Feet"}));
    }
    qcValue* handLoad() { return text(); }

    /// A list of up to eight, each made by a member; now and then one of any shape among them.
    qcValue* listOf(qcValue* (NearlyRightValues::*make)())
    {
        std::vector<qcValue*> elements;
        for (int n = data.ConsumeIntegralInRange(0, 8); n > 0; --n)
            elements.push_back((this->*make)());
        return list(elements);
    }

    /// Any tree.
    qcValue* any(int depth = 0)
    {
        switch (data.ConsumeIntegralInRange(0, depth < 4 ? 6 : 3)) {
        case 0:
            return new qcValue;
        case 1:
            return new qcValue(number());
        case 2:
            return text();
        case 3:
            return valueOf(vector());
        default: {
            std::vector<qcValue*> elements;
            for (int n = data.ConsumeIntegralInRange(0, 4); n > 0; --n)
                elements.push_back(any(depth + 1));
            return chained(elements);
        }
        }
    }

private:
    static qcValue* valueOf(const qVector& vector)
    {
        qcValue* value = new qcValue;
        value->set(&vector);
        return value;
    }
    static qcValue* valueOf(const char* text) { return new qcValue(text); }
    qcValue* text() { return valueOf(data.ConsumeRandomLengthString(30).c_str()); }
    qcValue* kind() { return valueOf(data.PickValueInArray({"global", "local", "weight", "Global", "", "weight "})); }

    // The name of a part, or one that is nearly one.
    qcValue* name(std::string right)
    {
        switch (data.ConsumeIntegralInRange(0, 15)) {
        case 0:
            right.pop_back();
            break;
        case 1:
            right += ' ';
            break;
        case 2:
            right[0] = static_cast<char>(right[0] ^ 0x20);
            break;
        case 3:
            right = "man." + right;
            break;
        case 4:
            right.append(2100, 'x');
            break;
        default:
            break;
        }
        return valueOf(right.c_str());
    }

    static qcValue* chained(const std::vector<qcValue*>& elements)
    {
        qcValue* value = new qcValue;
        qcValue* first = nullptr;
        qcValue** link = &first;
        for (qcValue* element : elements) {
            *link = element;
            link = &element->next;
        }
        value->setList(first);
        return value;
    }

    // A list with, now and then, an element too few, too many or of another kind.
    qcValue* list(std::vector<qcValue*> elements)
    {
        if (oneIn(6) && !elements.empty()) {
            const std::size_t i = data.ConsumeIntegralInRange<std::size_t>(0, elements.size() - 1);
            const auto at = elements.begin() + static_cast<std::ptrdiff_t>(i);
            const int change = data.ConsumeIntegralInRange(0, 2);
            if (change == 0) {
                elements.insert(at, any());
            } else {
                freeval(*at);
                if (change == 1)
                    elements.erase(at);
                else
                    *at = any();
            }
        }
        return chained(elements);
    }

    FuzzedDataProvider& data;
    const AnalysedHuman& human;
};
