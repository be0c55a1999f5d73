#include "platform/linux/ReadOnlySqliteFiles.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <cstring>
#include <mutex>
#include <string>

namespace platform::linux {
namespace {

sqlite3_vfs* g_system = nullptr; // the file layer SQLite would use otherwise

/// One open file: the system layer's file follows it in the same allocation, unless the file is
/// the stand-in for a missing write-ahead log.
struct File {
    sqlite3_file base;
    bool emptyLog;    ///< no file behind it: reads as a log of zero bytes
    bool sharedIndex; ///< a database whose -shm existed when it was opened: used read-only
    sqlite3_file* system() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};
static_assert(sizeof(File) % alignof(void*) == 0, "the system layer's file follows aligned");

File* fileOf(sqlite3_file* f) {
    return reinterpret_cast<File*>(f);
}
const sqlite3_io_methods* real(File* f) {
    return f->system()->pMethods;
}

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

/// Whether `path` is there and is something other than a regular file (a FIFO, socket, device,
/// folder): a FIFO opened for reading would wait for a writer that never comes.
bool notRegular(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode);
}

int fileClose(sqlite3_file* f) {
    File* file = fileOf(f);
    if (file->emptyLog || !real(file))
        return SQLITE_OK;
    return real(file)->xClose(file->system());
}

int fileRead(sqlite3_file* f, void* out, int amount, sqlite3_int64 offset) {
    File* file = fileOf(f);
    if (file->emptyLog) {
        std::memset(out, 0, static_cast<std::size_t>(amount));
        return SQLITE_IOERR_SHORT_READ;
    }
    return real(file)->xRead(file->system(), out, amount, offset);
}

int refuseWrite(sqlite3_file*, const void*, int, sqlite3_int64) {
    return SQLITE_READONLY;
}
int refuseTruncate(sqlite3_file*, sqlite3_int64) {
    return SQLITE_READONLY;
}
int nothingToSync(sqlite3_file*, int) {
    return SQLITE_OK;
}

int fileSize(sqlite3_file* f, sqlite3_int64* size) {
    File* file = fileOf(f);
    if (file->emptyLog) {
        *size = 0;
        return SQLITE_OK;
    }
    return real(file)->xFileSize(file->system(), size);
}

// Locks are real, so that a database another process holds shows as busy; but no lock above the
// shared one is taken, as only a writer needs it (a hot journal's rollback among them).
int fileLock(sqlite3_file* f, int level) {
    File* file = fileOf(f);
    if (file->emptyLog)
        return SQLITE_OK;
    if (level > SQLITE_LOCK_SHARED)
        return SQLITE_READONLY;
    return real(file)->xLock(file->system(), level);
}

int fileUnlock(sqlite3_file* f, int level) {
    File* file = fileOf(f);
    return file->emptyLog ? SQLITE_OK : real(file)->xUnlock(file->system(), level);
}

int fileCheckReservedLock(sqlite3_file* f, int* out) {
    File* file = fileOf(f);
    if (file->emptyLog) {
        *out = 0;
        return SQLITE_OK;
    }
    return real(file)->xCheckReservedLock(file->system(), out);
}

int fileControl(sqlite3_file* f, int op, void* arg) {
    File* file = fileOf(f);
    // A size hint grows the file to the size given.
    if (file->emptyLog || op == SQLITE_FCNTL_SIZE_HINT)
        return SQLITE_NOTFOUND;
    return real(file)->xFileControl(file->system(), op, arg);
}

int fileSectorSize(sqlite3_file* f) {
    File* file = fileOf(f);
    return file->emptyLog ? 4096 : real(file)->xSectorSize(file->system());
}

int fileDeviceCharacteristics(sqlite3_file* f) {
    File* file = fileOf(f);
    return file->emptyLog ? 0 : real(file)->xDeviceCharacteristics(file->system());
}

// The write-ahead log's index. An existing -shm goes to the system layer, which the URI's
// readonly_shm makes open it for reading only; without one, SQLITE_READONLY_CANTINIT is SQLite's
// signal that the index cannot be shared, and it builds a private one in memory from the log.
int shmMap(sqlite3_file* f, int page, int pageSize, int extend, void volatile** out) {
    File* file = fileOf(f);
    if (file->sharedIndex)
        return real(file)->xShmMap(file->system(), page, pageSize, extend, out);
    *out = nullptr;
    return SQLITE_READONLY_CANTINIT;
}

int shmLock(sqlite3_file* f, int offset, int n, int flags) {
    File* file = fileOf(f);
    return file->sharedIndex ? real(file)->xShmLock(file->system(), offset, n, flags) : SQLITE_OK;
}

void shmBarrier(sqlite3_file* f) {
    File* file = fileOf(f);
    if (file->sharedIndex)
        real(file)->xShmBarrier(file->system());
}

int shmUnmap(sqlite3_file* f, int) {
    File* file = fileOf(f);
    // Never with the request to delete the -shm: it belongs to whoever made it.
    return file->sharedIndex ? real(file)->xShmUnmap(file->system(), 0) : SQLITE_OK;
}

const sqlite3_io_methods kMethods = {
    2, // up to the shared-memory methods; no memory-mapped reads
    fileClose, fileRead, refuseWrite, refuseTruncate, nothingToSync, fileSize, fileLock, fileUnlock,
    fileCheckReservedLock, fileControl, fileSectorSize, fileDeviceCharacteristics, shmMap, shmLock,
    shmBarrier, shmUnmap, nullptr, nullptr,
};

int open(sqlite3_vfs*, sqlite3_filename name, sqlite3_file* f, int flags, int* outFlags) {
    File* file = fileOf(f);
    file->base.pMethods = nullptr;
    file->emptyLog = false;
    file->sharedIndex = false;
    const int kind = flags & (SQLITE_OPEN_MAIN_DB | SQLITE_OPEN_MAIN_JOURNAL | SQLITE_OPEN_WAL | SQLITE_OPEN_TEMP_DB |
                              SQLITE_OPEN_TEMP_JOURNAL | SQLITE_OPEN_TRANSIENT_DB | SQLITE_OPEN_SUBJOURNAL |
                              SQLITE_OPEN_SUPER_JOURNAL);
    if (!name || (kind != SQLITE_OPEN_MAIN_DB && kind != SQLITE_OPEN_MAIN_JOURNAL && kind != SQLITE_OPEN_WAL))
        return SQLITE_CANTOPEN;
    if (kind == SQLITE_OPEN_WAL && !exists(name)) {
        file->emptyLog = true;
        file->base.pMethods = &kMethods;
        if (outFlags)
            *outFlags = SQLITE_OPEN_READONLY | SQLITE_OPEN_WAL;
        return SQLITE_OK;
    }
    if (notRegular(name))
        return SQLITE_CANTOPEN;
    const int readOnly = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE |
                                    SQLITE_OPEN_DELETEONCLOSE)) |
                         SQLITE_OPEN_READONLY;
    const int rc = g_system->xOpen(g_system, name, file->system(), readOnly, outFlags);
    if (rc != SQLITE_OK)
        return rc; // the system layer's file closed itself; pMethods stays null
    file->sharedIndex = kind == SQLITE_OPEN_MAIN_DB && exists(std::string(name) + "-shm");
    file->base.pMethods = &kMethods;
    return SQLITE_OK;
}

int refuseDelete(sqlite3_vfs*, const char*, int) {
    return SQLITE_IOERR_DELETE;
}

int access(sqlite3_vfs*, const char* name, int flags, int* out) {
    return g_system->xAccess(g_system, name, flags, out);
}

int fullPathname(sqlite3_vfs*, const char* name, int size, char* out) {
    return g_system->xFullPathname(g_system, name, size, out);
}

sqlite3_vfs g_layer;

} // namespace

const char* readOnlySqliteFiles() {
    static std::once_flag once;
    std::call_once(once, [] {
        g_system = sqlite3_vfs_find(nullptr);
        // The rest (randomness, time, sleep, loadable extensions) is the system layer's, which
        // ignores the layer it is called through.
        g_layer = *g_system;
        g_layer.pNext = nullptr;
        g_layer.zName = "scourmill-read-only";
        g_layer.szOsFile = static_cast<int>(sizeof(File)) + g_system->szOsFile;
        g_layer.xOpen = open;
        g_layer.xDelete = refuseDelete;
        g_layer.xAccess = access;
        g_layer.xFullPathname = fullPathname;
        sqlite3_vfs_register(&g_layer, 0);
    });
    return g_layer.zName;
}

} // namespace platform::linux
