#pragma once
// Each command of scourmill-cli adds itself to the application here. A command's callback does its
// work through the core, reads ctx for the platform and prompts, and leaves its exit code in ctx.

#include <CLI/CLI.hpp>

namespace cli {

struct Context;

void addMemMonCommand(CLI::App& app, Context& ctx);
void addCleanItemCommands(CLI::App& app, Context& ctx);
void addIndexDatCommand(CLI::App& app, Context& ctx);
void addWipeCommands(CLI::App& app, Context& ctx);
void addWipeMemoryCommand(CLI::App& app, Context& ctx);
void addTraceCommands(CLI::App& app, Context& ctx);
void addHistoryCommands(CLI::App& app, Context& ctx);

} // namespace cli
