// The solver's separator and CglZeroHalf at the same points of the same relaxations. The arguments
// are models and folders of models; without any, the models of the solver and graph problems.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

#include "cuts/separation.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"
#include "lp/relaxation.hpp"
#include "solver/instances.hpp"
#include "support/compare.hpp"

namespace zktarn::bench {

namespace {

using namespace zero_half;

/// The optimum of a relaxation during a run, and the peer with the rows of that relaxation.
struct stage {
    std::vector<double> point;
    std::unique_ptr<OsiClpSolverInterface> solver;
    std::unique_ptr<CglZeroHalf> peer;
};

bool never() {
    return false;
}

/// The models in the folder, by name.
std::vector<std::string> models_in(const std::string& folder) {
    std::vector<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        const std::string name = file.path().filename().string();
        if (name.ends_with(".mps") || name.ends_with(".mps.gz")) {
            files.push_back(file.path().string());
        }
    }
    if (files.empty()) {
        throw error(folder + ": the folder has no file .mps or .mps.gz");
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> models_to_compare() {
    if (operands().empty()) {
        return zero_half::testing::instances();
    }
    std::vector<std::string> files;
    for (const std::string& each : operands()) {
        if (std::filesystem::is_directory(each)) {
            const std::vector<std::string> inside = models_in(each);
            files.insert(files.end(), inside.begin(), inside.end());
        } else {
            files.push_back(each);
        }
    }
    return files;
}

/// The stages of one run of the solver.
class stages_of_run {
public:
    explicit stages_of_run(const std::string& file)
        : model_(read_model(file)), own_(model_.rows_and_bounds(), *random_, never) {
        constexpr int most_stages = 20;
        relaxation lp(model_, never);
        while (static_cast<int>(stages_.size()) < most_stages &&
               lp.solve() == relaxation::outcome::optimal) {
            keep(lp);
            const std::vector<std::size_t> cuts = own_.find(lp.point());
            if (cuts.empty()) {
                break;
            }
            lp.add(own_.pool(), cuts);
        }
    }

    std::size_t stages() const { return stages_.size(); }

    /// Separates every point in order, with the cuts of the earlier points as rows.
    std::size_t separate() {
        own_.truncate(own_.model_rows());
        std::size_t cuts = 0;
        for (const stage& each : stages_) {
            benchmark::DoNotOptimize(own_.find(each.point.data()));
            cuts += own_.found();
        }
        return cuts;
    }

    std::size_t separate_by_peer() const {
        std::size_t cuts = 0;
        for (const stage& each : stages_) {
            OsiCuts found;
            each.peer->generateCuts(*each.solver, found);
            cuts += static_cast<std::size_t>(found.sizeCuts());
        }
        return cuts;
    }

private:
    /// The peer reads the rows here, outside of the timed part.
    void keep(const relaxation& lp) {
        ClpSimplex copy(lp.solver());
        auto solver = std::make_unique<OsiClpSolverInterface>(&copy);
        solver.reset(dynamic_cast<OsiClpSolverInterface*>(solver->clone()));
        solver->messageHandler()->setLogLevel(0);
        for (int j = 0; j < model_.column_count(); ++j) {
            if (model_.is_integer[static_cast<std::size_t>(j)] != 0) {
                solver->setInteger(j);
            }
        }
        auto peer = std::make_unique<CglZeroHalf>();
        peer->refreshSolver(solver.get());
        stages_.push_back(
            {{lp.point(), lp.point() + model_.column_count()}, std::move(solver), std::move(peer)});
    }

    model model_;
    zktarn::owned_generator random_{1};
    separator own_;
    std::vector<stage> stages_;
};

} // namespace

void register_comparisons() {
    std::printf("%-20s %7s %8s %8s\n", "cuts found", "points", "library", "cgl");
    for (const std::string& file : models_to_compare()) {
        const auto each = std::make_shared<stages_of_run>(file);
        const std::string name = zero_half::testing::stem_of(file);
        std::printf("%-20s %7zu %8zu %8zu\n", name.c_str(), each->stages(), each->separate(),
                    each->separate_by_peer());
        compare("separate/" + name,
                {doing("library", [each](std::int64_t) { each->separate(); }),
                 doing("cgl", [each](std::int64_t) { each->separate_by_peer(); })});
    }
    std::fflush(stdout);
}

} // namespace zktarn::bench
