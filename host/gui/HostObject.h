// Objects the host hands to modules with a call or with ownership (return strings, menu sinks, resource
// streams, dialogs): one face, reference counted. Every living one is counted, so a check after a
// module's last release can tell whether it kept anything. Drawing objects are not among them: modules
// may rightly keep those in caches that outlive any one module.
#pragma once

#include <string>
#include <vector>

#include "gmpi/IMpContextItemSink.h"
#include "gmpi/IString.h"
#include "render/RefCounted.h"

namespace kxhost {

class Counted {
public:
    Counted() { ++alive_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    virtual ~Counted() { --alive_; }
    // Host objects alive in this process.
    static int alive() { return alive_; }

private:
    static inline int alive_ = 0;
};

// A host object with the one face I, known by iid, counted among the living.
template <class I>
class CountedObject : public RefCounted<I>, public Counted {
public:
    explicit CountedObject(const gmpi::MpGuid& iid) : RefCounted<I>({iid}) {}
};

// A text the module fills (tool tips, resource paths, file names).
class ReturnString final : public CountedObject<gmpi::IString> {
public:
    ReturnString() : CountedObject(gmpi::MP_IID_RETURNSTRING) {}
    int32_t setData(const char* data, int32_t size) override;
    int32_t getSize() override { return static_cast<int32_t>(text_.size()); }
    const char* getData() override { return text_.data(); }
    const std::string& text() const { return text_; }

private:
    std::string text_;
};

// Collects the entries a module adds to its context menu; copies each text as the interface promises.
class MenuSink final : public CountedObject<gmpi::IMpContextItemSink> {
public:
    struct Item {
        std::string text;
        int32_t id;
        int32_t flags;
    };
    MenuSink() : CountedObject(gmpi::MP_IID_CONTEXT_ITEMS_SINK) {}
    int32_t AddItem(const char* text, int32_t id, int32_t flags) override;
    const std::vector<Item>& items() const { return items_; }

private:
    std::vector<Item> items_;
};

}  // namespace kxhost
