// Replays a fuzzer's inputs without the fuzzer. Usage: ..._replay FOLDER

#include "FuzzInput.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argumentCount, char **arguments) {
    if (argumentCount != 2)
        return 2;
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(arguments[1]))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const auto &path : files) {
        std::printf("%s\n", path.filename().c_str());
        std::fflush(stdout); // the last name printed is the input that fails
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    return files.empty() ? 1 : 0;
}
