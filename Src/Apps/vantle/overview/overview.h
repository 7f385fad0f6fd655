/// Many transitions between the same two inputs, drawn at the same positions.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Host/image.h"
#include "Host/plugin.h"
#include "media/canvas.h"
#include "media/opened_files.h"
#include "output/delivery.h"
#include "timeline/film_request.h"

namespace vantle {

/// What every overview of transitions is asked for with.
struct OverviewOptions {
    FilmRequest film{.shots = {{}, {}}, .meetings = {{}}};  ///< of two inputs
    std::vector<std::string> transitions{};  ///< names, indices, GUIDs or functions; empty for all
    Delivery delivery{};
};

class Overview {
   public:
    /// Loads the plug-in and the pictures of the overlap at `positions` (0 to 1, ascending), which are the
    /// ones that a rendering shows there. `frameSize` says how large the frames are, given FROM's size.
    Overview(const OverviewOptions& options, const std::vector<double>& positions,
             const std::function<Size(Size)>& frameSize);

    /// The transitions to show, each once.
    std::span<const Transition> transitions() const { return transitions_; }

    Size size() const { return size_; }

    /// The files that its inputs are read from.
    const FileSet& files() const { return files_; }

    /// Uses a finished frame: number of the transition, number of the position, and the frame itself, which
    /// holds only during the call.
    using Sink = std::function<void(std::size_t transition, std::size_t position, DIImage frame)>;

    /// Draws everything, one transition per core at a time; `sink` is called on several threads at once, but
    /// for one transition in the order of positions.
    void draw(bool quiet, const Sink& sink) const;

   private:
    /// A position with the frames that meet there. Frames of a still are shared by all.
    struct Meeting {
        std::shared_ptr<const Image> from;
        std::shared_ptr<const Image> to;
        double frame = 0.0;
    };

    std::optional<Plugin> plugin_;  // stays loaded
    std::vector<Transition> transitions_;
    std::vector<Meeting> meetings_;
    std::int64_t overlap_ = 1;
    Size size_;
    FileSet files_;
};

}  // namespace vantle
