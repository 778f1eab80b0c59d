#include "control/timed_load.h"

#include "control/tree_view.h"
#include "errorlog/errorlog.h"

namespace kestrel {

namespace {
constexpr const char* kModule = "clsTimedLoad.cls";
}

clsTimedLoad::~clsTimedLoad() { Empty(); }

void clsTimedLoad::Empty() {
    queue_.clear();
    queue_.shrink_to_fit();
    readPosition_ = 0;
    count_ = 0;
}

void clsTimedLoad::Init(TreeView* control, PlatformTimer* timer) {
    Trap(kModule, "Sub Init", [&] {
        control_ = control;
        m_timer = timer;
        if (m_timer) m_timer->SetTickHandler([this] { m_timer_Timer(); });
    });
}

void clsTimedLoad::Append(bool isFunction, const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    count_ = count_ + 1;
    queue_.push_back(LoadRequest{isFunction, classObj, file, item});
}

void clsTimedLoad::AddFunction(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddFunction", [&] { Append(true, item, classObj, file); });
}

void clsTimedLoad::AddVariable(const ItemPtr& item, const ClassPtr& classObj, const FilePtr& file) {
    Trap(kModule, "Sub AddVariable", [&] { Append(false, item, classObj, file); });
}

bool clsTimedLoad::Enabled() {
    bool on = false;
    // Without a timer the loader never runs and every entry is added at once.
    Trap(kModule, "Property (Get) Enabled", [&] { on = m_timer && m_timer->Enabled(); });
    return on;
}

void clsTimedLoad::Enabled(bool value) {
    Trap(kModule, "Property (Let) Enabled", [&] {
        if (value && m_timer) m_timer->SetInterval(kFirstDelay);
        Empty();
        if (m_timer) m_timer->SetEnabled(value);
    });
}

void clsTimedLoad::m_timer_Timer() {
    Trap(kModule, "Sub m_timer_Timer", [&] {
        m_timer->SetInterval(kPeriod);
        for (int i = 0; i < kPortion; ++i) {
            readPosition_ = readPosition_ + 1;
            if (readPosition_ > count_) {
                Enabled(false);
                Empty();
                return;
            }
            LoadRequest& request = queue_[readPosition_ - 1];
            if (request.isFunction)
                control_->AddFunction__Prim(request.item, request.classObj, request.file);
            else
                control_->AddVariable__Prim(request.item, request.classObj, request.file);
            request = LoadRequest{};
        }
    });
}

}  // namespace kestrel
