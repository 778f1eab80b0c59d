#pragma once
// The whole platform in memory: two trees, the load timer and the host site.
#include "control/memory/memory_site.h"
#include "control/memory/memory_timer.h"
#include "control/memory/memory_tree.h"
#include "control/platform/platform.h"

namespace kestrel {

struct MemoryPlatform {
    MemoryTree classTree;
    MemoryTree fileTree;
    MemoryTimer timer;
    MemorySite site;

    Platform Get() { return Platform{&classTree, &fileTree, &timer, &site}; }
    MemoryTree& Tree(int index) { return index == 1 ? fileTree : classTree; }
};

}  // namespace kestrel
