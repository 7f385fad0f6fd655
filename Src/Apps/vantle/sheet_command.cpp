#include "sheet_command.h"

#include <memory>

#include "options.h"
#include "overview/sheet.h"

namespace vantle {

void addSheetCommand(CLI::App& app) {
    const auto held = std::make_shared<SheetOptions>();
    SheetOptions& options = *held;
    CLI::App* const command =
        app.add_subcommand("sheet", "Draw every transition as a row of thumbnails on one picture");
    command->footer(
        "FROM and TO are what `vantle render` reads. Each frame is drawn as large as FROM and scaled down.\n"
        "N thumbnails show the positions 1/(N+1) to N/(N+1).");
    addOverview(*command, options.overview, "The picture to write (.png, .jpg)");
    addSize(*command, options.form.size, "WIDTHxHEIGHT that a thumbnail fits in (default: 160 wide)");
    command->add_option("--columns", options.form.columns, "Thumbnails per transition")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command
        ->add_option("--abreast", options.form.abreast,
                     "Transitions side by side (default: 1 per 15 transitions)")
        ->check(CLI::Range(1, 100));
    command->callback([held] { drawSheet(*held); });
}

}  // namespace vantle
