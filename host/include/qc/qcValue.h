// Values: what a named property of a host object holds.
#pragma once

#include "qc/qVector.h"
#include "qc/qcExport.h"

#include <cstddef>
#include <cstdint>
#include <new>

/// A tagged property value: empty, a float, a text, a vector, or a list of values.
///
/// The elements of a list chain through their `next` links; a value owns its text and, as a list,
/// its elements. A copy is deep, and its own `next` link is null. Values made with `new` come from
/// a free list, so that storing results costs no heap allocation once a first round has run.
class QC_API qcValue {
public:
    /// The kinds. String and List are fixed; the others are made and read through the members below.
    enum Kind : std::int32_t { Empty = 0, Float = 2, Vector = 5, String = 7, List = 9 };

    qcValue() = default;                  ///< an empty value
    explicit qcValue(float number);       ///< a float
    explicit qcValue(const char* text);   ///< a text, copied; null makes the empty text
    explicit qcValue(qcValue* value);     ///< a copy of the given value; null makes an empty value
    explicit qcValue(const qcValue* value);
    qcValue(const qcValue& other);
    qcValue(qcValue&& other) noexcept   ///< takes the content over; `other` is left empty
        : kind(other.kind), payload(other.payload)
    {
        other.kind = Empty;
        other.payload.first = nullptr;
    }
    qcValue& operator=(const qcValue& other);   ///< replaces the content; keeps this value's `next`
    qcValue& operator=(qcValue&& other) noexcept;
    ~qcValue()
    {
        if (ownsMemory())
            clear();
    }

    /// Destroys and frees a value made with `new`, alone: what it links to stays. Null is allowed.
    static void destroy(qcValue* value);

    /// Each reads a value of its kind. @return 1 when it was of that kind, else 0, nothing written.
    ///
    /// The text belongs to the value. The vector is written to where the caller's pointer points.
    int get(float& number) const;
    int get(char*& text) const;
    int get(qVector*& vector) const;

    /// Each makes the value one of its kind, with a copy of what is given; keeps the `next` link.
    void set(float number);
    void set(const char* text);
    void set(const qVector* vector)
    {
        const qVector copy = *vector;   // first: the vector may lie in this value
        if (ownsMemory())
            clear();
        kind = Vector;
        new (&payload.vector) qVector(copy);
    }

    /// Makes the value a list of a chain of elements made with `new`, which it owns from then on.
    void setList(qcValue* firstElement);

    /// The first element of a list; null for an empty list and for any other kind.
    qcValue* firstElement() const { return kind == List ? payload.first : nullptr; }

    /// A printable text of the value, valid until the next call: numbers as they are, texts in
    /// double quotes, vectors and lists in parentheses, "()" for empty. The host owns it.
    const char* toText() const;

    /// Makes the value empty; keeps the `next` link.
    void clear();

    /// Whether there is anything to free: a text or elements.
    bool ownsMemory() const { return kind == String || kind == List; }

    static void* operator new(std::size_t size)
    {
        if (!spare || size != sizeof(qcValue))
            return newMemory(size);
        void* memory = spare;
        spare = *static_cast<void**>(memory);
        return memory;
    }
    static void* operator new(std::size_t, void* place) { return place; }
    static void operator delete(void* memory, std::size_t size);

    /// What a value holds, by its kind. A vector lies in the value itself.
    union Payload {
        Payload() : first(nullptr) {}
        float number;
        char* text;
        qcValue* first;
        qVector vector;
    };

private:
    static void* newMemory(std::size_t size);
    static void* spare;   // the first of the free blocks; each begins with a pointer to the next

public:
    std::int32_t kind = Empty;
    Payload payload;
    qcValue* next = nullptr;   ///< the element after this one in its list
};

/// A deep copy, made with `new`; for a list value of the whole chain of elements. Null gives null.
QC_API qcValue* dupval(const qcValue* value);

/// Frees a value made by dupval(), and the chain of values that it links to. Null is allowed.
QC_API void freeval(qcValue* value);
