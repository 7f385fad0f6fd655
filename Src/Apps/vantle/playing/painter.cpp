#include "playing/painter.h"

#include "Host/fades.h"

namespace vantle {

namespace {

// Video keeps its chroma as it is on the way through RGB; pictures to look at get it interpolated.
bool smoothChroma(const PictureFormat& format) { return format.range == AVCOL_RANGE_JPEG; }

}  // namespace

std::shared_ptr<const Image> ImageLoader::load(const AVFrame& picture) {
    if (!held_ || held_->data[0] != picture.data[0]) {
        if (image_.use_count() != 1) image_ = std::make_shared<Image>(makeImage(size_.width, size_.height));
        converter_.convert(viewOf(picture), viewOf(image_->get()));
        held_ = av::share(picture);
    }
    return image_;
}

void draw(const Moment& moment, ImageLoader& from, ImageLoader& to, DIImage out) {
    if (moment.transition != nullptr)
        drawTransition(moment.transition, out, from.load(*moment.picture)->get(),
                       to.load(*moment.incoming)->get(), moment.position, moment.duration);
    if (moment.light < 1.0)
        drawDimmed(out, moment.transition != nullptr ? out : from.load(*moment.picture)->get(), moment.light);
}

Painter::Painter(Size size, const PictureFormat& format)
    : size_(size),
      format_(format),
      from_(size, smoothChroma(format)),
      to_(size, smoothChroma(format)),
      out_(makeImage(size.width, size.height)),
      toFormat_(smoothChroma(format)) {}

av::Frame Painter::paint(const Moment& moment) {
    PixelView view = viewOf(*moment.picture);
    if (moment.transition != nullptr || moment.light < 1.0) {
        draw(moment, from_, to_, out_.get());
        view = viewOf(out_.get());
    } else if (view.format == format_.pixels && view.space == format_.space && view.range == format_.range) {
        return av::share(*moment.picture);
    }
    av::Frame picture = blankPicture(size_, format_);
    toFormat_.convert(view, viewOf(*picture));
    return picture;
}

}  // namespace vantle
