// The solver's separator and CglZeroHalf at the same points of the same relaxations.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

#include "cuts/separation.hpp"
#include "input/read_model.hpp"
#include "lp/relaxation.hpp"
#include "solver/instances.hpp"
#include "support/compare.hpp"

namespace zktarn::bench {

namespace {

using namespace zero_half;

/// The optimum of a relaxation during a run, and the rows that the relaxation had.
struct stage {
    std::vector<double> point;
    std::size_t rows;
    std::unique_ptr<OsiClpSolverInterface> solver;
    std::unique_ptr<CglZeroHalf> peer;
};

bool never() {
    return false;
}

/// The stages of one run of the solver.
class stages_of_run {
public:
    explicit stages_of_run(const std::string& file)
        : model_(read_model(file)), own_(model_, *random_, never), pool_(integral_rows_of(model_)) {
        constexpr int most_stages = 20;
        relaxation lp(model_, never);
        separator guide(model_, *random_, never);
        while (static_cast<int>(stages_.size()) < most_stages &&
               lp.solve() == relaxation::outcome::optimal) {
            keep(lp);
            const std::vector<zero_half::cut> cuts = guide.find(pool_, lp.point());
            if (cuts.empty()) {
                break;
            }
            for (const zero_half::cut& found : cuts) {
                pool_.push_back(integral_row_of(found, model_.column_count()));
            }
            lp.add(cuts);
        }
    }

    std::size_t stages() const { return stages_.size(); }

    std::size_t separate() {
        std::size_t cuts = 0;
        for (const stage& each : stages_) {
            benchmark::DoNotOptimize(
                own_.find(std::span(pool_).first(each.rows), each.point.data()));
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
        stages_.push_back({{lp.point(), lp.point() + model_.column_count()},
                           pool_.size(),
                           std::move(solver),
                           std::move(peer)});
    }

    model model_;
    zktarn::owned_generator random_{1};
    separator own_;
    std::vector<integral_row> pool_;
    std::vector<stage> stages_;
};

} // namespace

void register_comparisons() {
    std::printf("%-20s %7s %8s %8s\n", "cuts found", "points", "library", "cgl");
    for (const std::string& file : zero_half::testing::instances()) {
        const auto each = std::make_shared<stages_of_run>(file);
        const std::string name = std::filesystem::path(file).stem().string();
        std::printf("%-20s %7zu %8zu %8zu\n", name.c_str(), each->stages(), each->separate(),
                    each->separate_by_peer());
        compare("separate/" + name,
                {doing("library", [each](std::int64_t) { each->separate(); }),
                 doing("cgl", [each](std::int64_t) { each->separate_by_peer(); })});
    }
    std::fflush(stdout);
}

} // namespace zktarn::bench
