/// Many thumbnails on one picture, in rows that have names.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "Host/image.h"
#include "media/convert.h"

namespace vantle {

/// What a sheet is asked for with.
struct SheetForm {
    std::optional<Size> size;    ///< box for a thumbnail; 160 pixels wide when absent
    int columns = 5;             ///< thumbnails in a row
    std::optional<int> abreast;  ///< rows side by side; few enough to keep the sheet's shape when absent
};

/// What stands beside a row of thumbnails.
struct SheetRow {
    std::string name;
    std::string note;
};

/// Positions spread evenly inside an overlap: its ends would show the inputs alone, in every row.
std::vector<double> innerPositions(int count);

/// Positions as headings.
std::vector<std::string> inDigits(const std::vector<double>& positions);

/// Throws UsageError when a sheet cannot be written under this name, and Error when it must not.
void checkSheetName(const std::string& output, bool overwrite);

class ContactSheet {
   public:
    /// A sheet for frames of this size. `headings` stand above each block of rows. Throws UsageError when it
    /// would become too large.
    ContactSheet(const SheetForm& form, std::vector<SheetRow> rows, std::vector<std::string> headings,
                 Size frame);

    /// Puts a frame, scaled down, into its place. May be called for several rows at once.
    void place(std::size_t row, std::size_t column, DIImage frame);

    /// Adds the texts and writes the picture.
    void write(const std::string& output, bool overwrite);

    Size size() const { return layout_.sheet(); }

   private:
    /// Where everything on the sheet stands, in pixels. Rows go down one block and on in the next.
    class Layout {
       public:
        Layout(const SheetForm& form, const std::vector<SheetRow>& rows, Size frame);
        Size sheet() const { return sheet_; }
        Size thumbnail() const { return thumbnail_; }
        int text() const { return text_; }
        int smallText() const { return std::max(text_ * 4 / 5, 9); }
        int nameX(std::size_t row) const {
            return margin_ + static_cast<int>(row) / rows_ * (pitch_.width + 2 * margin_);
        }
        int x(std::size_t row, int column) const {
            return nameX(row) + name_ + column * (thumbnail_.width + gap_);
        }
        int y(std::size_t row) const {
            return margin_ + header() + static_cast<int>(row) % rows_ * pitch_.height;
        }
        int headerY() const { return margin_; }
        bool headsBlock(std::size_t row) const { return static_cast<int>(row) % rows_ == 0; }

       private:
        int header() const { return smallText() + gap_; }

        int columns_;
        Size thumbnail_;
        Size pitch_;  // from one row to the next
        Size sheet_;
        int rows_ = 1;
        int text_ = 0;
        int gap_ = 0;
        int name_ = 0;
        int margin_ = 0;
    };
    void addTexts();

    std::vector<SheetRow> rows_;
    std::vector<std::string> headings_;
    Layout layout_;
    av::Frame sheet_;
    std::vector<Converter> shrink_;  // one a row, so that rows may be drawn at once
};

}  // namespace vantle
