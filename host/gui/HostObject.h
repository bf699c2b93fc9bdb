// Objects the host hands to modules with a call or with ownership (return strings, menu sinks, resource
// streams, dialogs): one face, reference counted. Every living one is counted, so a check after a
// module's last release can tell whether it kept anything. Drawing objects are not among them: modules
// may rightly keep those in caches that outlive any one module.
#pragma once

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

}  // namespace kxhost
