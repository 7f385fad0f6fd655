#include "media/unreadable.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

namespace vantle {

namespace {

namespace fs = std::filesystem;

struct Signature {
    std::string_view begins;
    const char* is;
};

constexpr Signature signatures[] = {
    {"PK\x03\x04", "is a zip archive; what it holds must be unpacked first"},
    {"\x1F\x8B", "is packed (gzip); it must be unpacked first"},
    {"7z\xBC\xAF", "is a 7-Zip archive; what it holds must be unpacked first"},
    {"Rar!", "is a RAR archive; what it holds must be unpacked first"},
    {"%PDF", "is a PDF document, neither pictures nor video"},
};

/// Whether the boxes of an MP4 or QuickTime file hold an index of its packets, to its end.
bool hasIndex(const fs::path& path) {
    std::error_code ignored;
    const std::uintmax_t size = fs::file_size(path, ignored);
    std::ifstream file(path, std::ios::binary);
    const auto number = [&file](int bytes) {
        std::uint64_t value = 0;
        for (int i = 0; i < bytes; ++i) value = value << 8 | static_cast<std::uint8_t>(file.get());
        return value;
    };
    for (std::uint64_t at = 0; at < size;) {
        file.seekg(static_cast<std::streamoff>(at));
        std::uint64_t length = number(4);
        std::array<char, 4> type{};
        file.read(type.data(), type.size());
        if (length == 1) length = number(8);
        if (!file || length < 8 || length > size - at) return false;
        if (std::string_view(type.data(), type.size()) == "moov") return true;
        at += length;
    }
    return false;
}

/// No byte that texts do not have.
bool isText(std::string_view bytes) {
    return std::ranges::none_of(bytes, [](char c) {
        return static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\r' && c != '\t' && c != '\f';
    });
}

}  // namespace

std::string whyUnreadable(const fs::path& file) {
    std::array<char, 4096> block{};
    std::ifstream in(file, std::ios::binary);
    in.read(block.data(), block.size());
    const std::string_view start(block.data(), static_cast<std::size_t>(in.gcount()));
    if (start.empty()) return "is empty";
    for (const Signature& signature : signatures)
        if (start.starts_with(signature.begins)) return signature.is;
    if (start.size() > 8 && start.substr(4, 4) == "ftyp" && !hasIndex(file))
        return "was cut off while it was recorded or copied: its index, which comes last, is missing";
    if (start.starts_with("\x1A\x45\xDF\xA3")) return "was cut off near its beginning, or is damaged";
    if (isText(start) && start.find("<html") != std::string_view::npos)
        return "is a web page, neither pictures nor video";
    if (isText(start)) return "is text, neither pictures nor video";
    return "is of no kind that FFmpeg's libraries know, or is damaged";
}

}  // namespace vantle
