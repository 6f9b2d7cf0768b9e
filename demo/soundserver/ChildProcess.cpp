#include "soundserver/ChildProcess.h"

#include "soundserver/Waiting.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace quorbel::soundserver {
namespace {

std::vector<char *> pointersTo(std::vector<std::string> &strings) {
    std::vector<char *> pointers;
    pointers.reserve(strings.size() + 1);
    for (std::string &string : strings)
        pointers.push_back(string.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> mergedWithOurs(Environment environment) {
    for (char **variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const auto equals = text.find('=');
        // The given values override ours.
        environment.try_emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    std::vector<std::string> variables;
    for (const auto &[name, value] : environment)
        variables.push_back(std::string(name).append("=").append(value));
    return variables;
}

std::string contentsOf(int file) {
    std::string text;
    char block[4096];
    for (;;) {
        const ssize_t count = pread(file, block, sizeof block, static_cast<off_t>(text.size()));
        if (count <= 0)
            return text;
        text.append(block, static_cast<std::size_t>(count));
    }
}

} // namespace

ChildProcess::ChildProcess(std::vector<std::string> arguments, const Environment &environment)
    : arguments_(std::move(arguments)) {
    std::vector<std::string> variables = mergedWithOurs(environment);
    const std::vector<char *> argv = pointersTo(arguments_);
    const std::vector<char *> envp = pointersTo(variables);
    outputFile_ = memfd_create("output", MFD_CLOEXEC);
    errorFile_ = memfd_create("errors", MFD_CLOEXEC);
    int failure[2] = {-1, -1}; // carries exec's errno; closed by a successful exec
    if (outputFile_ < 0 || errorFile_ < 0 || pipe2(failure, O_CLOEXEC) != 0)
        throw ServerError(std::string("no file for a child's output: ") + std::strerror(errno));

    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ == 0) {
        // Only calls that are safe after a fork of a process with threads.
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        const int input = open("/dev/null", O_RDONLY);
        dup2(input, STDIN_FILENO);
        dup2(outputFile_, STDOUT_FILENO);
        dup2(errorFile_, STDERR_FILENO);
        if (getppid() == parent)
            execvpe(argv[0], argv.data(), envp.data());
        const int error = errno;
        if (write(failure[1], &error, sizeof error) < 0)
            _exit(126);
        _exit(127);
    }
    close(failure[1]);
    int error = pid_ < 0 ? errno : 0;
    while (pid_ > 0 && read(failure[0], &error, sizeof error) < 0 && errno == EINTR) {
    }
    close(failure[0]);
    if (error != 0) {
        if (pid_ > 0)
            waitpid(pid_, nullptr, 0);
        close(outputFile_);
        close(errorFile_);
        throw ServerError("cannot run " + arguments_[0] + ": " + std::strerror(error));
    }
}

ChildProcess::~ChildProcess() {
    stop(0.0, SIGKILL);
    close(outputFile_);
    close(errorFile_);
}

bool ChildProcess::running() noexcept {
    if (!exitStatus_) {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_)
            exitStatus_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return !exitStatus_;
}

std::optional<int> ChildProcess::exitStatusWithin(double seconds) {
    comesTrue(seconds, [&] { return !running(); });
    return exitStatus_;
}

void ChildProcess::signal(int number) const {
    if (!exitStatus_)
        kill(pid_, number);
}

int ChildProcess::stop(double seconds, int firstSignal) noexcept {
    signal(firstSignal);
    const auto deadline = SteadyClock::now() + std::chrono::duration<double>(seconds);
    // `comesTrue` would throw after an interrupt and leave the process running.
    while (running()) {
        if (SteadyClock::now() >= deadline)
            signal(SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    return *exitStatus_;
}

std::string ChildProcess::output() const { return contentsOf(outputFile_); }
std::string ChildProcess::errors() const { return contentsOf(errorFile_); }

std::string runProgram(std::vector<std::string> arguments, const Environment &environment,
                       double seconds) {
    ChildProcess program(std::move(arguments), environment);
    const auto status = program.exitStatusWithin(seconds);
    if (status != 0) {
        std::string command;
        for (const std::string &argument : program.arguments())
            command += argument + " ";
        throw ServerError(command +
                          (status ? "failed with status " + std::to_string(*status)
                                  : std::string("did not end")) +
                          ": " + program.errors() + program.output());
    }
    return program.output();
}

} // namespace quorbel::soundserver
