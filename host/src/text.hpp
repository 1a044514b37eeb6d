#pragma once
// Lines of text for messages and the call log. Numbers read the same whatever locale the program has set.

#include "effect/pf/effect_api.hpp"

#include <locale>
#include <ostream>
#include <sstream>
#include <string>

namespace host
{
template <class... Parts>
std::string text_line(const Parts&... parts)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    (text << ... << parts);
    return text.str();
}

// A rectangle as "l,t,r,b"; a null one stands for the whole world.
inline std::string rect_text(const PF_Rect* rect)
{
    return rect ? text_line(rect->left, ",", rect->top, ",", rect->right, ",", rect->bottom) : "all";
}

// A colour as "a,r,g,b"; a null one stands for transparent black.
inline std::string color_text(const PF_Pixel* color)
{
    return color ? text_line(+color->alpha, ",", +color->red, ",", +color->green, ",", +color->blue) : "none";
}

// A fixed-size text field up to its terminating zero, if it has one.
template <std::size_t Size>
std::string field_text(const char (&field)[Size])
{
    std::size_t length = 0;
    while (length < Size && field[length] != '\0')
        ++length;
    return std::string(field, length);
}
} // namespace host
