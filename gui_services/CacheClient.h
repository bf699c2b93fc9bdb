// The client side of the process-wide caches (skin images, text formats). While any client exists a cache
// keeps what it made through a host; when the last one goes it releases all of it, so no host object
// outlives the panels that made it. Mixed into widgets beside their graphics base.
#pragma once

namespace gmpi_gui {
class MpGuiGfxBase;
}

template <class Cache>
class CacheClient {
public:
    CacheClient() { Cache::instance().AddClient(); }
    CacheClient(const CacheClient&) : CacheClient() {}
    CacheClient& operator=(const CacheClient&) = default;
    virtual ~CacheClient() { Cache::instance().RemoveClient(); }

protected:
    // The graphic module this client is part of, whose hosts the cache asks; null when it is part of none.
    gmpi_gui::MpGuiGfxBase* owningModule() { return dynamic_cast<gmpi_gui::MpGuiGfxBase*>(this); }
};
