// The program the Windows tests start as a child (see ChildProcess): it sleeps for the seconds its
// first argument gives, 60 by default, so that it shows in the process list meanwhile. Given a file
// and an event handle as well, it holds the file open and signals the event once it does.

#include <windows.h>

#include <cstdint>
#include <cstdlib>

int main(int argc, char** argv) {
    HANDLE held = INVALID_HANDLE_VALUE;
    if (argc > 3) {
        held = ::CreateFileA(argv[2], GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_EXISTING, 0, nullptr);
        if (held != INVALID_HANDLE_VALUE)
            ::SetEvent(reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(std::strtoull(argv[3], nullptr, 10))));
    }
    ::Sleep(static_cast<DWORD>(argc > 1 ? std::atoi(argv[1]) : 60) * 1000);
    return 0;
}
