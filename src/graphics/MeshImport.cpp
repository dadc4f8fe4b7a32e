#include "graphics/MeshImport.h"

#include "foundation/Diagnostics.h"
#include "graphics/Mesh.h"

#include <assimp/cimport.h>
#include <assimp/mesh.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

namespace {

constexpr UINT32 IMPORT_STEPS = aiProcess_CalcTangentSpace | aiProcess_Triangulate | aiProcess_GenSmoothNormals |
                                aiProcess_PreTransformVertices | aiProcess_ImproveCacheLocality | aiProcess_FlipUVs |
                                aiProcess_FlipWindingOrder;
static_assert(IMPORT_STEPS == 0x1800949);

constexpr float RIGHT_HANDED = 1.0f; // sign in the tangent's w

Vec3 ToVec3(const aiVector3D& v) {
    return {v.x, v.y, v.z};
}

SMeshVertex ReadVertex(const aiMesh& Source, UINT32 i) {
    SMeshVertex Vertex;
    Vertex.Position = ToVec3(Source.mVertices[i]);
    if (Source.mTextureCoords[0]) {
        Vertex.UV = {Source.mTextureCoords[0][i].x, Source.mTextureCoords[0][i].y};
    }
    if (Source.mNormals) {
        Vertex.Normal = ToVec3(Source.mNormals[i]);
    }
    // The engine's tangent runs along V, which the library calls the bitangent.
    const Vec3 AlongV = Source.mBitangents ? ToVec3(Source.mBitangents[i]) : Vec3();
    Vertex.Tangent = {AlongV.x, AlongV.y, AlongV.z, RIGHT_HANDED};
    return Vertex;
}

// Points and lines are no faces to draw, and a file may say indices that it has no vertices for.
bool IsTriangle(const aiMesh& Source, const aiFace& Face) {
    if (Face.mNumIndices != 3) {
        return false;
    }
    for (UINT32 i = 0; i < 3; ++i) {
        if (Face.mIndices[i] >= Source.mNumVertices) {
            return false;
        }
    }
    return true;
}

void Append(const aiMesh& Source, SMesh& Mesh, SMeshPart& Part) {
    Part.VertexStart = Mesh.Vertices.count;
    Part.IBOffset[0] = Mesh.Indices.count;
    Part.VertexCount = Source.mNumVertices;
    Mesh.Vertices.Reserve(Mesh.Vertices.count + Source.mNumVertices);
    for (UINT32 i = 0; i < Source.mNumVertices; ++i) {
        Mesh.Vertices.Add(ReadVertex(Source, i));
        Part.Points.Add(Mesh.Vertices[Part.VertexStart + i].Position);
    }
    Mesh.Indices.Reserve(Mesh.Indices.count + 3 * Source.mNumFaces);
    for (UINT32 i = 0; i < Source.mNumFaces; ++i) {
        const aiFace& Face = Source.mFaces[i];
        for (UINT32 Corner = 0; Corner < 3 && IsTriangle(Source, Face); ++Corner) {
            Mesh.Indices.Add(Face.mIndices[Corner]);
        }
    }
    Part.TriangleCount[0] = (Mesh.Indices.count - Part.IBOffset[0]) / 3;
}

// The mesh to take: the first one, if the root holds it. The library hangs several meshes below the root, and also one
// that comes with lights or cameras.
const aiMesh* FirstMesh(const aiScene& Scene) {
    const aiNode* Root = Scene.mRootNode;
    const bool Held = Root && Root->mNumMeshes > 0 && Root->mMeshes[0] == 0 && Scene.mNumMeshes > 0;
    const aiMesh* Mesh = Held ? Scene.mMeshes[0] : nullptr;
    return Mesh && Mesh->mNumVertices > 0 && (Mesh->mPrimitiveTypes & aiPrimitiveType_TRIANGLE) ? Mesh : nullptr;
}

} // namespace

INT32 MeshImportStatic(const char* File, SMesh& Mesh, SMeshPart& Part) {
    const aiScene* Scene = aiImportFile(File, IMPORT_STEPS);
    if (!Scene) {
        return 0;
    }
    if (Scene->mNumMeshes > 1) {
        LogPrintf("%s holds %u meshes; a model is one mesh of one material\n", File, Scene->mNumMeshes);
    }
    const aiMesh* Source = FirstMesh(*Scene);
    if (Source) {
        Append(*Source, Mesh, Part);
    }
    aiReleaseImport(Scene);
    return Source ? 1 : 0;
}
