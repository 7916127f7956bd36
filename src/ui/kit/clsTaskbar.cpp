#include "ui/kit/clsTaskbar.h"

namespace vesk {

void clsTaskbar::Connect() {
    isConnected_ = true;
    void* taskbar = nullptr;
    if (SUCCEEDED(CoCreateInstance(CLSID_TaskbarList, nullptr, CLSCTX_INPROC_SERVER,
                                   IID_ITaskbarList3, &taskbar)))
        taskbar_.reset(static_cast<ITaskbarList3*>(taskbar));
    if (taskbar_ && FAILED(taskbar_->HrInit()))
        taskbar_.reset();
}

void clsTaskbar::SetProgress(std::size_t done, std::size_t total) {
    if (!isConnected_)
        Connect();
    if (taskbar_ && total > 0)
        taskbar_->SetProgressValue(window_, done, total);
}

void clsTaskbar::SetFailed() {
    if (taskbar_)
        taskbar_->SetProgressState(window_, TBPF_ERROR);
}

void clsTaskbar::Clear() {
    if (taskbar_)
        taskbar_->SetProgressState(window_, TBPF_NOPROGRESS);
}

} // namespace vesk
