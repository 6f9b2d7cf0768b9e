#include "ui/model/ProgramRuleModel.h"

#include "ui/logic/ProgramTexts.h"

#include <algorithm>
#include <utility>

namespace quorbel {

ProgramRuleModel::ProgramRuleModel(AppState &state, QObject *parent)
    : RecordListModel(parent), state_(state), rules_(state.programRules()) {
    connect(&state_, &AppState::programRulesChanged, this, &ProgramRuleModel::follow);
}

int ProgramRuleModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rules_.rules.size());
}

QVariant ProgramRuleModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ProgramRule &rule = rules_.rules[static_cast<std::size_t>(index.row())];
    switch (role) {
    case nameRole:
        return QString::fromUtf8(programLabel(rule.program));
    case processedRole:
        return rule.isProcessed;
    case stereoRole:
        return rule.isMixedToStereo;
    case titleRole:
        return QString::fromUtf8(rule.title);
    default:
        return {};
    }
}

QHash<int, QByteArray> ProgramRuleModel::roleNames() const {
    return {{nameRole, "name"},
            {processedRole, "processed"},
            {stereoRole, "stereo"},
            {titleRole, "title"}};
}

void ProgramRuleModel::follow() {
    ProgramRules next = state_.programRules();
    replaceRecords(rules_.rules, next.rules, [](const ProgramRule &rule) {
        const ProgramNames &names = rule.program;
        return std::tuple(names.sandbox, names.binary, names.applicationID, names.name, rule.title);
    });
    rules_ = std::move(next);
    Q_EMIT changed();
}

void ProgramRuleModel::setOthersProcessed(bool processed) {
    ProgramRules rules = state_.programRules();
    rules.processesOthers = processed;
    state_.setProgramRules(rules);
}

void ProgramRuleModel::setCallsProcessed(bool processed) {
    ProgramRules rules = state_.programRules();
    rules.processesCalls = processed;
    state_.setProgramRules(rules);
}

template <typename Change> void ProgramRuleModel::changeRule(int row, Change change) {
    ProgramRules rules = state_.programRules();
    if (row < 0 || row >= static_cast<int>(rules.rules.size()))
        return;
    change(rules, rules.rules.begin() + row);
    state_.setProgramRules(rules);
}

void ProgramRuleModel::setProcessed(int row, bool processed) {
    changeRule(row, [&](ProgramRules &, auto rule) { rule->isProcessed = processed; });
}

void ProgramRuleModel::setTitle(int row, const QString &pattern) {
    changeRule(row, [&](ProgramRules &rules, auto rule) {
        ProgramRule changed = *rule;
        changed.title = pattern.trimmed().toStdString();
        // Removes other rules for the same streams.
        rules.rules.erase(rule);
        std::erase_if(rules.rules, [&](const ProgramRule &other) {
            return other.program == changed.program && other.title == changed.title;
        });
        // Inserts a rule for some titles before the one for all.
        const auto place = std::ranges::find_if(rules.rules, [&](const ProgramRule &other) {
            return other.program == changed.program && other.title.empty();
        });
        rules.rules.insert(place, std::move(changed));
    });
}

void ProgramRuleModel::forget(int row) {
    changeRule(row, [](ProgramRules &rules, auto rule) { rules.rules.erase(rule); });
}

} // namespace quorbel
