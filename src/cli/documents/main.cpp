#include "cli/Commands.h"
#include "cli/documents/Documents.h"
#include "platform/core/Version.h"

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::string readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error(path + ": cannot be read");
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string &path, const std::string &text) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << text) || !file.flush())
        throw std::runtime_error(path + ": cannot be written");
}

} // namespace

// Writes the manual page from its template, and the completions, into a folder. Runs at build time.
int main(int argc, char **argv) {
    if (argc != 4) {
        std::fputs("usage: quorbel-cli-documents FOLDER MANUAL-TEMPLATE DATE\n", stderr);
        return 2;
    }
    try {
        using namespace quorbel;
        const std::string folder = std::string(argv[1]) + "/";
        const Commands commands = allCommands();
        std::string manual = readFile(argv[2]);
        manual = withReplaced(manual, "@DATE@", argv[3]);
        manual = withReplaced(manual, "@VERSION@", version);
        manual = withReplaced(manual, "@SYNOPSIS@\n", manualSynopsis(commands));
        manual = withReplaced(manual, "@COMMANDS@\n", manualCommands(commands));
        writeFile(folder + "ostrafine-cli.1", manual);
        writeFile(folder + "ostrafine-cli.bash", bashCompletion(commands));
        writeFile(folder + "_ostrafine-cli", zshCompletion(commands));
        writeFile(folder + "ostrafine-cli.fish", fishCompletion(commands));
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "quorbel-cli-documents: %s\n", error.what());
        return 1;
    }
}
