#include "callbacks.hpp"

#include "text.hpp"

#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

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
} // namespace

void fill_ansi_callbacks(PF_ANSICallbacks& table, bool log)
{
    table.atan = entry<"atan", ::atan>(log);
    table.atan2 = entry<"atan2", ::atan2>(log);
    table.ceil = entry<"ceil", ::ceil>(log);
    table.cos = entry<"cos", ::cos>(log);
    table.exp = entry<"exp", ::exp>(log);
    table.fabs = entry<"fabs", ::fabs>(log);
    table.floor = entry<"floor", ::floor>(log);
    table.fmod = entry<"fmod", ::fmod>(log);
    table.hypot = entry<"hypot", ::hypot>(log);
    table.log = entry<"log", ::log>(log);
    table.log10 = entry<"log10", ::log10>(log);
    table.pow = entry<"pow", ::pow>(log);
    table.sin = entry<"sin", ::sin>(log);
    table.sqrt = entry<"sqrt", ::sqrt>(log);
    table.tan = entry<"tan", ::tan>(log);
    table.asin = entry<"asin", ::asin>(log);
    table.acos = entry<"acos", ::acos>(log);
    table.sprintf = log ? logged_sprintf : ::sprintf;
    table.strcpy = log ? logged_strcpy : ::strcpy;
}
} // namespace host
