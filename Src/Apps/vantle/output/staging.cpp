#include "output/staging.h"

#include <sys/stat.h>

#include <climits>
#include <system_error>

#include "Host/error.h"

namespace vantle {

void failToWrite(const std::filesystem::path& target, int error) {
    throw Error("cannot write " + target.string() + ": " + std::generic_category().message(error));
}

void refuseToReplace(const std::filesystem::path& target) {
    throw Error(target.string() + " exists; --force overwrites it");
}

std::string stagingName(const std::filesystem::path& target) {
    constexpr std::size_t longestName = NAME_MAX - 8;  // with the dots and the six letters
    std::string name = std::filesystem::path(target).remove_filename() / ".";
    return name += target.filename().string().substr(0, longestName) + ".XXXXXX";
}

mode_t permitted(mode_t asked) {
    const mode_t mask = umask(0);
    umask(mask);
    return asked & ~mask;
}

}  // namespace vantle
