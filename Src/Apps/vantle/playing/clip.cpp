#include "playing/clip.h"

#include <algorithm>
#include <utility>

#include "playing/onto_canvas.h"
#include "system/interrupt.h"

namespace vantle {

namespace {

bool sameForm(const AVFrame& a, const AVFrame& b) {
    return a.width == b.width && a.height == b.height && a.format == b.format &&
           av_cmp_q(a.sample_aspect_ratio, b.sample_aspect_ratio) == 0;
}

}  // namespace

Clip::Clip(Input& input, const Film& film, const Part& part, std::int64_t first, bool audio)
    : input_(input), canvas_{film.canvas.size, film.canvas.rate, part.fit}, part_(part), number_(first) {
    input_.start(number_, canvas_.rate, audio);
}

av::Frame Clip::next() {
    throwIfInterrupted();  // a still never reads on
    while (!ended_) {
        if (!ahead_) ahead_ = input_.nextPicture();
        ended_ = !ahead_;
        if (ended_ || (decoded_ && input_.gridNumber(ahead_->pts, canvas_.rate) > number_)) break;
        decoded_ = std::move(ahead_);
        shown_.reset();
        ended_ = input_.still();
    }
    if (!decoded_) throw Error(input_.name() + ": its pictures cannot be read");
    ++number_;
    if (part_.motion) return moved();
    if (!shown_) shown_ = onCanvas(*decoded_);
    return av::share(*shown_);
}

av::Frame Clip::moved() {
    if (!moving_) moving_.emplace(canvas_, input_, *decoded_, *part_.motion);
    // By its place in the part alone, so that pieces of a film agree with all of it.
    const auto frame = static_cast<double>(number_ - 1 - part_.first);
    return moving_->at(frame / static_cast<double>(std::max<std::int64_t>(part_.frames - 1, 1)));
}

av::Frame Clip::onCanvas(const AVFrame& picture) {
    if (!filters_ || !sameForm(picture, *filtered_)) {
        filters_.emplace(picture, input_.timeBase(), filtersOnto(canvas_, input_, picture));
        filtered_ = av::share(picture);
    }
    filters_->push(av::share(picture));
    av::Frame result = filters_->pull();
    if (!result) throw Error(input_.name() + ": a picture cannot be brought to the canvas");
    return result;
}

}  // namespace vantle
