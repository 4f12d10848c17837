// What a test takes of the system for a while: a folder, a variable of the environment.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

namespace RynCommon {

/// A folder of its own, removed with all that is in it.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& parent = testing::TempDir()) {
        std::string pattern = parent + "ryn-test-XXXXXX";
        folder_ = mkdtemp(pattern.data());
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() { std::filesystem::remove_all(folder_); }

    const std::string& path() const { return folder_; }
    std::string path(const std::string& name) const { return folder_ + "/" + name; }
    /// Writes the file and returns its URI.
    std::string write(const std::string& name, const std::string& content) const {
        std::ofstream(path(name), std::ios::binary) << content;
        return "file://" + path(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    std::string folder_;
};

/// Sets (or, without a value, removes) a variable of the environment for a while.
class ScopedVariable {
public:
    explicit ScopedVariable(const char* name, const std::optional<std::string>& value = {})
        : name_(name) {
        if (const char* const previous = std::getenv(name)) previous_ = previous;
        set(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { set(previous_); }

private:
    void set(const std::optional<std::string>& value) const {
        value ? setenv(name_, value->c_str(), 1) : unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> previous_;
};

}  // namespace RynCommon
