// The command line: its commands, and what the exit status says.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>
#include <system_error>

extern "C" {
#include <libavutil/log.h>
}

#include "Host/error.h"
#include "completion.h"
#include "gallery_command.h"
#include "help.h"
#include "list_command.h"
#include "render_command.h"
#include "sheet_command.h"
#include "system/interrupt.h"
#include "version.h"

namespace {

using namespace vantle;

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// Standard output may be a full disk or a closed pipe, which shows only when its buffer is written out.
void flushOutput() {
    errno = 0;
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        throw Error("cannot write to standard output: " + std::generic_category().message(errno));
}

// One line, whatever a library's message holds.
int report(const std::string& message, int status) {
    std::string line = message;
    std::ranges::replace(line, '\n', ' ');
    std::fprintf(stderr, "vantle: %s\n", line.c_str());
    return status;
}

int run(int argc, char** argv) {
    CLI::App app("Video transitions on real pictures and video", "vantle");
    app.require_subcommand(1);
    for (const auto add : {addRenderCommand, addSheetCommand, addGalleryCommand, addListCommand}) add(app);
    showLikeManual(app);
    app.set_version_flag("--version", versionText,
                         "Print the versions of vantle and of FFmpeg's libraries and exit");

    try {
        try {
            // What shells ask. The words that follow are not yet a command line.
            if (argc > 1 && std::string_view(argv[1]) == "--complete")
                complete(app, {argv + 2, argv + argc});
            else
                app.parse(argc, argv);
        } catch (const CLI::Success& shown) {
            app.exit(shown);
        }
        flushOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        return report(std::string(error.what()) + " (vantle --help shows the usage)", wrongUsage);
    } catch (const UsageError& error) {
        return report(error.what(), wrongUsage);
    } catch (const std::exception& error) {
        return report(error.what(), failed);
    }
}

}  // namespace

// Only a message that does not fit into memory could still throw, and then there is nothing left to say.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
    av_log_set_level(AV_LOG_QUIET);
    catchInterrupts();
    const int status = run(argc, argv);
    endIfInterrupted();
    return status;
}
