// Every operation of a scene, called as scripts do.
#pragma once

#include "library.h"
#include "renderer/vt_local_scene_proxy.h"

#include <string>
#include <vector>

/// An operation that creates something from a type and a list.
struct Creation {
    std::string name;
    VtLong (VtLocalSceneProxy::*call)(const char *, VtArgList &);
};
extern const std::vector<Creation> creations;

/// An operation without arguments.
struct PlainOperation {
    std::string name;
    void (VtLocalSceneProxy::*call)();
};
extern const std::vector<PlainOperation> plain_operations;

/// An operation with an id.
struct OperationWithId {
    std::string name;
    void (VtLocalSceneProxy::*call)(VtLong);
};
extern const std::vector<OperationWithId> operations_with_id;

/// A picture of 4 x 3 pixels.
void render(VtLocalSceneProxy &scene);

/// Every operation once: something of each kind is created, all that is is opened, closed and rendered.
void use_everything(const Library &library, VtLocalSceneProxy &scene);
