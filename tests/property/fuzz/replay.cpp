// Runs a fuzz target once on each of its seeds, as an ordinary test.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// The value of a hexadecimal digit, or -1.
int digit_value(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

/// The bytes of a line of hexadecimal digits; a dash means an empty seed.
std::optional<std::vector<std::uint8_t>> parse_seed(const std::string& line) {
    std::vector<std::uint8_t> bytes;
    if (line == "-") {
        return bytes;
    }
    if (line.empty() || line.size() % 2 != 0) {
        return std::nullopt;
    }
    for (std::size_t k = 0; k < line.size(); k += 2) {
        const int high = digit_value(line[k]);
        const int low = digit_value(line[k + 1]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.push_back(static_cast<std::uint8_t>(16 * high + low));
    }
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "replay: takes one argument, the file of seeds\n");
        return 2;
    }
    std::ifstream file(argv[1]);
    int count = 0;
    for (std::string line; std::getline(file, line); ++count) {
        const auto seed = parse_seed(line);
        if (!seed) {
            std::fprintf(stderr, "replay: %s:%d: is no line of hexadecimal digits\n", argv[1],
                         count + 1);
            return 2;
        }
        LLVMFuzzerTestOneInput(seed->data(), seed->size());
    }
    if (count == 0) {
        std::fprintf(stderr, "replay: %s has no seed, or cannot be read\n", argv[1]);
        return 2;
    }
    std::printf("%d seeds replayed\n", count);
    return 0;
}
