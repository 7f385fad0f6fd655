#include "Host/plugin.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "Host/error.h"
#include "Host/fades.h"
#include "Host/words.h"
#include "catalogue/catalogue.h"
#include "catalogue/transitions.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

fs::path installedPlugin() {
    const fs::path bin = fs::read_symlink("/proc/self/exe").parent_path();
    for (const fs::path& folder : {bin, bin / VANTLE_LIB_FROM_BIN})
        if (fs::path library = folder / "libtp_vantle.so"; fs::exists(library)) return library;
    return bin / VANTLE_LIB_FROM_BIN / "libtp_vantle.so";
}

/// The text in a field of a record. What is no printable ASCII shows as a question mark; a field that is full
/// to its end, without a terminator, is read no further.
template <std::size_t size>
std::string textIn(const wchar_t (&field)[size]) {
    std::string text;
    for (const wchar_t* unit = field; unit != std::end(field) && *unit != L'\0'; ++unit)
        text += *unit >= L' ' && *unit <= L'~' ? static_cast<char>(*unit) : '?';
    return text;
}

/// The name under which C++ exports a transition function.
std::string mangled(const std::string& function) {
    return "_Z" + std::to_string(function.size()) + function + "PvS_S_PK10TransParam";
}

/// The name of the exported function at an address, without its parameters; empty when it has none.
std::string functionName(TransFunc* function) {
    Dl_info info{};
    if (function == nullptr || dladdr(reinterpret_cast<void*>(function), &info) == 0 ||
        info.dli_sname == nullptr)
        return {};
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, &status), &std::free);
    const std::string whole = name ? name.get() : info.dli_sname;
    return whole.substr(0, whole.find('('));
}

/// What a plug-in's records do not hold: family and sentence.
TransitionRow rowOf(std::string_view function) {
    const auto* const row = std::ranges::find(transitionRows, function, &TransitionRow::function);
    return row != std::end(transitionRows) ? *row : TransitionRow{"", "other", "", "", ""};
}

}  // namespace

void Plugin::Close::operator()(void* library) const { dlclose(library); }

Plugin::Plugin(const fs::path& library) {
    // An absolute path, because a bare name would be searched for in the system's folders.
    const fs::path path = fs::absolute(library.empty() ? installedPlugin() : library);
    // It stays loaded to the end of the process: the dissolve's mask is the library's and is never released.
    library_.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE));
    if (!library_) throw Error("cannot load the plug-in: " + std::string(dlerror()));
    const auto count = reinterpret_cast<decltype(&GetTransCount)>(symbol("GetTransCount"));
    const auto record = reinterpret_cast<decltype(&GetTransInfo)>(symbol("GetTransInfo"));
    if (count == nullptr || record == nullptr)
        throw Error(path.string() + " is not a transition plug-in: it lacks the catalogue's entry points");

    for (std::int32_t index = 0; index < count(); ++index) {
        const TransInfo* const info = record(index);
        if (info == nullptr)
            throw Error(path.string() + " counts " + std::to_string(count()) +
                        " transitions, but has no record " + std::to_string(index));
        const std::string function = functionName(info->pfnTransition);
        const TransitionRow row = rowOf(function);
        joins_.push_back({index, textIn(info->szName), function, row.family, textIn(info->szGuid),
                          row.sentence, info->pfnTransition});
    }
    for (const TransitionRow& row : transitionRows) {
        const bool catalogued =
            std::ranges::find(joins_, row.function, &Transition::function) != joins_.end();
        void* const draw = catalogued ? nullptr : symbol(mangled(row.function));
        if (draw != nullptr)
            joins_.push_back(
                {{}, {}, row.function, row.family, {}, row.sentence, reinterpret_cast<TransFunc*>(draw)});
    }
    ownCount_ = joins_.size();
    std::ranges::copy(fades(), std::back_inserter(joins_));
}

void* Plugin::symbol(const std::string& name) const { return dlsym(library_.get(), name.c_str()); }

const std::string& shownName(const Transition& transition) {
    return transition.name.empty() ? transition.function : transition.name;
}

void drawTransition(TransFunc* transition, DIImage out, DIImage from, DIImage to, double position,
                    double duration) {
    TransParam param{};
    param.dDuration = duration;
    param.dPosition = position;
    transition(out, from, to, &param);
}

const Transition& findTransition(std::span<const Transition> catalogue, std::string_view wanted) {
    for (const Transition& transition : catalogue) {
        if (transition.index && wanted == std::to_string(*transition.index)) return transition;
        for (const std::string& text : {transition.name, transition.guid, transition.function})
            if (!text.empty() && editsBetween(wanted, text) == 0) return transition;
    }
    std::string message = "no transition is called \"" + std::string(wanted) + "\"";
    const std::vector<const Transition*> meant = likely(catalogue, wanted);
    for (std::size_t i = 0; i < meant.size(); ++i) {
        message += i == 0 ? "; did you mean " : i + 1 < meant.size() ? ", " : " or ";
        message += "\"" + shownName(*meant[i]) + "\"";
    }
    throw UsageError(message + (meant.empty() ? "" : "?") + " (vantle list shows them all)");
}

}  // namespace vantle
