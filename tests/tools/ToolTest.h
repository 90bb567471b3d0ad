// What the tests of the tool have in common.
#pragma once

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include "support/RunTool.h"
#include "support/TemporaryHome.h"
#include "support/TestServer.h"

using namespace test_support;
using nlohmann::json;
using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr const char* kNobody = "http://127.0.0.1:1/"; // nothing listens there
