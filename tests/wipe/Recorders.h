#pragma once
// Stand-ins for the people and windows around the wipe engines: prompts that answer from a script
// and remember what was said, and views that record what a window would show.

#include "core/ProblemSink.h"
#include "core/Prompts.h"
#include "wipe/FreeSpaceView.h"
#include "wipe/SecureDeleteView.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace testsupport {

struct RecordingPrompts final : core::Prompts {
    std::deque<bool> answers; ///< next answers to yes/no questions; Yes when none are left
    std::vector<std::string> asked, told;
    std::vector<int> askedStyles;

    bool askYesNo(const std::string& text, const std::string&, int style) override {
        asked.push_back(text);
        askedStyles.push_back(style);
        if (answers.empty())
            return true;
        const bool a = answers.front();
        answers.pop_front();
        return a;
    }
    void tell(const std::string& text, const std::string&, int) override { told.push_back(text); }
};

struct RecordingSink final : core::ProblemSink {
    std::vector<std::string> items;
    void skipped(const std::string& item, const std::string&) override { items.push_back(item); }
};

struct FreeSpaceRecorder final : wipe::FreeSpaceView {
    RecordingPrompts ask;
    std::vector<int> passes;
    std::vector<wipe::FreeSpaceProgress> steps;
    bool exitBox = false, pauseBox = false, wipeEnabled = true, stop = false;
    std::function<void(const wipe::FreeSpaceProgress&)> onProgress;
    std::function<void()> onPump, onMeasured;
    std::function<void(int)> onPass;

    core::Prompts& prompts() override { return ask; }
    void passStarted(int pass, core::Currency) override {
        passes.push_back(pass);
        if (onPass)
            onPass(pass);
    }
    void progress(const wipe::FreeSpaceProgress& now) override {
        steps.push_back(now);
        if (onProgress)
            onProgress(now);
    }
    bool exitRequested() override { return exitBox; }
    void setExitRequested(bool on) override { exitBox = on; }
    bool pauseRequested() override { return pauseBox; }
    void pumpEvents() override {
        if (onPump)
            onPump();
    }
    void setWipeEnabled(bool enabled) override { wipeEnabled = enabled; }
    bool interrupted() override { return stop; }
    void freeSpaceMeasured(core::Currency) override {
        if (onMeasured)
            onMeasured();
    }
};

struct SecureDeleteRecorder final : wipe::SecureDeleteView {
    RecordingPrompts ask;
    std::vector<std::pair<std::string, int>> passes;
    std::vector<std::string> valueLines;
    bool endWipe = false;
    std::function<void(const std::string&, int)> onPass;
    std::function<void(const wipe::FileWipeProgress&)> onProgress;

    core::Prompts& prompts() override { return ask; }
    void passStarted(const std::string& path, int pass) override {
        passes.emplace_back(path, pass);
        if (onPass)
            onPass(path, pass);
    }
    void passValues(const std::string& text) override { valueLines.push_back(text); }
    void progress(const wipe::FileWipeProgress& now) override {
        if (onProgress)
            onProgress(now);
    }
    bool stopRequested() override { return endWipe; }
};

} // namespace testsupport
