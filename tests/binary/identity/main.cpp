// identity          prints the hash of the results of each procedure
// identity GOLDEN   names each procedure whose hash differs from the file's, and fails if any does
//
// The hashes must not depend on compiler, optimisation level or processor.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <span>
#include <string>

#include "binary/identity/procedures.hpp"

namespace {

using namespace zktarn::identity;

using hashes = std::map<std::string, std::string>;

hashes computed() {
    hashes all;
    for (const auto& procedures : {util_procedures(), array_copy_procedures(), vector_procedures(),
                                   sorting_procedures(), random_procedures()}) {
        for (const procedure& each : procedures) {
            all.emplace(each.name, hash_of(each));
        }
    }
    return all;
}

/// Reads lines of a name and a hash. Returns no hashes when the file cannot be read.
hashes read(const char* path) {
    std::ifstream file(path);
    hashes all;
    std::string name;
    std::string hash;
    while (file >> name >> hash) {
        all.emplace(name, hash);
    }
    return all;
}

/// Prints and counts the names whose hashes differ or that only one side has.
int differences(const hashes& current, const hashes& golden) {
    int count = 0;
    for (const auto& [name, hash] : current) {
        const auto found = golden.find(name);
        if (found == golden.end() || found->second != hash) {
            std::printf("different: %s: %s, not %s\n", name.c_str(), hash.c_str(),
                        found == golden.end() ? "in the file" : found->second.c_str());
            ++count;
        }
    }
    for (const auto& [name, hash] : golden) {
        if (!current.contains(name)) {
            std::printf("different: %s: not computed, but in the file\n", name.c_str());
            ++count;
        }
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
        std::fprintf(stderr, "identity: takes the name of one file of hashes, or nothing\n");
        return 2;
    }
    if (argc == 1) {
        for (const auto& [name, hash] : computed()) {
            std::printf("%s %s\n", name.c_str(), hash.c_str());
        }
        return 0;
    }
    const hashes golden = read(argv[1]);
    if (golden.empty()) {
        std::fprintf(stderr, "identity: there are no hashes in '%s'\n", argv[1]);
        return 2;
    }
    const hashes current = computed();
    const int count = differences(current, golden);
    std::printf("%zu procedures, %d different\n", current.size(), count);
    return count == 0 ? 0 : 1;
}
