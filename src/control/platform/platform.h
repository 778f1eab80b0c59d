#pragma once
// Everything a TreeView draws on and listens to, handed over at construction.
// The objects belong to the caller and must outlive the control. The control attaches
// itself to both trees with PlatformTree::SetInput (user input then reaches its
// tView_* handlers with the tree's index) and sets the timer's tick handler.
#include "control/platform/property_bag.h"
#include "control/platform/site.h"
#include "control/platform/timer.h"
#include "control/platform/tree.h"
#include "control/platform/tree_input.h"

namespace kestrel {

struct Platform {
    PlatformTree* classTree = nullptr;  // tView(0): the project by classes
    PlatformTree* fileTree = nullptr;   // tView(1): the project by files
    PlatformTimer* loadTimer = nullptr; // tmrLoad; without one, AsyncLoad adds entries at once
    ControlSite* site = nullptr;
};

}  // namespace kestrel
