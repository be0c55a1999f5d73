#pragma once
// Stand-ins for the windows around the wipe engines: views that record what a window would show.

#include "tests/support/Recorders.h"
#include "wipe/FreeSpaceView.h"
#include "wipe/SecureDeleteView.h"

#include <functional>
#include <string>
#include <vector>

namespace testsupport {

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
