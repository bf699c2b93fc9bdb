// Runs a fuzz target's entry point once over every file given, or every file in the folders given (in
// name order, sub-folders included): the corpus and the regression inputs, with no fuzzing. A property
// failure, a sanitizer report or an escaping exception ends the run; the file being run is named first.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path given = argv[i];
        if (std::filesystem::is_directory(given)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(given))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
        } else if (std::filesystem::is_regular_file(given)) {
            files.push_back(given);
        } else {
            std::fprintf(stderr, "%s: no such file or folder\n", given.c_str());
            return 2;
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        std::fprintf(stderr, "%s\n", file.c_str());
        std::ifstream in(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        // A copy of exactly the file's size, so that a read past the end is a sanitizer report.
        std::vector<uint8_t> data(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(data.empty() ? nullptr : data.data(), data.size());
    }
    std::printf("%zu inputs run\n", files.size());
    return 0;
}
