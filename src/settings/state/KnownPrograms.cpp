#include "settings/state/KnownPrograms.h"

#include <nlohmann/json.hpp>

#include <QFile>

#include <algorithm>
#include <string>
#include <vector>

// The macro requires a function outside of any namespace.
static void initializeKnownPrograms() { Q_INIT_RESOURCE(known_programs); }

namespace quorbel {

namespace {

struct KnownPrograms {
    CallMarks calls;
    std::vector<std::string> runtimes; ///< executables that run many programs
};

const KnownPrograms &knownPrograms() {
    static const KnownPrograms known = [] {
        initializeKnownPrograms();
        QFile file(QStringLiteral(":/quorbel/known-programs.json"));
        if (!file.open(QIODevice::ReadOnly))
            return KnownPrograms{};
        const auto document = nlohmann::json::parse(file.readAll().toStdString());
        return KnownPrograms{.calls = {.roles = document.at("callRoles"),
                                       .names = document.at("callNames"),
                                       .binaries = document.at("callBinaries")},
                             .runtimes = document.at("runtimes")};
    }();
    return known;
}

/// True for a listed executable, also with a version, as in "python3.11".
bool isRuntime(const std::string &binary) {
    return std::ranges::any_of(knownPrograms().runtimes, [&](const std::string &runtime) {
        return binary.starts_with(runtime) &&
               binary.find_first_not_of("0123456789.", runtime.size()) == std::string::npos;
    });
}

} // namespace

const CallMarks &knownCalls() { return knownPrograms().calls; }

ProgramNames namesForRule(const ProgramNames &program) {
    if (!program.sandbox.empty())
        return {.sandbox = program.sandbox};
    if (!program.binary.empty())
        return {.binary = program.binary,
                .name = isRuntime(program.binary) ? program.name : std::string()};
    if (!program.applicationID.empty())
        return {.applicationID = program.applicationID};
    return {.name = program.name};
}

} // namespace quorbel
