#pragma once
// The memory wipe: the program claims memory in 21 strings of blanks, writing every byte, so that
// the system has to hand over (and page out) what other programs held, and what was left there is
// overwritten. Only this process may ever pay for it: for the run it makes itself the process the
// system ends first when memory runs out, and it stops before the memory still available to it
// would fall below a floor, just as if an allocation had failed. Available is the smaller of what
// the system has left (RAM and swap) and what a limit on this process's memory (its control
// group) still allows: reaching that limit ends processes of the group however much the machine
// has, every one of them where the group is set to be ended whole.
//
// The window and the command line drive the run through MemoryWipeView; the size entry's rules
// and the suggested size live here too.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {
class Platform;
}

namespace memory {

/// What a run shows while it goes on, and where it reads a request to stop.
class MemoryWipeView {
public:
    virtual ~MemoryWipeView() = default;

    /// The fill line's end moved to `x`, in twips on the track from MemoryWipe::TrackStart to
    /// MemoryWipe::TrackEnd; the first move brings it to the track's start.
    virtual void fillMoved(int /*x*/) {}
    /// Pass `pass` (0 to 20) is complete: the counter shows it.
    virtual void passDone(int /*pass*/) {}
    /// Lets pending events run (twice a pass): a window repaints and its monitor ticks, the
    /// command line notices Ctrl-C.
    virtual void pumpEvents() {}
    /// A request to stop now (the program quitting, the window closing, Ctrl-C), read after each
    /// pumpEvents(): the run frees its memory and ends.
    virtual bool interrupted() { return false; }
};

/// How a run ended.
enum class WipeEnd {
    Completed,   ///< all 21 passes done
    FloorReached, ///< the next string would have left the system less than the floor
    OutOfMemory, ///< the system refused a string
    Interrupted, ///< a stop request
};

struct WipeResult {
    WipeEnd end = WipeEnd::Completed;
    int lastPass = -1;               ///< the last pass completed (0 to 20), -1 when none
    std::uint64_t floor = 0;         ///< the floor the run last checked against, in bytes (0: none)
    bool groupLimit = false;         ///< that check was against the limit of this process's group
};

class MemoryWipe {
public:
    static constexpr int Passes = 21;
    /// The program's strings are 16-bit characters: a blank is the two bytes 0x20 0x00.
    static constexpr int BytesPerCharacter = 2;
    /// The progress track (the window's Line1), in twips; the fill advances a 20th of it a pass.
    static constexpr int TrackStart = 360;
    static constexpr int TrackEnd = 3480;
    /// The least memory ever left to the system, whatever the machine.
    static constexpr std::uint64_t MinimumFloor = 256ull << 20;

    MemoryWipe(platform::Platform& platform, MemoryWipeView& view);

    /// Keeps at least `bytes` of memory (RAM and swap) available to the rest of the system instead
    /// of the machine's default floor, from the next check on. Never less than MinimumFloor.
    void setFloor(std::uint64_t bytes);
    /// The floor in force: the one set, else defaultFloor() of the memory this process may have.
    std::uint64_t floor() const;
    /// A 16th of the physical memory (or of the limit on this process's memory, when smaller), at
    /// least MinimumFloor: about what the system needs to keep its own and the desktop's working
    /// memory while the wipe holds the rest.
    static std::uint64_t defaultFloor(std::uint64_t totalPhysical);

    /// The suggested number of characters a string: the machine's figure (suggestedArraySize of
    /// its commit limit) or, where the limit on this process's memory is the tighter, what 22
    /// strings (the 21 held and the one being made) take of the room it leaves above the floor,
    /// so that the suggested run ends inside its group instead of stopping early.
    double suggestedArraySize() const;
    /// Whether the limit on this process's memory (its group), not the machine, binds the run.
    bool groupLimited() const;

    /// The wipe with strings of `size` characters: 21 passes, each making its string three times in
    /// a row, all 21 freed together at the end (or when the run stops early). A negative size is
    /// refused like an allocation. The out-of-memory score is raised for the run and put back.
    WipeResult WipeMemory(std::int32_t size);

private:
    /// Whether a further `bytes` can be taken without going below the floor; notes the floor in
    /// `result`. The figures and the floor are read anew each time, so that the run follows what
    /// it takes and a floor raised while it goes on.
    bool roomFor(std::uint64_t bytes, WipeResult& result);
    /// The memory still available to the run and the memory it may have in all, read now.
    struct Room {
        std::uint64_t available = 0;
        std::uint64_t total = 0;
        bool group = false; ///< the figures are the group's
    };
    Room room() const;

    platform::Platform& m_platform;
    MemoryWipeView& m_view;
    std::optional<std::uint64_t> m_floor;
};

/// The machine's suggested number of characters a string: the commit limit (physical memory plus
/// paging file, in bytes) divided by 83.33333333.
double suggestedArraySize(std::uint64_t totalPageFile);
/// Label2's caption for a suggested number of characters: "Suggested Array Size   25,769,804".
std::string suggestedSizeCaption(double characters);
/// A suggested number of characters as a size, at most the largest 32-bit size.
std::int32_t suggestedSize(double characters);

/// The size entry (millions of characters, a fraction allowed, blanks around it ignored) as
/// characters, rounded half to even; none when it is not a number or does not fit in 32 bits.
std::optional<std::int32_t> parseArraySize(std::string_view millions);
/// The same, with 0 for an entry that is not a number or does not fit: what the window runs.
std::int32_t arraySize(std::string_view millions);

} // namespace memory
