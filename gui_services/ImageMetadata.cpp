#include "ImageMetadata.h"

#include <vector>

#include "TextHelpers.h"

namespace {

// The shared pointer-response field, from the first letter(s) of a word such as "vertical", "reverse".
void applyMouseResponse(const std::string& word, int32_t& field) {
    if (word.empty())
        return;
    switch (word[0]) {
        case 'f':
        case 'h':
            field = 1;
            break;
        case 't':
        case 'v':
            field = 0;
            break;
        case 'c':
            field = 2;
            break;
        case 's':
            field = 4;
            break;
        case 'r':
            field = word.size() > 1 && word[1] == 'e' ? 5 : 3;
            break;
        default:
            break;
    }
}

void applyLine(ImageMetadata& m, const std::vector<std::string>& words) {
    const std::string& key = words[0];
    const size_t values = words.size() - 1;
    // A value the line lacks reads as 0 where a key reads more values than it needs.
    auto number = [&](size_t i) { return i < words.size() ? StringToInt(words[i]) : 0; };

    if (key == "type" && values >= 1) {
        const std::string& v = words[1];
        if (v == "slider")
            m.mode = ImageMetadata::Slider;
        else if (v == "knob" || v == "animated")
            m.mode = ImageMetadata::Animated;
        else if (v == "button")
            m.mode = ImageMetadata::Button;
        else if (v == "bargraph")
            m.mode = ImageMetadata::BarGraph;
    } else if (key == "frame_size" && values >= 2) {
        m.frameWidth = number(1);
        m.frameHeight = number(2);
    } else if (key == "padding" && values >= 4) {
        m.paddingTop = static_cast<float>(number(1));
        m.paddingBottom = static_cast<float>(number(2));
        m.paddingLeft = static_cast<float>(number(3));
        m.paddingRight = static_cast<float>(number(4));
    } else if (key == "handle_rect" && values >= 4) {
        m.handleLeft = static_cast<float>(number(1));
        m.handleTop = static_cast<float>(number(2));
        m.handleRight = static_cast<float>(number(3));
        m.handleBottom = static_cast<float>(number(4));
    } else if ((key == "handle_range" || key == "segment") && values >= 1) {
        m.rangeStart = number(1);
        m.rangeEnd = number(2);
    } else if ((key == "orientation" || key == "tiled" || key == "mouse_response") && values >= 1) {
        applyMouseResponse(words[1], m.mouseResponse);
    } else if ((key == "segment_count" || key == "line_end_length") && values >= 1) {
        m.segmentCount = static_cast<float>(number(1));
    } else if (key == "transparent_pixel" && values >= 1) {
        m.transparentPixelX = number(1);
        m.transparentPixelY = number(2);
    }
}

}  // namespace

void ImageMetadata::Serialise(std::string_view fileBytes) {
    forEachLineWords(fileBytes, [this](const std::vector<std::string>& words) {
        if (!words.empty())
            applyLine(*this, words);
    });
}

std::string ImageMetadata::metadataFileName(const std::string& imageName) {
    for (size_t i = imageName.size(); i-- > 0;) {
        const char c = imageName[i];
        if (c == '/' || c == '\\')
            break;
        if (c == '.')
            return imageName.substr(0, i) + ".txt";
    }
    return imageName + ".txt";
}
