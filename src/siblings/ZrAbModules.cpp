#include "siblings/ZrAbModules.h"

#include <filesystem>

#include <platform/Diagnostics.h>
#include <platform/UserPaths.h>

namespace {

// With a separator at its end; empty for a directory that is missing or cannot be read.
CString ReadableDirectory(const CString& strDirectory) {
    if (platform::IsReadableDirectory(strDirectory)) return strDirectory + "/";
    std::error_code error;
    const auto kind = std::filesystem::status(strDirectory.GetString(), error).type();
    if (kind != std::filesystem::file_type::not_found)
        platform::ReportDiagnostic(platform::Severity::failure,
                                   "The directory " + strDirectory + " cannot be read.");
    return CString();
}

} // namespace

CString CZrAbModules::GetSettingsPath(EZrAbAppGroup eGroup, int /*nReserved*/) {
    if (eGroup < eAppGroup_1) return CString();
    return ReadableDirectory(platform::SettingsDirectory());
}

CString CZrAbModules::GetModuleStaticDataPath(EZrAbAppGroup eGroup, EZrAbModule eModule,
                                              int /*nReserved*/) {
    CString below;
    below.Format("/group%d/module%d", static_cast<int>(eGroup), static_cast<int>(eModule));
    return ReadableDirectory(platform::DataDirectory() + below);
}
