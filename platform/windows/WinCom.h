#pragma once
// COM started on the calling thread for as long as a ComScope lives, unless it was started there
// already: S_FALSE, one more start to end; RPC_E_CHANGED_MODE, started in the other apartment
// model, which serves as it is and is not ours to end. Each call that needs COM opens one, so the
// calls work from any thread.

#include <objbase.h>

namespace platform::windows {

class ComScope {
public:
    ComScope() : m_started(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComScope() {
        if (m_started)
            ::CoUninitialize();
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    bool m_started;
};

} // namespace platform::windows
