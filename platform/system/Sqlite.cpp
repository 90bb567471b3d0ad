#include "system/Sqlite.h"

namespace platform {

namespace {

constexpr int kPrimaryCodeMask = 0xFF;

[[noreturn]] void Throw(sqlite3* connection, int result) {
    const int systemError = connection ? sqlite3_system_errno(connection) : 0;
    throw SqliteError{result & kPrimaryCodeMask, systemError};
}

} // namespace

SqliteStatement::SqliteStatement(sqlite3* connection, std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    const int result = sqlite3_prepare_v2(connection, sql.data(), static_cast<int>(sql.size()),
                                          &statement, nullptr);
    m_statement.reset(statement);
    if (result != SQLITE_OK) Throw(connection, result);
}

void SqliteStatement::Check(int result) const {
    if (result != SQLITE_OK) Throw(sqlite3_db_handle(m_statement.get()), result);
}

SqliteStatement& SqliteStatement::Bind(int index, std::int64_t number) {
    Check(sqlite3_bind_int64(m_statement.get(), index, number));
    return *this;
}

SqliteStatement& SqliteStatement::Bind(int index, std::string_view text) {
    // A null pointer would bind NULL instead of an empty text.
    const char* begin = text.empty() ? "" : text.data();
    Check(sqlite3_bind_text64(m_statement.get(), index, begin, text.size(), SQLITE_STATIC,
                              SQLITE_UTF8));
    return *this;
}

SqliteStatement& SqliteStatement::BindBytes(int index, std::string_view bytes) {
    const char* begin = bytes.empty() ? "" : bytes.data();
    Check(sqlite3_bind_blob64(m_statement.get(), index, begin, bytes.size(), SQLITE_STATIC));
    return *this;
}

bool SqliteStatement::Step() {
    const int result = sqlite3_step(m_statement.get());
    if (result == SQLITE_ROW) return true;
    if (result != SQLITE_DONE) Throw(sqlite3_db_handle(m_statement.get()), result);
    return false;
}

std::int64_t SqliteStatement::Integer(int column) const {
    return sqlite3_column_int64(m_statement.get(), column);
}

std::string SqliteStatement::Bytes(int column) const {
    const void* bytes = sqlite3_column_blob(m_statement.get(), column);
    const int count = sqlite3_column_bytes(m_statement.get(), column);
    if (!bytes) return {};
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(count)};
}

SqliteDatabase::SqliteDatabase(const std::string& fileName) : m_wait(fileName) {
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(fileName.c_str(), &connection,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_connection.reset(connection); // there is one even after most failures
    if (result != SQLITE_OK) Throw(connection, result);
    sqlite3_busy_handler(connection, OnBusy, this);
}

int SqliteDatabase::OnBusy(void* database, int /*attempt*/) {
    return static_cast<SqliteDatabase*>(database)->m_wait.GoesOn() ? 1 : 0;
}

SqliteStatement SqliteDatabase::Prepare(std::string_view sql) {
    return SqliteStatement(m_connection.get(), sql);
}

void SqliteDatabase::Run(std::string_view sql) {
    SqliteStatement statement = Prepare(sql);
    while (statement.Step()) {
    }
}

std::int64_t SqliteDatabase::LastInsertedRow() const {
    return sqlite3_last_insert_rowid(m_connection.get());
}

SqliteTransaction::SqliteTransaction(SqliteDatabase& database, Kind kind) : m_database(database) {
    m_database.Run(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN");
}

SqliteTransaction::~SqliteTransaction() {
    if (!m_isOpen) return;
    try {
        m_database.Run("ROLLBACK");
    } catch (const SqliteError&) {
        // Some failures have already undone it; closing the connection undoes the rest.
    }
}

void SqliteTransaction::Commit() {
    m_database.Run("COMMIT");
    m_isOpen = false;
}

} // namespace platform
