#include "timeline/film_request.h"

namespace vantle {

std::optional<Fit> parseFit(const std::string& text) {
    if (text == "contain") return Fit::contain;
    if (text == "cover") return Fit::cover;
    if (text == "stretch") return Fit::stretch;
    return {};
}

}  // namespace vantle
