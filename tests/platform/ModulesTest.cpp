// Shared libraries loaded at run time.
#include "platform/Modules.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace RynCommon::platform {
namespace {

const char ANCHOR = 0;

TEST(ModulesTest, LoadsFindsAndUnloads) {
    void* const module = loadModule("libz.so.1");
    ASSERT_NE(module, nullptr);
    void* const symbol = findSymbol(module, "zlibVersion");
    EXPECT_NE(symbol, nullptr);
    EXPECT_EQ(findSymbol(module, "no such symbol"), nullptr);
    EXPECT_EQ(findSymbol(module, nullptr), nullptr);
    EXPECT_NE(getModulePath(symbol).find("/libz.so"), std::string::npos);
    EXPECT_TRUE(unloadModule(module));
}

TEST(ModulesTest, RefusesWhatIsNoModule) {
    EXPECT_EQ(loadModule(""), nullptr);
    EXPECT_EQ(loadModule("/no/such/module.so"), nullptr);
    EXPECT_EQ(loadModule(std::string("libz.so.1\0", 10)), nullptr);
    EXPECT_EQ(findSymbol(nullptr, "malloc"), nullptr);
    EXPECT_FALSE(unloadModule(nullptr));
}

TEST(ModulesTest, FindsTheRunningProgram) {
    EXPECT_EQ(getModulePath(&ANCHOR), std::filesystem::read_symlink("/proc/self/exe").string());
    EXPECT_EQ(getModulePath(nullptr), "");
}

}  // namespace
}  // namespace RynCommon::platform
