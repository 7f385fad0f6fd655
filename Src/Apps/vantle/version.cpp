#include "version.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavdevice/avdevice.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

#include "built_from.h"

namespace vantle {

std::string versionText() {
    std::string text = "vantle " BUILT_VERSION;
    if (const std::string commit = BUILT_COMMIT; !commit.empty()) text += " (commit " + commit + ")";
    text += std::string("\nFFmpeg ") + av_version_info() + ":";
    const struct {
        const char* name;
        unsigned version;
    } libraries[] = {{"libavformat", avformat_version()}, {"libavcodec", avcodec_version()},
                     {"libavfilter", avfilter_version()}, {"libavdevice", avdevice_version()},
                     {"libswscale", swscale_version()},   {"libavutil", avutil_version()}};
    const char* separator = " ";
    for (const auto& [name, version] : libraries) {
        text += separator + std::string(name) + " " + std::to_string(AV_VERSION_MAJOR(version)) + "." +
                std::to_string(AV_VERSION_MINOR(version)) + "." + std::to_string(AV_VERSION_MICRO(version));
        separator = ", ";
    }
    return text;
}

}  // namespace vantle
