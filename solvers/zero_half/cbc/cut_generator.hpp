#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <CglCutGenerator.hpp>
#include <CoinPackedMatrix.hpp>

#include "cuts/separation.hpp"
#include "zktarn/zktarn_util.hpp"

namespace zero_half {

/// Zero-half cuts for Cbc and every other solver that takes generators of Cgl:
///
///     zero_half::cut_generator generator;
///     model.addCutGenerator(&generator, -99, "zero-half"); // at the root; 1: at every node
///
/// Cbc clones the generator and calls `refreshSolver` when the rows have changed, for example by
/// preprocessing. All cuts are derived from the rows and the bounds of that call, so they are valid
/// in the whole tree and are marked as such; rows and bounds of single nodes are not used. Cuts of
/// earlier calls are rows of further cuts.
///
/// The host must be ready before the constructor is called. One thread at a time uses an object.
class cut_generator : public CglCutGenerator {
public:
    struct settings {
        std::int32_t seed = 1;
        separation_options separation = {};
        /// The maximum number of cuts of one call below the root, where each cut slows down all
        /// later nodes.
        std::size_t most_in_tree = 20;
        /// Below the root the cuts of earlier calls are removed when they exceed this multiple of
        /// the rows, because each one slows down the separation.
        std::size_t most_known = 4;
    };

    /// Throws std::bad_alloc when the host cannot make a random generator.
    explicit cut_generator(const settings& chosen);
    cut_generator() : cut_generator(settings{}) {}
    /// The copy has the same rows, and none of the cuts.
    cut_generator(const cut_generator& other);
    cut_generator& operator=(const cut_generator&) = delete;
    ~cut_generator() override = default;
    CglCutGenerator* clone() const override { return new cut_generator(*this); }

    /// Reads rows, bounds and kinds of columns. The bounds must hold in the whole tree.
    void refreshSolver(OsiSolverInterface* solver) override;

    /// Adds the cuts that the solver's current point violates to `cuts`. Reads the rows of `solver`
    /// first if `refreshSolver` was not called, or was called for another number of columns or for
    /// narrower bounds; the cuts are then valid for the bounds of `solver`, and marked as valid in
    /// the whole tree only if `info` says that this is the root.
    void generateCuts(const OsiSolverInterface& solver, OsiCuts& cuts,
                      const CglTreeInfo info = CglTreeInfo()) override;

private:
    /// The rows as the separator reads them: by rows, without gaps.
    struct snapshot {
        CoinPackedMatrix rows;
        std::vector<double> row_lower;
        std::vector<double> row_upper;
        std::vector<double> lower;
        std::vector<double> upper;
        std::vector<char> is_integer;
        /// Whether the bounds are those of the root.
        bool is_global = true;
    };

    void read(const OsiSolverInterface& solver, int rows, bool is_global);
    bool is_read_for(const OsiSolverInterface& solver) const;
    void make_separator();
    std::vector<std::size_t> rows_to_add(const double* point, bool in_tree);

    settings settings_;
    snapshot model_;
    zktarn::owned_generator random_;
    std::unique_ptr<separator> separator_;
};

} // namespace zero_half
