// the maths library, module mdlMatrixFunctions.
#include "mdlMatrixFunctions.h"

#include "base/VexilError.h"
#include "MathsReport.h"

#include <cmath>
#include <utility>

namespace mdlMatrixFunctions {

using vexil::propagate;

void Matrix::raiseSubscript() {
    vexil::raiseError(vexil::ErrSubscript, "Subscript out of range");
}

void Matrix::redim(int lower1, int upper1, int lower2, int upper2) {
    if (upper1 < lower1 || upper2 < lower2) raiseSubscript();
    const std::size_t n =
        static_cast<std::size_t>(upper1 - lower1 + 1) * static_cast<std::size_t>(upper2 - lower2 + 1);
    data_.assign(n, 0.0);
    lb1_ = lower1;
    ub1_ = upper1;
    lb2_ = lower2;
    ub2_ = upper2;
}

int Matrix::lbound(int dimension) const {
    if (empty() || (dimension != 1 && dimension != 2)) raiseSubscript();
    return dimension == 1 ? lb1_ : lb2_;
}

int Matrix::ubound(int dimension) const {
    if (empty() || (dimension != 1 && dimension != 2)) raiseSubscript();
    return dimension == 1 ? ub1_ : ub2_;
}

namespace {
// True if m holds every index (i, j) with 1 <= i <= u1 and 1 <= j <= u2.
bool covers(const Matrix& m, int u1, int u2) {
    if (u1 < 1 || u2 < 1) return true;
    if (m.empty()) return false;
    return m.lbound(1) <= 1 && m.ubound(1) >= u1 && m.lbound(2) <= 1 && m.ubound(2) >= u2;
}
} // namespace

bool MatrixADD(const Matrix& a, const Matrix& b, Matrix& dest) {
    return propagate("mdlMatrixFunctions", "MatrixADD", [&] {
        if (a.lbound(1) != b.lbound(1) || a.ubound(1) != b.ubound(1) || a.lbound(2) != b.lbound(2) ||
            a.ubound(2) != b.ubound(2)) {
            Maths::ShowMessageBox("MatrixADD", "Matrix bounds inconsistent!");
            return true;
        }
        const int u1 = a.ubound(1), u2 = a.ubound(2);
        if (!covers(dest, u1, u2)) dest.redim(a.lbound(1), u1, a.lbound(2), u2);
        for (int i = 1; i <= u1; ++i)
            for (int j = 1; j <= u2; ++j) {
                const double s = a(i, j) + b(i, j);
                if (!std::isfinite(s)) vexil::raiseOverflow();
                dest(i, j) = s;
            }
        return false;
    });
}

bool MatrixMultiply(const Matrix& a, const Matrix& b, Matrix& dest) {
    return propagate("mdlMatrixFunctions", "MatrixMultiply", [&] {
        if (a.ubound(2) != b.ubound(1)) {
            Maths::ShowMessageBox("MatrixMultiply", std::string(" Matrix multiplication not possible") +
                                                        "num of row in MatA != to num of columns in MatB.");
            return true;
        }
        const int rows = a.ubound(1), cols = b.ubound(2), inner = a.ubound(2);
        Matrix result(0, rows, 0, cols);
        for (int i = 1; i <= rows; ++i)
            for (int j = 1; j <= cols; ++j) {
                double sum = 0.0;
                for (int k = 1; k <= inner; ++k) {
                    const double p = a(i, k) * b(k, j);
                    if (!std::isfinite(p)) vexil::raiseOverflow();
                    sum += p;
                    if (!std::isfinite(sum)) vexil::raiseOverflow();
                }
                result(i, j) = sum;
            }
        dest = std::move(result);
        return false;
    });
}

void MatrixTranspose(const Matrix& a, Matrix& dest) {
    propagate("mdlMatrixFunctions", "MatrixTranspose", [&] {
        const int u1 = a.ubound(1), u2 = a.ubound(2);
        Matrix result(0, u2, 0, u1);
        for (int i = 0; i <= u1; ++i)
            for (int j = 0; j <= u2; ++j)
                result(j, i) = a(i, j);
        dest = std::move(result);
    });
}

} // namespace mdlMatrixFunctions
