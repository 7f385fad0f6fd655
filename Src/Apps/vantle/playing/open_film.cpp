#include "playing/open_film.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <span>
#include <utility>

#include "Host/error.h"
#include "system/progress_bar.h"
#include "system/workers.h"

namespace vantle {

namespace {

std::vector<std::unique_ptr<Input>> openInputs(std::span<const Shot> shots, bool quiet) {
    constexpr std::size_t keptOpen = 2;
    std::vector<std::unique_ptr<Input>> inputs(shots.size());
    ProgressBar progress(std::ssize(inputs), quiet || inputs.size() <= keptOpen, "input");
    std::mutex guard;
    std::int64_t opened = 0;
    inParallel(inputs.size(), [&](std::size_t i) {
        inputs[i] = std::make_unique<Input>(shots[i].file, shots[i].turn);
        if (i >= keptOpen) inputs[i]->close();
        const std::scoped_lock lock(guard);
        progress.update(++opened);
    });
    return inputs;
}

}  // namespace

FileSet OpenFilm::files() const {
    FileSet files;
    for (const std::unique_ptr<Input>& input : inputs) files.merge(input->files());
    return files;
}

void OpenFilm::reportDamage() const {
    for (const std::unique_ptr<Input>& input : inputs) {
        const Demuxer::Health health = input->health();
        if (health.damaged > 0)
            std::fprintf(stderr, "vantle: %s: passed over %lld damaged packet%s\n", input->name().c_str(),
                         static_cast<long long>(health.damaged), health.damaged > 1 ? "s" : "");
        if (!health.shortfall.empty())
            std::fprintf(stderr, "vantle: %s: %s\n", input->name().c_str(), health.shortfall.c_str());
    }
}

OpenFilm openFilm(const FilmRequest& request, const std::string& library, bool quiet) {
    Plugin plugin(library);
    std::vector<Complaint> unknown;
    auto chosen = chooseTransitions(request, plugin.joins(), unknown);
    throwComplaints(unknown, true);
    auto inputs = openInputs(request.shots, quiet);
    std::vector<Source> sources;
    for (const std::unique_ptr<Input>& input : inputs) sources.push_back(input->source());
    LaidOut laid = layOut(request, std::move(sources), std::move(chosen));
    std::vector<TransFunc*> transitions;
    for (const Join& join : laid.film.joins) {
        const auto found =
            std::ranges::find(plugin.joins(), join.transition ? join.transition->function : std::string(),
                              &Transition::function);
        transitions.push_back(join.transition ? found->draw : nullptr);
    }
    return {std::move(plugin), std::move(inputs), std::move(laid), std::move(transitions)};
}

void throwComplaints(const std::vector<Complaint>& complaints, bool all) {
    if (complaints.empty()) return;
    const std::span<const Complaint> others = std::span(complaints).subspan(1);
    std::string text = complaints.front().text;
    if (all)
        for (const Complaint& other : others) std::fprintf(stderr, "vantle: %s\n", other.text.c_str());
    else if (!others.empty())
        text += "; and " + std::to_string(others.size()) + " more, which --plan tells";
    if (complaints.front().isUsage) throw UsageError(text);
    throw Error(text);
}

}  // namespace vantle
