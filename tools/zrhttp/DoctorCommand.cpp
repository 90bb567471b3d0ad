#include <filesystem>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <curl/curl.h>
#include <platform/BrowserSurroundings.h>
#include <platform/Registry.h>
#include <platform/Settings.h>
#include <platform/UserPaths.h>

#include "zrhttp/BrowserCheck.h"
#include "zrhttp/Commands.h"
#include "zrhttp/Diagnosis.h"
#include "zrhttp/ExitStatus.h"
#include "zrhttp/LibraryVersions.h"
#include "zrhttp/Terminal.h"

namespace zrhttp {
namespace {

namespace fs = std::filesystem;

std::string Text(const CString& text) {
    return std::string(text.View());
}

bool CanRead(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

void CheckSettings(Diagnosis& diagnosis) {
    diagnosis.Section("Settings");
    for (const platform::Setting& setting : platform::AllSettings())
        diagnosis.Fact(Text(setting.name), Text(setting.value), Text(setting.source));
    for (const char* name : {"ZRHTTP_CONTROL", "ZRHTTP_APPLICATION"}) {
        const std::string engine = Text(platform::GetSetting(name).value);
        if (engine != "builtin" && engine != "chromium")
            diagnosis.Problem(std::string(name) + " is '" + engine + "'",
                              "Set it to builtin or chromium, or unset it.");
    }
}

// The directory itself or, while it does not exist, the nearest one above that does.
fs::path NearestExisting(fs::path path) {
    std::error_code ignored;
    while (!fs::exists(path, ignored) && path.has_parent_path() && path != path.parent_path())
        path = path.parent_path();
    return path;
}

void CheckDirectory(Diagnosis& diagnosis, const std::string& name, const std::string& path) {
    std::error_code ignored;
    const fs::path nearest = NearestExisting(path);
    const bool exists = nearest == fs::path(path);
    const bool isUsable =
        fs::is_directory(nearest, ignored) && access(nearest.c_str(), R_OK | W_OK | X_OK) == 0;
    const char* state = !isUsable ? "cannot be used" : exists ? "writable" : "made when needed";
    diagnosis.Fact(name, path, state);
    if (!isUsable)
        diagnosis.Problem("The " + name + " directory cannot be used: " + path,
                          "Give yourself read and write access to " + nearest.string() +
                              ", or set ZRHTTP_HOME to a directory of yours.");
}

void CheckDirectories(Diagnosis& diagnosis) {
    diagnosis.Section("Directories");
    CheckDirectory(diagnosis, "settings", Text(platform::SettingsDirectory()));
    CheckDirectory(diagnosis, "data", Text(platform::DataDirectory()));
    CheckDirectory(diagnosis, "log", Text(platform::LogDirectory()));
    CString driveC;
    platform::LocalFileName("c:\\", driveC);
    CheckDirectory(diagnosis, "drive c:", Text(driveC));
}

void CheckRegistry(Diagnosis& diagnosis) {
    diagnosis.Section("Registry");
    const std::string file = Text(platform::RegistryFileName());
    auto& store = platform::Current<platform::RegistryStore>();
    const DWORD plain =
        store.KeyExists(HKEY_CLASSES_ROOT, "MIME\\Database\\Content Type\\text/plain");
    const DWORD html =
        store.KeyExists(HKEY_CLASSES_ROOT, "MIME\\Database\\Content Type\\text/html");
    const bool isOpen = plain == ERROR_SUCCESS || plain == ERROR_FILE_NOT_FOUND;
    const bool hasTypes = plain == ERROR_SUCCESS && html == ERROR_SUCCESS;
    diagnosis.Fact("file", file, isOpen ? "opens" : "cannot be opened");
    diagnosis.Fact("MIME database", hasTypes ? "text/plain, text/html" : "incomplete");
    if (!isOpen)
        diagnosis.Problem(
            "The registry cannot be opened (system error " + std::to_string(plain) + "): " + file,
            plain == ERROR_BUSY ? "Another program keeps it locked; end that program."
                                : "Check the permissions of the file and its directory.");
    else if (!hasTypes)
        diagnosis.Problem("The MIME database lacks text/plain or text/html.",
                          "Move " + file + " away; a new one is made with both.");
}

void CheckCertificates(Diagnosis& diagnosis) {
    diagnosis.Section("Trusted certificates");
    const curl_version_info_data* curl = curl_version_info(CURLVERSION_NOW);
    const std::string file = curl->cainfo ? curl->cainfo : "";
    const std::string folder = curl->capath ? curl->capath : "";
    const bool isFound = CanRead(file) || CanRead(folder);
    diagnosis.Fact("system", CanRead(file) ? file : folder, isFound ? "found" : "missing");
    if (!isFound)
        diagnosis.Problem("The system's trusted certificates are missing; no https page can load.",
                          "Install the package ca-certificates.");
    const std::string further = Text(platform::GetSetting("ZRHTTP_CA_FILE").value);
    if (further.empty()) return;
    const std::string problem = Text(platform::CertificateFileProblem());
    diagnosis.Fact("ZRHTTP_CA_FILE", further, problem.empty() ? "found" : "cannot be used");
    if (!problem.empty())
        diagnosis.Problem("No https page can load: " + problem, "Correct or unset ZRHTTP_CA_FILE.");
}

void ShowSurroundings(Diagnosis& diagnosis) {
    diagnosis.Section("Libraries");
    for (const LibraryVersion& library : LibraryVersions())
        diagnosis.Fact(library.name, library.version);
    diagnosis.Section("Surroundings");
    const std::string wrapper =
        Text(platform::DataDirectory()) + "/group2/module15/ZrMwMApiWrapper.dll";
    diagnosis.Fact("protected-mode query", wrapper,
                   CanRead(wrapper) ? "found" : "not there: the answer is always no");
}

Diagnosis Examine() {
    Diagnosis diagnosis;
    CheckSettings(diagnosis);
    CheckDirectories(diagnosis);
    CheckRegistry(diagnosis);
    CheckCertificates(diagnosis);
    CheckBrowser(diagnosis);
    ShowSurroundings(diagnosis);
    return diagnosis;
}

} // namespace

void AddDoctorCommand(CLI::App& application, int& exitStatus) {
    auto* command = application.add_subcommand("doctor", "Check that everything needed is there");
    command->callback([&exitStatus] {
        const Diagnosis diagnosis = Examine();
        WriteOutput("zrhttp " ZRHTTP_VERSION "\n\n" + diagnosis.Text());
        exitStatus = diagnosis.IsHealthy() ? kSuccess : kFailure;
    });
}

} // namespace zrhttp
