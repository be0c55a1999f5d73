#include "platform/windows/WindowsDrives.h"

#include "platform/windows/WinFiles.h"
#include "platform/windows/WinText.h"

#include <windows.h>
#include <shlwapi.h>
#include <winioctl.h>

#include <cwchar>

namespace platform::windows {
namespace {

constexpr DWORD LongPath = 32768;

/// Whether `path` is no more than a drive ("D:", "D:\\"): asked about as the drive itself, with or
/// without a medium in it.
bool isBareDrive(const std::wstring& path) {
    return (path.size() == 2 || path.size() == 3) && path[1] == L':' && (path.size() == 2 || path[2] == L'\\' || path[2] == L'/');
}

/// The system's own name of the object `handle` holds open ("C:\\data\\x", "\\\\server\\share\\x"),
/// reached after every link, junction and mount point on its way; empty when it has none.
std::wstring finalPathOf(HANDLE handle) {
    std::wstring out(LongPath, L'\0');
    const DWORD n = ::GetFinalPathNameByHandleW(handle, out.data(), LongPath, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    if (n == 0 || n >= LongPath)
        return {};
    out.resize(n);
    if (out.rfind(L"\\\\?\\UNC\\", 0) == 0)
        return L"\\\\" + out.substr(8);
    if (out.rfind(L"\\\\?\\", 0) == 0)
        return out.substr(4);
    return out;
}

/// The name of the object `path` really leads to, as finalPathOf() gives it; empty when there is
/// no such object.
std::wstring finalPath(const std::wstring& path) {
    const HANDLE handle = ::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return {};
    std::wstring out = finalPathOf(handle);
    ::CloseHandle(handle);
    return out;
}

/// The root of the volume holding the object named `real` (a final path).
std::wstring rootOfFinal(const std::wstring& real) {
    if (real.empty())
        return {};
    std::wstring root(LongPath, L'\0');
    if (!::GetVolumePathNameW(real.c_str(), root.data(), LongPath))
        return {};
    root.resize(std::wcslen(root.c_str()));
    return root;
}

/// The root of the volume the open folder `folder` lies on; empty when it holds no handle or
/// the system cannot name it.
std::wstring folderRoot(const Folder& folder) {
    const std::intptr_t handle = folder.nativeHandle();
    return handle == -1 ? std::wstring() : rootOfFinal(finalPathOf(reinterpret_cast<HANDLE>(handle)));
}

/// Free and total bytes of the volume whose root is `root`.
bool spaceAt(const std::wstring& root, DiskSpace& out) {
    ULARGE_INTEGER caller{}, total{}, free{};
    if (root.empty() || !::GetDiskFreeSpaceExW(root.c_str(), &caller, &total, &free))
        return false;
    out.freeToCaller = caller.QuadPart;
    out.total = total.QuadPart;
    out.totalFree = free.QuadPart;
    return true;
}

/// The root of the volume `path` really lies on ("C:\\", or the folder a volume is mounted on);
/// a bare drive is its own root. Empty when the path leads nowhere.
std::wstring volumeRoot(const std::string& path) {
    const std::wstring asked = widen(path.empty() ? std::string(".") : path);
    if (!isBareDrive(asked))
        return rootOfFinal(finalPath(systemPath(path)));
    // A drive without a medium has no volume to ask, but is still its own root.
    const std::wstring drive = asked.substr(0, 2) + L"\\";
    const std::wstring root = rootOfFinal(drive);
    return root.empty() ? drive : root;
}

/// Whether the device behind the volume mounted at `root` has no seek penalty (a solid-state or
/// flash device). False when the device does not say.
bool withoutSeekPenalty(const std::wstring& root) {
    wchar_t volume[MAX_PATH] = {};
    if (!::GetVolumeNameForVolumeMountPointW(root.c_str(), volume, MAX_PATH))
        return false;
    std::wstring device = volume;
    if (!device.empty() && device.back() == L'\\')
        device.pop_back(); // the volume itself, not its root folder
    const HANDLE handle = ::CreateFileW(device.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                        nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = StorageDeviceSeekPenaltyProperty;
    query.QueryType = PropertyStandardQuery;
    DEVICE_SEEK_PENALTY_DESCRIPTOR answer{};
    DWORD returned = 0;
    const bool asked = ::DeviceIoControl(handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, &answer,
                                         sizeof answer, &returned, nullptr) &&
                       returned >= sizeof answer;
    ::CloseHandle(handle);
    return asked && !answer.IncursSeekPenalty;
}

} // namespace

std::vector<std::string> WindowsDrives::roots() {
    std::vector<std::string> out;
    std::wstring buffer(512, L'\0');
    DWORD length = ::GetLogicalDriveStringsW(static_cast<DWORD>(buffer.size()), buffer.data());
    if (length > buffer.size()) {
        buffer.assign(length, L'\0');
        length = ::GetLogicalDriveStringsW(static_cast<DWORD>(buffer.size()), buffer.data());
    }
    // "A:\<NUL>C:\<NUL>...<NUL>"
    for (const wchar_t* at = buffer.c_str(); *at && at < buffer.c_str() + length; at += std::wcslen(at) + 1)
        out.push_back(narrow(at));
    return out;
}

std::string WindowsDrives::rootOf(const std::string& path) {
    const std::wstring root = volumeRoot(path);
    return root.empty() || ::GetDriveTypeW(root.c_str()) == DRIVE_NO_ROOT_DIR ? std::string() : narrow(root);
}

DriveType WindowsDrives::type(const std::string& path) {
    const std::wstring root = volumeRoot(path);
    return root.empty() ? DriveType::NoRootDir : static_cast<DriveType>(::GetDriveTypeW(root.c_str()));
}

bool WindowsDrives::space(const std::string& path, DiskSpace& out) {
    return spaceAt(volumeRoot(path), out);
}

DriveType WindowsDrives::typeOf(const Folder& folder) {
    if (folder.nativeHandle() == -1)
        return Drives::typeOf(folder);
    const std::wstring root = folderRoot(folder);
    return root.empty() ? DriveType::NoRootDir : static_cast<DriveType>(::GetDriveTypeW(root.c_str()));
}

bool WindowsDrives::spaceOf(const Folder& folder, DiskSpace& out) {
    return folder.nativeHandle() == -1 ? Drives::spaceOf(folder, out) : spaceAt(folderRoot(folder), out);
}

Storage WindowsDrives::storage(const std::string& path) {
    Storage out;
    const std::wstring root = volumeRoot(path);
    if (root.empty())
        return out;
    wchar_t name[MAX_PATH + 1] = {};
    if (::GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, name, MAX_PATH + 1))
        out.fileSystem = narrow(name);
    // ReFS writes changed blocks to new places (integrity streams, block cloning).
    out.copyOnWrite = out.fileSystem == "ReFS";
    out.flash = ::GetDriveTypeW(root.c_str()) == DRIVE_REMOVABLE || withoutSeekPenalty(root);
    return out;
}

bool WindowsDrives::isDirectory(const std::string& path) {
    const DWORD attributes = ::GetFileAttributesW(systemPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace platform::windows
