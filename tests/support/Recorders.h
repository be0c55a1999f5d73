#pragma once
// Stand-ins for the people around the work: prompts that answer from a script and remember what
// was said, a problem sink that keeps every skipped item with its reason, and a verdict sink that
// keeps every verdict.

#include "core/ProblemSink.h"
#include "core/Prompts.h"
#include "core/Verdict.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace testsupport {

struct RecordingPrompts final : core::Prompts {
    std::deque<bool> answers; ///< next answers to yes/no questions; Yes when none are left
    std::vector<std::string> asked, told, titles; ///< titles of both, in order

    bool askYesNo(const std::string& text, const std::string& title, int) override {
        asked.push_back(text);
        titles.push_back(title);
        if (answers.empty())
            return true;
        const bool a = answers.front();
        answers.pop_front();
        return a;
    }
    void tell(const std::string& text, const std::string& title, int) override {
        told.push_back(text);
        titles.push_back(title);
    }
};

struct RecordingSink final : core::ProblemSink {
    std::map<std::string, std::string> items; ///< item -> reason
    void skipped(const std::string& item, const std::string& reason) override { items[item] = reason; }
};

struct RecordingVerdicts final : core::VerdictSink {
    std::vector<core::Verdict> all;
    void record(const core::Verdict& v) override { all.push_back(v); }
};

} // namespace testsupport
