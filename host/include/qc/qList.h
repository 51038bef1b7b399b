// Lists: singly linked lists of untyped data pointers.
#pragma once

#include "qc/qcExport.h"

/// A node of a singly linked list. A list is held as a pointer to its first node; null is the empty
/// list. The data belong to whoever put them in.
class QC_API qList {
public:
    /// Appends a node that holds `data` at the end, in constant time. @return 1
    static int append(qList** head, void* data);

    /// Finds the first node for which `compare(data, key)` returns 0.
    ///
    /// @param key      what to look for
    /// @param compare  null compares the data pointer itself with `key`
    /// @return the node, or null. May be called on a null list: it finds nothing.
    qList* findNode(void* key, int (*compare)(int*, void*));

    /// Unlinks a node and frees it.
    ///
    /// @param node      a node of the list; one that the list does not hold changes nothing
    /// @param freeData  null leaves the data alone; else it is called once for the node's data,
    ///                  which it reaches by its own means
    /// @return 1 when the node was in the list, 0 otherwise
    static int deleteNode(qList** head, qList* node, int (*freeData)());

    /// The node's data.
    void* getData() const { return data; }

    /// The node after `previous`; the first when `previous` is null; null after the last.
    static qList* iterator(const qList* list, qList* previous)
    {
        return previous ? previous->next : const_cast<qList*>(list);
    }

private:
    explicit qList(void* nodeData) : data(nodeData), next(nullptr), last(this) {}
    ~qList() = default;

    void* data;
    qList* next;
    qList* last;   // kept in the first node only: the list's end
};
