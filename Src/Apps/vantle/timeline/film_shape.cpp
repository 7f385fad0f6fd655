#include "timeline/film_shape.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iterator>
#include <utility>
#include <vector>

namespace vantle {

namespace {

constexpr double highestFilmRate = 60.0;

double aspectOf(Size size) { return static_cast<double>(size.width) / size.height; }

std::int64_t areaOf(Size size) { return std::int64_t{size.width} * size.height; }

bool isAlike(Size a, Size b) { return std::abs(aspectOf(a) / aspectOf(b) - 1.0) < 0.02; }

constexpr auto anything = [](const Showing&) { return true; };

template <typename Is>
double secondsOf(std::span<const Showing> inputs, Is is) {
    double sum = 0.0;
    for (const Showing& input : inputs)
        if (is(input)) sum += input.seconds;
    return sum;
}

template <typename Is>
std::vector<Showing> those(std::span<const Showing> inputs, Is is) {
    std::vector<Showing> found;
    std::ranges::copy_if(inputs, std::back_inserter(found), is);
    return found;
}

/// Players take films of 2160 lines; photos are larger.
Size playable(const Showing& input) {
    const Size size = input.size;
    const int longer = std::max(size.width, size.height);
    const int shorter = std::min(size.width, size.height);
    const bool isClip = input.rate.num > 0;
    if ((isClip && longer <= 4096 && shorter <= 2304) || (longer <= 3840 && shorter <= 2160)) return size;
    const double factor = std::min(3840.0 / longer, 2160.0 / shorter);
    const auto even = [&](int side) {
        return std::max(2 * static_cast<int>(std::lround(side * factor / 2)), 2);
    };
    return {even(size.width), even(size.height)};
}

AVRational standardRate(AVRational rate) {
    while (av_q2d(rate) > highestFilmRate + 1e-9) rate = av_mul_q(rate, {1, 2});
    if (rate.den == 1) return rate;
    constexpr AVRational rates[] = {{12, 1}, {15000, 1001}, {15, 1},       {24000, 1001},
                                    {24, 1}, {25, 1},       {30000, 1001}, {30, 1},
                                    {48, 1}, {50, 1},       {60000, 1001}, {60, 1}};
    return *std::ranges::min_element(
        rates, {}, [&](AVRational standard) { return std::abs(std::log(av_q2d(standard) / av_q2d(rate))); });
}

/// Whether pictures of this rate can show at their own times in a film of that.
bool isNearly(AVRational rate, AVRational film) {
    const double ratio = av_q2d(rate) / av_q2d(film);
    return ratio > 0.98 && ratio < 1.0 + 1e-9;
}

std::string wordsOf(Size size) { return std::to_string(size.width) + "x" + std::to_string(size.height); }

std::string wordsOf(AVRational rate) {
    char words[48] = "";
    std::snprintf(words, sizeof words, "%g frames per second", av_q2d(rate));
    return words;
}

class Choice {
   public:
    Choice(std::span<const Showing> inputs, const ShapeWish& wish)
        : inputs_(inputs),
          wish_(wish),
          clips_(those(inputs, [](const Showing& input) { return input.rate.num > 0; })),
          total_(secondsOf(inputs, anything)) {}

    FilmShape made() {
        if (!chooseCopied()) {
            chooseSize();
            chooseRate();
        }
        if (!shape_.why.empty())
            shape_.why = "chosen for the film: " + shape_.why + "; --size and --fps choose others";
        return shape_;
    }

   private:
    void add(const std::string& words, const std::string& why) {
        shape_.why += (shape_.why.empty() ? "" : ", ") + words + " (" + why + ")";
    }

    static bool isOneSize(std::span<const Showing> inputs) {
        return std::ranges::all_of(inputs,
                                   [&](const Showing& input) { return input.size == inputs.front().size; });
    }

    bool isOneRate() const {
        return std::ranges::all_of(
            clips_, [&](const Showing& clip) { return av_cmp_q(clip.rate, clips_.front().rate) == 0; });
    }

    bool chooseCopied() {
        const std::vector<Showing> copyable =
            those(inputs_, [](const Showing& input) { return input.copyable.value_or(false); });
        const bool isAllThatCan =
            std::ranges::all_of(inputs_, [](const Showing& input) { return input.copyable.value_or(true); });
        const bool differ = (!wish_.size && !isOneSize(inputs_)) || (!wish_.rate && !isOneRate());
        if (!wish_.copies || wish_.lines > 0 || !differ || !isAllThatCan) return false;
        double most = total_ / 2;
        for (const Showing& model : copyable) {
            const Size size = wish_.size.value_or(model.size);
            const AVRational rate = wish_.rate.value_or(model.rate);
            const double seconds = secondsOf(copyable, [&](const Showing& clip) {
                return clip.size == size && isNearly(clip.rate, rate);
            });
            if (seconds <= most) continue;
            most = seconds;
            shape_ = {size, rate, {}};
        }
        if (shape_.size.width == 0) return false;
        add(wordsOf(shape_.size) + " at " + wordsOf(shape_.rate), "so that most of it can be copied");
        return true;
    }

    void chooseSize() {
        if (wish_.size) {
            shape_.size = *wish_.size;
            return;
        }
        if (wish_.lines > 0) {
            const double upright =
                secondsOf(inputs_, [](const Showing& input) { return input.size.height > input.size.width; });
            const int columns = 2 * ((wish_.lines * 8 + 4) / 9);
            shape_.size = {columns, wish_.lines};
            if (upright > total_ / 2) std::swap(shape_.size.width, shape_.size.height);
            return;
        }
        // Of inputs of one shape the most time; the first of equals.
        const auto timeOf = [&](const Showing& model) {
            return secondsOf(inputs_, [&](const Showing& input) { return isAlike(input.size, model.size); });
        };
        const Showing model = *std::ranges::max_element(inputs_, {}, timeOf);
        std::vector<Showing> alike =
            those(inputs_, [&](const Showing& input) { return isAlike(input.size, model.size); });
        std::string why = alike.size() < inputs_.size() ? "the shape of most of it" : "";
        const bool isOne = isOneSize(alike);
        std::ranges::stable_sort(alike, std::greater(),
                                 [](const Showing& input) { return areaOf(input.size); });
        const double enough = secondsOf(alike, anything) / 4;
        double sum = 0.0;
        const auto largest = std::ranges::find_if(
            alike, [&](const Showing& input) { return (sum += input.seconds) >= enough; });
        const Showing& chosen = largest != alike.end() ? *largest : alike.front();
        shape_.size = chosen.size;
        if (!isOne)
            why += why.empty() ? "the largest size that a quarter of it has"
                               : ", the largest size that a quarter of that has";
        const bool isOfClips = isOne && alike.size() == inputs_.size() && clips_.size() == inputs_.size();
        if (const Size fitting = playable(chosen); wish_.isVideo && !isOfClips && fitting != chosen.size) {
            shape_.size = fitting;
            why = "the largest size that players take";
        }
        if (!why.empty()) add(wordsOf(shape_.size), why);
    }

    void chooseRate() {
        if (wish_.rate || clips_.empty()) {
            shape_.rate = wish_.rate.value_or(AVRational{30, 1});
            return;
        }
        shape_.rate = clips_.front().rate;
        if (isOneRate()) return;
        const auto timeOf = [&](AVRational rate) {
            return secondsOf(clips_, [&](const Showing& clip) { return av_cmp_q(clip.rate, rate) == 0; });
        };
        // Else that of most of it.
        const double enough = total_ / 10;
        const auto isBetter = [&](AVRational rate, AVRational than) {
            const bool counts = timeOf(rate) > enough;
            if (counts != (timeOf(than) > enough)) return counts;
            return counts ? av_cmp_q(rate, than) > 0 : timeOf(rate) > timeOf(than);
        };
        for (const Showing& clip : clips_)
            if (isBetter(clip.rate, shape_.rate)) shape_.rate = clip.rate;
        shape_.rate = standardRate(shape_.rate);
        add(wordsOf(shape_.rate), "as the fastest tenth of it");
    }

    std::span<const Showing> inputs_;
    const ShapeWish& wish_;
    std::vector<Showing> clips_;
    double total_;
    FilmShape shape_{};
};

}  // namespace

FilmShape chooseShape(std::span<const Showing> inputs, const ShapeWish& wish) {
    return Choice(inputs, wish).made();
}

}  // namespace vantle
