// Runs the command-line tool in-process and captures what it prints, over a per-user folder of
// the test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/app.h"
#include "macros/load_counter.h"
#include "xml/file_io.h"

namespace qm::cli::testing {

namespace fs = std::filesystem;

struct Result {
    int code;
    std::string out;
    std::string err;
};

inline Result RunTool(std::vector<std::string> args) {
    args.insert(args.begin(), "quillmark");
    std::vector<char*> argv;
    for (auto& s : args) argv.push_back(s.data());
    std::ostringstream out, err;
    int code = Run(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}

inline void SetHome(const std::string& value) {
#ifdef _WIN32
    _putenv_s("QUILLMARK_HOME", value.c_str());
#else
    setenv("QUILLMARK_HOME", value.c_str(), 1);
#endif
}

// Each test runs the tool over a fresh per-user folder of its own (not created) and keeps its
// input and output files in a fresh folder beside it (created); the home it found is put back
// afterwards.
class ToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        const char* base = std::getenv("QUILLMARK_HOME");
        saved_ = base != nullptr ? base : "";
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        home = (saved_.empty() ? fs::temp_directory_path() / "quillmark" : fs::path(saved_)) / "cli" /
               (std::string(info->test_suite_name()) + "." + info->name());
        files = home.string() + "-files";
        fs::remove_all(home);
        fs::remove_all(files);
        fs::create_directories(files);
        SetHome(home.string());
#ifdef _WIN32
        macros::MakeLoadCounter(home)->Write(0);  // one registry value for every home there
#endif
    }
    void TearDown() override { SetHome(saved_); }

    std::string File(const std::string& name) const { return (files / name).string(); }
    std::string WriteFile(const std::string& name, const std::string& bytes) const {
        io::WriteFileAtomically(File(name), bytes);
        return File(name);
    }

    fs::path home;
    fs::path files;

private:
    std::string saved_;
};

}  // namespace qm::cli::testing
