#include "settings/state/ProgramRulesFile.h"

#include "settings/state/KnownPrograms.h"
#include "settings/state/SideFileList.h"

#include <utility>

namespace quorbel {

namespace {

using nlohmann::json;

constexpr const char *programsKey = "programs";
constexpr const char *othersKey = "others";
constexpr const char *callsKey = "calls";
constexpr const char *processText = "process";
constexpr const char *leaveAloneText = "leaveAlone";

/// Identifies a rule by its program and title.
std::pair<std::string, std::string> ruleKey(const ProgramRule &rule) {
    const ProgramNames &names = rule.program;
    return {names.sandbox + '\n' + names.binary + '\n' + names.applicationID + '\n' + names.name,
            rule.title};
}

/// True for "process", false for "leaveAlone". Throws DecodingError for anything else.
bool decodedUse(const json &document, const char *key, bool otherwise) {
    const auto found = document.find(key);
    if (found == document.end())
        return otherwise;
    if (*found == processText)
        return true;
    if (*found == leaveAloneText)
        return false;
    throw DecodingError(key, "\"process\" or \"leaveAlone\" expected, found " + excerpt(*found));
}

/// Throws DecodingError. An empty document means a missing file.
ProgramRules decodedRules(const json &document) {
    ProgramRules rules;
    rules.callMarks = knownCalls();
    rules.processesOthers = decodedUse(document, othersKey, rules.processesOthers);
    rules.processesCalls = decodedUse(document, callsKey, rules.processesCalls);
    if (const auto found = document.find(programsKey); found != document.end())
        decode(*found, CodingPath().key(programsKey), rules.rules);
    return rules;
}

} // namespace

ProgramRulesFile::ProgramRulesFile(const std::string &settingsPath)
    : file_(settingsPath, {.name = "programs",
                           .content = "The rules of programs",
                           .consequence = "All programs but calls are processed now."}),
      rules_(decodedRules(json::object())) {}

std::optional<std::string> ProgramRulesFile::read() {
    return file_.read([this](const json &document) { rules_ = decodedRules(document); });
}

void ProgramRulesFile::peek() {
    file_.peek([this](const json &document) { rules_ = decodedRules(document); });
}

std::optional<std::string> ProgramRulesFile::write(const ProgramRules &next) {
    ProgramRules merged = next;
    ProgramRules theirs;
    const auto merge = [&](const json &document) {
        theirs = decodedRules(document);
        merged = next;
        if (document.empty())
            return;
        if (next.processesOthers == rules_.processesOthers)
            merged.processesOthers = theirs.processesOthers;
        if (next.processesCalls == rules_.processesCalls)
            merged.processesCalls = theirs.processesCalls;
        if (theirs.rules != rules_.rules) // otherwise keeps our order too
            merged.rules = mergedList(rules_.rules, next.rules, theirs.rules, ruleKey);
    };
    auto warning = file_.update(merge, [&](json &document) {
        document[othersKey] = merged.processesOthers ? processText : leaveAloneText;
        document[callsKey] = merged.processesCalls ? processText : leaveAloneText;
        const json entries = std::exchange(document[programsKey], {});
        document[programsKey] = encodedList(merged.rules, entries, theirs.rules, ruleKey);
    });
    rules_ = std::move(merged);
    return warning;
}

} // namespace quorbel
