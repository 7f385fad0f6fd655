#include "overview/contact_sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <utility>

#include "Host/error.h"
#include "media/filters.h"
#include "output/picture_writer.h"
#include "output/staged_file.h"

namespace vantle {

namespace {

constexpr std::uint8_t paper = 255;
constexpr int largestSheet = 30000;
constexpr const char* dark = "0x1c1c1e";
constexpr const char* muted = "0x77777c";
constexpr PictureFormat sheetFormat{AV_PIX_FMT_RGB24, AVCOL_SPC_RGB, AVCOL_RANGE_JPEG};

/// The largest size of the frame's shape within the box.
Size thumbnailSize(std::optional<Size> box, Size frame) {
    const Size room = box.value_or(Size{160, 1 << 14});
    const double factor = std::min({static_cast<double>(room.width) / frame.width,
                                    static_cast<double>(room.height) / frame.height, 1.0});
    return {std::max(static_cast<int>(std::lround(frame.width * factor)), 1),
            std::max(static_cast<int>(std::lround(frame.height * factor)), 1)};
}
/// A filter that writes `words` with its capitals' middle at height `middle`.
Filter text(const std::string& words, int x, int middle, int size, const char* colour) {
    return {"drawtext",
            {{"font", "DejaVu Sans"},
             {"expansion", "none"},
             {"text", words},
             {"x", std::to_string(x)},
             {"y", std::to_string(middle + size * 3 / 8) + "-ascent"},
             {"fontsize", std::to_string(size)},
             {"fontcolor", colour}}};
}

}  // namespace

std::vector<double> innerPositions(int count) {
    std::vector<double> positions;
    for (int k = 1; k <= count; ++k) positions.push_back(static_cast<double>(k) / (count + 1));
    return positions;
}

std::vector<std::string> inDigits(const std::vector<double>& positions) {
    std::vector<std::string> texts;
    for (const double position : positions) {
        char text[16] = "";
        std::snprintf(text, sizeof text, "%.2f", position);
        texts.emplace_back(text);
    }
    return texts;
}

void checkSheetName(const std::string& output, bool overwrite) {
    if (pictureCodec(output) == AV_CODEC_ID_NONE || !numberedName(output, 0).empty())
        throw UsageError("OUT is one picture: a name such as sheet.png, not " + output);
    // Refused now rather than when all is drawn; the file itself comes with the writer.
    prepareTargets(std::array{std::filesystem::path(output)}, overwrite);
}

ContactSheet::Layout::Layout(const SheetForm& form, const std::vector<SheetRow>& rows, Size frame)
    : columns_(form.columns), thumbnail_(thumbnailSize(form.size, frame)) {
    const auto count = static_cast<int>(rows.size());
    const int abreast = std::min(form.abreast.value_or((count + 14) / 15), count);
    rows_ = (count + abreast - 1) / abreast;
    text_ = std::clamp(thumbnail_.height / 6, 11, 32);
    gap_ = std::max(text_ / 2, 6);
    std::size_t longest = 0;
    for (const SheetRow& row : rows) longest = std::max({longest, row.name.size(), row.note.size() * 4 / 5});
    // The font's letters are a little over half as wide as high.
    name_ = static_cast<int>(std::lround(0.62 * text_ * static_cast<double>(longest))) + 2 * gap_;
    pitch_ = {name_ + columns_ * (thumbnail_.width + gap_) - gap_,
              std::max(thumbnail_.height, text_ * 5 / 2) + gap_};
    margin_ = 3 * gap_;
    const std::int64_t width = std::int64_t{abreast} * (pitch_.width + 2 * margin_);
    const std::int64_t height = std::int64_t{rows_} * pitch_.height - gap_ + 2 * margin_ + header();
    if (width > largestSheet || height > largestSheet)
        throw UsageError("the sheet would be " + std::to_string(width) + "x" + std::to_string(height) +
                         " pixels, more than " + std::to_string(largestSheet) +
                         " on a side; a smaller --size or fewer --columns help");
    sheet_ = {static_cast<int>(width), static_cast<int>(height)};
}

ContactSheet::ContactSheet(const SheetForm& form, std::vector<SheetRow> rows,
                           std::vector<std::string> headings, Size frame)
    : rows_(std::move(rows)),
      headings_(std::move(headings)),
      layout_(form, rows_, frame),
      sheet_(blankPicture(layout_.sheet(), sheetFormat)) {
    std::fill_n(sheet_->data[0], std::ptrdiff_t{sheet_->linesize[0]} * sheet_->height, paper);
    for (std::size_t i = 0; i < rows_.size(); ++i) shrink_.emplace_back(true, SWS_LANCZOS);
}

void ContactSheet::place(std::size_t row, std::size_t column, DIImage frame) {
    PixelView thumbnail = viewOf(*sheet_);
    thumbnail.data[0] += static_cast<std::ptrdiff_t>(layout_.y(row)) * thumbnail.stride[0] +
                         std::ptrdiff_t{3} * layout_.x(row, static_cast<int>(column));
    thumbnail.width = layout_.thumbnail().width;
    thumbnail.height = layout_.thumbnail().height;
    shrink_[row].convert(viewOf(frame), thumbnail);
}

void ContactSheet::addTexts() {
    std::vector<Filter> filters;
    const int size = layout_.text();
    const int small = layout_.smallText();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const int middle = layout_.y(i) + std::max(layout_.thumbnail().height, size * 5 / 2) / 2;
        filters.push_back(text(rows_[i].name, layout_.nameX(i), middle - size * 2 / 3, size, dark));
        filters.push_back(text(rows_[i].note, layout_.nameX(i), middle + size * 2 / 3, small, muted));
        for (std::size_t k = 0; layout_.headsBlock(i) && k < headings_.size(); ++k)
            filters.push_back(text(headings_[k], layout_.x(i, static_cast<int>(k)),
                                   layout_.headerY() + small / 2, small, muted));
    }
    std::optional<Filters> graph;
    try {
        graph.emplace(*sheet_, AVRational{1, 1}, filters);
    } catch (const Error&) {
        throw Error("cannot write the names: FFmpeg's drawtext finds no font (package fonts-dejavu-core)");
    }
    graph->push(std::move(sheet_));
    sheet_ = graph->pull();
    if (!sheet_) throw Error("cannot write the names onto the sheet");
}

void ContactSheet::write(const std::string& output, bool overwrite) {
    addTexts();
    PictureWriter writer(output, layout_.sheet(), overwrite);
    av::Frame picture = blankPicture(layout_.sheet(), writer.format());
    sheet_->colorspace = sheetFormat.space;
    sheet_->color_range = sheetFormat.range;
    Converter(true).convert(viewOf(*sheet_), viewOf(*picture));
    writer.write(std::move(picture), 0);
    writer.finish();
}

}  // namespace vantle
