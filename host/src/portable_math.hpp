#pragma once
// The rounding functions of the table that effects compute with, written out so that they give the same bits on
// every system, compiler and C library: IEEE additions, multiplications, divisions and square roots alone, in
// double-double arithmetic of about 100 bits, rounded once. Special arguments (signed zeros, infinities,
// not-a-number) are answered as C's Annex F asks.
//
// Results are the correctly rounded ones unless the true value lies within about 2^-98 (pow: 2^-92) of its own
// size from the middle between two doubles; for hypot always, unless the result is subnormal. Held against MPFR
// with 1,800,000 random and special arguments for each function of one argument, 2,700,000 pairs for each of two,
// and 6,900,000 pairs made to be ties of pow and hypot or to lie next to one, none came out otherwise
// (portable_math_test.cpp). One call takes 0.1 to 2 microseconds; powers of two and a tangent asked again are
// shorter.
//
// They raise no errno and set floating-point flags as it happens; rounding to nearest is assumed.

namespace host::maths
{
double sin(double x);
double cos(double x);
double tan(double x);
double asin(double x);
double acos(double x);
double atan(double x);
double atan2(double y, double x);
double exp(double x);
double log(double x);
double log10(double x);
double pow(double x, double y);
double hypot(double x, double y);
} // namespace host::maths
