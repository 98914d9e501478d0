#include "cbc/comparison.hpp"

#include <algorithm>
#include <ctime>
#include <memory>

#include <CbcModel.hpp>
#include <CbcSolver.hpp>
#include <CglZeroHalf.hpp>

// Included after CbcModel.hpp, because it uses declarations of that header.
#include <CbcCutGenerator.hpp>

#include "cbc/cut_generator.hpp"

namespace zero_half {

namespace {

constexpr const char* generator_name = "zero-half cuts of the comparison";
/// Codes of Cbc: where the callback is called, and how often a generator is used.
constexpr int before_search = 3;
constexpr int after_search = 4;
constexpr int root_only = -99;

/// The application data of the model: Cbc's callback, a plain function, has no other argument for
/// it.
struct observer {
    std::unique_ptr<CglCutGenerator> generator;
    int frequency;
    search_result result;
};

void read_figures(CbcModel& search, search_result& result) {
    result.nodes = search.getNodeCount();
    result.root_bound = search.rootObjectiveAfterCuts();
    for (int k = 0; k < search.numberCutGenerators(); ++k) {
        const CbcCutGenerator& each = *search.cutGenerator(k);
        if (std::string(each.cutGeneratorName()) == generator_name) {
            result.cuts = each.numberCutsInTotal();
            result.separation_seconds = each.timeInCutGenerator();
        }
    }
}

/// Called by Cbc with the model that it searches, after preprocessing. Returns 0 to continue.
int observe(CbcModel* search, int place) {
    auto& seen = *static_cast<observer*>(search->getApplicationData());
    if (place == before_search && seen.generator) {
        search->addCutGenerator(seen.generator.get(), seen.frequency, generator_name);
        search->cutGenerator(search->numberCutGenerators() - 1)->setTiming(true);
    } else if (place == after_search) {
        read_figures(*search, seen.result);
    }
    return 0;
}

std::unique_ptr<CglCutGenerator> generator_of(variant::cuts kind, std::int32_t seed) {
    cut_generator::settings chosen;
    chosen.seed = seed;
    switch (kind) {
    case variant::cuts::cgl:
        return std::make_unique<CglZeroHalf>();
    case variant::cuts::own:
        return std::make_unique<cut_generator>(chosen);
    case variant::cuts::none:
        break;
    }
    return nullptr;
}

std::vector<std::string> arguments_of(const comparison_options& options) {
    std::vector<std::string> words = {"cbc",
                                      "-log",
                                      "0",
                                      "-ratio",
                                      "0",
                                      "-allow",
                                      "0",
                                      "-seconds",
                                      std::to_string(options.seconds),
                                      "-timeMode",
                                      "cpu",
                                      "-randomSeed",
                                      std::to_string(options.seed),
                                      "-randomCbcSeed",
                                      std::to_string(options.seed),
                                      "-zeroHalfCuts",
                                      "off"};
    if (options.is_plain) {
        for (const char* word : {"-cuts", "off", "-preprocess", "off", "-heuristics", "off"}) {
            words.emplace_back(word);
        }
    }
    words.emplace_back("-solve");
    words.emplace_back("-quit");
    return words;
}

double cpu_seconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace

const std::vector<variant>& variants() {
    static const std::vector<variant> all = {
        {variant::cuts::none, false, "none"},
        {variant::cuts::cgl, false, "CglZeroHalf, root"},
        {variant::cuts::own, false, "zero_half, root"},
        {variant::cuts::cgl, true, "CglZeroHalf, tree"},
        {variant::cuts::own, true, "zero_half, tree"},
    };
    return all;
}

search_result solve_by_cbc(const model& program, const variant& chosen,
                           const comparison_options& options) {
    observer seen{generator_of(chosen.generator, options.seed),
                  chosen.at_every_kth_node ? options.every : root_only,
                  {}};
    const double start = cpu_seconds();
    CbcModel search(loaded(program));
    CbcSolverUsefulData settings;
    CbcMain0(search, settings);
    search.setApplicationData(&seen);
    const std::vector<std::string> words = arguments_of(options);
    std::vector<const char*> arguments;
    for (const std::string& word : words) {
        arguments.push_back(word.c_str());
    }
    CbcMain1(static_cast<int>(arguments.size()), arguments.data(), search, observe, settings);
    search_result& result = seen.result;
    result.cpu_seconds = cpu_seconds() - start;
    if (search.isProvenInfeasible()) {
        result.end = search_result::state::infeasible;
    } else if (search.isProvenOptimal()) {
        result.end = search_result::state::optimal;
    }
    const auto as_in_file = [&](double value) {
        return program.in_sense_of_file(value + program.constant);
    };
    if (result.root_bound && result.end == search_result::state::optimal) {
        // Cbc reports a bound beyond the optimum if an integer point prunes the root.
        result.root_bound = std::min(*result.root_bound, search.getObjValue());
    }
    if (result.root_bound) {
        result.root_bound = as_in_file(*result.root_bound);
    }
    if (search.bestSolution() != nullptr) {
        result.value = as_in_file(search.getObjValue());
    }
    return result;
}

} // namespace zero_half
