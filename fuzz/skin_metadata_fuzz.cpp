// Skin image metadata files. Every line assigns absolute values, so reading a file twice over the
// defaults gives what reading it once does; the metadata file name of any image name is that name with
// its extension replaced by (or given) ".txt".
#include <cstdint>
#include <cstring>
#include <string>

#include "FuzzInput.h"
#include "ImageMetadata.h"

namespace {

bool same(const ImageMetadata& a, const ImageMetadata& b) {
    return a.mode == b.mode && a.frameWidth == b.frameWidth && a.frameHeight == b.frameHeight &&
           a.paddingLeft == b.paddingLeft && a.paddingRight == b.paddingRight && a.paddingTop == b.paddingTop &&
           a.paddingBottom == b.paddingBottom && a.rangeEnd == b.rangeEnd && a.rangeStart == b.rangeStart &&
           a.mouseResponse == b.mouseResponse && a.segmentCount == b.segmentCount &&
           a.transparentPixelX == b.transparentPixelX && a.transparentPixelY == b.transparentPixelY &&
           a.handleLeft == b.handleLeft && a.handleTop == b.handleTop && a.handleRight == b.handleRight &&
           a.handleBottom == b.handleBottom;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    ImageMetadata once;
    once.Serialise(bytes);
    ImageMetadata twice;
    twice.Serialise(bytes);
    twice.Serialise(bytes);
    KX_FUZZ_CHECK(same(once, twice));
    KX_FUZZ_CHECK(once.mode >= ImageMetadata::Slider && once.mode <= ImageMetadata::BarGraph);
    KX_FUZZ_CHECK(once.mouseResponse >= -1 && once.mouseResponse <= 5);

    const std::string name(bytes);
    const std::string meta = ImageMetadata::metadataFileName(name);
    KX_FUZZ_CHECK(meta.size() >= 4 && meta.compare(meta.size() - 4, 4, ".txt") == 0);
    const std::string stem = meta.substr(0, meta.size() - 4);
    KX_FUZZ_CHECK(name.compare(0, stem.size(), stem) == 0);
    KX_FUZZ_CHECK(stem == name || name[stem.size()] == '.');
    return 0;
}
