#include "system/RegistrySchema.h"

#include "system/RegistryPath.h"
#include "system/RegistrySeed.h"

namespace platform {

namespace {

constexpr std::int64_t kSchemaVersion = 1;
constexpr RegistryKeyId kAboveRoots = 0;

// NOCASE compares ASCII letters without regard to case and keeps the spelling.
constexpr std::string_view kCreateKeys =
    "CREATE TABLE keys(id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, "
    "name TEXT NOT NULL COLLATE NOCASE, UNIQUE(parent, name))";
constexpr std::string_view kCreateEntries =
    "CREATE TABLE entries(key INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE, "
    "type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY(key, name)) WITHOUT ROWID";
constexpr std::string_view kTreeOf = "WITH RECURSIVE tree(id, parent, name, depth) AS ("
                                     "SELECT id, parent, name, 0 FROM keys WHERE id = ?1 UNION ALL "
                                     "SELECT keys.id, keys.parent, keys.name, tree.depth + 1 "
                                     "FROM tree JOIN keys ON keys.parent = tree.id) ";

std::int64_t SchemaVersion(SqliteDatabase& database) {
    SqliteStatement statement = database.Prepare("PRAGMA user_version");
    return statement.Step() ? statement.Integer(0) : 0;
}

std::optional<RegistryKeyId> FindChildKey(SqliteDatabase& database, RegistryKeyId parent,
                                          std::string_view name) {
    SqliteStatement statement =
        database.Prepare("SELECT id FROM keys WHERE parent = ?1 AND name = ?2");
    statement.Bind(1, parent).Bind(2, name);
    if (!statement.Step()) return std::nullopt;
    return statement.Integer(0);
}

void Seed(SqliteDatabase& database) {
    for (const RegistrySeedEntry& entry : kRegistrySeed) {
        const auto path = SplitRegistryPath(entry.key).value();
        const RegistryKeyId key = MakeSureOfRegistryKey(database, HKEY_CLASSES_ROOT, path);
        PutRegistryValue(database, key, entry.name, {REG_SZ, entry.text});
    }
}

} // namespace

void MakeSureOfRegistrySchema(SqliteDatabase& database) {
    if (SchemaVersion(database) == kSchemaVersion) return;
    SqliteTransaction transaction(database, SqliteTransaction::Kind::write);
    const std::int64_t version = SchemaVersion(database); // another process may have been faster
    if (version == kSchemaVersion) return;
    if (version != 0) throw SqliteError{SQLITE_SCHEMA, 0}; // a later version's, not ours to touch
    database.Run(kCreateKeys);
    database.Run(kCreateEntries);
    for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE})
        MakeSureOfRegistryKey(database, root, {});
    Seed(database);
    database.Run("PRAGMA user_version = 1");
    transaction.Commit();
}

std::optional<RegistryKeyId> FindRegistryKey(SqliteDatabase& database, HKEY root,
                                             const std::vector<std::string>& path) {
    auto key = FindChildKey(database, kAboveRoots, RegistryRootName(root));
    for (const std::string& name : path) {
        if (!key) break;
        key = FindChildKey(database, *key, name);
    }
    return key;
}

RegistryKeyId MakeSureOfChildKey(SqliteDatabase& database, RegistryKeyId parent,
                                 std::string_view name) {
    if (const auto key = FindChildKey(database, parent, name)) return *key;
    database.Prepare("INSERT INTO keys(parent, name) VALUES(?1, ?2)")
        .Bind(1, parent)
        .Bind(2, name)
        .Step();
    return database.LastInsertedRow();
}

RegistryKeyId MakeSureOfRegistryKey(SqliteDatabase& database, HKEY root,
                                    const std::vector<std::string>& path) {
    RegistryKeyId key = MakeSureOfChildKey(database, kAboveRoots, RegistryRootName(root));
    for (const std::string& name : path)
        key = MakeSureOfChildKey(database, key, name);
    return key;
}

std::vector<RegistryKeyRow> RegistryTree(SqliteDatabase& database, RegistryKeyId top) {
    const std::string sql =
        std::string(kTreeOf) + "SELECT id, parent, name FROM tree ORDER BY depth";
    SqliteStatement statement = database.Prepare(sql);
    statement.Bind(1, top);
    std::vector<RegistryKeyRow> rows;
    while (statement.Step())
        rows.push_back({statement.Integer(0), statement.Integer(1), statement.Bytes(2)});
    return rows;
}

void DeleteRegistryTree(SqliteDatabase& database, RegistryKeyId top) {
    for (const char* rest : {"DELETE FROM entries WHERE key IN (SELECT id FROM tree)",
                             "DELETE FROM keys WHERE id IN (SELECT id FROM tree)"})
        database.Prepare(std::string(kTreeOf) + rest).Bind(1, top).Step();
}

std::optional<RegistryValue> FindRegistryValue(SqliteDatabase& database, RegistryKeyId key,
                                               std::string_view name) {
    SqliteStatement statement =
        database.Prepare("SELECT type, data FROM entries WHERE key = ?1 AND name = ?2");
    statement.Bind(1, key).Bind(2, name);
    if (!statement.Step()) return std::nullopt;
    return RegistryValue{static_cast<DWORD>(statement.Integer(0)), statement.Bytes(1)};
}

void PutRegistryValue(SqliteDatabase& database, RegistryKeyId key, std::string_view name,
                      const RegistryValue& value) {
    database
        .Prepare("INSERT INTO entries(key, name, type, data) VALUES(?1, ?2, ?3, ?4) "
                 "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data")
        .Bind(1, key)
        .Bind(2, name)
        .Bind(3, std::int64_t{value.type})
        .BindBytes(4, value.data)
        .Step();
}

void CopyRegistryValues(SqliteDatabase& database, RegistryKeyId source, RegistryKeyId target) {
    database
        .Prepare("INSERT INTO entries(key, name, type, data) "
                 "SELECT ?2, name, type, data FROM entries WHERE key = ?1 "
                 "ON CONFLICT DO UPDATE SET type = excluded.type, data = excluded.data")
        .Bind(1, source)
        .Bind(2, target)
        .Step();
}

} // namespace platform
