#pragma once
// Adds the entry nodes of a large project in small portions: while the loader is on,
// the control queues its function and variable additions here, and each tick of the
// timer hands at most 20 of them to the tree, so the host is never frozen for long.
#include <cstdint>
#include <vector>

#include "control/platform/timer.h"
#include "model/model_sink.h"

namespace kestrel {

class TreeView;

class clsTimedLoad {
public:
    static constexpr int32_t kFirstDelay = 500;  // milliseconds before the first portion
    static constexpr int32_t kPeriod = 50;       // milliseconds between portions
    static constexpr int32_t kPortion = 20;      // requests handled per tick

    clsTimedLoad() = default;
    ~clsTimedLoad();
    clsTimedLoad(const clsTimedLoad&) = delete;
    clsTimedLoad& operator=(const clsTimedLoad&) = delete;

    void Init(TreeView* control, PlatformTimer* timer);
    void AddFunction(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    void AddVariable(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    bool Enabled();
    // On or off, the queue is emptied; switching on starts with a 500 ms wait.
    void Enabled(bool value);
    // One tick of the timer.
    void m_timer_Timer();

    int32_t Pending() const { return count_ - readPosition_; }

private:
    struct LoadRequest {
        bool isFunction = false;
        ClassPtr classObj;
        FilePtr file;
        ItemPtr item;
    };

    void Append(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file);
    void Empty();

    std::vector<LoadRequest> queue_;  // request n (1-based) at index n - 1
    int32_t readPosition_ = 0;
    int32_t count_ = 0;
    TreeView* control_ = nullptr;
    PlatformTimer* m_timer = nullptr;
};

}  // namespace kestrel
