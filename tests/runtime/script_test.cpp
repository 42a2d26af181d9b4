// The script suite: every .qm file under tests/scripts is a macro whose leading comments state
// what its run must leave behind:
//
//   // expect: $name = <the variable's description>   (arrays on one line: line breaks and the
//                                                        tabs after them read as one blank)
//   // expect-error: <the whole error message>         (\r, \n and \t stand for themselves)
//   // expect-outcome: finished | exited | cancelled | refused | failed
//   // answer: NAME=VALUE                               (a dialog box control's answer)
//
// A script without expect-error or expect-outcome must finish. Each file is one test.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "runtime/run_driver.h"
#include "run_harness.h"
#include "xml/file_io.h"

namespace qm::test {
namespace {

namespace fs = std::filesystem;

struct ScriptExpectations {
    std::vector<std::pair<std::string, std::string>> variables;  // name, description
    std::optional<std::string> error;
    std::optional<std::string> outcome;
    std::map<std::u16string, std::u16string> answers;
};

std::string Unescape(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            const char next = text[i + 1];
            if (next == 'r' || next == 'n' || next == 't') {
                out += next == 'r' ? '\r' : next == 'n' ? '\n' : '\t';
                ++i;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

// Line breaks followed by tabs become one blank, so that an array's description fits on a line.
std::string OneLine(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            i += 2;
            while (i < text.size() && text[i] == '\t') ++i;
            --i;
            out += ' ';
            continue;
        }
        out += text[i];
    }
    return out;
}

ScriptExpectations ReadExpectations(const std::string& text) {
    ScriptExpectations expected;
    std::istringstream lines(text);
    std::string line;
    auto take = [&](const std::string& prefix, std::string& rest) {
        if (line.rfind(prefix, 0) != 0) return false;
        rest = line.substr(prefix.size());
        return true;
    };
    while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::string rest;
        if (take("// expect: $", rest)) {
            const std::size_t equals = rest.find(" = ");
            if (equals == std::string::npos) {
                ADD_FAILURE() << "malformed expectation: " << line;
                continue;
            }
            expected.variables.emplace_back(rest.substr(0, equals), rest.substr(equals + 3));
        } else if (take("// expect-error: ", rest)) {
            expected.error = Unescape(rest);
        } else if (take("// expect-outcome: ", rest)) {
            expected.outcome = rest;
        } else if (take("// answer: ", rest)) {
            const std::size_t equals = rest.find('=');
            expected.answers[FromUtf8(rest.substr(0, equals))] = FromUtf8(rest.substr(equals + 1));
        }
    }
    return expected;
}

const char* OutcomeName(RunOutcome outcome) {
    switch (outcome) {
        case RunOutcome::NotFound: return "not found";
        case RunOutcome::Finished: return "finished";
        case RunOutcome::Exited: return "exited";
        case RunOutcome::Refused: return "refused";
        case RunOutcome::Failed: return "failed";
        case RunOutcome::Cancelled: return "cancelled";
    }
    return "?";
}

std::vector<std::string> ScriptFiles() {
    std::vector<std::string> files;
    for (const auto& entry : fs::directory_iterator(fs::path(QUILLMARK_TEST_DIR) / "scripts")) {
        if (entry.path().extension() == ".qm") files.push_back(entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

class Script : public ::testing::TestWithParam<std::string> {};

TEST_P(Script, RunsAsItsCommentsSay) {
    const fs::path path = fs::path(QUILLMARK_TEST_DIR) / "scripts" / GetParam();
    const std::string text = io::ReadFileBytes(path);
    const ScriptExpectations expected = ReadExpectations(text);
    ASSERT_TRUE(!expected.variables.empty() || expected.error || expected.outcome) << "the script states nothing";

    std::shared_ptr<M2::Macro> macro = ReadMacro(FromUtf8(text), GetParam());
    macro->name = FromUtf8(path.stem().string());
    FakeUi ui;
    ui.dialogBoxes.answers = expected.answers;
    MacroRunDriver driver(ui);
    RunEnvironment environment;
    RunResult result = driver.runMacro(macro.get(), RunSettings{}, environment);

    const std::string outcome =
        expected.outcome ? *expected.outcome : expected.error ? std::string("failed") : std::string("finished");
    EXPECT_EQ(OutcomeName(result.outcome), outcome) << ToUtf8(result.errorMessage);
    if (expected.error) {
        EXPECT_EQ(ToUtf8(result.errorMessage), *expected.error);
    }
    for (const auto& [name, description] : expected.variables) {
        const MacroValue* value = result.variables.variables().FindValue(FromUtf8(name));
        const std::string actual = value ? OneLine(ToUtf8(value->Describe())) : std::string("<empty>");
        EXPECT_EQ(actual, description) << "$" << name;
    }
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = fs::path(info.param).stem().string();
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Scripts, Script, ::testing::ValuesIn(ScriptFiles()), TestName);

}  // namespace
}  // namespace qm::test
