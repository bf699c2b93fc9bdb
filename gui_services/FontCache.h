// Named text styles from the skin's style file, and the process-wide cache of the text formats made from
// them, shared by every text-drawing widget.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "CacheClient.h"
#include "GmpiDrawing.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"

// One text style.
struct FontMetadata {
    enum Flags : uint8_t { Centred = 0x08, RightAligned = 0x10, Underlined = 0x40, Bold = 0x80 };
    enum Flags2 : uint8_t { Light = 0x01, Italic = 0x02 };

    std::string category;  // the style's name, lower case
    std::vector<std::string> fontFamilies;
    uint8_t flags = 0;
    uint8_t flags2 = 0;
    int32_t fontSize = 12;
    float reservedFloat = -1.0f;
    int32_t reservedInt = 0;
    int32_t pixelWidth = 8;
    int32_t pixelHeight = 12;
    // Colours as 0xAABBGGRR: red in the lowest byte.
    uint32_t textColor = 0xFFFFFFFF;
    uint32_t backgroundColor = 0;
    int32_t verticalOffset = 0;
    bool legacyVerticalOffset = true;
    bool reservedFlag = true;

    // Pixels by which text is moved down: -(pixel height / 20) for Arial, -(pixel height / 7) for
    // MS Sans Serif, else 0; plus the style's vertical offset, clamped to the int range.
    int32_t getLegacyVerticalOffset() const;
    // The text colour as 0xAARRGGBB.
    uint32_t textArgb() const { return swapRedBlue(textColor); }
    uint32_t backgroundArgb() const { return swapRedBlue(backgroundColor); }
    static uint32_t swapRedBlue(uint32_t c) { return (c & 0xFF00FF00u) | ((c & 0xFFu) << 16) | ((c >> 16) & 0xFFu); }
};

// The parsed style file of one skin.
class SkinMetadata {
public:
    SkinMetadata();

    // Replaces the parsed styles with those of a style file's bytes.
    void Serialise(std::string_view fileBytes);
    // The first style whose name equals name in lower case, else the built-in "default" style.
    const FontMetadata* getFont(std::string name) const;

    const std::vector<FontMetadata>& styles() const { return styles_; }
    const FontMetadata& builtInDefault() const { return default_; }
    std::string name;  // the resolved path of the style file

private:
    std::vector<FontMetadata> styles_;
    // Black Arial: deliberately unlike the parsed styles' white default.
    FontMetadata default_;
};

class FontCache {
public:
    static FontCache& instance();

    // The skin of the host's style file (the resource "global" of type "ImageMeta").
    SkinMetadata* getSkin(gmpi::IMpUserInterfaceHost2* host);
    // The skin of a style-file path, parsed on first use (a file that cannot be opened leaves only the
    // built-in style).
    SkinMetadata* getSkin(gmpi::IMpUserInterfaceHost2* host, const std::string& path);

    // The format cached under name for this skin and factory, or a null format; *metadata (when given)
    // is cleared first and set when found.
    GmpiDrawing::TextFormat TextFormatExists(gmpi::IMpUserInterfaceHost2* host, gmpi_gui::IMpGraphicsHost* graphicsHost,
                                             const std::string& name, FontMetadata** metadata = nullptr);
    // The format of a style of the skin, made once and shared.
    GmpiDrawing::TextFormat GetTextFormat(gmpi::IMpUserInterfaceHost2* host, gmpi_gui::IMpGraphicsHost* graphicsHost,
                                          const std::string& name, FontMetadata** metadata = nullptr);
    // Makes and caches a format under name from a caller's style record (copied).
    GmpiDrawing::TextFormat AddCustomTextFormat(gmpi::IMpUserInterfaceHost2* host,
                                                gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                const FontMetadata* style);
    // The format cached under name; when there is none, a copy of the base style changed by customise and
    // cached under name.
    GmpiDrawing::TextFormat GetCustomTextFormat(gmpi::IMpUserInterfaceHost2* host,
                                                gmpi_gui::IMpGraphicsHost* graphicsHost, const std::string& name,
                                                const std::string& baseStyle,
                                                const std::function<void(FontMetadata&)>& customise,
                                                FontMetadata** metadata = nullptr);

    void AddClient() { ++clients_; }
    // At zero clients the text formats and the styles of custom ones are released (formats belong to the
    // host's factory, which may go with its last panel); parsed skins stay for the process.
    void RemoveClient();

    size_t textFormatCount() const { return formats_.size(); }
    size_t skinCount() const { return skins_.size(); }
    size_t customStyleCount() const { return customStyles_.size(); }
    int32_t clientCount() const { return clients_; }

private:
    FontCache() = default;

    struct fontKey {
        std::string name;
        std::string skinPath;
        GmpiDrawing_API::IMpFactory* factory;
        bool operator<(const fontKey& o) const {
            return std::tie(name, skinPath, factory) < std::tie(o.name, o.skinPath, o.factory);
        }
    };
    // A key to look up with, made of the caller's strings without copying them.
    struct keyView {
        std::string_view name;
        std::string_view skinPath;
        GmpiDrawing_API::IMpFactory* factory;
    };
    struct keyOrder {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            return std::tuple<std::string_view, std::string_view, GmpiDrawing_API::IMpFactory*>(a.name, a.skinPath,
                                                                                                a.factory) <
                   std::tuple<std::string_view, std::string_view, GmpiDrawing_API::IMpFactory*>(b.name, b.skinPath,
                                                                                                b.factory);
        }
    };
    struct TypefaceData {
        GmpiDrawing::TextFormat format;
        const FontMetadata* metadata;
    };

    GmpiDrawing::TextFormat CreateTextFormatAndCache(GmpiDrawing_API::IMpFactory* factory, const fontKey& key,
                                                     const FontMetadata* style);
    static GmpiDrawing_API::IMpFactory* factoryOf(gmpi_gui::IMpGraphicsHost* graphicsHost);
    FontMetadata& keepCustomStyle(const fontKey& key, const FontMetadata& style);

    std::map<fontKey, TypefaceData, keyOrder> formats_;
    std::deque<std::unique_ptr<SkinMetadata>> skins_;
    // The styles of custom formats, one per key; a node map, so formats_ can point into it.
    std::map<fontKey, FontMetadata> customStyles_;
    int32_t clients_ = 0;
};

// Mixed into text-drawing widgets: keeps the cache's formats alive and finds the module's hosts.
class FontCacheClient : public CacheClient<FontCache> {
public:
    // Null results when this object is not part of a graphic module.
    GmpiDrawing::TextFormat GetTextFormat(const std::string& style);
    const FontMetadata* GetFontMetatdata(const std::string& style);
};
