#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "cuts/cut.hpp"
#include "cuts/mixed_integer_rows.hpp"

namespace zero_half {

struct selection_options {
    /// One pass over the candidates. It takes a cut if fewer than `target` cuts are selected, if
    /// the cosine of the angle between the cut and each selected cut is at most `max_cosine`, and
    /// if the cut has entries in at most the share `max_density` of the columns. A cut with few
    /// entries is never too dense.
    struct pass {
        std::size_t target;
        double max_cosine;
        double max_density;
    };
    /// Sparse cuts at wide angles raise the bound more reliably than many cuts. Dense and nearly
    /// parallel cuts are taken only where there are few others.
    std::array<pass, 3> passes = {{{200, 0.85, 0.8}, {60, 0.97, 0.8}, {8, 0.9999, 1.0}}};
    /// The largest ratio of two coefficients of a cut. A larger one makes the relaxation
    /// ill-conditioned.
    double max_dynamism = 1e6;
};

/// Selects cuts, the greatest efficacy first, and rejects those nearly parallel to a selected one.
class cut_selection {
public:
    cut_selection(const mixed_integer_rows& model, const selection_options& options)
        : model_(model), options_(options), dense_(model.lower.size()) {}

    std::vector<cut> select(std::vector<cut> cuts);

private:
    /// A cut that may be selected. A pass compares it with the selected cuts in order, up to the
    /// first one that rejects it; a later pass continues there.
    struct candidate {
        std::size_t cut;
        double efficacy;
        std::size_t compared = 0;
        /// The cosine of the angle to the selected cut that rejected it.
        double cosine = -1.0;
        bool is_settled = false;
    };

    bool is_dense(const cut& each, double max_density) const;
    void load(const cut& each);
    void unload(const cut& each);
    double cosine_to(const cut& selected, const cut& loaded) const;
    bool is_dominated_by(const cut& selected, const cut& loaded) const;
    bool is_new(candidate& each, const cut& own, double max_cosine);
    void run_pass(std::vector<cut>& cuts, const selection_options::pass& pass);

    const mixed_integer_rows& model_;
    selection_options options_;
    /// The coefficients of the cut that is compared with the selected ones, for each column.
    std::vector<double> dense_;
    std::vector<cut> selected_;
    /// The greatest efficacy first.
    std::vector<candidate> candidates_;
};

} // namespace zero_half
