#include "overview/joins.h"

#include <cstdio>
#include <filesystem>
#include <vector>

#include "overview/overview.h"
#include "playing/painter.h"
#include "system/interrupt.h"
#include "system/progress_bar.h"

namespace vantle {

namespace {

/// A file's name, short enough to stand beside thumbnails.
std::string shortName(const Film& film, const Part& part) {
    constexpr std::size_t longest = 16;
    std::string name = std::filesystem::path(film.sourceOf(part).name).filename().string();
    if (name.size() > longest) name = name.substr(0, longest - 1) + "…";
    return name;
}

}  // namespace

void drawJoins(const OpenFilm& open, const std::string& output, bool overwrite, bool quiet) {
    const Film& film = open.film();
    checkSheetName(output, overwrite);
    std::vector<std::size_t> joins;
    std::vector<SheetRow> rows;
    for (std::size_t i = 0; i < film.joins.size(); ++i) {
        const Join& join = film.joins[i];
        if (!join.transition) continue;
        joins.push_back(i);
        rows.push_back({join.transition->shown, "frame " + std::to_string(join.start) + ": " +
                                                    shortName(film, film.parts[i]) + " to " +
                                                    shortName(film, film.parts[i + 1])});
    }
    if (joins.empty()) throw UsageError("--joins: the film has only cuts");
    const SheetForm form;
    const std::vector<double> positions = innerPositions(form.columns);
    ContactSheet sheet(form, rows, inDigits(positions), film.canvas.size);
    ProgressBar progress(std::ssize(joins), quiet, "join");
    const Image out = makeImage(film.canvas.size.width, film.canvas.size.height);
    for (std::size_t row = 0; row < joins.size(); ++row) {
        throwIfInterrupted();
        const std::size_t number = joins[row];
        ImageLoader from(film.canvas.size, true);
        ImageLoader to(film.canvas.size, true);
        const std::vector<Moment> moments = momentsOf(open, number, positions);
        for (std::size_t column = 0; column < moments.size(); ++column) {
            draw(moments[column], from, to, out.get());
            sheet.place(row, column, out.get());
        }
        open.inputOf(film.parts[number]).close();
        progress.update(static_cast<std::int64_t>(row) + 1);
    }
    sheet.write(output, overwrite);
    progress.finish();
    if (!quiet)
        std::fprintf(stderr, "%s: %zu join%s, %dx%d\n", output.c_str(), rows.size(),
                     rows.size() == 1 ? "" : "s", sheet.size().width, sheet.size().height);
}

}  // namespace vantle
