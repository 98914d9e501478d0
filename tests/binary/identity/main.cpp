// identity                    prints the hash of the results of each procedure
// identity GOLDEN             names each procedure whose hash differs from that in GOLDEN
// identity --covers EXPORTS   names each exported procedure of the numeric modules that has no
// hash.
//                             EXPORTS is a list of mangled names.
//
// The exit status is 0 when no procedure is named, 1 when one is, and 2 when a file cannot be read
// or an argument is wrong. The hashes must not depend on compiler, optimisation level or processor.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "binary/identity/procedures.hpp"

namespace {

using namespace zktarn::identity;

using hashes = std::map<std::string, std::string>;

std::vector<procedure> all_procedures() {
    std::vector<procedure> all;
    for (const auto& module : {util_procedures(), array_copy_procedures(), vector_procedures(),
                               sorting_procedures(), random_procedures()}) {
        all.insert(all.end(), module.begin(), module.end());
    }
    return all;
}

hashes computed() {
    hashes all;
    for (const procedure& each : all_procedures()) {
        all.emplace(each.name, hash_of(each));
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

void print_hashes() {
    for (const auto& [name, hash] : computed()) {
        std::printf("%s %s\n", name.c_str(), hash.c_str());
    }
}

int compare(const char* path) {
    const hashes golden = read(path);
    if (golden.empty()) {
        std::fprintf(stderr, "identity: there are no hashes in '%s'\n", path);
        return 2;
    }
    const hashes current = computed();
    const int count = differences(current, golden);
    std::printf("%zu procedures, %d different\n", current.size(), count);
    return count == 0 ? 0 : 1;
}

/// The name module.procedure of a mangled procedure of a numeric module, or nothing. A mangled name
/// has the module and the procedure, each after the number of its characters.
std::string numeric_procedure(const std::string& mangled) {
    static const std::regex pattern(
        "_ZN6zktarn[0-9]+(util|vector_mod|sorting_mod|random)([0-9]+)(.*)");
    std::smatch found;
    if (!std::regex_match(mangled, found, pattern)) {
        return {};
    }
    return found.str(1) + "." + found.str(3).substr(0, std::stoul(found.str(2)));
}

int check_coverage(const char* path) {
    std::set<std::string> hashed;
    for (const procedure& each : all_procedures()) {
        hashed.insert(each.name);
    }
    std::ifstream file(path);
    int exports = 0;
    int missing = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string name = numeric_procedure(line);
        exports += name.empty() ? 0 : 1;
        if (!name.empty() && !hashed.contains(name)) {
            std::printf("without a hash: %s\n", name.c_str());
            ++missing;
        }
    }
    if (exports == 0) {
        std::fprintf(stderr, "identity: '%s' lists no procedure of a numeric module\n", path);
        return 2;
    }
    std::printf("%d exported procedures, %d without a hash\n", exports, missing);
    return missing == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 1) {
        print_hashes();
        return 0;
    }
    if (argc == 2 && argv[1][0] != '-') {
        return compare(argv[1]);
    }
    if (argc == 3 && std::strcmp(argv[1], "--covers") == 0) {
        return check_coverage(argv[2]);
    }
    std::fprintf(stderr, "usage: identity [GOLDEN | --covers EXPORTS]\n");
    return 2;
}
