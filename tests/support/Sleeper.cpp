// The program the Windows tests start as a child (see ChildProcess): it sleeps for the seconds its
// first argument gives, 60 by default, so that it shows in the process list meanwhile.

#include <windows.h>

#include <cstdlib>

int main(int argc, char** argv) {
    ::Sleep(static_cast<DWORD>(argc > 1 ? std::atoi(argv[1]) : 60) * 1000);
    return 0;
}
