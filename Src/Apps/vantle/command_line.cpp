#include "command_line.h"

#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

#include "Host/error.h"
#include "completion.h"
#include "gallery_command.h"
#include "help.h"
#include "list_command.h"
#include "mistakes.h"
#include "render_command.h"
#include "sheet_command.h"
#include "system/interrupt.h"
#include "version.h"

namespace vantle {

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 2;

// Standard output may be a full disk or a closed pipe, which shows only when its buffer is written out.
void flushOutput() {
    errno = 0;
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    const int error = errno;
    // Whoever read has seen enough, which is how a pipe into `head` ends.
    pollfd reader{STDOUT_FILENO, POLLOUT, 0};
    if (poll(&reader, 1, 0) == 1 && (reader.revents & POLLERR) != 0) {
        std::signal(SIGPIPE, SIG_DFL);
        std::raise(SIGPIPE);
    }
    throw Error("cannot write to standard output" +
                (error != 0 ? ": " + std::generic_category().message(error) : ""));
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

    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    try {
        try {
            // What shells ask. The words that follow are not yet a command line.
            if (!words.empty() && words.front() == "--complete") {
                complete(app, {words.begin() + 1, words.end()});
            } else {
                words = wordsToRead(app, std::move(words));
                app.parse(
                    std::vector<std::string>(words.rbegin(), words.rend()));  // which takes them from the end
            }
        } catch (const CLI::Success& shown) {
            app.exit(shown);
        }
        flushOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        const std::string hint = hintFor(app, words, error.what());
        return report(error.what() + (hint.empty() ? " (vantle --help shows the usage)" : hint), wrongUsage);
    } catch (const UsageError& error) {
        return report(error.what() + hintFor(app, words, error.what()), wrongUsage);
    } catch (const std::exception& error) {
        return report(error.what(), failed);
    }
}

}  // namespace

int commandLine(int argc, char** argv) {
    av_log_set_level(AV_LOG_QUIET);
    catchInterrupts();
    const int status = run(argc, argv);
    endIfInterrupted();
    return status;
}

}  // namespace vantle
