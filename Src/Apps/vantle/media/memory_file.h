/// Bytes in memory that FFmpeg's libraries read as a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "media/av.h"

namespace vantle {

/// Must outlive whatever reads it.
class MemoryFile {
   public:
    explicit MemoryFile(std::vector<std::uint8_t> bytes);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    AVIOContext* io() const { return io_.get(); }

   private:
    static int read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int whence);

    struct FreeIo {
        void operator()(AVIOContext* io) const;
    };
    std::vector<std::uint8_t> bytes_;
    std::size_t at_ = 0;
    std::unique_ptr<AVIOContext, FreeIo> io_;
};

}  // namespace vantle
