#pragma once
// Affine transforms on the host's matrix. Points are row vectors, so composing appends on the right: after
// m = m * n a point goes through the old m first, then through n. The third column is never used.
// Every function answers 0 but AEG_PtPerp.

#include "effect/model/points.hpp"
#include "effect/pf/effect_api.hpp"

PF_Err AEG_SetIdentityMatrix(PF_FloatMatrix* m) noexcept;

// m = m * n.
PF_Err AEG_ConcatMatrix(const PF_FloatMatrix* n, PF_FloatMatrix* m) noexcept;

// Then scales by (sx, sy) about (cx, cy). Exactly (1, 1) leaves m as it is, to the bit.
PF_Err AEG_ScaleMatrix(PF_FloatMatrix* m, double sx, double sy, double cx, double cy) noexcept;

// Then moves by (tx, ty).
PF_Err AEG_TranslateMatrix(PF_FloatMatrix* m, double tx, double ty) noexcept;

// Then turns by `degrees` about (cx, cy), clockwise on screen where y goes down. Exactly 0 leaves m as it is, to
// the bit. Sine and cosine are the host's.
PF_Err AEG_RotateMatrixPlus(PF_FloatMatrix* m, PF_InData* in_data, double degrees, double cx, double cy);

// Maps n points in place. A curve point's angle stays as it is.
PF_Err AEG_TransformPoints(const PF_FloatMatrix* m, long n, fpoint_t* points) noexcept;
PF_Err AEG_TransformPoints(const PF_FloatMatrix* m, long n, curve_pt_t* points) noexcept;

// Maps n 16.16 points in place, truncating toward zero.
PF_Err AEG_TransformFixPoints(const PF_FloatMatrix* m, long n, PF_FixedPoint* points) noexcept;

// The foot (px, py) of the perpendicular from (x3, y3) onto the line through (x1, y1) and (x2, y2). True where
// these two coincide (squared distance within single-precision 1e-5): the foot is then (0, 0).
bool AEG_PtPerp(double* px, double* py, double x1, double y1, double x2, double y2, double x3, double y3) noexcept;
