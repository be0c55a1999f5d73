#include "browsers/Sqlite.h"

#include <cctype>
#include <sqlite3.h>
#include <utility>

namespace browsers {

SqliteStatement::SqliteStatement(sqlite3* db, const std::string& sql) {
    if (db && sqlite3_prepare_v2(db, sql.c_str(), static_cast<int>(sql.size()), &m_stmt, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
    }
    m_failed = m_stmt == nullptr;
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_stmt);
}

SqliteStatement::SqliteStatement(SqliteStatement&& other) noexcept
    : m_stmt(std::exchange(other.m_stmt, nullptr)), m_failed(other.m_failed) {}

SqliteStatement& SqliteStatement::operator=(SqliteStatement&& other) noexcept {
    if (this != &other) {
        sqlite3_finalize(m_stmt);
        m_stmt = std::exchange(other.m_stmt, nullptr);
        m_failed = other.m_failed;
    }
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, std::int64_t value) {
    if (m_stmt && sqlite3_bind_int64(m_stmt, index, value) != SQLITE_OK)
        m_failed = true;
    return *this;
}

SqliteStatement& SqliteStatement::bind(int index, const std::string& value) {
    if (m_stmt && sqlite3_bind_text(m_stmt, index, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT) != SQLITE_OK)
        m_failed = true;
    return *this;
}

bool SqliteStatement::step() {
    if (!m_stmt || m_failed)
        return false;
    const int rc = sqlite3_step(m_stmt);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        m_failed = true;
    return false;
}

bool SqliteStatement::run() {
    while (step()) {
    }
    return !m_failed;
}

void SqliteStatement::reset() {
    if (!m_stmt)
        return;
    sqlite3_reset(m_stmt);
    sqlite3_clear_bindings(m_stmt);
    m_failed = false;
}

std::int64_t SqliteStatement::integer(int column) const {
    return m_stmt ? sqlite3_column_int64(m_stmt, column) : 0;
}

std::string SqliteStatement::text(int column) const {
    if (!m_stmt)
        return {};
    const auto* data = sqlite3_column_text(m_stmt, column);
    return data ? std::string(reinterpret_cast<const char*>(data), static_cast<std::size_t>(sqlite3_column_bytes(m_stmt, column)))
                : std::string();
}

bool SqliteStatement::isNull(int column) const {
    return !m_stmt || sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

std::unique_ptr<SqliteDb> SqliteDb::open(const std::string& name, int flags, const char* vfs, int busyMillis) {
    sqlite3* db = nullptr;
    // No SQLITE_OPEN_CREATE: a missing store stays missing. NOFOLLOW: a database name that is a
    // link is refused rather than followed somewhere else.
    if (sqlite3_open_v2(name.c_str(), &db, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW, vfs) != SQLITE_OK) {
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_busy_timeout(db, busyMillis);
    return std::unique_ptr<SqliteDb>(new SqliteDb(db));
}

std::unique_ptr<SqliteDb> SqliteDb::open(const std::string& path, int busyMillis) {
    return open(path, SQLITE_OPEN_READWRITE, nullptr, busyMillis);
}

std::unique_ptr<SqliteDb> SqliteDb::openReadOnly(const std::string& path, int busyMillis, const char* vfs) {
    // As a URI, so that an existing -shm is opened for reading only (readonly_shm). Every byte but
    // the unreserved ones is escaped, so that no '?', '#' or '%' in a folder name reads as syntax.
    std::string uri = path.starts_with('/') ? "file://" : "file:";
    static const char hex[] = "0123456789ABCDEF";
    for (const char c : path) {
        const auto u = static_cast<unsigned char>(c);
        if (std::isalnum(u) || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
            uri += c;
        } else {
            uri += '%';
            uri += hex[u >> 4];
            uri += hex[u & 0xF];
        }
    }
    uri += "?mode=ro&readonly_shm=1";
    auto db = open(uri, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, vfs, busyMillis);
    if (db) // the layer would refuse a closing checkpoint's writes anyway; no need to ask for them
        sqlite3_db_config(db->m_db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    return db;
}

SqliteDb::~SqliteDb() {
    // A statement still alive keeps the connection until it is finalized, rather than leaking it.
    sqlite3_close_v2(m_db);
}

bool SqliteDb::exec(const std::string& sql) {
    return sqlite3_exec(m_db, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<std::string> SqliteDb::value(const std::string& sql) {
    SqliteStatement st = prepare(sql);
    if (!st.step())
        return std::nullopt;
    return st.text(0);
}

bool SqliteDb::hasTable(const std::string& table) {
    SqliteStatement st = prepare("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?");
    st.bind(1, table);
    return st.step();
}

bool SqliteDb::hasColumn(const std::string& table, const std::string& column) {
    SqliteStatement st = prepare("SELECT 1 FROM pragma_table_info(?) WHERE name = ?");
    st.bind(1, table).bind(2, column);
    return st.step();
}

std::string SqliteDb::lastError() const {
    return sqlite3_errmsg(m_db);
}

bool SqliteDb::lastFailureWasLock() const {
    const int code = sqlite3_errcode(m_db) & 0xff;
    return code == SQLITE_BUSY || code == SQLITE_LOCKED;
}

} // namespace browsers
