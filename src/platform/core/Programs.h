#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorbel {

/// Names of the program that plays a stream, as the sound server reports them; empty where unknown.
struct ProgramNames {
    std::string sandbox{};       ///< application id guaranteed by the sandbox
    std::string binary{};        ///< file name of the executable
    std::string applicationID{}; ///< chosen by the program itself
    std::string name{};          ///< shown to users

    [[nodiscard]] bool areEmpty() const {
        return sandbox.empty() && binary.empty() && applicationID.empty() && name.empty();
    }
    friend bool operator==(const ProgramNames &, const ProgramNames &) = default;
};

/// The treatment of the streams of one program.
struct ProgramRule {
    ProgramNames program{}; ///< a stream must match every non-empty name
    /// Pattern of the stream's title for `matchesPattern`; empty matches any title.
    std::string title{};
    bool isProcessed = true;
    /// Processes streams of more than two channels too, mixed to stereo.
    bool isMixedToStereo = false;

    friend bool operator==(const ProgramRule &, const ProgramRule &) = default;
};

/// Marks of a stream that carries a call; one match is enough.
struct CallMarks {
    std::vector<std::string> roles{};
    std::vector<std::string> names{};
    std::vector<std::string> binaries{};

    friend bool operator==(const CallMarks &, const CallMarks &) = default;
};

/// Selects the programs to process. The first matching rule decides about a stream; otherwise
/// `processesCalls` decides for calls and `processesOthers` for all others.
struct ProgramRules {
    bool processesOthers = true;
    bool processesCalls = false;
    std::vector<ProgramRule> rules{};
    CallMarks callMarks{};

    friend bool operator==(const ProgramRules &, const ProgramRules &) = default;
};

/// True if `text` matches a pattern of `*` (any text) and `?` (any character). Ignores the case of
/// ASCII letters.
bool matchesPattern(std::string_view pattern, std::string_view text);

/// The first rule that matches a stream; null if there is none.
const ProgramRule *ruleFor(const ProgramRules &rules, const ProgramNames &program,
                           const std::string &title);

/// The treatment of a playback stream, with its reason.
enum class StreamTreatment {
    processed,
    ready,     ///< selected, but nothing is processed at present
    pending,   ///< selected, but not processed yet
    excluded,  ///< left alone by a rule of the user
    unlisted,  ///< left alone because the user processes only listed programs
    call,      ///< left alone: a call
    surround,  ///< left alone: it and the output have more than two channels
    encoded,   ///< left alone: compressed sound, for the device to decode
    moved,     ///< left alone: the user has moved it elsewhere
    unmovable, ///< left alone: its program forbids moving it
    copy,      ///< left alone: may carry the processed sound, or is half of a virtual device
    refused,   ///< the sound server did not move it; tried again
};

struct PlaybackStream {
    std::uint64_t serial = 0; ///< never reused
    ProgramNames program{};
    std::string title{};
    bool isCall = false;     ///< by the call marks
    bool isSurround = false; ///< it and the output have more than two channels
    StreamTreatment treatment = StreamTreatment::ready;

    friend bool operator==(const PlaybackStream &, const PlaybackStream &) = default;
};

} // namespace quorbel
