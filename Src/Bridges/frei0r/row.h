/// What a module has of its row of the table; the rest of it is the same in all of them.
#pragma once

#include <cstdint>
#include <memory>

#include "catalogue/effects.h"

namespace vantle {

/// What an instance draws with. Calls of one do not overlap.
class Drawing {
   public:
    Drawing() = default;
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
    virtual ~Drawing() = default;
    virtual void draw(const Stage& stage, const Progress& progress) = 0;
};

struct TableRow {
    const char* title;
    const char* sentence;  ///< what the transition looks like
    /// For frames of this geometry. Throws std::bad_alloc.
    std::unique_ptr<Drawing> (*drawing)(std::int32_t width, std::int32_t height, std::int32_t pitch);
};

extern const TableRow tableRow;

/// Numbers that are random, and the same from the same seed (std::mt19937's). What they take to be made is
/// not included by each row.
class Random {
   public:
    explicit Random(std::uint32_t seed);
    Random(const Random&) = delete;
    Random& operator=(const Random&) = delete;
    ~Random();
    std::uint32_t operator()();

   private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace vantle
