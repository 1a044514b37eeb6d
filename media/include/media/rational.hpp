#pragma once
// A frame rate or an aspect ratio, kept exact: 30000/1001 never becomes 29.97.

namespace media
{
struct rational
{
    int num = 0;
    int den = 1;
    friend bool operator==(const rational&, const rational&) = default;
};
} // namespace media
