// The tables of the registry's database and the operations on single keys and values in them.
// Everything runs in the caller's transaction; failures are thrown as SqliteError.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <platform/Registry.h>

#include "system/Sqlite.h"

namespace platform {

using RegistryKeyId = std::int64_t;

struct RegistryKeyRow {
    RegistryKeyId id;
    RegistryKeyId parent;
    std::string name;
};

// Makes the tables, the roots and the first entries in an empty database.
void MakeSureOfRegistrySchema(SqliteDatabase& database);

std::optional<RegistryKeyId> FindRegistryKey(SqliteDatabase& database, HKEY root,
                                             const std::vector<std::string>& path);
RegistryKeyId MakeSureOfRegistryKey(SqliteDatabase& database, HKEY root,
                                    const std::vector<std::string>& path);
RegistryKeyId MakeSureOfChildKey(SqliteDatabase& database, RegistryKeyId parent,
                                 std::string_view name);
// The key and all keys below it, each behind its parent.
std::vector<RegistryKeyRow> RegistryTree(SqliteDatabase& database, RegistryKeyId top);
void DeleteRegistryTree(SqliteDatabase& database, RegistryKeyId top);

std::optional<RegistryValue> FindRegistryValue(SqliteDatabase& database, RegistryKeyId key,
                                               std::string_view name);
void PutRegistryValue(SqliteDatabase& database, RegistryKeyId key, std::string_view name,
                      const RegistryValue& value);
// Values of the same name are overwritten.
void CopyRegistryValues(SqliteDatabase& database, RegistryKeyId source, RegistryKeyId target);

} // namespace platform
