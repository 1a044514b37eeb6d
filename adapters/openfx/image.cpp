#include "adapters/openfx/image.hpp"

#include "adapters/openfx/api/names.hpp"
#include "adapters/openfx/properties.hpp"

#include <cstdlib>

namespace openfx
{
namespace
{
std::optional<depth> depth_of(const std::string& name)
{
    if (name == kOfxBitDepthByte)
        return depth::byte;
    if (name == kOfxBitDepthShort)
        return depth::word;
    if (name == kOfxBitDepthFloat)
        return depth::single;
    return std::nullopt;
}

// What the image says of itself, else what its clip says.
std::string told(const property_set& image, const property_set& clip, const char* name)
{
    const std::string own = image.text(name, "");
    return own.empty() ? clip.text(name, "") : own;
}

std::optional<pixel_format> format_of(const property_set& image, const property_set& clip)
{
    const std::optional<depth> each = depth_of(told(image, clip, kOfxImageEffectPropPixelDepth));
    const std::string components = told(image, clip, kOfxImageEffectPropComponents);
    if (!each || (components != kOfxImageComponentRGBA && components != kOfxImageComponentRGB))
        return std::nullopt;
    const std::string alpha = told(image, clip, kOfxImageEffectPropPreMultiplication);
    pixel_format format;
    format.each = *each;
    format.components = components == kOfxImageComponentRGBA ? 4 : 3;
    if (alpha == kOfxImagePreMultiplied)
        format.alpha = alpha_kind::premultiplied;
    else if (alpha == kOfxImageOpaque)
        format.alpha = alpha_kind::opaque;
    format.blue_first = told(image, clip, kOfxImageEffectPropPixelOrder) == kOfxImagePixelOrderBGRA;
    return format;
}

field field_of(const std::string& name)
{
    if (name == kOfxImageFieldLower)
        return field::lower;
    return name == kOfxImageFieldUpper ? field::upper : field::whole;
}

// Sides that no picture has would run over further on.
bool plausible(const OfxRectI& r)
{
    const auto width = static_cast<std::int64_t>(r.x2) - r.x1;
    const auto height = static_cast<std::int64_t>(r.y2) - r.y1;
    constexpr std::int64_t most = 1 << 20;
    return width > 0 && height > 0 && width <= most && height <= most && std::abs(std::int64_t{r.x1}) <= 1 << 29 &&
           std::abs(std::int64_t{r.y1}) <= 1 << 29;
}
} // namespace

std::size_t pixel_format::pixel_bytes() const
{
    const std::size_t one = each == depth::byte ? 1 : each == depth::word ? 2 : 4;
    return one * static_cast<std::size_t>(components);
}

fetched_image::fetched_image(OfxImageEffectHandle effect, const char* clip, OfxTime time)
{
    const OfxImageEffectSuiteV1& suite = *suites().effect;
    if (suite.clipGetHandle(effect, clip, &clip_, &clip_properties_) != kOfxStatOK || !clip_)
    {
        clip_ = nullptr;
        clip_properties_ = nullptr;
        return;
    }
    if (property_set(clip_properties_).integer(kOfxImageClipPropConnected, 1) == 0)
        return;
    if (suite.clipGetImage(clip_, time, nullptr, &handle_) != kOfxStatOK)
        handle_ = nullptr;
}

fetched_image::~fetched_image()
{
    if (handle_)
        suites().effect->clipReleaseImage(handle_);
}

std::optional<image> fetched_image::describe() const
{
    const property_set properties(handle_);
    const std::optional<pixel_format> format = format_of(properties, property_set(clip_properties_));
    const std::optional<OfxRectI> bounds = properties.rectangle(kOfxImagePropBounds);
    image described;
    described.data = static_cast<std::byte*>(properties.pointer(kOfxImagePropData));
    if (!described.data || !format || !bounds || !plausible(*bounds))
        return std::nullopt;
    described.bounds = *bounds;
    described.format = *format;
    // Rows without a gap where the host does not say how far they are apart.
    const std::size_t row = static_cast<std::size_t>(described.width()) * format->pixel_bytes();
    described.row_bytes = properties.integer(kOfxImagePropRowBytes, 0);
    if (described.row_bytes == 0)
        described.row_bytes = static_cast<std::ptrdiff_t>(row);
    if (static_cast<std::size_t>(std::abs(described.row_bytes)) < row)
        return std::nullopt;
    described.defined = properties.rectangle(kOfxImagePropRegionOfDefinition);
    if (described.defined && !plausible(*described.defined))
        described.defined.reset();
    described.lines = field_of(properties.text(kOfxImagePropField, kOfxImageFieldNone));
    described.pixel_aspect = properties.number(kOfxImagePropPixelAspectRatio, 1.0);
    if (!(described.pixel_aspect >= 0.01 && described.pixel_aspect <= 100.0))
        described.pixel_aspect = 1.0;
    return described;
}
} // namespace openfx
