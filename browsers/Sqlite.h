#pragma once
// A thin owner of SQLite connections and statements for the history backends: the browsers'
// databases are opened as they are (never created), for writing only by the calls that change
// them, and every failure is a false or an empty result, never an exception.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace browsers {

class SqliteStatement {
public:
    SqliteStatement() = default;
    SqliteStatement(sqlite3* db, const std::string& sql);
    ~SqliteStatement();
    SqliteStatement(SqliteStatement&& other) noexcept;
    SqliteStatement& operator=(SqliteStatement&& other) noexcept;
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    explicit operator bool() const { return m_stmt != nullptr; }
    SqliteStatement& bind(int index, std::int64_t value);
    SqliteStatement& bind(int index, const std::string& value);
    /// Steps once: true while it gives a row. A failure ends it like the last row does; failed()
    /// tells the two apart.
    bool step();
    /// Steps to the end; true when it got there without an error.
    bool run();
    bool failed() const { return m_failed; }
    /// Makes the statement ready to run again, bindings cleared.
    void reset();
    std::int64_t integer(int column) const;
    std::string text(int column) const;
    bool isNull(int column) const;

private:
    sqlite3_stmt* m_stmt = nullptr;
    bool m_failed = false;
};

class SqliteDb {
public:
    /// Opens an existing database file for reading and writing; null when it cannot be opened.
    /// Waits up to `busyMillis` for another process's lock before a statement gives up.
    static std::unique_ptr<SqliteDb> open(const std::string& path, int busyMillis);
    /// Opens an existing database file for reading through `vfs`, the name of a SQLite file layer
    /// that cannot change any file (the system's, such as platform/linux's ReadOnlySqliteFiles):
    /// the database, its journal or log, its -shm and its folder stay byte for byte and name for
    /// name as they were. Waits as open() does.
    static std::unique_ptr<SqliteDb> openReadOnly(const std::string& path, int busyMillis, const char* vfs);
    ~SqliteDb();
    SqliteDb(const SqliteDb&) = delete;
    SqliteDb& operator=(const SqliteDb&) = delete;

    /// Runs one or more statements without results; true when all succeeded.
    bool exec(const std::string& sql);
    SqliteStatement prepare(const std::string& sql) { return SqliteStatement(m_db, sql); }
    /// The first column of the first row of `sql`, as text; empty when there is none.
    std::optional<std::string> value(const std::string& sql);
    bool hasTable(const std::string& table);
    bool hasColumn(const std::string& table, const std::string& column);
    /// Whether the last call failed because another connection holds a lock.
    bool lastFailureWasLock() const;
    /// SQLite's words for the last failure.
    std::string lastError() const;
    sqlite3* handle() const { return m_db; }

private:
    explicit SqliteDb(sqlite3* db) : m_db(db) {}
    static std::unique_ptr<SqliteDb> open(const std::string& name, int flags, const char* vfs, int busyMillis);
    sqlite3* m_db;
};

} // namespace browsers
