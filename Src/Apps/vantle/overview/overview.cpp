#include "overview/overview.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "playing/film_reader.h"
#include "playing/open_film.h"
#include "playing/painter.h"
#include "system/interrupt.h"
#include "system/progress_bar.h"
#include "system/workers.h"

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

}  // namespace

Overview::Overview(const OverviewOptions& options, const std::vector<double>& positions,
                   const std::function<Size(Size)>& frameSize) {
    FilmRequest request = options.film;
    request.hold = Time{0};
    request.firstSize = request.firstRate = true;
    request.meetings.front().transition =
        options.transitions.empty() ? "random" : options.transitions.front();
    OpenFilm open = openFilm(request, options.delivery.plugin, options.delivery.quiet);
    transitions_ = wanted(open.plugin, options.transitions);
    throwComplaints(open.laid.complaints, true);
    size_ = frameSize(open.film().sources.front().size);
    open.laid.film.canvas.size = size_;
    overlap_ = open.film().joins.front().frames;
    ImageLoader fromFrames(size_, true);
    ImageLoader toFrames(size_, true);
    for (const Moment& moment : momentsOf(open, 0, positions))
        meetings_.push_back(
            {fromFrames.load(*moment.picture), toFrames.load(*moment.incoming), moment.position});
    files_ = open.files();
    if (!options.delivery.quiet) open.reportDamage();
    plugin_.emplace(std::move(open.plugin));
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
            drawTransition(transitions_[transition].draw, out.get(), meeting.from->get(), meeting.to->get(),
                           meeting.frame, static_cast<double>(overlap_));
            sink(transition, position, out.get());
            const std::scoped_lock lock(guard);
            progress.update(++drawn);
        }
    });
}

}  // namespace vantle
