// Runs a fuzz target's entry point once per file named on the command line (directories:
// every file inside; a path that does not exist is skipped), so that found inputs replay in
// the normal build without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path arg = argv[i];
        if (!std::filesystem::exists(arg)) continue;
        if (std::filesystem::is_directory(arg)) {
            for (const auto& e : std::filesystem::directory_iterator(arg))
                if (e.is_regular_file()) files.push_back(e.path());
        } else {
            files.push_back(arg);
        }
    }
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        if (!in) {
            std::perror(file.c_str());
            return 1;
        }
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu input(s) replayed\n", files.size());
    return 0;
}
