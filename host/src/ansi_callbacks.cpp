#include "callbacks.hpp"

#include "portable_math.hpp"
#include "text.hpp"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <cmath>

namespace host
{
namespace
{
using one_argument = double (*)(double);
using two_arguments = double (*)(double, double);

// A template argument is part of a function's identity, so each table entry gets a logging function of its own.
struct text_literal
{
    char text[8]{};
    template <std::size_t Size>
    constexpr text_literal(const char (&name)[Size])
    {
        for (std::size_t i = 0; i < Size; ++i)
            text[i] = name[i];
    }
};

void note(const std::string& line)
{
    if (session* host = session::current(); host && host->trace.logging())
        host->trace.note(line);
}

template <text_literal Name, one_argument Function>
double logged(double x)
{
    const double result = Function(x);
    note(text_line("ansi.", Name.text, " ", x, " -> ", result));
    return result;
}

template <text_literal Name, two_arguments Function>
double logged(double x, double y)
{
    const double result = Function(x, y);
    note(text_line("ansi.", Name.text, " ", x, ",", y, " -> ", result));
    return result;
}

char* logged_strcpy(char* dst, const char* src)
{
    note(text_line("ansi.strcpy \"", src, "\""));
    return ::strcpy(dst, src);
}

int logged_sprintf(char* dst, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = ::vsprintf(dst, format, arguments);
    va_end(arguments);
    note(text_line("ansi.sprintf -> \"", dst, "\""));
    return length;
}

template <text_literal Name, one_argument Function>
one_argument entry(bool log)
{
    return log ? logged<Name, Function> : Function;
}

template <text_literal Name, two_arguments Function>
two_arguments entry(bool log)
{
    return log ? logged<Name, Function> : Function;
}

// Exact, or rounded as IEEE asks, in every C library.
namespace exact
{
double ceil(double x)
{
    return std::ceil(x);
}
double fabs(double x)
{
    return std::fabs(x);
}
double floor(double x)
{
    return std::floor(x);
}
double fmod(double x, double y)
{
    return std::fmod(x, y);
}
double sqrt(double x)
{
    return std::sqrt(x);
}
} // namespace exact
} // namespace

void fill_ansi_callbacks(PF_ANSICallbacks& table, bool log)
{
    table.atan = entry<"atan", maths::atan>(log);
    table.atan2 = entry<"atan2", maths::atan2>(log);
    table.ceil = entry<"ceil", exact::ceil>(log);
    table.cos = entry<"cos", maths::cos>(log);
    table.exp = entry<"exp", maths::exp>(log);
    table.fabs = entry<"fabs", exact::fabs>(log);
    table.floor = entry<"floor", exact::floor>(log);
    table.fmod = entry<"fmod", exact::fmod>(log);
    table.hypot = entry<"hypot", maths::hypot>(log);
    table.log = entry<"log", maths::log>(log);
    table.log10 = entry<"log10", maths::log10>(log);
    table.pow = entry<"pow", maths::pow>(log);
    table.sin = entry<"sin", maths::sin>(log);
    table.sqrt = entry<"sqrt", exact::sqrt>(log);
    table.tan = entry<"tan", maths::tan>(log);
    table.asin = entry<"asin", maths::asin>(log);
    table.acos = entry<"acos", maths::acos>(log);
    table.sprintf = log ? logged_sprintf : ::sprintf;
    table.strcpy = log ? logged_strcpy : ::strcpy;
}
} // namespace host
