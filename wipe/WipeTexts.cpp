#include "wipe/WipeTexts.h"

namespace wipe::texts {

std::string staleTempFile(const std::string& path, const std::string& bytes) {
    return "An earlier free-space wipe left its temporary file behind: " + path + " (" + bytes +
           " bytes). Remove it now?";
}

std::string confirmFreeSpace(const std::string& dir, const std::string& bytes) {
    return "Overwrite the " + bytes + " free bytes of the drive holding " + dir +
           " in 35 passes? This takes a long time.";
}

} // namespace wipe::texts
