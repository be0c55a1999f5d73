#pragma once
// A SQLite file layer for reading a browser's databases without changing a byte of the profile.
// SQLite's own read-only mode still writes: it creates a missing -shm (and leaves it behind), a
// closing connection may remove an empty write-ahead log, and a reader maps the -shm writable. This
// layer opens every file for reading only and never creates, writes, truncates or removes one, so
// whatever SQLite decides, the profile stays as it was.
//
// How a WAL-mode database is read without writing: an existing -shm is used read-only (SQLite
// trusts it only while the writer that owns it is alive, and otherwise rebuilds the log's index in
// this process's memory); without a -shm the index is always built in memory; a missing log reads
// as an empty one. Temporary files are refused: readers keep temporary storage in memory.

namespace platform::linux {

/// The name under which the layer is registered with SQLite (on the first call), for
/// sqlite3_open_v2's VFS argument.
const char* readOnlySqliteFiles();

} // namespace platform::linux
