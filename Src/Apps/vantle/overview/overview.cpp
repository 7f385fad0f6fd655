#include "overview/overview.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "media/convert.h"
#include "system/interrupt.h"
#include "system/progress_bar.h"
#include "system/workers.h"
#include "timeline/film.h"
#include "timeline/lay_out.h"

namespace vantle {

namespace {

std::vector<Transition> wanted(const Plugin& plugin, const std::vector<std::string>& names) {
    std::vector<Transition> chosen;
    for (const std::string& name : names) {
        const Transition& found = plugin.find(name);
        if (found.draw == nullptr)
            throw Error("the plug-in lists \"" + found.name + "\" but does not have it yet");
        if (std::ranges::find(chosen, found.draw, &Transition::draw) == chosen.end()) chosen.push_back(found);
    }
    if (names.empty())
        std::ranges::copy_if(plugin.transitions(), std::back_inserter(chosen),
                             [](const Transition& transition) { return transition.draw != nullptr; });
    if (chosen.empty()) throw Error("the plug-in has no transition");
    return chosen;
}

/// The frames of one input, converted only where the picture is another than before.
class FrameSource {
   public:
    explicit FrameSource(Size size) : size_(size) {}

    std::shared_ptr<const Image> frame(const AVFrame& picture) {
        if (!held_ || held_->data[0] != picture.data[0]) {
            Image image = makeImage(size_.width, size_.height);
            converter_.convert(viewOf(picture), viewOf(image.get()));
            frame_ = std::make_shared<const Image>(std::move(image));
            held_ = av::share(picture);
        }
        return frame_;
    }

   private:
    Size size_;
    Converter converter_{true};
    std::shared_ptr<const Image> frame_;
    av::Frame held_;  // keeps the picture's memory, so that the same memory means the same picture
};

}  // namespace

const std::string& shownName(const Transition& transition) {
    return transition.name.empty() ? transition.function : transition.name;
}

Overview::Overview(const OverviewOptions& options, const std::vector<double>& positions,
                   const std::function<Size(Size)>& frameSize)
    : plugin_(options.join.plugin), transitions_(wanted(plugin_, options.transitions)) {
    const Sequence sequence{{{.file = options.from}, {.file = options.to}}, {{"any", {}}}};
    const auto inputs = openInputs(sequence, options.join.quiet);
    size_ = frameSize(inputs.front()->size());
    const Canvas canvas{size_, options.join.fps.value_or(commonRate(inputs)), options.join.fit};
    std::vector<std::string> notes;
    const Film film = layOut(sequence, inputs, {&transitions_.front()}, canvas,
                             {.duration = options.join.duration, .hold = {}}, notes);
    overlap_ = film.joins.front().frames;
    FrameSource fromFrames(size_);
    FrameSource toFrames(size_);
    for (const Moment& moment : momentsOf(film, 0, positions))
        meetings_.push_back(
            {fromFrames.frame(*moment.picture), toFrames.frame(*moment.incoming), moment.position});
    files_ = filesOf(inputs);
    if (!options.join.quiet) reportDamage(inputs);
}

void Overview::draw(bool quiet, const Sink& sink) const {
    ProgressBar progress(std::ssize(transitions_) * std::ssize(meetings_), quiet);
    std::mutex guard;
    std::int64_t drawn = 0;
    // A transition stays on one thread, so that its calls never overlap: the dissolve keeps state.
    inParallel(transitions_.size(), [&](std::size_t transition) {
        const Image out = makeImage(size_.width, size_.height);
        for (std::size_t position = 0; position < meetings_.size(); ++position) {
            throwIfInterrupted();
            const Meeting& meeting = meetings_[position];
            TransParam param{};
            param.dDuration = static_cast<double>(overlap_);
            param.dPosition = meeting.frame;
            transitions_[transition].draw(out.get(), meeting.from->get(), meeting.to->get(), &param);
            sink(transition, position, out.get());
            const std::scoped_lock lock(guard);
            progress.update(++drawn);
        }
    });
}

}  // namespace vantle
