#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace quorbel {

/// Limits of a Levenberg-Marquardt step.
struct LevenbergMarquardtLimits {
    double ridge = 1e-9; ///< added to the diagonal; keeps unknowns without effect unchanged
    double smallestDamping = 0.0;
};

/// Solves (normal + damping · its diagonal) · x = right for the first `n` unknowns, by Gauss-Jordan
/// elimination with partial pivoting. `normal` is indexed by row and column.
template <typename Matrix, typename Vector>
[[nodiscard]] Vector dampedSolution(Matrix normal, Vector right, std::size_t n, double damping,
                                    double ridge) {
    for (std::size_t i = 0; i < n; ++i)
        normal[i][i] = normal[i][i] * (1.0 + damping) + ridge;
    for (std::size_t column = 0; column < n; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = 0; row < n; ++row) // from 0: GCC 14 misjudges a later start
            if (row > column && std::abs(normal[row][column]) > std::abs(normal[pivot][column]))
                pivot = row;
        using std::swap; // rows may be arrays or vectors
        swap(normal[pivot], normal[column]);
        swap(right[pivot], right[column]);
        for (std::size_t row = 0; row < n; ++row) {
            if (row == column)
                continue;
            const double factor = normal[row][column] / normal[column][column];
            for (std::size_t i = column; i < n; ++i)
                normal[row][i] -= factor * normal[column][i];
            right[row] -= factor * right[column];
        }
    }
    for (std::size_t i = 0; i < n; ++i)
        right[i] /= normal[i][i];
    return right;
}

/// Makes one step of a least-squares fit (D. W. Marquardt, "An Algorithm for Least-Squares
/// Estimation of Nonlinear Parameters", 1963): raises the damping until `accept(step)` returns
/// true, eight times at most, and lowers it after a success. `accept` subtracts the step from the
/// `n` unknowns if that lowers the cost. Returns false if no step was accepted.
template <typename Matrix, typename Vector, typename Accept>
bool levenbergMarquardtStep(const Matrix &normal, const Vector &gradient, std::size_t n,
                            const LevenbergMarquardtLimits &limits, double &damping,
                            Accept accept) {
    for (int attempt = 0; attempt < 8; ++attempt) {
        if (accept(dampedSolution(normal, gradient, n, damping, limits.ridge))) {
            damping = std::max(damping * 0.2, limits.smallestDamping);
            return true;
        }
        damping *= 5.0;
    }
    return false;
}

} // namespace quorbel
