// GMap<K, V>: an ordered map on a red-black tree.
//
// Ownership: the map owns its nodes; copies are deep. Each node is allocated alone.
// Lifetime: a node stays valid until Clear, or until a Remove of any key: Remove may move another entry into the node
// of the one that goes. Inserting moves nothing. Arguments may be keys and values of the map itself. Order: by the key
// type's own comparison operators; GString as strcmp, integers and pointers unsigned, floats by number. Cost: Find,
// Insert and Remove take one walk down. operator[] also checks the whole tree before and after, so it takes time by the
// number of entries: use it on small maps or outside of loops. Constness is that of the map's shape: nodes found
// through a const map can be written to. Bad input: operator[] on a missing key adds it with V(); Insert of an existing
// key keeps the old value. Walk: for (GMap<K, V>::Iterator It(Map); It.Valid(); It.Next()) { It.Key(), It.Value() }, in
// ascending order. The map must not change its shape while an iterator lives.
#pragma once

#include "foundation/GCheck.h"
#include "foundation/GList.h"
#include "foundation/Types.h"

#include <new>

template <class K, class V>
class GMap {
public:
    struct Node {
        K key;
        V value;
        UINT32 colour;
        Node* child[2]; // left, right
    };

    class Iterator;

    GMap() = default;
    GMap(const GMap& Other) : root(Copy(Other.root)) {}
    ~GMap() { Free(root); }
    GMap& operator=(const GMap& Other);

    // The node with that key, or null.
    Node* Find(const K& Key) const;

    V& operator[](const K& Key);

    // The node with that key, made now or found there with its old value; null only if memory ran out.
    Node* Insert(const K& Key, const V& Value);

    // 1 if the key was there, else 0.
    UINT32 Remove(const K& Key);

    void Clear();

    // Checks the tree's invariants; a violation fails an assertion. Takes time by the number of entries.
    void CheckTree() const { BlackHeight(root); }

    Node* root = nullptr;

private:
    struct InsertPath;
    struct RemovePath;

    static constexpr UINT32 BLACK = 0;
    static constexpr UINT32 RED = 1;
    static constexpr int LEFT = 0;
    static constexpr int RIGHT = 1;

    // Texts and the like, which tell their order in one comparison.
    static constexpr bool HAS_COMPARE = requires(const K& A, const K& B) { A.Compare(B); };

    // Below 0, 0 or above 0 as A stands to B.
    static int Compare(const K& A, const K& B) {
        if constexpr (HAS_COMPARE) {
            return A.Compare(B);
        } else {
            return A == B ? 0 : A > B ? 1 : -1;
        }
    }

    static bool IsRed(const Node* At) { return At && At->colour == RED; }
    static Node* Make(const K& Key, const V& Value) {
        return new (std::nothrow) Node{Key, Value, RED, {nullptr, nullptr}};
    }
    Node* FindByCompare(const K& Key) const;
    static Node* Rotate(Node* Top, int Direction);
    static Node* RotateTwice(Node* Top, int Direction);
    [[gnu::always_inline]] static void PushRedDown(Node** ParentLink, Node* At, int Last);
    static Node* Copy(const Node* From);
    static void Free(Node* Top);
    static UINT32 BlackHeight(const Node* Top);
};

// Holds its path in a list: the nodes on the way from the root to the present one, which is not in it. List nodes
// behind Top are spare; they are used again before new ones are made.
template <class K, class V>
class GMap<K, V>::Iterator {
public:
    explicit Iterator(const GMap& Walked) : Map(&Walked) { GoLeftFrom(Walked.root); }
    Iterator(const Iterator&) = delete;
    Iterator& operator=(const Iterator&) = delete;

    bool Valid() const { return Current != nullptr; }
    const K& Key() const { return Current->key; }
    V& Value() const { return Current->value; }
    void Next();

private:
    using PathNode = typename GList<Node*>::Node;

    void Push(Node* Passed);
    void GoLeftFrom(Node* From);

    const GMap* Map;
    Node* Current = nullptr;
    GList<Node*> Path;
    PathNode* Top = nullptr;
};

template <class K, class V>
void GMap<K, V>::Iterator::Push(Node* Passed) {
    PathNode* Spare = Top ? Top->next : Path.first;
    if (Spare) {
        Spare->obj = Passed;
        Top = Spare;
    } else {
        Top = Path.Append(Passed);
    }
}

template <class K, class V>
void GMap<K, V>::Iterator::GoLeftFrom(Node* From) {
    Current = From;
    while (Current && Current->child[LEFT]) {
        Push(Current);
        Current = Current->child[LEFT];
    }
}

template <class K, class V>
void GMap<K, V>::Iterator::Next() {
    if (Current->child[RIGHT]) {
        Push(Current);
        GoLeftFrom(Current->child[RIGHT]);
        return;
    }
    const Node* Left = nullptr;
    do {
        Left = Current;
        Current = Top ? Top->obj : nullptr;
        Top = Top ? Top->prev : nullptr;
    } while (Current && Current->child[LEFT] != Left);
}

template <class K, class V>
GMap<K, V>& GMap<K, V>::operator=(const GMap& Other) {
    if (this != &Other) {
        Node* Old = root;
        root = Copy(Other.root);
        Free(Old);
    }
    return *this;
}

template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::Copy(const Node* From) {
    if (!From) {
        return nullptr;
    }
    return new Node{From->key, From->value, From->colour, {Copy(From->child[LEFT]), Copy(From->child[RIGHT])}};
}

template <class K, class V>
void GMap<K, V>::Free(Node* Top) {
    if (Top) {
        Free(Top->child[LEFT]);
        Free(Top->child[RIGHT]);
        delete Top;
    }
}

template <class K, class V>
void GMap<K, V>::Clear() {
    Free(root);
    root = nullptr;
}

template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::Find(const K& Key) const {
    if constexpr (HAS_COMPARE) {
        return FindByCompare(Key);
    }
    // The last node that is not greater than the key, chosen without a branch on the order: which way a walk turns
    // can't be predicted, and a wrong guess at each level costs more than going to the bottom.
    Node* At = root;
    Node* Last = nullptr;
    while (At) {
        const bool IsGreater = At->key > Key;
        Last = IsGreater ? Last : At;
        At = At->child[IsGreater ? LEFT : RIGHT];
    }
    return Last && Last->key == Key ? Last : nullptr;
}

// A comparison takes so long that a guess of its outcome, right half of the time, is better than waiting for it.
template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::FindByCompare(const K& Key) const {
    Node* At = root;
    while (At) {
        const int Order = Compare(At->key, Key);
        if (Order > 0) [[likely]] {
            At = At->child[LEFT];
        } else if (Order < 0) {
            At = At->child[RIGHT];
        } else {
            break;
        }
    }
    return At;
}

template <class K, class V>
V& GMap<K, V>::operator[](const K& Key) {
    CheckTree();
    Node* Found = Find(Key);
    if (!Found) {
        Found = Insert(Key, V());
    }
    CheckTree();
    return Found->value;
}

// Turns the subtree so that Top sinks in the given direction: the new top is black and Top red.
template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::Rotate(Node* Top, int Direction) {
    Node* Raised = Top->child[!Direction];
    Top->child[!Direction] = Raised->child[Direction];
    Raised->child[Direction] = Top;
    Top->colour = RED;
    Raised->colour = BLACK;
    return Raised;
}

template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::RotateTwice(Node* Top, int Direction) {
    Top->child[!Direction] = Rotate(Top->child[!Direction], !Direction);
    return Rotate(Top, Direction);
}

// Where the inserting walk stands: the links to a node, to its parent and to its grandparent, null above the root.
template <class K, class V>
struct GMap<K, V>::InsertPath {
    Node** GrandLink;
    Node** ParentLink;
    Node** Link;
    int Before; // direction from the grandparent to the parent
    int Last;   // direction from the parent to the node

    void Enter(Node* At, int Direction) {
        Before = Last;
        Last = Direction;
        GrandLink = ParentLink;
        ParentLink = Link;
        Link = &At->child[Direction];
    }

    // Called when the node became red. A red parent is never the root, so there is a grandparent then. Afterwards the
    // parent, or in the second case the node itself, hangs where the grandparent hung.
    void RepairRedPair() {
        if (!ParentLink || (*ParentLink)->colour == BLACK) {
            return;
        }
        if (Before == Last) {
            *GrandLink = Rotate(*GrandLink, !Before);
            ParentLink = GrandLink;
        } else {
            *GrandLink = RotateTwice(*GrandLink, !Before);
            Link = GrandLink;
        }
    }
};

// One pass: colours are flipped and red pairs repaired on the way down, so that nothing is left to mend on the way up.
// A pointer to the link that holds a node stands for the node, so a link to the root serves as the false root above it.
template <class K, class V>
typename GMap<K, V>::Node* GMap<K, V>::Insert(const K& Key, const V& Value) {
    if (!root) {
        root = Make(Key, Value);
        GCHECK(root, "root");
        root->colour = BLACK;
        return root;
    }
    InsertPath Path = {nullptr, nullptr, &root, LEFT, LEFT};
    Node* At = root;
    for (;;) {
        if (IsRed(At->child[LEFT]) && IsRed(At->child[RIGHT])) {
            At->colour = RED;
            At->child[LEFT]->colour = BLACK;
            At->child[RIGHT]->colour = BLACK;
            Path.RepairRedPair();
        }
        const int Order = Compare(At->key, Key);
        if (Order > 0) [[likely]] {
            Path.Enter(At, LEFT);
        } else if (Order < 0) {
            Path.Enter(At, RIGHT);
        } else {
            break;
        }
        At = *Path.Link;
        if (!At) {
            At = *Path.Link = Make(Key, Value);
            if (At) {
                Path.RepairRedPair();
            }
            break;
        }
    }
    root->colour = BLACK;
    return At;
}

// Makes the black node At, whose children are black, red before the walk enters it, by the help of its sibling.
// Inlined, since a removing walk comes here at most levels.
template <class K, class V>
inline void GMap<K, V>::PushRedDown(Node** ParentLink, Node* At, int Last) {
    Node* Parent = *ParentLink;
    Node* Sibling = Parent->child[!Last];
    if (!Sibling) {
        return;
    }
    if (!IsRed(Sibling->child[LEFT]) && !IsRed(Sibling->child[RIGHT])) {
        Parent->colour = BLACK;
        Sibling->colour = RED;
        At->colour = RED;
        return;
    }
    Node* Top = IsRed(Sibling->child[Last]) ? RotateTwice(Parent, Last) : Rotate(Parent, Last);
    *ParentLink = Top;
    Top->colour = RED;
    Top->child[LEFT]->colour = BLACK;
    Top->child[RIGHT]->colour = BLACK;
    At->colour = RED;
}

// Where the removing walk stands: a node and the link to its parent, null at the root. Enter goes to a child, but makes
// the node red before unless it or that child is red.
template <class K, class V>
struct GMap<K, V>::RemovePath {
    Node** ParentLink;
    Node** Link;
    int Last; // direction from the parent to the node

    void Enter(int Direction) {
        Node* At = *Link;
        if (!IsRed(At) && !IsRed(At->child[Direction])) {
            if (IsRed(At->child[!Direction])) {
                *Link = Rotate(At, Direction);
                Link = &(*Link)->child[Direction];
            } else if (ParentLink) {
                PushRedDown(ParentLink, At, Last);
            }
        }
        Last = Direction;
        ParentLink = Link;
        Link = &At->child[Direction];
    }
};

// One pass that pushes a red node down before it, so that the node cut out at the bottom is red and its going leaves
// the black heights alone. The entry with the key is overwritten by its neighbour in order, whose node goes instead.
template <class K, class V>
UINT32 GMap<K, V>::Remove(const K& Key) {
    RemovePath Path = {nullptr, &root, RIGHT};
    Node* Found = nullptr;
    while (*Path.Link && !Found) {
        Node* At = *Path.Link;
        const int Order = Compare(At->key, Key);
        if (Order < 0) [[likely]] {
            Path.Enter(RIGHT);
        } else {
            Found = Order == 0 ? At : nullptr;
            Path.Enter(LEFT);
        }
    }
    // To the neighbour: all keys below are smaller than the one that goes.
    while (*Path.Link) {
        Path.Enter(RIGHT);
    }
    if (Found) {
        Node* Bottom = *Path.ParentLink;
        if (Found != Bottom) {
            Found->key = Bottom->key;
            Found->value = Bottom->value;
        }
        *Path.ParentLink = Bottom->child[Bottom->child[LEFT] ? LEFT : RIGHT];
        delete Bottom;
    }
    if (root) {
        root->colour = BLACK;
    }
    return Found ? 1 : 0;
}

template <class K, class V>
UINT32 GMap<K, V>::BlackHeight(const Node* Top) {
    if (!Top) {
        return 1;
    }
    const bool RedPair = IsRed(Top) && (IsRed(Top->child[LEFT]) || IsRed(Top->child[RIGHT]));
    GCHECK(!RedPair, "!\"Red violation\"");
    const UINT32 Left = BlackHeight(Top->child[LEFT]);
    const UINT32 Right = BlackHeight(Top->child[RIGHT]);
    GCHECK(Left == Right, "!\"Black violation\"");
    return Left + (Top->colour == BLACK ? 1 : 0);
}
