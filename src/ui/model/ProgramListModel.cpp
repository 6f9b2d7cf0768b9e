#include "ui/model/ProgramListModel.h"

#include "settings/state/KnownPrograms.h"
#include "ui/logic/ProgramTexts.h"

#include <algorithm>
#include <utility>

namespace quorbel {

namespace {

bool isProcessedByRules(StreamTreatment treatment) {
    switch (treatment) {
    case StreamTreatment::excluded:
    case StreamTreatment::unlisted:
    case StreamTreatment::call:
    case StreamTreatment::surround:
    case StreamTreatment::encoded:
    case StreamTreatment::unmovable:
    case StreamTreatment::copy:
        return false;
    case StreamTreatment::processed:
    case StreamTreatment::ready:
    case StreamTreatment::pending:
    case StreamTreatment::moved:
    case StreamTreatment::refused:
        break;
    }
    return true;
}

bool isFixed(StreamTreatment treatment) {
    return treatment == StreamTreatment::encoded || treatment == StreamTreatment::unmovable ||
           treatment == StreamTreatment::copy;
}

} // namespace

ProgramListModel::ProgramListModel(AppState &state, Clock &clock, QObject *parent)
    : RecordListModel(parent), state_(state), clock_(clock), self_(this) {
    connect(&state_, &AppState::programRulesChanged, this, [this] {
        if (watched_)
            follow();
    });
}

ProgramListModel::~ProgramListModel() { setWatched(false); }

int ProgramListModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(streams_.size());
}

QVariant ProgramListModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const PlaybackStream &stream = streams_[static_cast<std::size_t>(index.row())];
    const std::string name = programLabel(stream.program);
    switch (role) {
    case nameRole:
        return QString::fromUtf8(name);
    case titleRole:
        return stream.title == name ? QString() : QString::fromUtf8(stream.title);
    case statusRole:
        return QString::fromUtf8(treatmentText(stream.treatment));
    case processedRole:
        return isProcessedByRules(stream.treatment);
    case fixedRole:
        return isFixed(stream.treatment);
    case surroundRole:
        return stream.treatment == StreamTreatment::surround;
    default:
        return {};
    }
}

QHash<int, QByteArray> ProgramListModel::roleNames() const {
    return {{nameRole, "name"},           {titleRole, "title"}, {statusRole, "status"},
            {processedRole, "processed"}, {fixedRole, "fixed"}, {surroundRole, "surround"}};
}

void ProgramListModel::setWatched(bool watched) {
    if (watched == std::exchange(watched_, watched))
        return;
    if (watched) {
        state_.hardware().addListener(HardwareProperty::playbackStreams, *this);
        follow();
    } else {
        state_.hardware().removeListener(HardwareProperty::playbackStreams, *this);
    }
    Q_EMIT watchedChanged();
}

/// Combines many small hardware changes into one update. [control]
void ProgramListModel::playbackStreamsChanged() {
    if (!isLookDue_.exchange(true))
        clock_.post([self = self_] {
            if (self)
                self->follow();
        });
}

void ProgramListModel::follow() {
    isLookDue_ = false;
    auto streams = state_.hardware().playbackStreams();
    std::ranges::stable_sort(streams, {}, [](const PlaybackStream &stream) {
        return std::pair(programLabel(stream.program), stream.serial);
    });
    if (streams != streams_)
        replaceRecords(streams_, std::move(streams), &PlaybackStream::serial);
}

void ProgramListModel::setProcessed(int row, bool processed) {
    if (row < 0 || row >= count())
        return;
    const PlaybackStream stream = streams_[static_cast<std::size_t>(row)];
    ProgramRules rules = state_.programRules();
    const bool isMixed = processed && stream.isSurround;
    const ProgramRule *deciding = ruleFor(rules, stream.program, stream.title);
    if (deciding != nullptr && !deciding->title.empty()) {
        ProgramRule &rule = rules.rules[static_cast<std::size_t>(deciding - rules.rules.data())];
        rule.isProcessed = processed;
        rule.isMixedToStereo = isMixed;
    } else {
        const ProgramNames names = namesForRule(stream.program);
        const ProgramNames known = deciding != nullptr ? deciding->program : names;
        std::erase_if(rules.rules, [&](const ProgramRule &rule) {
            return (rule.program == known || rule.program == names) && rule.title.empty();
        });
        const bool isProcessedWithoutRule =
            !stream.isSurround && (stream.isCall ? rules.processesCalls : rules.processesOthers);
        if (processed != isProcessedWithoutRule)
            rules.rules.push_back(
                {.program = names, .isProcessed = processed, .isMixedToStereo = isMixed});
    }
    state_.setProgramRules(rules);
}

} // namespace quorbel
