#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "cuts/derivation.hpp"

namespace zero_half {

struct selection_options {
    /// Cuts are taken as long as there are fewer than `fewer_than`, the cosine of their angle to
    /// all others is at most `most_parallel`, and they have entries in at most that share of the
    /// columns; short ones are never too dense.
    struct step {
        std::size_t fewer_than;
        double most_parallel;
        double most_dense;
    };
    /// Sparse cuts at wide angles raise the bound more surely than many. Only where they are few,
    /// dense ones and those that say nearly the same come in as well.
    std::array<step, 3> steps = {{{200, 0.85, 0.8}, {30, 0.97, 0.8}, {8, 0.9999, 1.0}}};
    /// The largest coefficient may be so many times the smallest; more makes the relaxation
    /// inexact.
    double widest = 1e6;
};

/// Chooses the cuts that are farthest from the point, and at an angle to each other.
class cut_selection {
public:
    cut_selection(const model& from, const selection_options& options)
        : from_(from), options_(options), candidate_(from.column_count()) {}

    std::vector<cut> best_of(std::vector<cut> cuts);

private:
    bool is_dense(const cut& of, double most_dense) const;
    void choose(std::vector<cut>& from, const selection_options::step& by);
    void load(const cut& from);
    bool is_parallel_to(const cut& other, double norm, double most_parallel) const;
    bool is_dominated_by(const cut& other, const cut& candidate) const;

    const model& from_;
    selection_options options_;
    sparse_vector candidate_;
    std::vector<cut> kept_;
    /// Places of the cuts, the farthest first.
    std::vector<std::size_t> order_;
};

} // namespace zero_half
