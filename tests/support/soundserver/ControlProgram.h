#pragma once

#include "soundserver/ChildProcess.h"
#include "soundserver/LiveProcess.h"

#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace quorbel::soundserver {

/// Outcome of an `ostrafine-cli ctl` command.
struct ControlOutcome {
    int status = -1;
    std::string output;
    std::string errors;
};

inline std::ostream &operator<<(std::ostream &out, const ControlOutcome &outcome) {
    return out << outcome.status << ": " << outcome.output << outcome.errors;
}

/// Runs a command in the session of a server, with `more` in its environment.
inline ControlOutcome control(const PrivateSoundServer &server, std::vector<std::string> arguments,
                              const Environment &more = {}) {
    Environment environment = server.environment();
    for (const auto &[variable, value] : more)
        environment[variable] = value;
    arguments.insert(arguments.begin(), {LiveProcess::program(), "ctl"});
    ChildProcess program(std::move(arguments), environment);
    const int status = program.exitStatusWithin(15.0).value_or(-1);
    return {status, program.output(), program.errors()};
}

} // namespace quorbel::soundserver
