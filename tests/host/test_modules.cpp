// Tiny modules for testing the host without the real pack: each exercises one thing a host must get
// right (routing, echo, text, exceptions, pin counts, resources, malformed transmissions).
#include <cstdint>
#include <stdexcept>
#include <string>

#include "MpFactory.h"
#include "MpGuiBase2.h"
#include "MpString.h"

// Out = In + 1. Two of them wired in a ring make a feedback loop.
class T_AddOne : public SeGuiInvisibleBase {
public:
    T_AddOne() {
        initializePin(in, &T_AddOne::onSetIn);
        initializePin(out);
    }
    void onSetIn() { out = in + 1; }

private:
    MpGuiPin<int> in;
    MpGuiPin<int> out;
};

// Echo = Text.
class T_EchoText : public SeGuiInvisibleBase {
public:
    T_EchoText() {
        initializePin(text, &T_EchoText::onSetText);
        initializePin(echo);
    }
    void onSetText() { echo = text.operator std::wstring(); }

private:
    StringGuiPin text;
    StringGuiPin echo;
};

// Its handler throws: the host must carry on.
class T_Thrower : public SeGuiInvisibleBase {
public:
    T_Thrower() { initializePin(in, &T_Thrower::onSetIn); }
    void onSetIn() { throw std::runtime_error("handler failed"); }

private:
    MpGuiPin<int> in;
};

// Value is copied to Out, a pin the host also writes; every write of Out (the host's echo included)
// counts in Echoes. Also registered as T_NoEchoCounter, whose description forbids the echo on Out.
class T_EchoCounter : public SeGuiInvisibleBase {
public:
    T_EchoCounter() {
        initializePin(value, &T_EchoCounter::onSetValue);
        initializePin(out, &T_EchoCounter::onSetOut);
        initializePin(echoes);
    }
    void onSetValue() { out = static_cast<int>(value); }
    void onSetOut() { echoes = echoes + 1; }

private:
    MpGuiPin<int> value;
    MpGuiPin<int> out;
    MpGuiPin<int> echoes;
};

// Reports what the host tells it: the pin count (both host generations), its handle, and for a name:
// the first-generation file name, the resource path, whether it was found and the resource's size.
class T_HostProbe : public SeGuiInvisibleBase {
public:
    T_HostProbe() {
        initializePin(count);
        initializePin(countV1);
        initializePin(handle);
        initializePin(name, &T_HostProbe::onSetName);
        initializePin(file);
        initializePin(resource);
        initializePin(found);
        initializePin(size);
        // Pin 8 is declared in the description but deliberately not bound.
    }
    int32_t initialize() override {
        int32_t n = -1;
        host->getPinCount(n);
        count = n;
        if (auto* v1 = firstGeneration()) {
            n = -1;
            v1->getPinCount(n);
            countV1 = n;
            v1->release();
        }
        int32_t h = 0;
        host->getHandle(h);
        handle = h;
        return SeGuiInvisibleBase::initialize();
    }
    void onSetName() {
        const std::wstring wide = name;
        if (auto* v1 = firstGeneration()) {
            wchar_t buffer[500];
            v1->resolveFilename(wide.c_str(), 500, buffer);
            file = std::wstring(buffer);
            v1->release();
        }
        gmpi_sdk::MpString path;
        const std::string utf8 = name;
        found = host->resolveResource(utf8.c_str(), "Image", &path) == gmpi::MP_OK;
        resource = path.str();
        gmpi::IMpUnknown* stream = nullptr;
        int total = -1;
        if (host->openResource(path.str().c_str(), &stream) == gmpi::MP_OK && stream) {
            void* face = nullptr;
            if (stream->queryInterface(gmpi::MP_IID_RESOURCE_STREAM, &face) == gmpi::MP_OK) {
                auto* s = static_cast<gmpi::IMpResourceStream*>(face);
                char chunk[3];
                total = 0;
                for (int32_t got; (got = s->read(chunk, sizeof chunk)) > 0;)
                    total += got;
                s->release();
            }
            stream->release();
        }
        size = total;
    }

private:
    gmpi::IMpUserInterfaceHost* firstGeneration() {
        void* face = nullptr;
        return host->queryInterface(gmpi::MP_IID_UI_HOST, &face) == gmpi::MP_OK
                   ? static_cast<gmpi::IMpUserInterfaceHost*>(face)
                   : nullptr;
    }

    MpGuiPin<int> count, countV1, handle;
    StringGuiPin name, file, resource;
    MpGuiPin<bool> found;
    MpGuiPin<int> size;
};

// Misbehaves on purpose when Go is set: transmits on a pin it lacks, an int of 3 bytes, text of 6
// bytes and a negative size, then a proper value on Out.
class T_Misbehave : public SeGuiInvisibleBase {
public:
    T_Misbehave() {
        initializePin(go, &T_Misbehave::onSetGo);
        initializePin(out);
        initializePin(text);
    }
    void onSetGo() {
        const int32_t v = go;
        const char bytes[8] = {};
        pinTransmit(7, 4, &v, 0);
        pinTransmit(1, 3, &v, 0);
        pinTransmit(2, 6, bytes, 0);
        pinTransmit(1, -4, &v, 0);
        pinTransmit(1, 4, nullptr, 0);
        out = v;
    }

private:
    MpGuiPin<int> go;
    MpGuiPin<int> out;
    StringGuiPin text;
};

namespace {
const bool registered =
    gmpi::Register<T_AddOne>::withId(L"T_AddOne") && gmpi::Register<T_EchoText>::withId(L"T_EchoText") &&
    gmpi::Register<T_Thrower>::withId(L"T_Thrower") && gmpi::Register<T_EchoCounter>::withId(L"T_EchoCounter") &&
    gmpi::Register<T_EchoCounter>::withId(L"T_NoEchoCounter") && gmpi::Register<T_HostProbe>::withId(L"T_HostProbe") &&
    gmpi::Register<T_Misbehave>::withId(L"T_Misbehave");
}
