#pragma once
// The machine's memory figures on Windows: GlobalMemoryStatusEx, copied field for field.

#include "platform/MemoryStatus.h"

namespace platform::windows {

class WindowsMemoryStatus final : public MemoryStatus {
public:
    bool query(MemoryStatusRecord& record) override;
};

} // namespace platform::windows
