#pragma once
// The memory limit of the control groups this process is in. Inside a memory-limited group the
// kernel's out-of-memory killer acts when the group reaches its limit, however much the machine
// still has free, and a group with memory.oom.group set is ended whole. Every level from the
// process's own group up to the top of what is mounted counts: a parent's limit binds its children.
//
// cgroup v2: memory.max and memory.current, with memory.swap.max and memory.swap.current for what
// may still go to swap. cgroup v1: memory.limit_in_bytes and memory.usage_in_bytes, with
// memory.memsw.limit_in_bytes and memory.memsw.usage_in_bytes where swap is accounted. A group's
// charge includes its page cache; the inactive file pages of memory.stat are dropped before the
// limit ends anything, so they count as room (as MemAvailable counts them for the machine). The groups'
// folders are found through the mount table and the process's /proc/self/cgroup, so tests give
// both from a scratch folder.

#include "platform/MemoryStatus.h"

#include <cstdint>
#include <optional>
#include <string>

namespace platform::linux {

/// The tightest limit over every memory-limited level of this process's control groups:
/// `procCgroup` is the text of /proc/self/cgroup, `mountInfo` the mount table's file, `swapFree`
/// the machine's free swap in bytes (what a group that sets no swap limit of its own may still
/// page out to). Empty when no level sets a memory limit.
std::optional<MemoryLimit> cgroupMemoryLimit(const std::string& procCgroup, const std::string& mountInfo,
                                             std::uint64_t swapFree);

} // namespace platform::linux
