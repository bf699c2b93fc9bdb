// The metadata of a skin image: the text file beside it ("knob.png" -> "knob.txt") that tells the frame
// size of its film strip, what kind of control it is and the control's geometry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct ImageMetadata {
    enum Mode : int32_t { Slider = 0, Animated = 1, Button = 2, BarGraph = 3 };
    // Values of mouseResponse.
    enum MouseResponse : int32_t {
        NoResponse = -1,
        Vertical = 0,
        Horizontal = 1,
        Click = 2,
        Rotary = 3,
        Step = 4,
        Reversed = 5
    };

    int32_t mode = Animated;
    int32_t frameWidth = 10;
    int32_t frameHeight = 10;
    float paddingLeft = 0;
    float paddingRight = 0;
    // Top and bottom start at 10, not 0: existing skins rely on it.
    float paddingTop = 10;
    float paddingBottom = 10;
    // A slider's handle travel (start, end) in pixels; a bar graph's first-segment offset and pitch.
    int32_t rangeEnd = 50;
    int32_t rangeStart = 0;
    // How the pointer drives the control: 0 vertical, 1 horizontal, 2 click, 3 rotary, 4 step,
    // 5 reversed; -1 none. Also a slider's orientation (0 vertical, otherwise horizontal).
    int32_t mouseResponse = -1;
    float segmentCount = 5.0f;
    int32_t transparentPixelX = -1;
    int32_t transparentPixelY = -1;
    float handleLeft = 0;
    float handleTop = 0;
    float handleRight = 10;
    float handleBottom = 10;
    // From the loaded bitmap, not the file.
    uint32_t bitmapWidth = 0;
    uint32_t bitmapHeight = 0;

    // Applies a metadata file's lines over the current values (the format is in docs/skins.md).
    void Serialise(std::string_view fileBytes);

    // The metadata file of an image: the name with its extension (the text from the last "." after the
    // last "/" or "\") replaced by ".txt"; a name without an extension gets ".txt" appended.
    static std::string metadataFileName(const std::string& imageName);
};
