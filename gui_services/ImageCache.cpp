#include "ImageCache.h"

#include "HostResources.h"
#include "MpGuiGfxBase.h"

ImageCache& ImageCache::instance() {
    static ImageCache cache;
    return cache;
}

GmpiDrawing::Bitmap ImageCache::GetImage(gmpi::IMpUserInterfaceHost2* uiHost, gmpi_gui::IMpGraphicsHost* graphicsHost,
                                         const char* name, ImageMetadata** metadataOut) {
    if (metadataOut)
        *metadataOut = nullptr;
    if (!uiHost || !graphicsHost || !name)
        return {};

    const std::string path = kx::resolveResource(uiHost, name, "Image");
    GmpiDrawing_API::IMpFactory* rawFactory = nullptr;
    graphicsHost->GetDrawingFactory(&rawFactory);
    if (!rawFactory)
        return {};

    for (const auto& e : entries_) {
        if (e.factory == rawFactory && e.name == path && e.metadata) {
            if (metadataOut)
                *metadataOut = e.metadata.get();
            return e.bitmap;
        }
    }

    const GmpiDrawing::Factory factory(rawFactory);
    GmpiDrawing::Bitmap bitmap;
    if (path.size() >= 3 && path.compare(path.size() - 3, 3, "bmp") == 0) {
        const std::string base = ImageMetadata::metadataFileName(path);  // "x.bmp" -> "x.txt"
        const std::string maskName = base.substr(0, base.size() - 4) + "_mask.bmp";
        bitmap = factory.LoadImageWithMaskU(path, kx::resolveResource(uiHost, maskName, "Image"));
    } else {
        bitmap = factory.LoadImageU(path);
    }
    if (!bitmap)
        return {};

    auto metadata = std::make_shared<ImageMetadata>();
    std::string bytes;
    const std::string metaPath = kx::resolveResource(uiHost, ImageMetadata::metadataFileName(path), "ImageMeta");
    if (kx::readResource(uiHost, metaPath, bytes))
        metadata->Serialise(bytes);
    const auto size = bitmap.GetSize();
    metadata->bitmapWidth = size.width;
    metadata->bitmapHeight = size.height;

    entries_.push_back({rawFactory, path, bitmap, metadata});
    if (metadataOut)
        *metadataOut = metadata.get();
    return bitmap;
}

void ImageCache::RegisterCustomImage(const char* name, GmpiDrawing::Bitmap bitmap) {
    if (!name || !bitmap)
        return;
    entries_.push_back({bitmap.GetFactory().Get(), name, std::move(bitmap), nullptr});
}

GmpiDrawing::Bitmap ImageCache::GetCustomImage(GmpiDrawing_API::IMpFactory* factory, const char* name) const {
    if (!name)
        return {};
    for (const auto& e : entries_)
        if (e.factory == factory && e.name == name)
            return e.bitmap;
    return {};
}

void ImageCache::RemoveClient() {
    if (--clients_ <= 0) {
        clients_ = 0;
        entries_.clear();
    }
}

GmpiDrawing::Bitmap ImageCacheClient::GetImage(const char* name, ImageMetadata** metadataOut) {
    auto* module = owningModule();
    if (!module) {
        if (metadataOut)
            *metadataOut = nullptr;
        return {};
    }
    return ImageCache::instance().GetImage(module->getHost(), module->getGuiHost(), name, metadataOut);
}
