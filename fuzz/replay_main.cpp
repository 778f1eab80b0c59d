// Runs a fuzz target once over each input file named on the command line, or over
// every file of each folder named there (in name order), without libFuzzer: the
// regular and the sanitizer builds replay the seed corpus and the kept crash inputs
// with it. A folder that does not exist holds no inputs.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path arg = argv[i];
        if (fs::is_directory(arg)) {
            std::vector<fs::path> found;
            for (const auto& entry : fs::directory_iterator(arg))
                if (entry.is_regular_file()) found.push_back(entry.path());
            std::sort(found.begin(), found.end());
            inputs.insert(inputs.end(), found.begin(), found.end());
        } else if (fs::exists(arg)) {
            inputs.push_back(arg);
        }
    }
    for (const fs::path& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(in), {});
        std::fprintf(stderr, "%s\n", input.c_str());
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::fprintf(stderr, "%zu inputs ran\n", inputs.size());
    return 0;
}
