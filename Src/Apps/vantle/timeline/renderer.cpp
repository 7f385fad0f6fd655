#include "timeline/renderer.h"

#include <utility>

namespace vantle {

namespace {

// Video keeps its chroma as it is on the way through RGB; pictures to look at get it interpolated.
bool smoothChroma(const Writer& writer) { return writer.pictureFormat().range == AVCOL_RANGE_JPEG; }

}  // namespace

DIImage Renderer::Side::load(const AVFrame& picture) {
    if (!held || held->data[0] != picture.data[0]) {
        converter.convert(viewOf(picture), viewOf(image.get()));
        held = av::share(picture);
    }
    return image.get();
}

Renderer::Renderer(TransFunc* transition, Size size, Writer& writer, Soundtrack* sound, FrameRange wanted,
                   ProgressBar& progress)
    : transition_(transition),
      size_(size),
      writer_(writer),
      sound_(sound),
      wanted_(wanted),
      progress_(progress),
      from_{makeImage(size.width, size.height), Converter(smoothChroma(writer)), nullptr},
      to_{makeImage(size.width, size.height), Converter(smoothChroma(writer)), nullptr},
      out_(makeImage(size.width, size.height)),
      toWriter_(smoothChroma(writer)) {}

void Renderer::show(const AVFrame& picture) {
    if (wanted()) {
        const PictureFormat format = writer_.pictureFormat();
        const PixelView view = viewOf(picture);
        if (view.format == format.pixels && view.space == format.space && view.range == format.range) {
            write(av::share(picture));
        } else {
            av::Frame converted = blankPicture(size_, writer_.pictureFormat());
            toWriter_.convert(view, viewOf(*converted));
            write(std::move(converted));
        }
    }
    step();
}

void Renderer::mix(const AVFrame& from, const AVFrame& to, double position, double duration) {
    if (wanted()) {
        TransParam param{};
        param.dDuration = duration;
        param.dPosition = position;
        transition_(out_.get(), from_.load(from), to_.load(to), &param);
        av::Frame picture = blankPicture(size_, writer_.pictureFormat());
        toWriter_.convert(viewOf(out_.get()), viewOf(*picture));
        write(std::move(picture));
    }
    step();
}

void Renderer::write(av::Frame picture) {
    writer_.write(std::move(picture), next_);
    progress_.update(++written_);
}

void Renderer::step() {
    ++next_;
    if (sound_ == nullptr) return;
    sound_->advance(next_);
    while (av::Frame samples = sound_->pull()) writer_.writeSound(std::move(samples));
}

}  // namespace vantle
