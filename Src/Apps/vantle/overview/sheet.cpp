#include "overview/sheet.h"

#include <cstdio>

#include "output/output_kind.h"

namespace vantle {

void drawSheet(const SheetOptions& options) {
    const Delivery& asked = options.overview.delivery;
    checkSheetName(asked.output, asked.force);
    const std::vector<double> positions = innerPositions(options.form.columns);
    const Overview overview(options.overview, positions, [](Size own) { return own; });
    checkSpared(overview.files(), asked.output);
    std::vector<SheetRow> rows;
    for (const Transition& transition : overview.transitions())
        rows.push_back({shownName(transition), transition.family});
    ContactSheet sheet(options.form, rows, inDigits(positions), overview.size());
    overview.draw(asked.quiet, [&](std::size_t row, std::size_t column, DIImage frame) {
        sheet.place(row, column, frame);
    });
    sheet.write(asked.output, asked.force);
    if (!asked.quiet)
        std::fprintf(stderr, "%s: %zu transition%s, %dx%d\n", asked.output.c_str(), rows.size(),
                     rows.size() == 1 ? "" : "s", sheet.size().width, sheet.size().height);
}

}  // namespace vantle
