#include "palette.hpp"

#include <algorithm>
#include <unordered_map>

namespace media
{
namespace
{
constexpr std::uint32_t opaque = 0xFF000000u;
constexpr std::uint8_t transparent_index = 255;

bool is_transparent(const std::uint8_t* argb)
{
    return argb[0] < 128;
}

std::uint32_t color_of(const std::uint8_t* argb)
{
    return opaque | static_cast<std::uint32_t>(argb[1]) << 16 | static_cast<std::uint32_t>(argb[2]) << 8 | argb[3];
}

std::size_t cell_of(const std::uint8_t* argb)
{
    return static_cast<std::size_t>((argb[1] >> 3) << 10 | (argb[2] >> 3) << 5 | argb[3] >> 3);
}

template <class F>
void each_pixel(const_image_view image, F&& visit)
{
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            visit(image.row(y) + 4 * x);
}

// Fills `made` and answers true when `most` colours are enough.
bool exact_palette(const_image_view image, std::size_t most, paletted_picture& made)
{
    std::unordered_map<std::uint32_t, std::uint8_t> index;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
        {
            const std::uint8_t* p = image.row(y) + 4 * x;
            if (is_transparent(p))
                continue;
            const auto [entry, fresh] = index.try_emplace(color_of(p), static_cast<std::uint8_t>(index.size()));
            if (!fresh)
                continue;
            if (index.size() > most)
                return false;
            made.colors[entry->second] = entry->first;
        }
    each_pixel(image, [&](const std::uint8_t* p)
               { made.pixels.push_back(is_transparent(p) ? transparent_index : index.at(color_of(p))); });
    return true;
}

struct cell
{
    std::uint64_t count = 0;
    std::uint64_t sum[3] = {};
    std::uint8_t index = 0;

    int mean(int channel) const { return static_cast<int>((sum[channel] + count / 2) / count); }
};

// A range of cells that share one colour.
struct box
{
    std::vector<cell*> cells;
    std::uint64_t count = 0;
    int longest = 0; // channel
    int extent = 0;  // of the longest channel

    explicit box(std::vector<cell*> members) : cells(std::move(members))
    {
        for (const cell* c : cells)
            count += c->count;
        for (int channel = 0; channel < 3; ++channel)
        {
            const auto [low, high] = std::minmax_element(
                cells.begin(), cells.end(), [=](cell* a, cell* b) { return a->mean(channel) < b->mean(channel); });
            const int reach = (*high)->mean(channel) - (*low)->mean(channel);
            if (reach > extent)
            {
                extent = reach;
                longest = channel;
            }
        }
    }

    // What a split would win: nothing for a box of one cell.
    std::uint64_t weight() const { return cells.size() < 2 ? 0 : count * static_cast<std::uint64_t>(extent + 1); }

    // Keeps the lower half of the pixels and gives the upper half away.
    box split()
    {
        std::stable_sort(cells.begin(), cells.end(),
                         [this](cell* a, cell* b) { return a->mean(longest) < b->mean(longest); });
        std::uint64_t below = cells.front()->count;
        std::size_t middle = 1;
        while (middle + 1 < cells.size() && below + cells[middle]->count <= count / 2)
            below += cells[middle++]->count;
        std::vector<cell*> upper(cells.begin() + static_cast<std::ptrdiff_t>(middle), cells.end());
        cells.resize(middle);
        *this = box(std::move(cells));
        return box(std::move(upper));
    }

    std::uint32_t color() const
    {
        std::uint32_t packed = opaque;
        for (int channel = 0; channel < 3; ++channel)
        {
            std::uint64_t sum = 0;
            for (const cell* c : cells)
                sum += c->sum[channel];
            packed |= static_cast<std::uint32_t>((sum + count / 2) / count) << (16 - 8 * channel);
        }
        return packed;
    }
};

void median_cut(const_image_view image, std::size_t most, paletted_picture& made)
{
    std::vector<cell> cells(32 * 32 * 32);
    each_pixel(image,
               [&](const std::uint8_t* p)
               {
                   if (is_transparent(p))
                       return;
                   cell& c = cells[cell_of(p)];
                   ++c.count;
                   for (int channel = 0; channel < 3; ++channel)
                       c.sum[channel] += p[1 + channel];
               });
    std::vector<cell*> used;
    for (cell& c : cells)
        if (c.count > 0)
            used.push_back(&c);

    std::vector<box> boxes;
    boxes.emplace_back(std::move(used));
    while (boxes.size() < most)
    {
        const auto widest = std::max_element(boxes.begin(), boxes.end(),
                                             [](const box& a, const box& b) { return a.weight() < b.weight(); });
        if (widest->weight() == 0)
            break;
        box upper = widest->split();
        boxes.push_back(std::move(upper));
    }
    for (std::size_t i = 0; i < boxes.size(); ++i)
    {
        made.colors[i] = boxes[i].color();
        for (cell* c : boxes[i].cells)
            c->index = static_cast<std::uint8_t>(i);
    }
    each_pixel(image, [&](const std::uint8_t* p)
               { made.pixels.push_back(is_transparent(p) ? transparent_index : cells[cell_of(p)].index); });
}
} // namespace

paletted_picture make_palette(const_image_view image)
{
    bool any_transparent = false;
    each_pixel(image, [&](const std::uint8_t* p) { any_transparent |= is_transparent(p); });
    const std::size_t most = any_transparent ? 255 : 256;

    paletted_picture made;
    made.colors.fill(opaque);
    made.pixels.reserve(static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height));
    if (!exact_palette(image, most, made))
    {
        made.colors.fill(opaque);
        median_cut(image, most, made);
    }
    if (any_transparent)
        made.colors[transparent_index] = 0;
    return made;
}
} // namespace media
