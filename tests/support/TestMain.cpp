// The main function of every test program. It keeps the tests away from the user's own files and
// fails the run when they leave a process or a file behind.
#include <iostream>

#include <gmock/gmock.h>

#include "support/Leftovers.h"
#include "support/TemporaryHome.h"

namespace {

int RunInTemporaryHome() {
    const test_support::ProfileDirectories profiles;
    test_support::TemporaryHome home;
    int status = RUN_ALL_TESTS();
    for (const std::string& process : test_support::RunningChildren()) {
        std::cerr << "The tests left a process running: " << process << '\n';
        status = 1;
    }
    for (const std::string& directory : profiles.LeftBehind()) {
        std::cerr << "The tests left a browser's profile behind: " << directory << '\n';
        status = 1;
    }
    if (!home.Remove()) {
        std::cerr << "The tests left a directory that cannot be removed: " << home.Path() << '\n';
        status = 1;
    }
    return status;
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    test_support::AdoptOrphans();
    return RunInTemporaryHome();
}
