// Values: content by kind, deep copies, and texts.
#include "qc/qcValue.h"

#include "ValuePool.h"

#include <charconv>
#include <cstring>
#include <new>
#include <string>
#include <utility>
#include <vector>

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

// A list's copy that still lacks its elements: a value that looks empty, with this where its content will be.
struct Waiting {
    const qcValue* elements;   // what is to be copied
    qcValue* next;             // the next one that waits
};
static_assert(sizeof(Waiting) <= sizeof(qcValue::Payload));

// Copies a chain and all that hangs in it, without recursion and in no other memory than the copies'. Memory that
// runs out on the way frees what was copied so far.
qcValue* copyChain(const qcValue* source)
{
    qcValue whole;   // a list of the chain, which owns the copies
    qcValue* waiting = nullptr;
    for (qcValue* list = &whole;;) {
        list->setList(nullptr);
        qcValue** link = &list->payload.first;
        for (; source; source = source->next) {
            qcValue* copy = *link = new qcValue;
            link = &copy->next;
            if (source->kind == qcValue::List) {
                new (&copy->payload) Waiting{source->payload.first, waiting};
                waiting = copy;
            } else {
                *copy = *source;
            }
        }
        if (!waiting)
            return std::exchange(whole.payload.first, nullptr);
        list = waiting;
        const Waiting next = *std::launder(reinterpret_cast<Waiting*>(&list->payload));
        source = next.elements;
        waiting = next.next;
    }
}

void appendNumber(std::string& text, float number)
{
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, number);
    text.append(digits, end.ptr);
}

// A value that has no elements.
void appendPlain(std::string& text, const qcValue& value)
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
    default:
        text.append("()");
    }
}

// Without recursion: the lists that the value at hand lies in stand in a list of their own.
void appendText(std::string& text, const qcValue& value)
{
    std::vector<const qcValue*> open;
    const qcValue* at = &value;
    for (;;) {
        if (const qcValue* first = at->firstElement()) {
            text.append("(");
            open.push_back(at);
            at = first;
            continue;
        }
        appendPlain(text, *at);
        while (!open.empty() && !at->next) {
            text.append(")");
            at = open.back();
            open.pop_back();
        }
        if (open.empty())
            return;
        text.append(" ");
        at = at->next;
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
    if (!ValuePool::recycles || size != sizeof(qcValue)) {
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
