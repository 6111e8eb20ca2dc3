// Replays a fuzz target's seed corpus: every file named on the command line, or
// found below a named folder, is fed once to LLVMFuzzerTestOneInput. A crash,
// sanitizer report or hang fails the ctest entry; an empty corpus fails too.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg(argv[i]);
        std::error_code ec;
        if (fs::is_directory(arg, ec)) {
            for (const auto& entry : fs::recursive_directory_iterator(arg))
                if (entry.is_regular_file())
                    files.push_back(entry.path());
        } else if (fs::is_regular_file(arg, ec)) {
            files.push_back(arg);
        } else {
            std::cerr << "replay: no such file or folder: " << arg << "\n";
            return 2;
        }
    }
    if (files.empty()) {
        std::cerr << "replay: empty corpus\n";
        return 2;
    }
    for (const fs::path& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::cout << "replayed " << files.size() << " inputs\n";
    return 0;
}
