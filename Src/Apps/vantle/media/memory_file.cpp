#include "media/memory_file.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cstdio>
#include <utility>

namespace vantle {

MemoryFile::MemoryFile(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {
    constexpr int block = 1 << 16;
    auto* const buffer = static_cast<unsigned char*>(av::check(av_malloc(block), "file in memory"));
    io_.reset(avio_alloc_context(buffer, block, 0, this, read, nullptr, seek));
    if (!io_) av_free(buffer);
    av::check(io_.get(), "file in memory");
}

void MemoryFile::FreeIo::operator()(AVIOContext* io) const {
    av_freep(&io->buffer);
    avio_context_free(&io);
}

int MemoryFile::read(void* self, std::uint8_t* buffer, int size) {
    auto& file = *static_cast<MemoryFile*>(self);
    const std::size_t count = std::min(static_cast<std::size_t>(size), file.bytes_.size() - file.at_);
    if (count == 0) return AVERROR_EOF;
    std::copy_n(file.bytes_.data() + file.at_, count, buffer);
    file.at_ += count;
    return static_cast<int>(count);
}

std::int64_t MemoryFile::seek(void* self, std::int64_t offset, int whence) {
    auto& file = *static_cast<MemoryFile*>(self);
    const auto size = static_cast<std::int64_t>(file.bytes_.size());
    if (whence == AVSEEK_SIZE) return size;
    if (whence == SEEK_CUR) offset += static_cast<std::int64_t>(file.at_);
    if (whence == SEEK_END) offset += size;
    if (offset < 0 || offset > size) return AVERROR(EINVAL);
    file.at_ = static_cast<std::size_t>(offset);
    return offset;
}

}  // namespace vantle
