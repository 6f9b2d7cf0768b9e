#include "cli/CommandError.h"
#include "cli/DevicesCommand.h"
#include "cli/ExportCommand.h"
#include "cli/ImportCommand.h"
#include "cli/LiveCommand.h"
#include "cli/PresetsCommand.h"
#include "cli/RenderCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

namespace {

constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

/// File names and foreign texts may hold anything, but an error is one line.
void printError(std::string text) {
    for (char &character : text)
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F)
            character = '?';
    fmt::print(stderr, "ostrafine-cli: {}\n", text);
}

} // namespace

int main(int argc, char **argv) {
    // A file that may not grow further is an error of one write, not the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);

    CLI::App program("Everything the computer plays, through one equaliser and effects chain.",
                     "ostrafine-cli");
    program.require_subcommand(1);
    const quorbel::RenderCommand render(program);
    const quorbel::LiveCommand live(program);
    const quorbel::PresetsCommand presets(program);
    const quorbel::ImportCommand importPreset(program);
    const quorbel::ExportCommand exportPreset(program);
    const quorbel::DevicesCommand devices(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return program.exit(error) == 0 ? 0 : exitUsage;
    }

    try {
        if (render.isChosen())
            render.run();
        if (live.isChosen())
            live.run();
        if (presets.isChosen())
            presets.run();
        if (importPreset.isChosen())
            importPreset.run();
        if (exportPreset.isChosen())
            exportPreset.run();
        if (devices.isChosen())
            devices.run();
        if (!live.isChosen() && std::fflush(stdout) != 0)
            throw quorbel::CommandError("standard output cannot be written");
        return 0;
    } catch (const std::exception &error) {
        printError(error.what());
        return exitFailed;
    }
}
