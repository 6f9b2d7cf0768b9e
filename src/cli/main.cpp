#include "cli/CommandError.h"
#include "cli/CommandLine.h"
#include "cli/Commands.h"
#include "cli/PrintableText.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <exception>

namespace {

constexpr int exitFailed = static_cast<int>(quorbel::CommandError::Status::failed);

void complain(const std::exception &error) {
    fmt::print(stderr, "ostrafine-cli: {}\n", quorbel::printable(error.what()));
}

} // namespace

int main(int argc, char **argv) {
    // Turns an exceeded file size limit into a write error instead of the end of the program.
    std::signal(SIGXFSZ, SIG_IGN);

    const auto commands = quorbel::allCommands();
    const quorbel::ParsedCommandLine parsed = quorbel::parseCommandLine(commands, argc, argv);
    if (parsed.command == nullptr)
        return parsed.status;
    try {
        parsed.command->run();
        if (parsed.command->needsOutput() && std::fflush(stdout) != 0)
            throw quorbel::CommandError("standard output cannot be written");
        return 0;
    } catch (const quorbel::CommandError &error) {
        complain(error);
        return static_cast<int>(error.status());
    } catch (const std::exception &error) {
        complain(error);
        return exitFailed;
    }
}
