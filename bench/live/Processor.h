#pragma once

#include "live/SteadySound.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorbel::bench {

/// A program that processes an application's sound.
struct Processor {
    std::string name;
    std::vector<std::string> command;
    std::string sink;      ///< sink of the application; empty for the default device
    SteadyLevels expected; ///< of a `SteadySound` after processing
};

/// `ostrafine-cli live` with everything on. Writes its settings into `folder`; throws `ServerError`
/// if that fails.
[[nodiscard]] Processor ostrafine(const std::filesystem::path &folder);

/// PipeWire's filter chain before `device` with the equaliser and tone controls of the same
/// settings. Writes its configuration into `folder`; throws `ServerError` if that fails.
[[nodiscard]] Processor filterChain(const std::filesystem::path &folder, const std::string &device);

/// PipeWire's filter chain before `device` without filters: the cost of a processor that only
/// copies.
[[nodiscard]] Processor copyingChain(const std::filesystem::path &folder,
                                     const std::string &device);

} // namespace quorbel::bench
