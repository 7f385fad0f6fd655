#include "overview/sheet.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>

#include "media/convert.h"
#include "media/filters.h"
#include "output/picture_writer.h"
#include "output/staged_file.h"
#include "output/writer.h"

namespace vantle {

namespace {

constexpr std::uint8_t paper = 255;
constexpr int largestSide = 30000;
constexpr const char* dark = "0x1c1c1e";
constexpr const char* muted = "0x77777c";

/// Where everything on the sheet stands, in pixels. Transitions go down one block and on in the next.
class Layout {
   public:
    Layout(const SheetOptions& options, const Overview& overview)
        : columns_(options.columns), thumbnail_(thumbnailSize(options.size, overview.size())) {
        const auto count = static_cast<int>(overview.transitions().size());
        const int abreast = std::min(options.abreast.value_or((count + 14) / 15), count);
        rows_ = (count + abreast - 1) / abreast;
        text_ = std::clamp(thumbnail_.height / 6, 11, 32);
        gap_ = std::max(text_ / 2, 6);
        std::size_t longest = 0;
        for (const Transition& transition : overview.transitions())
            longest = std::max(longest, shownName(transition).size());
        // The font's letters are a little over half as wide as high.
        name_ = static_cast<int>(std::lround(0.62 * text_ * static_cast<double>(longest))) + 2 * gap_;
        pitch_ = {name_ + columns_ * (thumbnail_.width + gap_) - gap_,
                  std::max(thumbnail_.height, text_ * 5 / 2) + gap_};
        margin_ = 3 * gap_;
        const std::int64_t width = std::int64_t{abreast} * (pitch_.width + 2 * margin_);
        const std::int64_t height = std::int64_t{rows_} * pitch_.height - gap_ + 2 * margin_ + header();
        if (width > largestSide || height > largestSide)
            throw UsageError("the sheet would be " + std::to_string(width) + "x" + std::to_string(height) +
                             " pixels, more than " + std::to_string(largestSide) +
                             " on a side; a smaller --size or fewer --columns help");
        sheet_ = {static_cast<int>(width), static_cast<int>(height)};
    }

    Size sheet() const { return sheet_; }
    Size thumbnail() const { return thumbnail_; }
    int text() const { return text_; }
    int smallText() const { return std::max(text_ * 4 / 5, 9); }
    int nameX(std::size_t transition) const {
        return margin_ + static_cast<int>(transition) / rows_ * (pitch_.width + 2 * margin_);
    }
    int x(std::size_t transition, int column) const {
        return nameX(transition) + name_ + column * (thumbnail_.width + gap_);
    }
    int y(std::size_t transition) const {
        return margin_ + header() + static_cast<int>(transition) % rows_ * pitch_.height;
    }
    int headerY() const { return margin_; }
    bool headsBlock(std::size_t transition) const { return static_cast<int>(transition) % rows_ == 0; }

   private:
    /// The largest size of the frame's shape within the box.
    static Size thumbnailSize(std::optional<Size> box, Size frame) {
        const Size room = box.value_or(Size{160, 1 << 14});
        const double factor = std::min({static_cast<double>(room.width) / frame.width,
                                        static_cast<double>(room.height) / frame.height, 1.0});
        return {std::max(static_cast<int>(std::lround(frame.width * factor)), 1),
                std::max(static_cast<int>(std::lround(frame.height * factor)), 1)};
    }
    int header() const { return smallText() + gap_; }

    int columns_;
    Size thumbnail_;
    Size pitch_;  // from one transition to the next
    Size sheet_;
    int rows_ = 1;
    int text_ = 0;
    int gap_ = 0;
    int name_ = 0;
    int margin_ = 0;
};

/// Evenly spread inside the overlap: its ends would show the inputs alone, in every row.
std::vector<double> innerPositions(int count) {
    std::vector<double> positions;
    for (int k = 1; k <= count; ++k) positions.push_back(static_cast<double>(k) / (count + 1));
    return positions;
}

/// A filter that writes `text` with its capitals' middle at height `middle`.
Filter write(const std::string& text, int x, int middle, int size, const char* colour) {
    return {"drawtext",
            {{"font", "DejaVu Sans"},
             {"expansion", "none"},
             {"text", text},
             {"x", std::to_string(x)},
             {"y", std::to_string(middle + size * 3 / 8) + "-ascent"},
             {"fontsize", std::to_string(size)},
             {"fontcolor", colour}}};
}

/// The sheet with its texts: names and families beside the rows, positions above each block.
av::Frame withTexts(av::Frame sheet, const Layout& layout, const Overview& overview,
                    const std::vector<double>& positions) {
    std::vector<Filter> filters;
    const int text = layout.text();
    const int small = layout.smallText();
    for (std::size_t i = 0; i < overview.transitions().size(); ++i) {
        const Transition& transition = overview.transitions()[i];
        const int middle = layout.y(i) + std::max(layout.thumbnail().height, text * 5 / 2) / 2;
        filters.push_back(write(shownName(transition), layout.nameX(i), middle - text * 2 / 3, text, dark));
        filters.push_back(write(transition.family, layout.nameX(i),
                                middle + text * 2 / 3, small, muted));
        for (std::size_t k = 0; layout.headsBlock(i) && k < positions.size(); ++k) {
            char label[16] = "";
            std::snprintf(label, sizeof label, "%.2f", positions[k]);
            filters.push_back(
                write(label, layout.x(i, static_cast<int>(k)), layout.headerY() + small / 2, small, muted));
        }
    }
    std::optional<Filters> graph;
    try {
        graph.emplace(*sheet, AVRational{1, 1}, filters);
    } catch (const Error&) {
        throw Error("cannot write the names: FFmpeg's drawtext finds no font (package fonts-dejavu-core)");
    }
    graph->push(std::move(sheet));
    av::Frame written = graph->pull();
    if (!written) throw Error("cannot write the names onto the sheet");
    return written;
}

}  // namespace

void drawSheet(const SheetOptions& options) {
    const JoinOptions& asked = options.overview.join;
    if (pictureCodec(asked.output) == AV_CODEC_ID_NONE || !numberedName(asked.output, 0).empty())
        throw UsageError("OUT is one picture: a name such as sheet.png, not " + asked.output);
    // Refused now rather than when all is drawn; the file itself comes with the writer.
    const StagedFile probe(asked.output, asked.force);
    const std::vector<double> positions = innerPositions(options.columns);
    const Overview overview(options.overview, positions, [](Size own) { return own; });
    const Layout layout(options, overview);
    const std::unique_ptr<Writer> writer =
        makePictureWriter({asked.output, {layout.sheet(), {1, 1}, asked.fit}, nullptr, {}, asked.force, {}});

    av::Frame sheet = blankPicture(layout.sheet(), {AV_PIX_FMT_RGB24, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG});
    std::fill_n(sheet->data[0], std::ptrdiff_t{sheet->linesize[0]} * sheet->height, paper);
    const PixelView whole = viewOf(*sheet);
    std::vector<Converter> shrink;
    for (std::size_t i = 0; i < overview.transitions().size(); ++i) shrink.emplace_back(true, SWS_LANCZOS);
    overview.draw(asked.quiet, [&](std::size_t transition, std::size_t column, DIImage frame) {
        PixelView thumbnail = whole;
        thumbnail.data[0] += static_cast<std::ptrdiff_t>(layout.y(transition)) * whole.stride[0] +
                             std::ptrdiff_t{3} * layout.x(transition, static_cast<int>(column));
        thumbnail.width = layout.thumbnail().width;
        thumbnail.height = layout.thumbnail().height;
        shrink[transition].convert(viewOf(frame), thumbnail);
    });

    sheet = withTexts(std::move(sheet), layout, overview, positions);
    av::Frame picture = blankPicture(layout.sheet(), writer->pictureFormat());
    sheet->colorspace = AVCOL_SPC_RGB;
    sheet->color_range = AVCOL_RANGE_JPEG;
    Converter(true).convert(viewOf(*sheet), viewOf(*picture));
    writer->write(std::move(picture), 0);
    writer->finish();
    if (!asked.quiet)
        std::fprintf(stderr, "%s: %zu transition%s, %dx%d\n", asked.output.c_str(),
                     overview.transitions().size(), overview.transitions().size() == 1 ? "" : "s",
                     layout.sheet().width, layout.sheet().height);
}

}  // namespace vantle
