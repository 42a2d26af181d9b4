#include "ui/terminal_ui.h"

#include <cstdio>
#include <string>

#include "core/format.h"
#include "core/text.h"
#include "core/value.h"
#include "runtime/messages.h"
#include "ui/messages.h"

namespace qm::ui {
namespace {

std::u16string Lower(std::u16string_view text) {
    std::u16string lower(text);
    for (char16_t& c : lower) c = LowerCaseUnit(c);
    return lower;
}

// "true"/"false" for the spellings of yes and no; nothing for anything else.
std::optional<std::u16string> YesNo(std::u16string_view reply) {
    const std::u16string word = Lower(reply);
    if (word == u"y" || word == u"yes" || word == u"true" || word == u"1") return u"true";
    if (word == u"n" || word == u"no" || word == u"false" || word == u"0") return u"false";
    return std::nullopt;
}

std::u16string Trimmed(std::u16string text) {
    while (!text.empty() && (text.back() == u'\r' || text.back() == u' ' || text.back() == u'\t')) text.pop_back();
    std::size_t start = 0;
    while (start < text.size() && (text[start] == u' ' || text[start] == u'\t')) ++start;
    return text.substr(start);
}

// The value an empty reply keeps in a drop-down.
std::u16string DropDownDefault(const DialogControl& control) {
    for (const auto& value : control.possibleValues) {
        if (value == control.initialValue) return value;
    }
    return control.possibleValues.empty() ? std::u16string() : control.possibleValues.front();
}

std::u16string_view KindName(DialogControlKind kind) {
    switch (kind) {
        case DialogControlKind::TextBox: return msg::kTextBoxKind;
        case DialogControlKind::CheckBox: return msg::kCheckBoxKind;
        case DialogControlKind::DropDown: return msg::kDropDownKind;
        case DialogControlKind::Label: break;
    }
    return {};
}

}  // namespace

TerminalUi::TerminalUi(TerminalOptions options, std::istream& in, std::ostream& err)
    : options_(std::move(options)), in_(in), err_(err) {}

void TerminalUi::Print(std::u16string_view text) { err_ << ToUtf8(text); }

void TerminalUi::ClearLine() {
    if (!lineDrawn_) return;
    err_ << "\r\x1b[K" << std::flush;
    lineDrawn_ = false;
}

void TerminalUi::ShowError(std::u16string_view, std::u16string_view text) {
    ClearLine();
    Print(std::u16string(qm::msg::kErrorWhileRunning) + std::u16string(text));
    err_ << "\n" << std::flush;
}

Confirmation TerminalUi::Confirm(std::u16string_view, std::u16string_view text, std::u16string_view) {
    ClearLine();
    if (options_.assumeYes) return {true, false};
    if (!options_.interactive) {
        Print(FormatMessage(msg::kConfirmRefusedNotInteractive, {text}));
        err_ << "\n" << std::flush;
        return {false, false};
    }
    while (true) {
        Print(std::u16string(text) + std::u16string(msg::kYesNoPrompt));
        err_ << std::flush;
        std::optional<std::u16string> reply = ReadLine();
        if (!reply) return {false, false};
        if (reply->empty()) return {false, false};
        if (std::optional<std::u16string> answer = YesNo(*reply)) return {*answer == u"true", false};
        Print(msg::kAnswerYesOrNo);
        err_ << "\n";
    }
}

bool TerminalUi::Show(std::u16string_view, std::u16string_view body) {
    if (!options_.showProgress) return false;
    if (!active_) started_ = std::chrono::steady_clock::now();
    active_ = true;
    body_ = std::u16string(body);
    return true;
}

void TerminalUi::Hide() {
    ClearLine();
    active_ = false;
}

void TerminalUi::Repaint(std::uint64_t statementsRun) {
    if (!active_) return;
    statements_ = statementsRun;
    const auto elapsed = std::chrono::steady_clock::now() - started_;
    const double seconds = std::chrono::duration<double>(elapsed).count();
    char secondsText[32];
    std::snprintf(secondsText, sizeof secondsText, "%.1f", seconds);
    err_ << "\r\x1b[K"
         << ToUtf8(FormatMessage(msg::kProgressLine,
                                 {body_, IntegerText(static_cast<std::int64_t>(statements_)), Ascii(secondsText)}))
         << std::flush;
    lineDrawn_ = true;
}

std::optional<std::u16string> TerminalUi::ReadLine() {
    if (cancelled_.load()) return std::nullopt;
    std::string line;
    if (!std::getline(in_, line) || cancelled_.load()) return std::nullopt;
    return Trimmed(FromUtf8(line));
}

std::optional<std::u16string> TerminalUi::GivenAnswer(const DialogControl& control) {
    const auto found = options_.answers.find(control.name);
    if (found == options_.answers.end()) return std::nullopt;
    return found->second;
}

std::optional<std::u16string> TerminalUi::AskTextBox(const DialogControl& control) {
    while (true) {
        Print(FormatMessage(msg::kTextBoxPrompt, {control.label, control.initialValue}));
        err_ << std::flush;
        std::optional<std::u16string> reply = ReadLine();
        if (!reply) return std::nullopt;
        std::u16string value = reply->empty() ? control.initialValue : *reply;
        if (!value.empty() || control.emptyOK) return value;
        Print(msg::kValueRequired);
        err_ << "\n";
    }
}

std::optional<std::u16string> TerminalUi::AskCheckBox(const DialogControl& control) {
    while (true) {
        Print(FormatMessage(msg::kCheckBoxPrompt, {control.label, control.initialChecked ? u"y" : u"n"}));
        err_ << std::flush;
        std::optional<std::u16string> reply = ReadLine();
        if (!reply) return std::nullopt;
        if (reply->empty()) return std::u16string(control.initialChecked ? u"true" : u"false");
        if (std::optional<std::u16string> value = YesNo(*reply)) return value;
        Print(msg::kAnswerYesOrNo);
        err_ << "\n";
    }
}

std::optional<std::u16string> TerminalUi::AskDropDown(const DialogControl& control) {
    const std::u16string initial = DropDownDefault(control);
    std::size_t current = 0;
    for (std::size_t i = 0; i < control.possibleValues.size(); ++i) {
        Print(FormatMessage(msg::kDropDownChoice,
                            {IntegerText(static_cast<std::int64_t>(i + 1)), control.possibleValues[i]}));
        err_ << "\n";
        if (control.possibleValues[i] == initial && current == 0) current = i + 1;
    }
    const std::u16string count = IntegerText(static_cast<std::int64_t>(control.possibleValues.size()));
    while (true) {
        Print(FormatMessage(msg::kDropDownPrompt, {control.label, IntegerText(static_cast<std::int64_t>(current))}));
        err_ << std::flush;
        std::optional<std::u16string> reply = ReadLine();
        if (!reply) return std::nullopt;
        if (reply->empty()) return initial;
        if (IsIntegerText(*reply)) {
            const std::int32_t choice = ExtractInteger(*reply);
            if (choice >= 1 && static_cast<std::size_t>(choice) <= control.possibleValues.size()) {
                return control.possibleValues[static_cast<std::size_t>(choice) - 1];
            }
        }
        Print(FormatMessage(msg::kAnswerChoiceNumber, {count}));
        err_ << "\n";
    }
}

std::optional<std::vector<std::u16string>> TerminalUi::ShowDialog(std::u16string_view caption,
                                                                  const DialogModel& model) {
    ClearLine();
    std::vector<std::u16string> results;
    results.reserve(model.controls.size());
    bool titled = false;
    auto title = [&] {
        if (titled) return;
        titled = true;
        Print(FormatMessage(msg::kDialogTitle, {caption}));
        err_ << "\n";
        if (!model.message.empty()) {
            Print(model.message);
            err_ << "\n";
        }
    };

    for (const DialogControl& control : model.controls) {
        if (control.kind == DialogControlKind::Label) {
            if (options_.interactive) {
                title();
                Print(control.label);
                err_ << "\n";
            }
            results.emplace_back();
            continue;
        }
        std::optional<std::u16string> value = GivenAnswer(control);
        if (value) {
            // A given answer is checked as strictly as a typed one, but nobody can be asked again.
            std::optional<std::u16string> problem;
            if (control.kind == DialogControlKind::TextBox && value->empty() && !control.emptyOK) {
                problem = FormatMessage(msg::kEmptyAnswer, {control.name});
            } else if (control.kind == DialogControlKind::CheckBox) {
                std::optional<std::u16string> yesNo = YesNo(*value);
                if (!yesNo) problem = FormatMessage(msg::kBadCheckBoxAnswer, {control.name, *value});
                else value = yesNo;
            } else if (control.kind == DialogControlKind::DropDown) {
                bool listed = false;
                std::u16string all;
                for (const auto& possible : control.possibleValues) {
                    listed = listed || possible == *value;
                    if (!all.empty()) all += u", ";
                    all += possible;
                }
                if (!listed) problem = FormatMessage(msg::kBadDropDownAnswer, {control.name, all});
            }
            if (problem) {
                Print(*problem);
                err_ << "\n" << std::flush;
                return std::nullopt;
            }
        } else if (options_.interactive) {
            title();
            switch (control.kind) {
                case DialogControlKind::TextBox: value = AskTextBox(control); break;
                case DialogControlKind::CheckBox: value = AskCheckBox(control); break;
                case DialogControlKind::DropDown: value = AskDropDown(control); break;
                case DialogControlKind::Label: break;
            }
            if (!value) {
                err_ << "\n";
                Print(msg::kDialogCancelled);
                err_ << "\n" << std::flush;
                return std::nullopt;
            }
        } else {
            Print(FormatMessage(msg::kMissingAnswer, {control.name, KindName(control.kind)}));
            err_ << "\n" << std::flush;
            return std::nullopt;
        }
        results.push_back(std::move(*value));
    }
    return results;
}

}  // namespace qm::ui
