// The font cache as text-drawing widgets use it, with kxhost's drawing factory and the demo skin's style
// file:
//   - making the skin's text styles: with no format cached, a client arrives, asks for each of the skin's
//     styles (the cache makes and keeps one format per style) and leaves, which releases them. Baseline:
//     the same formats made straight through the same factory (families, size, weight and slant of each
//     style, the three settings the cache gives a format), each after asking the host where the style
//     file is, finding the style by name and taking the graphics host's factory, then released;
//   - reading the style file: the skin's styles parsed from the file's bytes. Baseline: splitting the
//     same bytes into lines of words, which any reader of the format does first;
//   - a cached look-up: the format of a style that exists. Baseline: the least a look-up can do for a
//     module: ask its host where the style file is (which tells the skin) and find the style's name in a
//     map of formats.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "DemoSkinHosts.h"
#include "FontCache.h"
#include "GmpiDrawing.h"
#include "HostResources.h"
#include "TextHelpers.h"

namespace {

kxbench::DemoSkinHosts& hosts() {
    static kxbench::DemoSkinHosts h;
    return h;
}

const std::vector<FontMetadata>& demoStyles() { return FontCache::instance().getSkin(&hosts().gui)->styles(); }

void SkinStylesThroughCache(benchmark::State& state) {
    FontCache& cache = FontCache::instance();
    const auto& styles = demoStyles();
    for (auto _ : state) {
        cache.AddClient();
        for (const auto& style : styles)
            benchmark::DoNotOptimize(cache.GetTextFormat(&hosts().gui, &hosts().graphics, style.category).Get());
        cache.RemoveClient();
    }
    if (cache.textFormatCount() != 0 || cache.clientCount() != 0)
        state.SkipWithError("the cache kept formats after its last client");
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * styles.size()));
}

void SkinStylesDirect(benchmark::State& state) {
    using namespace GmpiDrawing_API;
    const auto& styles = demoStyles();
    std::vector<std::string> names;
    for (const auto& style : styles)
        names.push_back(style.category);
    std::vector<GmpiDrawing::TextFormat> made(styles.size());
    for (auto _ : state) {
        for (size_t i = 0; i < names.size(); ++i) {
            // What a module asking for a style by name must do itself: learn the skin from its host, find
            // the style, and take the factory of its graphics host.
            const std::string skin = kx::resolveResource(&hosts().gui, "global", "ImageMeta");
            benchmark::DoNotOptimize(skin.data());
            const FontMetadata& s = *std::find_if(styles.begin(), styles.end(),
                                                  [&](const FontMetadata& m) { return m.category == names[i]; });
            IMpFactory* raw = nullptr;
            hosts().graphics.GetDrawingFactory(&raw);
            const GmpiDrawing::Factory factory(raw);
            const int32_t weight = (s.flags & FontMetadata::Bold)     ? MP1_FONT_WEIGHT_BOLD
                                   : (s.flags2 & FontMetadata::Light) ? MP1_FONT_WEIGHT_LIGHT
                                                                      : MP1_FONT_WEIGHT_NORMAL;
            const int32_t slant = (s.flags2 & FontMetadata::Italic) ? MP1_FONT_STYLE_ITALIC : MP1_FONT_STYLE_NORMAL;
            made[i] = factory.CreateTextFormat2(static_cast<float>(s.fontSize), s.fontFamilies, weight, slant);
            made[i].SetTextAlignment((s.flags & FontMetadata::Centred)        ? MP1_TEXT_ALIGNMENT_CENTER
                                     : (s.flags & FontMetadata::RightAligned) ? MP1_TEXT_ALIGNMENT_TRAILING
                                                                              : MP1_TEXT_ALIGNMENT_LEADING);
            made[i].SetParagraphAlignment(MP1_PARAGRAPH_ALIGNMENT_CENTER);
            made[i].SetWordWrapping(MP1_WORD_WRAPPING_NO_WRAP);
        }
        for (auto& format : made)
            format = GmpiDrawing::TextFormat();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * styles.size()));
}

void StyleFileParse(benchmark::State& state) {
    const std::string bytes = kxbench::demoStyleFile();
    SkinMetadata skin;
    for (auto _ : state) {
        skin.Serialise(bytes);
        benchmark::DoNotOptimize(skin.styles().data());
    }
    if (skin.styles().size() != demoStyles().size() || skin.styles().empty())
        state.SkipWithError("the demo skin's styles were not read");
}

void StyleFileSplit(benchmark::State& state) {
    const std::string bytes = kxbench::demoStyleFile();
    for (auto _ : state) {
        size_t words = 0;
        forEachLineWords(bytes, [&](const std::vector<std::string>& line) { words += line.size(); });
        benchmark::DoNotOptimize(words);
    }
}

void CachedLookup(benchmark::State& state) {
    FontCache& cache = FontCache::instance();
    cache.AddClient();
    const GmpiDrawing::TextFormat made = cache.GetTextFormat(&hosts().gui, &hosts().graphics, "normal");
    const size_t formats = cache.textFormatCount();
    for (auto _ : state)
        benchmark::DoNotOptimize(cache.GetTextFormat(&hosts().gui, &hosts().graphics, "normal").Get());
    if (cache.textFormatCount() != formats)
        state.SkipWithError("a look-up made a format");
    cache.RemoveClient();
}

void MapLookup(benchmark::State& state) {
    const GmpiDrawing::Factory factory(&hosts().factory);
    std::map<std::string, GmpiDrawing::TextFormat> formats;
    for (const auto& style : demoStyles())
        formats[style.category] = factory.CreateTextFormat2(static_cast<float>(style.fontSize), style.fontFamilies);
    const std::string name = "normal";
    for (auto _ : state) {
        const std::string skin = kx::resolveResource(&hosts().gui, "global", "ImageMeta");
        benchmark::DoNotOptimize(skin.data());
        benchmark::DoNotOptimize(GmpiDrawing::TextFormat(formats.find(name)->second).Get());
    }
}

}  // namespace

BENCHMARK(SkinStylesThroughCache);
BENCHMARK(SkinStylesDirect);
BENCHMARK(StyleFileParse);
BENCHMARK(StyleFileSplit);
BENCHMARK(CachedLookup);
BENCHMARK(MapLookup);

BENCHMARK_MAIN();
