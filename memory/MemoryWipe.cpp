#include "memory/MemoryWipe.h"

#include "core/NumberFormat.h"
#include "memory/BlankString.h"
#include "core/Rounding.h"
#include "memory/MemoryFigures.h"
#include "memory/MemoryTexts.h"
#include "platform/Platform.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>

namespace memory {
namespace {

/// For as long as it lives, this process is the one the system ends first should memory run out
/// after all: whatever happens during the run, no other program pays for it.
class FirstToGo {
public:
    explicit FirstToGo(platform::VirtualMemory& memory) : m_memory(memory), m_previous(memory.outOfMemoryScore()) {
        m_memory.setOutOfMemoryScore(platform::VirtualMemory::FirstToGo);
    }
    ~FirstToGo() { m_memory.setOutOfMemoryScore(m_previous); }
    FirstToGo(const FirstToGo&) = delete;
    FirstToGo& operator=(const FirstToGo&) = delete;

private:
    platform::VirtualMemory& m_memory;
    int m_previous;
};

constexpr int MakesPerPass = 3;
constexpr int StepsOnTrack = 20;

} // namespace

MemoryWipe::MemoryWipe(platform::Platform& platform, MemoryWipeView& view) : m_platform(platform), m_view(view) {}

void MemoryWipe::setFloor(std::uint64_t bytes) {
    m_floor = std::max(bytes, MinimumFloor);
}

std::uint64_t MemoryWipe::floor() const {
    if (m_floor)
        return *m_floor;
    return defaultFloor(room().total);
}

std::uint64_t MemoryWipe::defaultFloor(std::uint64_t totalPhysical) {
    return std::max(totalPhysical / 16, MinimumFloor);
}

MemoryWipe::Room MemoryWipe::room() const {
    // Figures that cannot be read read as zero, and then nothing is taken.
    const auto figures = readMemoryStatus(m_platform.memoryStatus());
    Room r{figures.ullAvailPageFile, figures.ullTotalPhys};
    if (const auto limit = m_platform.memoryStatus().limit()) {
        r.group = limit->headroom < r.available || limit->limit < r.total;
        r.available = std::min(r.available, limit->headroom);
        r.total = std::min(r.total, limit->limit);
    }
    return r;
}

bool MemoryWipe::groupLimited() const {
    return room().group;
}

double MemoryWipe::suggestedArraySize() const {
    const double machine = memory::suggestedArraySize(readMemoryStatus(m_platform.memoryStatus()).ullTotalPageFile);
    const Room r = room();
    if (!r.group)
        return machine;
    const std::uint64_t floor = m_floor ? *m_floor : defaultFloor(r.total);
    // A 32nd of the room is left to what the run needs besides its strings (page tables, the
    // allocator's own), which the group counts too.
    const std::uint64_t above = r.available > floor ? (r.available - floor) / 32 * 31 : 0;
    return std::min(machine, std::floor(static_cast<double>(above / ((Passes + 1) * BytesPerCharacter))));
}

bool MemoryWipe::roomFor(std::uint64_t bytes, WipeResult& result) {
    const Room r = room();
    result.floor = m_floor ? *m_floor : defaultFloor(r.total);
    result.groupLimit = r.group;
    return r.available >= result.floor && r.available - result.floor >= bytes;
}

WipeResult MemoryWipe::WipeMemory(std::int32_t size) {
    WipeResult result;
    const FirstToGo guard(m_platform.virtualMemory());
    // Declared after the guard, so all 21 strings are freed before the score goes back.
    std::array<BlankString, Passes> strings;
    const std::uint64_t bytes = size > 0 ? static_cast<std::uint64_t>(size) * BytesPerCharacter : 0;

    const int step = static_cast<int>(core::roundHalfEven(static_cast<double>(TrackEnd - TrackStart) / StepsOnTrack));
    // One step before the track's start: the first pass brings the fill to zero length.
    int fill = TrackStart - step;
    for (int pass = 0; pass < Passes; ++pass) {
        fill += step;
        m_view.fillMoved(fill);
        m_view.pumpEvents();
        if (m_view.interrupted()) {
            result.end = WipeEnd::Interrupted;
            return result;
        }
        for (int make = 0; make < MakesPerPass; ++make) {
            // The string before is freed only once the new one stands, so each making needs room
            // for one whole string more than is held now.
            if (bytes > 0 && !roomFor(bytes, result)) {
                result.end = WipeEnd::FloorReached;
                return result;
            }
            try {
                if (size < 0)
                    throw std::length_error("negative size");
                // Every character is written, so every page is really taken from the system.
                strings.at(static_cast<std::size_t>(pass)) =
                    BlankString(m_platform.virtualMemory(), static_cast<std::size_t>(size));
            } catch (const std::bad_alloc&) {
                result.end = WipeEnd::OutOfMemory;
                return result;
            } catch (const std::length_error&) {
                result.end = WipeEnd::OutOfMemory;
                return result;
            }
        }
        result.lastPass = pass;
        m_view.passDone(pass);
        m_view.pumpEvents();
        if (pass + 1 < Passes && m_view.interrupted()) {
            result.end = WipeEnd::Interrupted;
            return result;
        }
    }
    result.end = WipeEnd::Completed;
    return result;
}

double suggestedArraySize(std::uint64_t totalPageFile) {
    return LargeIntToCurrency(totalPageFile).toDouble() / 83.33333333;
}

std::string suggestedSizeCaption(double characters) {
    return texts::SuggestedPrefix + core::formatGrouped(characters);
}

std::int32_t suggestedSize(double characters) {
    const double size = characters;
    constexpr auto Largest = std::numeric_limits<std::int32_t>::max();
    if (!(size < static_cast<double>(Largest)))
        return Largest;
    return static_cast<std::int32_t>(core::roundHalfEven(size));
}

std::optional<std::int32_t> parseArraySize(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && blank(text.back()))
        text.remove_suffix(1);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double millions = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), millions);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || !std::isfinite(millions))
        return std::nullopt;
    const double characters = millions * 1000000.0;
    // Checked before rounding, so that no out-of-range value is ever converted.
    if (!(characters > -2147483649.0 && characters < 2147483648.0))
        return std::nullopt;
    const std::int64_t whole = core::roundHalfEven(characters);
    if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::int32_t>(whole);
}

std::int32_t arraySize(std::string_view millions) {
    return parseArraySize(millions).value_or(0);
}

} // namespace memory
