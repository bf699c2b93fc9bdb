#include "FontCache.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "HostResources.h"
#include "MpGuiGfxBase.h"
#include "TextHelpers.h"

namespace {

std::string lowerCase(std::string s) {
    for (char& c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

char lowerFirst(const std::string& s) {
    return s.empty() ? '\0' : static_cast<char>(std::tolower(static_cast<unsigned char>(s[0])));
}

// "#RRGGBB" (hexadecimal) or a decimal number read as 0xRRGGBB; stored opaque with red in the lowest
// byte.
uint32_t parseStyleColour(const std::string& word) {
    uint32_t rgb;
    if (!word.empty() && word[0] == '#')
        rgb = static_cast<uint32_t>(std::strtoul(word.c_str() + 1, nullptr, 16));
    else
        rgb = static_cast<uint32_t>(StringToInt(word));
    return 0xFF000000u | FontMetadata::swapRedBlue(rgb & 0xFFFFFFu);
}

void applyWeight(FontMetadata& style, const std::string& word) {
    const char first = lowerFirst(word);
    if (first == 'b') {
        style.flags |= FontMetadata::Bold;
    } else if (first == 'l') {
        style.flags2 |= FontMetadata::Light;
    } else {
        const int weight = StringToInt(word);
        if (weight == 0 || (weight > 300 && weight <= 550))
            return;
        if (weight > 550)
            style.flags |= FontMetadata::Bold;
        else
            style.flags2 |= FontMetadata::Light;
    }
}

void applyStyleLine(FontMetadata& style, const std::vector<std::string>& words) {
    const std::string& key = words[0];
    const std::string& value = words[1];
    if (key == "font-family") {
        style.fontFamilies.insert(style.fontFamilies.end(), words.begin() + 1, words.end());
    } else if (key == "font-size") {
        style.fontSize = style.pixelHeight = StringToInt(value);
    } else if (key == "vst3-vertical-offset") {
        style.verticalOffset = StringToInt(value);
    } else if (key == "legacy-vertical-offset") {
        style.legacyVerticalOffset = StringToInt(value) != 0;
    } else if (key == "GDI_pixelHeight") {
        style.pixelHeight = StringToInt(value);
    } else if (key == "GDI_pixelWidth") {
        style.pixelWidth = StringToInt(value);
    } else if (key == "font-color") {
        style.textColor = parseStyleColour(value);
    } else if (key == "background-color") {
        style.backgroundColor = parseStyleColour(value);
    } else if (key == "font-weight") {
        applyWeight(style, value);
    } else if (key == "text-align") {
        const char first = lowerFirst(value);
        if (first == 'r')
            style.flags |= FontMetadata::RightAligned;
        else if (first == 'c')
            style.flags |= FontMetadata::Centred;
    } else if (key == "text-decoration") {
        // Decoration and style words are read in lower case only ("Underline" leaves the text plain),
        // unlike alignment and weight: style files written for other hosts rely on it.
        if (value[0] == 'u')
            style.flags |= FontMetadata::Underlined;
    } else if (key == "font-style") {
        if (value[0] == 'i')
            style.flags2 |= FontMetadata::Italic;
    }
}

}  // namespace

// ---- FontMetadata

int32_t FontMetadata::getLegacyVerticalOffset() const {
    int32_t offset = 0;
    if (!fontFamilies.empty()) {
        if (fontFamilies.front() == "Arial")
            offset = -(pixelHeight / 20);
        else if (fontFamilies.front() == "MS Sans Serif")
            offset = -(pixelHeight / 7);
    }
    // Both come from the style file and may be any int: the sum is clamped.
    const int64_t sum = int64_t{offset} + verticalOffset;
    return static_cast<int32_t>(std::clamp<int64_t>(sum, INT32_MIN, INT32_MAX));
}

// ---- SkinMetadata

SkinMetadata::SkinMetadata() {
    default_.category = "default";
    default_.fontFamilies = {"Arial"};
    default_.textColor = 0xFF000000;
}

void SkinMetadata::Serialise(std::string_view fileBytes) {
    styles_.clear();
    forEachLineWords(fileBytes, [this](const std::vector<std::string>& words) {
        if (words.size() < 2)
            return;
        if (words[0] == "FONT_CATEGORY") {
            styles_.emplace_back();
            styles_.back().category = lowerCase(words[1]);
        } else if (!styles_.empty()) {
            applyStyleLine(styles_.back(), words);
        }
    });
    for (auto& style : styles_)
        if (style.fontFamilies.empty())
            style.fontFamilies.push_back("Verdana");
}

const FontMetadata* SkinMetadata::getFont(std::string name) const {
    name = lowerCase(std::move(name));
    for (const auto& style : styles_)
        if (style.category == name)
            return &style;
    return &default_;
}

// ---- FontCache

FontCache& FontCache::instance() {
    static FontCache cache;
    return cache;
}

SkinMetadata* FontCache::getSkin(gmpi::IMpUserInterfaceHost2* host) {
    return getSkin(host, kx::resolveResource(host, "global", "ImageMeta"));
}

SkinMetadata* FontCache::getSkin(gmpi::IMpUserInterfaceHost2* host, const std::string& path) {
    for (const auto& skin : skins_)
        if (skin->name == path)
            return skin.get();
    auto& skin = skins_.emplace_back(std::make_unique<SkinMetadata>());
    skin->name = path;
    std::string bytes;
    if (kx::readResource(host, path, bytes))
        skin->Serialise(bytes);
    return skin.get();
}

GmpiDrawing_API::IMpFactory* FontCache::factoryOf(gmpi_gui::IMpGraphicsHost* graphicsHost) {
    GmpiDrawing_API::IMpFactory* factory = nullptr;
    if (graphicsHost)
        graphicsHost->GetDrawingFactory(&factory);
    return factory;
}

GmpiDrawing::TextFormat FontCache::TextFormatExists(gmpi::IMpUserInterfaceHost2* host,
                                                    gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                    FontMetadata** metadata) {
    if (metadata)
        *metadata = nullptr;
    const SkinMetadata* skin = getSkin(host);
    auto it = formats_.find(keyView{name, skin->name, factoryOf(graphicsHost)});
    if (it == formats_.end())
        return {};
    if (metadata)
        *metadata = const_cast<FontMetadata*>(it->second.metadata);
    return it->second.format;
}

GmpiDrawing::TextFormat FontCache::GetTextFormat(gmpi::IMpUserInterfaceHost2* host,
                                                 gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                 FontMetadata** metadata) {
    const SkinMetadata* skin = getSkin(host);
    const FontMetadata* style = skin->getFont(name);
    if (metadata)
        *metadata = const_cast<FontMetadata*>(style);
    auto* factory = factoryOf(graphicsHost);
    auto it = formats_.find(keyView{name, skin->name, factory});
    if (it != formats_.end())
        return it->second.format;
    return CreateTextFormatAndCache(factory, {name, skin->name, factory}, style);
}

GmpiDrawing::TextFormat FontCache::AddCustomTextFormat(gmpi::IMpUserInterfaceHost2* host,
                                                       gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                       const FontMetadata* style) {
    if (!style)
        return {};
    const fontKey key{name, getSkin(host)->name, factoryOf(graphicsHost)};
    return CreateTextFormatAndCache(key.factory, key, &keepCustomStyle(key, *style));
}

GmpiDrawing::TextFormat FontCache::GetCustomTextFormat(gmpi::IMpUserInterfaceHost2* host,
                                                       gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                       const std::string& baseStyle,
                                                       const std::function<void(FontMetadata&)>& customise,
                                                       FontMetadata** metadata) {
    if (auto existing = TextFormatExists(host, graphicsHost, name, metadata))
        return existing;
    const SkinMetadata* skin = getSkin(host);
    FontMetadata copy = *skin->getFont(baseStyle);
    if (customise)
        customise(copy);
    const fontKey key{name, skin->name, factoryOf(graphicsHost)};
    FontMetadata& kept = keepCustomStyle(key, copy);
    if (metadata)
        *metadata = &kept;
    return CreateTextFormatAndCache(key.factory, key, &kept);
}

GmpiDrawing::TextFormat FontCache::CreateTextFormatAndCache(GmpiDrawing_API::IMpFactory* factory, const fontKey& key,
                                                            const FontMetadata* style) {
    using namespace GmpiDrawing_API;
    const GmpiDrawing::Factory f(factory);
    const int32_t weight = (style->flags & FontMetadata::Bold)     ? MP1_FONT_WEIGHT_BOLD
                           : (style->flags2 & FontMetadata::Light) ? MP1_FONT_WEIGHT_LIGHT
                                                                   : MP1_FONT_WEIGHT_NORMAL;
    const int32_t slant = (style->flags2 & FontMetadata::Italic) ? MP1_FONT_STYLE_ITALIC : MP1_FONT_STYLE_NORMAL;
    GmpiDrawing::TextFormat format =
        f.CreateTextFormat2(static_cast<float>(style->fontSize), style->fontFamilies, weight, slant);
    if (!format)
        return format;
    format.SetTextAlignment((style->flags & FontMetadata::Centred)        ? MP1_TEXT_ALIGNMENT_CENTER
                            : (style->flags & FontMetadata::RightAligned) ? MP1_TEXT_ALIGNMENT_TRAILING
                                                                          : MP1_TEXT_ALIGNMENT_LEADING);
    format.SetParagraphAlignment(MP1_PARAGRAPH_ALIGNMENT_CENTER);
    format.SetWordWrapping(MP1_WORD_WRAPPING_NO_WRAP);
    formats_[key] = TypefaceData{format, style};
    return format;
}

// One kept style per key: remaking a custom format, or retrying one that could not be made, replaces the
// style instead of adding another.
FontMetadata& FontCache::keepCustomStyle(const fontKey& key, const FontMetadata& style) {
    FontMetadata& kept = customStyles_[key];
    kept = style;
    return kept;
}

void FontCache::RemoveClient() {
    if (--clients_ <= 0) {
        clients_ = 0;
        formats_.clear();
        customStyles_.clear();
    }
}

// ---- FontCacheClient

GmpiDrawing::TextFormat FontCacheClient::GetTextFormat(const std::string& style) {
    auto* module = owningModule();
    if (!module)
        return {};
    return FontCache::instance().GetTextFormat(module->getHost(), module->getGuiHost(), style);
}

const FontMetadata* FontCacheClient::GetFontMetatdata(const std::string& style) {
    auto* module = owningModule();
    if (!module)
        return nullptr;
    return FontCache::instance().getSkin(module->getHost())->getFont(style);
}
