// Runs a fuzz target once on each file of its corpus, as an ordinary test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc != 2 || !std::filesystem::is_directory(argv[1])) {
        std::fprintf(stderr, "replay: give it the folder of a corpus\n");
        return 2;
    }
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> text{std::istreambuf_iterator<char>(file), {}};
        const std::vector<std::uint8_t> input(text.begin(), text.end());
        LLVMFuzzerTestOneInput(input.data(), input.size());
        ++files;
    }
    std::printf("%d inputs replayed\n", files);
    return files > 0 ? 0 : 1;
}
