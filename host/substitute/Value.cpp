// Values: content by kind, deep copies, and texts.
#include "qc/qcValue.h"

#include "ValuePool.h"

#include <charconv>
#include <cstring>
#include <string>

namespace {

char* copyText(const char* text)
{
    if (!text)
        text = "";
    const std::size_t size = std::strlen(text) + 1;
    char* copy = ValuePool::takeText(size);
    std::memcpy(copy, text, size);
    return copy;
}

qcValue* copyChain(const qcValue* value)
{
    qcValue* first = nullptr;
    qcValue** link = &first;
    for (; value; value = value->next) {
        *link = new qcValue(*value);
        link = &(*link)->next;
    }
    return first;
}

// Frees a chain and all that hangs in it, without recursion: the elements of a list are put in
// front of what is still to be freed.
void freeChain(qcValue* pending)
{
    while (pending) {
        qcValue* value = pending;
        pending = value->next;
        if (value->kind == qcValue::List && value->payload.first) {
            qcValue* last = value->payload.first;
            while (last->next)
                last = last->next;
            last->next = pending;
            pending = value->payload.first;
            value->payload.first = nullptr;
        }
        delete value;
    }
}

void appendNumber(std::string& text, float number)
{
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    text.append(digits, end.ptr);
}

void appendText(std::string& text, const qcValue& value)
{
    switch (value.kind) {
    case qcValue::Float:
        appendNumber(text, value.payload.number);
        break;
    case qcValue::String:
        text.append("\"").append(value.payload.text).append("\"");
        break;
    case qcValue::Vector:
        text.append("(");
        for (int i = 0; i < 3; ++i) {
            if (i > 0)
                text.append(" ");
            appendNumber(text, value.payload.vector[i]);
        }
        text.append(")");
        break;
    case qcValue::List:
        text.append("(");
        for (const qcValue* element = value.payload.first; element; element = element->next) {
            if (element != value.payload.first)
                text.append(" ");
            appendText(text, *element);
        }
        text.append(")");
        break;
    default:
        text.append("()");
    }
}

}   // namespace

qcValue::qcValue(float number)
{
    set(number);
}

qcValue::qcValue(const char* text)
{
    set(text);
}

qcValue::qcValue(qcValue* value) : qcValue(static_cast<const qcValue*>(value)) {}

qcValue::qcValue(const qcValue* value)
{
    if (value)
        *this = *value;
}

qcValue::qcValue(const qcValue& other)
{
    *this = other;
}

qcValue& qcValue::operator=(const qcValue& other)
{
    if (this == &other)
        return *this;
    switch (other.kind) {
    case String:
        set(other.payload.text);
        break;
    case List: {
        qcValue* elements = copyChain(other.payload.first);
        setList(elements);
        break;
    }
    default: {
        const std::int32_t newKind = other.kind;   // first: the other may be an element of this list
        const Payload newPayload = other.payload;
        clear();
        kind = newKind;
        payload = newPayload;
    }
    }
    return *this;
}

qcValue& qcValue::operator=(qcValue&& other) noexcept
{
    if (this == &other)
        return *this;
    const std::int32_t newKind = other.kind;   // first: the other may be an element of this list
    const Payload newPayload = other.payload;
    other.kind = Empty;
    other.payload.first = nullptr;
    clear();
    kind = newKind;
    payload = newPayload;
    return *this;
}

void qcValue::clear()
{
    if (kind == String)
        ValuePool::giveText(payload.text, std::strlen(payload.text) + 1);
    else if (kind == List)
        freeChain(payload.first);
    kind = Empty;
    payload.first = nullptr;
}

void qcValue::destroy(qcValue* value)
{
    delete value;
}

int qcValue::get(float& number) const
{
    if (kind != Float)
        return 0;
    number = payload.number;
    return 1;
}

int qcValue::get(char*& text) const
{
    if (kind != String)
        return 0;
    text = payload.text;
    return 1;
}

int qcValue::get(qVector*& vector) const
{
    if (kind != Vector)
        return 0;
    *vector = payload.vector;
    return 1;
}

void qcValue::set(float number)
{
    clear();
    kind = Float;
    payload.number = number;
}

void qcValue::set(const char* text)
{
    char* copy = copyText(text);   // first: the text may be this value's own
    clear();
    kind = String;
    payload.text = copy;
}

void qcValue::setList(qcValue* firstElement)
{
    clear();
    kind = List;
    payload.first = firstElement;
}

const char* qcValue::toText() const
{
    static std::string text;
    text.clear();
    appendText(text, *this);
    return text.c_str();
}

void* qcValue::spare = nullptr;

void* qcValue::newMemory(std::size_t size)
{
    return size == sizeof(qcValue) ? ValuePool::takeValue() : ::operator new(size);
}

void qcValue::operator delete(void* memory, std::size_t size)
{
    if (!ValuePool::kRecycles || size != sizeof(qcValue)) {
        ::operator delete(memory);
        return;
    }
    *static_cast<void**>(memory) = spare;
    spare = memory;
}

qcValue* dupval(const qcValue* value)
{
    return value ? new qcValue(*value) : nullptr;
}

void freeval(qcValue* value)
{
    freeChain(value);
}
