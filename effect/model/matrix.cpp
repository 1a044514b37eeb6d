#include "effect/model/matrix.hpp"

#include "effect/model/numeric.hpp"

namespace
{
template <class Point>
void transform_points(const PF_FloatMatrix& m, long n, Point* points) noexcept
{
    for (long i = n - 1; i >= 0; --i)
    {
        const double x = points[i].x;
        const double y = points[i].y;
        points[i].x = x * m.mat[0][0] + y * m.mat[1][0] + m.mat[2][0];
        points[i].y = x * m.mat[0][1] + y * m.mat[1][1] + m.mat[2][1];
    }
}
} // namespace

PF_Err AEG_SetIdentityMatrix(PF_FloatMatrix* m) noexcept
{
    *m = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}};
    return PF_Err_NONE;
}

PF_Err AEG_ConcatMatrix(const PF_FloatMatrix* n, PF_FloatMatrix* m) noexcept
{
    PF_FloatMatrix product;
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col)
            product.mat[row][col] = m->mat[row][0] * n->mat[0][col] + m->mat[row][1] * n->mat[1][col] +
                                    m->mat[row][2] * n->mat[2][col];
    *m = product;
    return PF_Err_NONE;
}

PF_Err AEG_ScaleMatrix(PF_FloatMatrix* m, double sx, double sy, double cx, double cy) noexcept
{
    if (sx == 1.0 && sy == 1.0)
        return PF_Err_NONE;
    const PF_FloatMatrix scale = {{{sx, 0.0, 0.0}, {0.0, sy, 0.0}, {(1.0 - sx) * cx, (1.0 - sy) * cy, 1.0}}};
    return AEG_ConcatMatrix(&scale, m);
}

PF_Err AEG_TranslateMatrix(PF_FloatMatrix* m, double tx, double ty) noexcept
{
    const PF_FloatMatrix move = {{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {tx, ty, 1.0}}};
    return AEG_ConcatMatrix(&move, m);
}

PF_Err AEG_RotateMatrixPlus(PF_FloatMatrix* m, PF_InData* in_data, double degrees, double cx, double cy)
{
    if (degrees == 0.0)
        return PF_Err_NONE;
    const double a = degrees * 0.017453292519943295;
    const double s = in_data->utils->ansi.sin(a);
    const double c = in_data->utils->ansi.cos(a);
    const PF_FloatMatrix turn = {
        {{c, s, 0.0}, {-s, c, 0.0}, {cx * (1.0 - c) + cy * s, cy * (1.0 - c) - cx * s, 1.0}}};
    return AEG_ConcatMatrix(&turn, m);
}

PF_Err AEG_TransformPoints(const PF_FloatMatrix* m, long n, fpoint_t* points) noexcept
{
    transform_points(*m, n, points);
    return PF_Err_NONE;
}

PF_Err AEG_TransformPoints(const PF_FloatMatrix* m, long n, curve_pt_t* points) noexcept
{
    transform_points(*m, n, points);
    return PF_Err_NONE;
}

PF_Err AEG_TransformFixPoints(const PF_FloatMatrix* m, long n, PF_FixedPoint* points) noexcept
{
    for (long i = n - 1; i >= 0; --i)
    {
        const auto x = static_cast<double>(points[i].x);
        const auto y = static_cast<double>(points[i].y);
        points[i].x = trunc_i32(x * m->mat[0][0] + y * m->mat[1][0] + m->mat[2][0] * 65536.0);
        points[i].y = trunc_i32(x * m->mat[0][1] + y * m->mat[1][1] + m->mat[2][1] * 65536.0);
    }
    return PF_Err_NONE;
}

bool AEG_PtPerp(double* px, double* py, double x1, double y1, double x2, double y2, double x3, double y3) noexcept
{
    *px = 0.0;
    *py = 0.0;
    const double a = y2 - y1;
    const double b = x1 - x2;
    const double k = y1 * x2 - x1 * y2;
    const double length2 = a * a + b * b;
    constexpr double kCoincide = 0.000009999999747378752; // 1e-5f, widened
    if (length2 >= -kCoincide && length2 <= kCoincide)
        return true;
    const double d = a * y3 - x3 * b;
    *px = (-a * k - b * d) / length2;
    *py = (a * d - k * b) / length2;
    return false;
}
