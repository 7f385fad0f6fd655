/// Running the command line as its user does, on real files.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "command_line.h"

namespace tests {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

/// What a command wrote to standard output, and its exit status (128 + signal when it was killed).
struct Outcome {
    Bytes output;
    int status = -1;
    bool killed = false;
    std::string text() const { return {output.begin(), output.end()}; }
};

/// All that comes through a pipe, and how whoever writes into it ended, which `close` tells.
template <typename Close>
Outcome outcomeOf(FILE* pipe, Close close) {
    Outcome outcome;
    std::array<std::uint8_t, 65536> block{};
    while (const std::size_t got = fread(block.data(), 1, block.size(), pipe))
        outcome.output.insert(outcome.output.end(), block.begin(), block.begin() + got);
    const int status = close(pipe);
    outcome.killed = WIFSIGNALED(status);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome;
}

inline Outcome shell(const std::string& command) { return outcomeOf(popen(command.c_str(), "r"), pclose); }

/// Decoded pictures, one after the other.
struct Pictures {
    Bytes bytes;
    std::size_t count = 0;
    std::size_t each = 0;
    int width = 0;
    std::uint8_t luma(std::size_t picture, int x, int y) const {
        return bytes.at(picture * each + static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                        static_cast<std::size_t>(x));
    }
};

/// A folder of its own for each test, with what the command line needs to be tried in it.
class CommandTest : public testing::Test {
   protected:
    CommandTest() {
        // Whoever starts the tests may ignore these, and what they start would too.
        for (const int number : {SIGHUP, SIGINT}) std::signal(number, SIG_DFL);
        std::string name = (fs::temp_directory_path() / "vantle-test-XXXXXX").string();
        folder_ = mkdtemp(name.data());
    }
    ~CommandTest() override { fs::remove_all(folder_); }

    std::string in(const std::string& command) const { return "cd '" + folder_.string() + "' && " + command; }

    /// Runs vantle in the folder; standard error comes with the output. It runs in a copy of this process,
    /// which has FFmpeg's two hundred libraries loaded: loading them takes longer than most commands do.
    Outcome vantle(const std::string& arguments) const {
        const bool isPlain = arguments.find_first_of("|<>;&") == std::string::npos;
        if (!isPlain) return shell(in(VANTLE " " + arguments + " 2>&1"));
        std::string words =
            "vantle" + std::string(1, '\0') +
            shell(in("set -- " + arguments + "; for word do printf '%s\\0' \"$word\"; done")).text();
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
        std::fflush(nullptr);
        const pid_t child = fork();
        if (child == 0)
            [&]() noexcept {  // nothing of it may go on with the tests
                for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) dup2(ends[1], stream);
                if (chdir(folder_.c_str()) != 0) _exit(126);
                std::vector<char*> argv;
                for (std::size_t at = 0; at < words.size(); at += std::strlen(&words[at]) + 1)
                    argv.push_back(&words[at]);
                argv.push_back(nullptr);
                const int status = ::vantle::commandLine(static_cast<int>(argv.size()) - 1, argv.data());
                std::fflush(nullptr);
                // Not by way of all that libraries tidy up; leaks are looked for where work has been done.
                if (!SANITIZED || status != 0) _exit(status);
                std::exit(status);
            }();
        close(ends[1]);
        return outcomeOf(fdopen(ends[0], "r"), [child](FILE* pipe) {
            int status = 0;
            fclose(pipe);
            waitpid(child, &status, 0);
            return status;
        });
    }

    /// Runs vantle, and beside it `command` once something is half written, after a minute in any case: $$ is
    /// vantle there.
    Outcome vantleWhile(const std::string& arguments, const std::string& command) const {
        const std::string wait =
            "for i in $(seq 600); do find . | grep -Eq '/[.][^/]*[.](vantle-[^/]*|[A-Za-z0-9]{6})$' && "
            "break; "
            "sleep 0.1; done; ";
        return shell(in("{ { " + wait + command + "; } 2>&1 & exec " VANTLE " " + arguments + " 2>&1; }"));
    }

    /// Runs vantle, which must succeed.
    void render(const std::string& arguments) const {
        const Outcome outcome = vantle("render -q " + arguments);
        EXPECT_EQ(outcome.status, 0) << arguments << "\n" << outcome.text();
    }

    /// What stands for vantle where its renames run the shell commands in BEFORE and AFTER around the first
    /// of them; with PLAIN set they fail as on a file system that knows only the oldest kind.
    std::string withRenamesHooked() const {
        std::ofstream(folder_ / "moment.cpp") << R"(
#include <cerrno>
#include <cstdlib>
#include <sys/syscall.h>
#include <unistd.h>
extern "C" int renameat2(int, const char* from, int, const char* to, unsigned flags) {
    const bool known = std::getenv("PLAIN") == nullptr;
    if (const char* command = std::getenv("BEFORE")) std::system(command);
    unsetenv("BEFORE");
    const long result = known ? syscall(SYS_renameat2, -100, from, -100, to, flags) : -1;
    if (const char* command = std::getenv("AFTER")) std::system(command);
    if (!known) errno = EINVAL;
    return static_cast<int>(result);
})";
        EXPECT_EQ(shell(in("c++ -shared -fPIC moment.cpp -o moment.so")).status, 0);
        return " ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=./moment.so " VANTLE " ";
    }

    void ffmpeg(const std::string& arguments) const {
        ASSERT_EQ(shell(in("ffmpeg -v error -y " + arguments)).status, 0) << arguments;
    }

    /// A clip of flat pictures whose luma says their number: 40 + 3 N.
    void countingClip(const std::string& name, int frames, int cb, const std::string& audio = "") const {
        ffmpeg("-f lavfi -i \"color=s=64x320:r=25,format=yuv420p,geq=lum='40+3*N':cb=" + std::to_string(cb) +
               ":cr=128\" " + (audio.empty() ? "" : "-f lavfi -i \"" + audio + "\" -c:a aac") + " -t " +
               std::to_string(frames / 25.0) + " -c:v libx264 -crf 4 " + name);
    }

    /// The pictures of a file in one of FFmpeg's pixel formats, its luma or first colour plane first.
    Pictures decode(const std::string& name, int width, int height, const std::string& format = "yuv420p",
                    std::size_t bytesPerTwoPixels = 3) const {
        Pictures pictures;
        pictures.bytes =
            shell(in("ffmpeg -v error -i " + name + " -f rawvideo -pix_fmt " + format + " -")).output;
        pictures.width = width;
        pictures.each =
            static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * bytesPerTwoPixels / 2;
        EXPECT_EQ(pictures.bytes.size() % pictures.each, 0U) << name << " is not of the size expected";
        pictures.count = pictures.bytes.size() / pictures.each;
        return pictures;
    }

    Bytes rgb(const std::string& name) const {
        return shell(in("ffmpeg -v error -i " + name + " -f rawvideo -pix_fmt rgb24 -")).output;
    }

    /// The audio of a file, one channel of values between -1 and 1.
    std::vector<double> audio(const std::string& name, const std::string& options = "") const {
        const Bytes bytes =
            shell(in("ffmpeg -v error -i " + name + " -f s16le -ac 1 " + options + " -")).output;
        std::vector<double> samples(bytes.size() / 2);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<std::int16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8) / 32768.0;
        return samples;
    }

    /// What a film will be.
    nlohmann::json plan(const std::string& arguments) const {
        const Outcome outcome = vantle("render -q --plan --json " + arguments);
        EXPECT_EQ(outcome.status, 0) << arguments;
        return nlohmann::json::parse(outcome.text());
    }

    /// Runs vantle, which must refuse in one line that holds `says` and leave the folder as it was.
    void refuses(const std::string& arguments, int status, const std::string& says) const {
        const std::set<std::string> before = files();
        const Outcome outcome = vantle(arguments);
        EXPECT_EQ(outcome.status, status) << arguments << "\n" << outcome.text();
        EXPECT_NE(outcome.text().find(says), std::string::npos) << arguments << "\n" << outcome.text();
        EXPECT_EQ(outcome.text().find('\n'), outcome.text().size() - 1) << arguments << "\n"
                                                                        << outcome.text();
        EXPECT_EQ(files(), before) << arguments;
    }

    std::string probe(const std::string& name, const std::string& entries) const {
        std::string text =
            shell(in("ffprobe -v error -count_frames -show_entries " + entries + " -of csv=p=0 " + name))
                .text();
        while (!text.empty() && text.back() == '\n') text.pop_back();
        return text;
    }

    Bytes contents(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Rights and owners as `stat` prints them.
    std::string rights(const std::string& name) const {
        return shell(in("stat -c '%a %u:%g' " + name)).text();
    }

    /// All names in the folder, hidden ones too.
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_))
            names.insert(entry.path().filename().string());
        return names;
    }

    fs::path folder_;
};

}  // namespace tests
