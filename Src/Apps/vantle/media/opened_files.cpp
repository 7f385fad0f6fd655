#include "media/opened_files.h"

#include <sys/stat.h>

extern "C" {
#include <libavutil/avstring.h>
#include <libavutil/opt.h>
}

#include <cstddef>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "media/filters.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

struct FreeText {
    void operator()(char* text) const { av_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

std::string withoutProtocol(const std::string& url) {
    const char* path = url.c_str();
    av_strstart(path, "file:", &path);
    return path;
}

}  // namespace

std::optional<FileIdentity> FileIdentity::of(const fs::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return FileIdentity{status.st_dev, status.st_ino};
}

void OpenedFiles::watch(AVFormatContext& input) {
    open_ = input.io_open;
    input.io_open = open;
    input.opaque = this;
}

int OpenedFiles::open(AVFormatContext* input, AVIOContext** file, const char* url, int flags,
                      AVDictionary** options) {
    auto& self = *static_cast<OpenedFiles*>(input->opaque);
    self.note(url);
    return self.open_(input, file, url, flags, options);
}

/// Protocols stand before a file's name, also several (cache:file:NAME), and one joins files (concat:A|B).
/// True when one of them has come to be known by this.
bool OpenedFiles::note(std::string_view url) {
    bool isNew = false;
    for (std::size_t begin = 0; begin != std::string_view::npos;) {
        for (std::size_t end = begin; end != std::string_view::npos;) {
            end = url.find('|', end + 1);
            if (const auto file = FileIdentity::of(url.substr(begin, end - begin)))
                isNew = found_.insert(*file).second || isNew;
        }
        begin = url.find_first_of(":|", begin);
        if (begin != std::string_view::npos) ++begin;
    }
    return isNew;
}

void OpenedFiles::lookAhead(const AVFormatContext& input) {
    const std::string_view format = input.iformat->name;
    if (format == "concat") noteList(withoutProtocol(input.url));
    if (format == "lavfi") noteFilters(input.url);
}

void OpenedFiles::noteList(const fs::path& list) {
    std::ifstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        const char* rest = line.c_str();
        const auto word = [&rest] {
            constexpr const char* spaces = " \t\r";
            const Text text(av_get_token(&rest, spaces));
            rest += std::strspn(rest, spaces);
            return std::string(text ? text.get() : "");
        };
        if (word() != "file") continue;
        const fs::path file = list.parent_path() / withoutProtocol(word());
        // A list may hold lists, and itself.
        if (note(file.string())) noteList(file);
    }
}

void OpenedFiles::noteFilters(const std::string& description) {
    const av::Graph graph = parseGraph(description);
    for (unsigned i = 0; i < graph->nb_filters; ++i) {
        void* const filter = graph->filters[i]->priv;
        if (graph->filters[i]->filter->priv_class == nullptr) continue;
        for (const AVOption* option = nullptr; (option = av_opt_next(filter, option)) != nullptr;) {
            std::uint8_t* value = nullptr;
            if (option->type != AV_OPT_TYPE_STRING || av_opt_get(filter, option->name, 0, &value) < 0)
                continue;
            const Text text(reinterpret_cast<char*>(value));
            if (text) note(text.get());
        }
    }
}

}  // namespace vantle
