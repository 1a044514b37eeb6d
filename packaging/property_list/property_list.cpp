#include "packaging/property_list/property_list.hpp"

#include <stdexcept>

namespace packaging
{
namespace
{
class property_writer
{
public:
    explicit property_writer(bool windows)
        : windows_(windows), order_(windows ? byte_order::little : byte_order::big), properties_(order_)
    {
    }

    void code(std::string_view key, std::string_view four)
    {
        byte_writer data(order_);
        data.code(four);
        add(key, data);
    }

    void number(std::string_view key, std::uint32_t value)
    {
        byte_writer data(order_);
        data.u32(value);
        add(key, data);
    }

    void two_numbers(std::string_view key, std::int16_t major, std::int16_t minor)
    {
        byte_writer data(order_);
        data.u16(static_cast<std::uint16_t>(major));
        data.u16(static_cast<std::uint16_t>(minor));
        add(key, data);
    }

    // A length byte, then the characters.
    void name(std::string_view key, std::string_view characters)
    {
        if (characters.size() > 255)
            throw std::length_error("a name of the property list is longer than 255 bytes");
        byte_writer data(order_);
        data.u8(static_cast<std::uint8_t>(characters.size()));
        data.text(characters);
        if (windows_)
            data.pad();
        add(key, data);
    }

    void terminated(std::string_view key, std::string_view characters)
    {
        byte_writer data(order_);
        data.text(characters);
        data.u8(0);
        data.pad();
        add(key, data);
    }

    void short_or_long_zero(std::string_view key)
    {
        byte_writer data(order_);
        data.zeros(windows_ ? 4 : 2);
        add(key, data);
    }

    byte_string list() const
    {
        byte_writer all(order_);
        if (windows_)
        {
            all.u8(1);
            all.u8(0);
        }
        all.u32(0);
        all.u32(count_);
        all.append(properties_.bytes());
        return all.bytes();
    }

private:
    void add(std::string_view key, const byte_writer& data)
    {
        properties_.code("8BIM");
        properties_.code(key);
        properties_.u32(0);
        properties_.u32(static_cast<std::uint32_t>(data.size()));
        properties_.append(data.bytes());
        properties_.pad();
        ++count_;
    }

    bool windows_;
    byte_order order_;
    byte_writer properties_;
    std::uint32_t count_ = 0;
};

void describe_kind(property_writer& list, const effect_description& effect)
{
    list.code("kind", "eFKT");
    list.name("name", effect.name);
    list.name("catg", effect.category);
}

void describe_effect(property_writer& list, const effect_description& effect)
{
    list.two_numbers("ePVR", 2, 0);
    list.two_numbers("eSVR", effect.api_major, effect.api_minor);
    list.number("eVER", effect.version);
    list.short_or_long_zero("eINF");
    list.number("eGLO", static_cast<std::uint32_t>(effect.out_flags));
    list.number("eGL2", static_cast<std::uint32_t>(effect.out_flags2));
    list.name("eMNA", effect.match_name);
    list.number("aeFL", 0);
}
} // namespace

byte_string windows_property_list(const effect_description& effect)
{
    property_writer list(true);
    describe_kind(list, effect);
    list.terminated("8664", effect.entry_point);
    describe_effect(list, effect);
    return list.list();
}

byte_string macos_property_list(const effect_description& effect)
{
    property_writer list(false);
    describe_kind(list, effect);
    list.name("mi64", effect.entry_point);
    list.name("ma64", effect.entry_point);
    describe_effect(list, effect);
    return list.list();
}
} // namespace packaging
