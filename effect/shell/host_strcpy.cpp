#include "effect/shell/host_strcpy.hpp"

#include <cstring>

namespace
{
char* append(char* dst, const char* text)
{
    const std::size_t length = std::strlen(text);
    std::memcpy(dst, text, length);
    return dst + length;
}
} // namespace

void Loom::Host::AE::strcpy(PF_InData* in_data, char* dst, const char* src)
{
    if (in_data->appl_id != kAppKeyG)
    {
        in_data->utils->ansi.strcpy(dst, src);
        return;
    }
    for (; *src != '\0'; ++src)
    {
        if (*src == '\xA9')
            dst = append(dst, "(C)");
        else if (*src == '\xAA')
            dst = append(dst, "(R)");
        else
            *dst++ = *src;
    }
    *dst = '\0';
}
