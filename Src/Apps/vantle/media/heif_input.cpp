#include "media/heif_input.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <utility>

#include "media/heif.h"

namespace vantle {

namespace {

HeifPicture readNamed(const std::string& name) {
    try {
        return readHeif(name);
    } catch (const Error& error) {
        throw Error(name + ": " + error.what());
    }
}

}  // namespace

av::Input openHeif(const std::string& name, std::unique_ptr<MemoryFile>& memory) {
    HeifPicture picture = readNamed(name);
    memory = std::make_unique<MemoryFile>(std::move(picture.pixels));
    AVFormatContext* context = av::check(avformat_alloc_context(), name);
    context->pb = memory->io();
    av::Dictionary options(
        {{"pixel_format", av_get_pix_fmt_name(picture.format)},
         {"video_size", std::to_string(picture.size.width) + "x" + std::to_string(picture.size.height)}});
    const int code =
        avformat_open_input(&context, name.c_str(), av_find_input_format("rawvideo"), options.get());
    av::Input input(context);  // null by now when it failed to open
    av::check(code, name);
    AVCodecParameters& coded = *input->streams[0]->codecpar;
    coded.color_primaries = picture.colours.primaries;
    coded.color_trc = picture.colours.transfer;
    coded.color_space = picture.colours.space;
    coded.color_range = picture.colours.range;
    return input;
}

}  // namespace vantle
