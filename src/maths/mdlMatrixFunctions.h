// the maths library, module `mdlMatrixFunctions`: sum, product and transpose of matrices.
//
// A Matrix is the Windows design's two-dimensional dynamic array of doubles: each dimension has a
// lower and an upper bound (inclusive), usually declared from 0 with the content from 1.
// The operations work on indices from 1 upward and leave row 0 and column 0 alone; results
// of MatrixMultiply and MatrixTranspose are created anew from 0. Element access outside the
// bounds raises vexil::VexilError number 9 (ErrSubscript), as the Windows design's bounds failure.
#pragma once
#include <cstddef>
#include <vector>

namespace mdlMatrixFunctions {

class Matrix {
  public:
    Matrix() = default; // undimensioned: no elements, bounds raise ErrSubscript
    Matrix(int upper1, int upper2) { redim(0, upper1, 0, upper2); } // 0..upper1 x 0..upper2
    Matrix(int lower1, int upper1, int lower2, int upper2) { redim(lower1, upper1, lower2, upper2); }

    // ReDim: new bounds, every element 0. An upper bound below its lower bound raises ErrSubscript.
    void redim(int upper1, int upper2) { redim(0, upper1, 0, upper2); }
    void redim(int lower1, int upper1, int lower2, int upper2);

    bool empty() const { return data_.empty(); }
    // LBound / UBound of dimension 1 or 2; an undimensioned matrix raises ErrSubscript.
    int lbound(int dimension) const;
    int ubound(int dimension) const;

    double& operator()(int i, int j) { return data_[index(i, j)]; }
    double operator()(int i, int j) const { return data_[index(i, j)]; }

    bool operator==(const Matrix&) const = default;

  private:
    std::size_t index(int i, int j) const {
        if (i < lb1_ || i > ub1_ || j < lb2_ || j > ub2_) raiseSubscript();
        return static_cast<std::size_t>(i - lb1_) * static_cast<std::size_t>(ub2_ - lb2_ + 1) +
               static_cast<std::size_t>(j - lb2_);
    }
    [[noreturn]] static void raiseSubscript();

    int lb1_ = 0, ub1_ = -1, lb2_ = 0, ub2_ = -1;
    std::vector<double> data_;
};

// Both matrices must have the same bounds in both dimensions: then
// dest(i, j) := a(i, j) + b(i, j) for i, j from 1 to the upper bounds, and the result is false.
// Otherwise a message box "MatrixADD" / "Matrix bounds inconsistent!" and the result true.
// dest may be a or b. A dest that does not hold indices 1..upper of a is re-dimensioned
// to a's bounds first (zero-filled); a larger dest keeps its other elements.
bool MatrixADD(const Matrix& a, const Matrix& b, Matrix& dest);

// If a's second upper bound equals b's first: dest := a x b over indices from 1, created
// anew as 0..ubound(a,1) x 0..ubound(b,2); result false. Otherwise a message box and true
// (dest unchanged). dest may be a or b.
bool MatrixMultiply(const Matrix& a, const Matrix& b, Matrix& dest);

// dest is created anew as 0..ubound(a,2) x 0..ubound(a,1), and every element from index 0
// in both dimensions is copied (so a must be declared from 0). dest may be a.
void MatrixTranspose(const Matrix& a, Matrix& dest);

} // namespace mdlMatrixFunctions
