#include "wipe/WipeTexts.h"

namespace wipe::texts {

std::string staleTempFile(const std::string& path, const std::string& bytes) {
    return "An earlier free-space wipe left its temporary file behind: " + path + " (" + bytes +
           " bytes). Remove it now?";
}

std::string tempNameTaken(const std::string& path) {
    return path + " already exists and is kept: the free-space wipe writes only into a file it creates "
                  "itself. Move or remove that file, then start the wipe again.";
}

std::string driveNotWritten(const std::string& dir, const std::string& type) {
    return dir + " is on a drive of type " + type + ", which the free-space wipe does not write to";
}

std::string overwriteLimits(const std::string& path, const platform::Storage& storage) {
    if (!storage.copyOnWrite && !storage.flash)
        return {};
    std::string where = path + " is on ";
    if (storage.copyOnWrite)
        where += "a copy-on-write filesystem (" + (storage.fileSystem.empty() ? "?" : storage.fileSystem) + ")";
    if (storage.copyOnWrite && storage.flash)
        where += " on ";
    if (storage.flash)
        where += "a solid-state or flash device";
    return "Note: " + where +
           ", where overwriting may not reach the old data (new blocks, snapshots, spare cells). Encrypt the "
           "whole disk, use the drive's own secure erase, delete snapshots first; see \"What overwriting cannot "
           "reach\" in the README.";
}

std::string confirmFreeSpace(const std::string& dir, const std::string& bytes) {
    return "Overwrite the " + bytes + " free bytes of the drive holding " + dir +
           " in 35 passes? This takes a long time.";
}

} // namespace wipe::texts
