// Owners of an SQLite connection, its statements and transactions. Used on one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "system/FileWait.h"

namespace platform {

// Thrown by everything below; stays inside the registry, which turns it into an error number.
struct SqliteError {
    int code = SQLITE_ERROR; // primary result code
    int systemError = 0;     // errno, where the system was the cause
};

class SqliteStatement {
public:
    SqliteStatement(sqlite3* connection, std::string_view sql);

    // Parameters count from 1. Texts and bytes must live until the statement is reset or gone.
    SqliteStatement& Bind(int index, std::int64_t number);
    SqliteStatement& Bind(int index, std::string_view text);
    SqliteStatement& BindBytes(int index, std::string_view bytes);
    // True when there is a row; its columns count from 0.
    bool Step();
    std::int64_t Integer(int column) const;
    std::string Bytes(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    void Check(int result) const;

    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

class SqliteDatabase {
public:
    // Opens an existing file. What other connections lock is waited for as FileWait has it, all
    // statements together.
    explicit SqliteDatabase(const std::string& fileName);
    SqliteDatabase(const SqliteDatabase&) = delete;
    SqliteDatabase& operator=(const SqliteDatabase&) = delete;

    SqliteStatement Prepare(std::string_view sql);
    // Runs one statement without parameters.
    void Run(std::string_view sql);
    std::int64_t LastInsertedRow() const;
    // A change has reached the file: nobody holds it.
    void ForgetWaits() const { m_wait.Forget(); }

private:
    struct Close {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };
    static int OnBusy(void* database, int attempt);

    FileWait m_wait;
    std::unique_ptr<sqlite3, Close> m_connection;
};

// Undone at its end unless it was committed.
class SqliteTransaction {
public:
    enum class Kind { read, write };
    SqliteTransaction(SqliteDatabase& database, Kind kind);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;
    void Commit();

private:
    SqliteDatabase& m_database;
    bool m_isOpen = true;
};

} // namespace platform
