#pragma once
// The button's colours are stored as the platform's 32-bit colour words: 0x00BBGGRR for a plain
// colour, or 0x80000000 + index for a reference to one of the system's colours (button face,
// button text, 3D highlight, ...). Designs keep the references, so a button follows the system's
// colour scheme; painting turns them into real colours through a SystemColors table.

#include <array>
#include <cstdint>

namespace ggcommand {

using OleColor = std::uint32_t;

/// System colour references used by the button's defaults.
namespace syscolor {
inline constexpr OleColor ButtonFace = 0x8000000F;
inline constexpr OleColor ButtonShadow = 0x80000010;
inline constexpr OleColor ButtonText = 0x80000012;
inline constexpr OleColor ButtonHighlight = 0x80000014;
inline constexpr OleColor InfoText = 0x80000017;
inline constexpr OleColor InfoBackground = 0x80000018;
} // namespace syscolor

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

/// Splits a plain colour word (low byte red, next green, next blue); the high byte is ignored.
Rgb rgbFromWord(OleColor word);

/// The system's colour scheme, indexed like the platform's system colours (0 scroll bar ...
/// 15 button face, 16 button shadow, 18 button text, 20 button highlight, 23/24 tooltip text and
/// background ... 30 menu bar).
class SystemColors {
public:
    static constexpr int Count = 31;

    /// The classic scheme, the same on every machine; what the Linux build paints with.
    static SystemColors classic();
    /// A scheme with the given colours.
    explicit SystemColors(const std::array<Rgb, Count>& colors) : m_colors(colors) {}

    /// Colour `index`, black for an index outside the table.
    Rgb at(int index) const;

    /// `color` as a real colour: system references looked up, plain words split. A reference
    /// to an index the table does not have turns black (the platform's translation fails there
    /// and the painting goes on with whatever it had, which for a fresh face is black).
    Rgb translate(OleColor color) const;

private:
    std::array<Rgb, Count> m_colors;
};

/// The running system's scheme: the platform's own colours on Windows, the classic scheme
/// elsewhere (Linux desktops have no such table, and designs were made against the classic one).
SystemColors nativeSystemColors();

} // namespace ggcommand
