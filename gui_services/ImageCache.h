// The process-wide cache of skin bitmaps with their metadata, shared by every image widget of every
// panel. Widgets are its clients; when the last one goes every entry is released, so no host object
// outlives the panels that made it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "CacheClient.h"
#include "GmpiDrawing.h"
#include "ImageMetadata.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpUserInterfaceHost2.h"

class ImageCache {
public:
    static ImageCache& instance();

    // The bitmap of a skin image (resolved through the host as an "Image" resource), loaded once per
    // (drawing factory, resolved path). *metadataOut (when given) gets the entry's metadata, owned by the
    // cache; null with a null bitmap when the image cannot be loaded.
    GmpiDrawing::Bitmap GetImage(gmpi::IMpUserInterfaceHost2* uiHost, gmpi_gui::IMpGraphicsHost* graphicsHost,
                                 const char* name, ImageMetadata** metadataOut);
    // Shares a bitmap a module made itself under a name, keyed by the bitmap's own factory.
    void RegisterCustomImage(const char* name, GmpiDrawing::Bitmap bitmap);
    // The first entry of this factory and name, or a null bitmap.
    GmpiDrawing::Bitmap GetCustomImage(GmpiDrawing_API::IMpFactory* factory, const char* name) const;

    void AddClient() { ++clients_; }
    // At zero clients every entry (bitmap and metadata) is released.
    void RemoveClient();

    // For checks that panels closed cleanly.
    size_t entryCount() const { return entries_.size(); }
    int32_t clientCount() const { return clients_; }

private:
    ImageCache() = default;

    struct Entry {
        GmpiDrawing_API::IMpFactory* factory;  // identity only
        std::string name;
        GmpiDrawing::Bitmap bitmap;
        std::shared_ptr<ImageMetadata> metadata;  // null for a custom image
    };
    std::vector<Entry> entries_;
    int32_t clients_ = 0;
};

// Keeps the cache's entries alive while the object exists; mixed into every image widget.
class ImageCacheClient : public CacheClient<ImageCache> {
public:
    // GetImage with the owning module's GUI host and graphics host; a null bitmap when this object is not
    // part of a graphic module or the module has no hosts yet.
    GmpiDrawing::Bitmap GetImage(const char* name, ImageMetadata** metadataOut);
};
