// Skin style files. A style is found by its name in any case, the first of a name wins, any other
// name gives the built-in default, and reading replaces (not adds to) what was read before. Each style's
// derived values are computed too, as the text widgets compute them.
#include <cctype>
#include <cstdint>
#include <string>

#include "FontCache.h"
#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kxfuzz::FuzzInput in(data, size);
    const std::string probe(in.bytes(in.byte() % 16));
    const std::string_view file = in.rest();

    SkinMetadata skin;
    skin.Serialise(file);
    const size_t count = skin.styles().size();
    skin.Serialise(file);
    KX_FUZZ_CHECK(skin.styles().size() == count);

    for (const FontMetadata& style : skin.styles()) {
        for (char c : style.category)
            KX_FUZZ_CHECK(!std::isupper(static_cast<unsigned char>(c)));
        std::string upper = style.category;
        for (char& c : upper)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        const FontMetadata* found = skin.getFont(upper);
        KX_FUZZ_CHECK(found && found->category == style.category);
        KX_FUZZ_CHECK(found <= &style);  // the first of that name
        style.getLegacyVerticalOffset();
        style.textArgb();
        style.backgroundArgb();
    }
    const FontMetadata* other = skin.getFont(probe);
    KX_FUZZ_CHECK(other != nullptr);
    other->getLegacyVerticalOffset();
    return 0;
}
