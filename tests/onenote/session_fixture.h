// A small notebook folder written for each test, and a session over it: two notebooks, a section
// group, five pages. The first page holds a title, an outline with nested, tagged, listed
// paragraphs, a table and an image in a paragraph, and an image on the page; the second holds
// page settings and the other kinds of paragraph content (recording, ink, an embedded file).
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/error.h"
#include "core/evaluator.h"
#include "onenote/notebook_folder.h"
#include "onenote/session.h"

namespace qm::onenote::testing {

// The OneNote-form ID the test notebook gives to number n ("{00000000-...-00000000000n}{1}{B0}").
std::u16string Id(int n);

// The hierarchy IDs of the test notebook.
enum TestIds : int {
    kWork = 1,
    kIdeas = 2,
    kFirst = 3,
    kSecond = 4,
    kArchive = 5,
    kOld = 6,
    kOldPage = 7,
    kHome = 8,
    kRecipes = 9,
    kCake = 10,
};

void WriteTestNotebook(const std::filesystem::path& folder);

class LogCapture final : public LogSink {
public:
    void Write(std::u16string_view text) override { text_ += text; }
    // The lines written since the last call (each line begins with "\r\n"; the first is dropped).
    std::vector<std::u16string> TakeLines();
    std::u16string Take() { return std::exchange(text_, std::u16string()); }

private:
    std::u16string text_;
};

class SessionTest : public ::testing::Test {
protected:
    void SetUp() override;

    // Everything a query finds, as objects.
    std::vector<ObjectRef> Query(std::u16string_view type, const ObjectRef& scope);
    ObjectRef Root();
    // The first object of the type under the root whose `text` (or `name`) is the text.
    ObjectRef Find(std::u16string_view type, std::u16string_view text);
    MacroValue Get(const ObjectRef& object, std::u16string_view name, bool quiet = false);
    void Set(const ObjectRef& object, std::u16string_view name, MacroValue value);
    // The message of the MacroError the call raises; empty when it raises none.
    template <class F>
    static std::u16string ErrorOf(F&& call) {
        try {
            call();
        } catch (const MacroError& e) {
            return e.message();
        }
        return u"";
    }

    std::filesystem::path dir_;
    std::unique_ptr<NotebookFolder> folder_;
    std::unique_ptr<Session> session_;
    LogCapture log_;
};

}  // namespace qm::onenote::testing
