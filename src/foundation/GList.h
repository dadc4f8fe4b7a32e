// GList<T>: a doubly linked list. GStack<T>: a stack on it.
//
// Ownership: the list owns its nodes; copies are deep. Each node is allocated alone.
// Lifetime: a node stays where it is until it is unlinked or the list is cleared or destroyed. Unlinking a node during
// a walk is allowed if its next was read before. Arguments may be values of the list itself. Cost: Append and Unlink
// are one allocation and one free, whatever the length. An empty list is all zeros: a GArray of lists takes no memory
// until lists in it are used (GZeroIsEmpty). Bad input: Top and Pop of an empty stack fail a check; Unlink trusts that
// the node is in this list. Walk: for (auto* Node = List.first; Node; Node = Node->next) { Node->obj ... }
#pragma once

#include "foundation/GArray.h"
#include "foundation/GCheck.h"
#include "foundation/Types.h"

template <class T>
class GList {
public:
    struct Node {
        T obj;
        Node* prev;
        Node* next;
    };

    GList() = default;
    GList(const GList& Other) { AppendAll(Other); }
    ~GList() { FreeNodes(); }
    GList& operator=(const GList& Other);

    Node* Append(const T& Value);
    void Unlink(Node* Gone);
    void Clear();
    UINT32 Size() const { return count; }

    Node* first = nullptr;
    Node* last = nullptr;
    UINT32 count = 0;

private:
    void AppendAll(const GList& Other);
    void FreeNodes();
};

template <class T>
inline constexpr bool GZeroIsEmpty<GList<T>> = true;

template <class T>
class GStack : public GList<T> {
public:
    void Push(const T& Value) { this->Append(Value); }
    void Pop();
    T& Top();
    const T& Top() const;
    bool Empty() const { return this->last == nullptr; }
};

template <class T>
GList<T>& GList<T>::operator=(const GList& Other) {
    if (this != &Other) {
        // The old nodes go last: Other may belong to one of them.
        GList Old;
        Old.first = first;
        first = last = nullptr;
        count = 0;
        AppendAll(Other);
    }
    return *this;
}

template <class T>
void GList<T>::AppendAll(const GList& Other) {
    for (const Node* From = Other.first; From; From = From->next) {
        Append(From->obj);
    }
}

template <class T>
typename GList<T>::Node* GList<T>::Append(const T& Value) {
    Node* Added = new Node{Value, last, nullptr};
    (last ? last->next : first) = Added;
    last = Added;
    ++count;
    return Added;
}

template <class T>
void GList<T>::Unlink(Node* Gone) {
    (Gone->prev ? Gone->prev->next : first) = Gone->next;
    (Gone->next ? Gone->next->prev : last) = Gone->prev;
    --count;
    delete Gone;
}

template <class T>
void GList<T>::FreeNodes() {
    for (Node* Gone = first; Gone;) {
        Node* Next = Gone->next;
        delete Gone;
        Gone = Next;
    }
}

template <class T>
void GList<T>::Clear() {
    FreeNodes();
    first = last = nullptr;
    count = 0;
}

template <class T>
void GStack<T>::Pop() {
    GCHECK(this->last, "last");
    this->Unlink(this->last);
}

template <class T>
T& GStack<T>::Top() {
    GCHECK(this->last, "last");
    return this->last->obj;
}

template <class T>
const T& GStack<T>::Top() const {
    GCHECK(this->last, "last");
    return this->last->obj;
}
