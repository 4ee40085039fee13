#include "maths/mdlMatrixFunctions.h"

#include "MathsTestSupport.h"

using namespace mdlMatrixFunctions;
using maths_test::raised;
using maths_test::Recorder;

namespace {
// A 0..4 x 0..4 matrix with content (i, j) -> 10 i + j from 1, and a sentinel in row and column 0.
Matrix numbered(double sentinel = -99.0) {
    Matrix m(4, 4);
    for (int i = 0; i <= 4; ++i)
        for (int j = 0; j <= 4; ++j)
            m(i, j) = (i == 0 || j == 0) ? sentinel : 10.0 * i + j;
    return m;
}
} // namespace

TEST(Matrix, BoundsAndAccessOutsideThemRaiseSubscript) {
    Matrix m(1, 4, 0, 2);
    EXPECT_EQ(m.lbound(1), 1);
    EXPECT_EQ(m.ubound(1), 4);
    EXPECT_EQ(m.lbound(2), 0);
    EXPECT_EQ(m.ubound(2), 2);
    EXPECT_EQ(m(4, 2), 0.0);
    EXPECT_EQ(raised([&] { m(0, 0) = 1; }).number, vexil::ErrSubscript);
    EXPECT_EQ(raised([&] { (void)m(1, 3); }).number, vexil::ErrSubscript);
    Matrix undimensioned;
    EXPECT_TRUE(undimensioned.empty());
    EXPECT_EQ(raised([&] { (void)undimensioned.ubound(1); }).number, vexil::ErrSubscript);
    m.redim(2, 3);
    EXPECT_EQ(m.lbound(1), 0);
    EXPECT_EQ(m.ubound(2), 3);
    EXPECT_EQ(raised([&] { m.redim(2, 1, 0, 0); }).number, vexil::ErrSubscript);
}

TEST(MatrixADD, AddsFromIndexOneAndLeavesRowAndColumnZero) {
    const Matrix a = numbered(-1), b = numbered(-2);
    Matrix dest = numbered(123);
    EXPECT_FALSE(MatrixADD(a, b, dest));
    for (int i = 0; i <= 4; ++i)
        for (int j = 0; j <= 4; ++j)
            EXPECT_EQ(dest(i, j), (i == 0 || j == 0) ? 123.0 : 2 * (10.0 * i + j)) << i << "," << j;
}

TEST(MatrixADD, DestMayBeAnInputAndAnUndimensionedDestIsCreated) {
    Matrix a = numbered(5);
    const Matrix b = numbered(7);
    EXPECT_FALSE(MatrixADD(a, b, a));
    EXPECT_EQ(a(0, 0), 5.0);
    EXPECT_EQ(a(4, 3), 86.0);
    EXPECT_FALSE(MatrixADD(a, a, a));
    EXPECT_EQ(a(4, 3), 172.0);
    EXPECT_EQ(a(2, 0), 5.0);

    Matrix q(1, 4, 1, 4), created;
    q(1, 1) = 1;
    q(4, 4) = 2;
    EXPECT_FALSE(MatrixADD(q, q, created));
    EXPECT_EQ(created.lbound(1), 1);
    EXPECT_EQ(created.ubound(2), 4);
    EXPECT_EQ(created(1, 1), 2.0);
    EXPECT_EQ(created(4, 4), 4.0);
}

TEST(MatrixADD, InconsistentBoundsShowTheMessageAndAnswerTrue) {
    Recorder rec;
    const Matrix a(4, 4), b(3, 4), c(1, 4, 0, 4);
    Matrix dest = numbered();
    EXPECT_TRUE(MatrixADD(a, b, dest));
    EXPECT_TRUE(MatrixADD(a, c, dest)); // same upper bounds, other lower bound
    EXPECT_EQ(dest, numbered());
    ASSERT_EQ(rec.boxes.size(), 2u);
    EXPECT_EQ(rec.boxes[0].first, "MatrixADD");
    EXPECT_EQ(rec.boxes[0].second, "Matrix bounds inconsistent!");
}

TEST(MatrixMultiply, QuadraticFormOfAColumnIgnoresRowAndColumnZero) {
    // The simplifier's cost: v^T Q v with v the column (x, y, z, 1) in a 0..4 x 0..1 array.
    Matrix v(4, 1);
    v(0, 0) = 1000;
    v(0, 1) = 1000;
    for (int i = 1; i <= 4; ++i)
        v(i, 0) = -1000;
    v(1, 1) = 1;
    v(2, 1) = 2;
    v(3, 1) = 3;
    v(4, 1) = 1;
    Matrix q(4, 4);
    for (int i = 0; i <= 4; ++i)
        q(0, i) = q(i, 0) = 555;
    for (int i = 1; i <= 4; ++i)
        q(i, i) = i; // diag(1, 2, 3, 4)

    Matrix vt, qv, cost;
    MatrixTranspose(v, vt);
    EXPECT_EQ(vt.ubound(1), 1);
    EXPECT_EQ(vt.ubound(2), 4);
    EXPECT_FALSE(MatrixMultiply(q, v, qv));
    EXPECT_EQ(qv.lbound(1), 0);
    EXPECT_EQ(qv.ubound(1), 4);
    EXPECT_EQ(qv.ubound(2), 1);
    EXPECT_EQ(qv(0, 0), 0.0);
    EXPECT_EQ(qv(0, 1), 0.0);
    EXPECT_EQ(qv(3, 1), 9.0);
    EXPECT_FALSE(MatrixMultiply(vt, qv, cost));
    EXPECT_EQ(cost.ubound(1), 1);
    EXPECT_EQ(cost.ubound(2), 1);
    EXPECT_EQ(cost(1, 1), 1.0 + 8.0 + 27.0 + 4.0);
}

TEST(MatrixMultiply, GeneralProductAndAliasing) {
    Matrix a(2, 3), b(3, 2);
    // a = [1 2 3; 4 5 6], b = [7 8; 9 10; 11 12] from index 1.
    double x = 1;
    for (int i = 1; i <= 2; ++i)
        for (int j = 1; j <= 3; ++j)
            a(i, j) = x++;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 2; ++j)
            b(i, j) = x++;
    Matrix p;
    EXPECT_FALSE(MatrixMultiply(a, b, p));
    EXPECT_EQ(p(1, 1), 58.0);
    EXPECT_EQ(p(1, 2), 64.0);
    EXPECT_EQ(p(2, 1), 139.0);
    EXPECT_EQ(p(2, 2), 154.0);
    EXPECT_FALSE(MatrixMultiply(a, b, a)); // dest created anew, even when it is an input
    EXPECT_EQ(a, p);
}

TEST(MatrixMultiply, MismatchShowsTheMessageAndLeavesDest) {
    Recorder rec;
    const Matrix a(2, 3), b(2, 2);
    Matrix dest = numbered();
    EXPECT_TRUE(MatrixMultiply(a, b, dest));
    EXPECT_EQ(dest, numbered());
    ASSERT_EQ(rec.boxes.size(), 1u);
    EXPECT_EQ(rec.boxes[0].first, "MatrixMultiply");
    EXPECT_EQ(rec.boxes[0].second,
              " Matrix multiplication not possiblenum of row in MatA != to num of columns in MatB.");
}

TEST(MatrixMultiply, OverflowRaisesWithTheModuleInTheTrace) {
    Matrix a(1, 1), b(1, 1), dest;
    a(1, 1) = 1e200;
    b(1, 1) = 1e200;
    auto e = raised([&] { MatrixMultiply(a, b, dest); });
    EXPECT_EQ(e.number, vexil::ErrOverflow);
    EXPECT_EQ(e.source, "Vexil.mdlMatrixFunctions.MatrixMultiply");
    auto u = raised([&] { MatrixMultiply(Matrix(), b, dest); });
    EXPECT_EQ(u.number, vexil::ErrSubscript);
}

TEST(MatrixTranspose, CopiesFromIndexZeroWithSwappedBounds) {
    Matrix a(2, 3);
    for (int i = 0; i <= 2; ++i)
        for (int j = 0; j <= 3; ++j)
            a(i, j) = 10.0 * i + j;
    Matrix t;
    MatrixTranspose(a, t);
    EXPECT_EQ(t.lbound(1), 0);
    EXPECT_EQ(t.ubound(1), 3);
    EXPECT_EQ(t.ubound(2), 2);
    for (int i = 0; i <= 2; ++i)
        for (int j = 0; j <= 3; ++j)
            EXPECT_EQ(t(j, i), a(i, j));
    const Matrix original = a;
    MatrixTranspose(a, a);
    EXPECT_EQ(a, t);
    MatrixTranspose(a, a);
    EXPECT_EQ(a, original);
    // A matrix declared from 1 has no index 0: the Windows design's bounds failure.
    auto e = raised([] {
        Matrix one(1, 4, 1, 4), out;
        MatrixTranspose(one, out);
    });
    EXPECT_EQ(e.number, vexil::ErrSubscript);
    EXPECT_EQ(e.source, "Vexil.mdlMatrixFunctions.MatrixTranspose");
}
