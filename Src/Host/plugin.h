/// A transition plug-in, loaded and read as any host does it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/contract.h"

namespace vantle {

/// One transition of a plug-in.
struct Transition {
    std::optional<std::int32_t> index;  ///< place in the catalogue; none for those only exported by name
    std::string name;                   ///< display name; empty without a catalogue record
    std::string function;               ///< name of the function that draws it; empty while there is none
    std::string family;                 ///< "strips", "shapes", "warps", "blends"; "other" when not known
    std::string guid;                   ///< empty without a catalogue record
    std::string sentence;               ///< what it looks like; empty when not known
    TransFunc* draw = nullptr;          ///< null when this build of the plug-in does not have it
};

/// The name under which a transition is shown and can be asked for.
const std::string& shownName(const Transition& transition);

/// The transition with this catalogue name, index, GUID or function name, in any case of letters. Throws
/// UsageError when there is none, naming those that may be meant.
const Transition& findTransition(std::span<const Transition> catalogue, std::string_view wanted);

/// Draws a transition's frame at `position` of an overlap of `duration`, both in one unit.
void drawTransition(TransFunc* transition, DIImage out, DIImage from, DIImage to, double position,
                    double duration);

class Plugin {
   public:
    /// Loads the plug-in at `library`, or the one installed with this program when that is empty. Throws
    /// Error when it cannot be loaded, lacks the entry points or has fewer records than it counts.
    explicit Plugin(const std::filesystem::path& library = {});

    /// The catalogue in its order, then the transitions that are exported without a record.
    std::span<const Transition> transitions() const { return std::span(joins_).first(ownCount_); }

    /// These and, after them, the host's own fades: all that can join two inputs.
    std::span<const Transition> joins() const { return joins_; }

    /// `findTransition` among the plug-in's.
    const Transition& find(std::string_view wanted) const { return findTransition(transitions(), wanted); }

    /// Address of an exported symbol, or null.
    void* symbol(const std::string& name) const;

   private:
    struct Close {
        void operator()(void* library) const;
    };

    std::unique_ptr<void, Close> library_;
    std::vector<Transition> joins_;
    std::size_t ownCount_ = 0;  // of the plug-in
};

}  // namespace vantle
