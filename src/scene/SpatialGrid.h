// The spatial index: everything visible, findable by planes (culling), by ray (picking) and by itself (moving).
//
// Two structures over one box, and every client sits in both: a bounded eight-way tree for the plane queries and a
// uniform array of cells for the ray walk. A client lies in its tree nodes and in every ancestor of them, so a subtree
// wholly inside the planes is gathered from one list. A client that stops in an inner node is not found while the
// planes cross that node: the price of never testing inner lists.
//
// Ownership: the grid owns tree, cells and list items; clients belong to others, must stay at their address while they
// are in, and leave by RemoveClient before they or the grid are freed. Tree nodes are made on demand and stay until
// Free. Cost: Init is cheap at any size, cells take memory only where clients touch them. AddClient and RemoveClient
// are one allocation each per node and cell of the client's box, so boxes should be tight. A query visits what its
// planes cross. Units: world space; boxes are axis-aligned. Cell coordinates are whole numbers held as floats. Bad
// input: a box without overlap is in no node and no cell; NaN and infinite boxes end up wherever the comparisons lead,
// but never loop. A grid without volume or without cells holds nothing. Adding a client that is in already is an
// assertion where it shows; a client missing from a cell of its range is fatal. One thread.
#pragma once

#include "foundation/GTemplate.h"
#include "foundation/Maths.h"
#include "foundation/Types.h"

class IRenderable;
struct SLightClient;
struct SSpatialClient;
struct SSpatialNode;

// Values of SSpatialClient::Kind. A client of CLIENT_MESH is an IRenderable, one of CLIENT_LIGHT an SLightClient.
constexpr UINT32 CLIENT_NONE = 0;
constexpr UINT32 CLIENT_MESH = 5;
constexpr UINT32 CLIENT_LIGHT = 8;

// A stamp that no query ever gets to: the client was not seen yet.
constexpr UINT64 STAMP_NEVER = ~UINT64{0};

// The most planes a query takes: those of a frustum.
constexpr UINT32 MAX_QUERY_PLANES = 6;

// The number of the present query. Callers add 1 before each; a client is seen when its stamp equals it.
extern UINT64 GSpatialStamp;

using SClientList = GList<SSpatialClient*>;

// One tree node that a client occupies, with the client's item in the node's list.
struct SClientOccupation {
    SSpatialNode* Node = nullptr;
    SClientList::Node* Item = nullptr;
};

struct SSpatialClient {
    SSpatialClient() = default;
    SSpatialClient(const SSpatialClient&) = delete;
    SSpatialClient& operator=(const SSpatialClient&) = delete;

    UINT32 Kind = CLIENT_NONE;
    UINT64 QueryStamp = STAMP_NEVER; // written by QueryClients
    ::BBox BBox;                     // world space; the owner refreshes it before AddClient

    // Written by AddClient and RemoveClient only. The range, not BBox, says where RemoveClient looks.
    GArray<SClientOccupation> ocp;
    Vec3 CellLow;
    Vec3 CellHigh;
    UINT32 InCells = 0;
};

// The children are all null or all set: bit 0 of a child's number is its half along x, bit 1 along y, bit 2 along z.
struct SSpatialNode {
    SSpatialNode(const BBox& NodeBox, float NodeMinSize) : MinSize(NodeMinSize), Box(NodeBox) {}
    ~SSpatialNode();
    SSpatialNode(const SSpatialNode&) = delete;
    SSpatialNode& operator=(const SSpatialNode&) = delete;

    bool HasChildren() const { return Children[0] != nullptr; }

    float MinSize; // edge of the smallest cube that may split, the same in the whole tree
    BBox Box;
    SSpatialNode* Children[8] = {};
    SClientList Clients; // the node's own and those of all nodes below
};

struct SSpatialGrid {
    SSpatialGrid() = default;
    ~SSpatialGrid() { Free(); }
    SSpatialGrid(const SSpatialGrid&) = delete;
    SSpatialGrid& operator=(const SSpatialGrid&) = delete;

    // Throws away any old tree and cells. Counts are whole numbers.
    void Init(const BBox& NewBox, const Vec3& NewCellCounts);

    // Back to the empty state. Clients that are still in are forgotten, not told.
    void Free();

    // False for a grid that was not initialised, or has no volume or no cells.
    bool CanHold() const;

    SClientList& Cell(INT32 X, INT32 Y, INT32 Z) { return Cells[CellIndex(X, Y, Z)]; }
    UINT32 CellIndex(INT32 X, INT32 Y, INT32 Z) const;

    // The list of a cell to append to. Free finds only cells that were asked for this way.
    SClientList& CellToFill(INT32 X, INT32 Y, INT32 Z);

    GArray<SClientList> Cells; // x runs fastest, then y, then z
    BBox Box;
    Vec3 CellCounts;
    SSpatialNode* Root = nullptr; // null until Init

private:
    GArray<UINT8> FilledBlocks; // not zero where a cell of the block ever held a client
};

// Enters the client with its present BBox. To move a client: refresh BBox, RemoveClient, AddClient.
void AddClient(SSpatialGrid* Grid, SSpatialClient* c);

// Harmless on a client that is not in.
void RemoveClient(SSpatialGrid* Grid, SSpatialClient* c);

// The nodes that a client of box Whole occupies, children before parents, are appended to List; none is entered yet.
// Piece is the part of the box within Node's parent, at the root the whole box.
void InsertIntoTree(SSpatialNode* Node, const BBox& Piece, const BBox& Whole, GArray<SClientOccupation>& List);

// The three plane queries append the clients that no plane has wholly on its outer side, each once, in tree order.
// Before each call: add 1 to GSpatialStamp and empty Out. Node is the grid's root (null: nothing is found), Planes are
// PlaneCount outward planes, at most MAX_QUERY_PLANES; they are conservative, as a box beside a corner of the volume
// may pass. They keep: all clients, those of CLIENT_MESH, those of CLIENT_LIGHT.
void QueryClients(const SSpatialNode* Node, GArray<SSpatialClient*>* Out, const Plane* Planes, UINT32 PlaneCount);
void QueryMeshClients(const SSpatialNode* Node, GArray<IRenderable*>* Out, const Plane* Planes, UINT32 PlaneCount);
void QueryLightClients(const SSpatialNode* Node, GArray<SLightClient*>* Out, const Plane* Planes, UINT32 PlaneCount);

// What a ray walk found, and how it is to go. The caller empties Hits first.
struct SRayHits {
    GMap<float, SSpatialClient*>
        Hits;                 // by distance along the ray; the first is the nearest, later ones were nearest once
    float Radius = 5.0f;      // of the ball that stands for a light, which has no surface to hit
    UINT32 StepAllowance = 0; // how many cells beyond the first are visited whatever was found
};

// Walks the cells along the ray from its origin: 0 when the origin lies outside the grid's box, else 1. The walk
// finishes the cell in which it finds its first hit, and those that the allowance grants, and ends there.
UINT32 TraceGrid(SSpatialGrid* Grid, const Ray& PickRay, SRayHits* Hits);
