#pragma once

#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quorbel::soundserver {

using Environment = std::map<std::string, std::string>;

/// A child program that never outlives this process: the destructor kills it, or the kernel if this
/// process dies.
///
/// Runs in its own process group, so that Ctrl-C in a terminal reaches only us and we choose the
/// order of shutdown. Start children on a long-lived thread: the kernel kills them when it ends.
class ChildProcess {
  public:
    /// `arguments[0]` is looked up in PATH; `environment` is added to our own. Throws `ServerError`
    /// if the program cannot be run.
    ChildProcess(std::vector<std::string> arguments, const Environment &environment);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool running() noexcept;

    /// Exit status, 128 plus the signal's number after a signal; empty if it still runs after
    /// `seconds`.
    std::optional<int> exitStatusWithin(double seconds);

    void signal(int number) const;

    /// Sends `firstSignal`, kills the process after `seconds`, and returns the exit status as
    /// above.
    int stop(double seconds = 3.0, int firstSignal = SIGTERM) noexcept;

    /// The process's output so far.
    [[nodiscard]] std::string output() const;
    [[nodiscard]] std::string errors() const;

    [[nodiscard]] const std::vector<std::string> &arguments() const { return arguments_; }

  private:
    std::vector<std::string> arguments_;
    int outputFile_ = -1; // in memory, so that the child never waits for a reader
    int errorFile_ = -1;
    pid_t pid_ = -1;
    std::optional<int> exitStatus_;
};

/// Runs a program to its end and returns its output. Throws `ServerError` with the output if it
/// fails or takes longer than `seconds`.
std::string runProgram(std::vector<std::string> arguments, const Environment &environment,
                       double seconds = 10.0);

} // namespace quorbel::soundserver
