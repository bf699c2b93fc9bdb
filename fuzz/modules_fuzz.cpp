// Every registered module half, created through the factory and driven by the bytes as a host would
// drive it, so that module code is explored, not only the parsers. The first bytes choose the half (side
// and identifier from the registry) and how it is made; the rest is a sequence of host calls:
//   GUI: pin writes of any size (values of the pin's type mostly), notifications, the host's echo of what
//        the module sends, messages from the DSP half, pointer events with any flags and points (NaN and
//        far outside included), measure and arrange with odd sizes, rendering into small Cairo targets
//        through kxhost's renderer, hit tests, tool tips, context menus, answers to file dialogs and
//        text editors, and timer ticks on a virtual clock;
//   DSP: blocks of 1 to 64 samples with time-ordered events (values, wrong sizes, undeclared pins, MIDI,
//        streaming changes, unknown kinds), hostile samples, and messages from the GUI half.
// Within what a host promises (sizes match the data, events are in time order, buffers are set), any
// crash, sanitizer report or exception reaching the host is a finding; so is a timer a module leaves
// running after its last release.
//
// Files: the GUI host resolves every file name into a private folder, and resources only from the demo
// skin; the text saver, which writes where its file-name pins say, gets its names moved into that folder.
// So module code can neither write nor read anything else.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "FakeAudioHost.h"
#include "FakeGuiHost.h"
#include "FuzzInput.h"
#include "ManualTimerBackend.h"
#include "MpBase2.h"
#include "MpFactory.h"
#include "MpGuiPin.h"
#include "MpString.h"
#include "PackCatalogue.h"
#include "TextCodec.h"
#include "convert/TextFiles.h"
#include "gmpi/IMpDrawingFactory.h"
#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpLegacyInitialization.h"
#include "gmpi/IMpPlugin.h"
#include "gmpi/IMpUserInterface2.h"
#include "gui/Graphics.h"
#include "gui/GuiHost.h"
#include "it_enum_list.h"
#include "render/Drawing.h"

namespace fs = std::filesystem;
using GmpiDrawing_API::MP1_POINT;
using GmpiDrawing_API::MP1_RECT;
using GmpiDrawing_API::MP1_SIZE;
using kxfuzz::FuzzInput;

namespace {

// The most host calls one input makes, and how deep the host's echo nests.
constexpr int kMostCalls = 200;
constexpr int kEchoDepth = 8;
constexpr int32_t kBlock = 64;

struct Process {
    std::vector<std::pair<int32_t, std::wstring>> halves;  // (side, identifier)
    fs::path skin;
    fs::path sandbox;
    // Installed for the life of the process and never destroyed: the timer manager it registers with is a
    // static that may go first at exit.
    kx::ManualTimerBackend* timers = nullptr;
};

Process& process() {
    static Process p;
    return p;
}

void removeSandbox() {
    std::error_code ec;
    fs::remove_all(process().sandbox, ec);
}

// The last component of a name, so that no name reaches outside the folder it is looked up in.
fs::path leaf(const std::string& name) {
    const fs::path l = fs::path(name).filename();
    return l == "." || l == ".." ? fs::path() : l;
}

bool inside(const fs::path& path, const fs::path& folder) {
    const auto rel = path.lexically_normal().lexically_relative(folder);
    return !rel.empty() && *rel.begin() != "..";
}

// The recording GUI host of the unit tests, with the panel's graphics host and drawing factory as extra
// faces and file access confined as above.
class FuzzGuiHost final : public kxtest::FakeGuiHost {
public:
    FuzzGuiHost(kxhost::Panel& panel, kxhost::GraphicsHost& graphics) : panel_(panel), graphics_(graphics) {}

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (!out)
            return gmpi::MP_NOSUPPORT;
        if (gmpi_gui::isGraphicsHostIid(iid)) {
            *out = static_cast<gmpi_gui::IMpGraphicsHost*>(&graphics_);
            return gmpi::MP_OK;
        }
        if (iid == GmpiDrawing_API::SE_IID_FACTORY_MPGUI || iid == GmpiDrawing_API::SE_IID_FACTORY2_MPGUI) {
            *out = static_cast<GmpiDrawing_API::IMpFactory2*>(&panel_.factory);
            return gmpi::MP_OK;
        }
        return FakeGuiHost::queryInterface(iid, out);
    }
    int32_t resolveResource(const char* name, const char* type, gmpi::IMpUnknown* returnString) override {
        void* face = nullptr;
        if (!name || !returnString || returnString->queryInterface(gmpi::MP_IID_RETURNSTRING, &face) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        bool found = false;
        const std::string path =
            kxhost::findResource({process().skin}, leaf(name).string(), type ? type : "", found).string();
        static_cast<gmpi::IString*>(face)->setData(path.data(), static_cast<int32_t>(path.size()));
        return found ? gmpi::MP_OK : gmpi::MP_FAIL;
    }
    int32_t openResource(const char* path, gmpi::IMpUnknown** stream) override {
        if (!stream)
            return gmpi::MP_FAIL;
        *stream = nullptr;
        if (!path || !(inside(path, process().skin) || inside(path, process().sandbox)))
            return gmpi::MP_FAIL;
        return kxhost::openResourceStream(path, stream);
    }
    int32_t resolveFilename(const wchar_t* name, int32_t maxChars, wchar_t* out) override {
        if (maxChars < 1 || !out)
            return gmpi::MP_FAIL;
        std::string narrow;
        for (const wchar_t* c = name; c && *c; ++c)
            narrow.push_back(static_cast<char>(*c));  // only the name's shape matters here
        std::wstring full;
        kx::fromUtf8Lenient((process().sandbox / leaf(narrow)).string(), full);
        const size_t n = std::min(full.size(), static_cast<size_t>(maxChars) - 1);
        std::wmemcpy(out, full.data(), n);
        out[n] = L'\0';
        return gmpi::MP_OK;
    }

private:
    kxhost::Panel& panel_;
    kxhost::GraphicsHost& graphics_;
};

// ---- values

float oddFloat(FuzzInput& in) {
    static const float odd[] = {0.0f,
                                -0.0f,
                                1.0f,
                                -1.0f,
                                0.5f,
                                100.0f,
                                1e30f,
                                -1e30f,
                                std::numeric_limits<float>::max(),
                                std::numeric_limits<float>::denorm_min(),
                                std::numeric_limits<float>::infinity(),
                                -std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()};
    return in.chance(128) ? odd[in.pick(static_cast<int>(std::size(odd)))] : in.value<float>();
}

int32_t oddInt(FuzzInput& in) {
    static const int32_t odd[] = {0, 1, -1, 2, 7, 127, 128, 255, 1000, INT_MAX, INT_MIN, INT_MAX - 1, INT_MIN + 1};
    return in.chance(128) ? odd[in.pick(static_cast<int>(std::size(odd)))] : in.value<int32_t>();
}

// Text as the bytes' UTF-8 reading (dictionary words arrive as they are), now and then with raw 32-bit
// units that are no code points.
std::wstring text(FuzzInput& in) {
    std::wstring out;
    kx::fromUtf8Lenient(in.bytes(in.byte()), out);
    if (in.chance(16))
        out.push_back(static_cast<wchar_t>(in.value<int32_t>()));
    return out;
}

std::string raw(const void* data, size_t size) { return std::string(static_cast<const char*>(data), size); }

// A value for a pin of the given datatype, mostly of the size it holds, sometimes of any size.
std::string value(FuzzInput& in, int datatype) {
    if (in.chance(24)) {
        const int kind = in.pick(4);
        if (kind == 0)
            return {};
        if (kind == 1)
            return std::string(static_cast<size_t>(1 + in.pick(9)), static_cast<char>(in.byte()));
        if (kind == 2)
            return std::string(in.bytes(in.byte()));
        return std::string(size_t(1) << (10 + in.pick(8)), static_cast<char>(in.byte()));  // 1 KiB to 128 KiB
    }
    switch (datatype) {
        case MP_DT_INT:
        case MP_DT_ENUM: {
            const int32_t v = oddInt(in);
            return raw(&v, 4);
        }
        case MP_DT_FLOAT:
        case MP_DT_AUDIO: {
            const float v = oddFloat(in);
            return raw(&v, 4);
        }
        case MP_DT_BOOL:
            return std::string(1, static_cast<char>(in.pick(3) == 0 ? in.byte() : in.pick(2)));
        case MP_DT_TEXT: {
            const std::wstring t = text(in);
            return raw(t.data(), t.size() * sizeof(wchar_t));
        }
        default:
            return std::string(in.bytes(in.byte()));
    }
}

struct Pin {
    int index;
    int datatype;
};

struct Pins {
    std::vector<Pin> bound;
    // The description lets the host add copies of the last pin: the host writes only pins it made, so
    // indexes past the last are those of copies a user could have added, not any int.
    bool openEnded = false;
};

// Mostly a pin the module binds; now and then one it does not (negative, past the last, far away).
int pinIndex(FuzzInput& in, const Pins& pins, int* datatype) {
    const auto& bound = pins.bound;
    if (!bound.empty() && !in.chance(20)) {
        const Pin& p = bound[static_cast<size_t>(in.pick(static_cast<int>(bound.size())))];
        *datatype = p.datatype;
        return p.index;
    }
    *datatype = MP_DT_BLOB;
    const int next = bound.empty() ? 0 : bound.back().index + 1;
    if (pins.openEnded) {
        static const int32_t odd[] = {-1, INT_MIN};
        if (!bound.empty())
            *datatype = bound.back().datatype;
        return in.chance(200) ? next + in.pick(64) : odd[in.pick(2)];
    }
    static const int32_t odd[] = {-1, 1000, INT_MAX, INT_MIN};
    return in.chance(128) ? next + in.pick(3) : odd[in.pick(4)];
}

bool openEnded(const std::wstring& id, kxhost::Side side) {
    const kxhost::ModuleInfo* module = kxfuzz::packCatalogue().find(kx::toUtf8(id));
    const kxhost::SideInfo* info = module ? module->side(side) : nullptr;
    return info && !info->pins.empty() && info->pins.back().autoDuplicate;
}

MP1_POINT point(FuzzInput& in) {
    if (in.chance(180))
        return {static_cast<float>(in.byte()) * 0.5f, static_cast<float>(in.byte()) * 0.5f};
    return {oddFloat(in), oddFloat(in)};
}

int32_t pointerFlags(FuzzInput& in) {
    if (in.chance(40))
        return in.value<int32_t>();
    static const int32_t buttons[] = {gmpi_gui_api::GG_POINTER_FLAG_FIRSTBUTTON,
                                      gmpi_gui_api::GG_POINTER_FLAG_SECONDBUTTON,
                                      gmpi_gui_api::GG_POINTER_FLAG_THIRDBUTTON, 0};
    static const int32_t keys[] = {0, gmpi_gui_api::GG_POINTER_KEY_SHIFT, gmpi_gui_api::GG_POINTER_KEY_CONTROL,
                                   gmpi_gui_api::GG_POINTER_KEY_ALT};
    return buttons[in.pick(4)] | keys[in.pick(4)];
}

// A file name for the text saver's pins (32-bit units as the pin holds them) moved into the private
// folder: its last component only.
std::string confinedName(const std::string& value) {
    std::wstring name(value.size() / sizeof(wchar_t), L'\0');
    std::memcpy(name.data(), value.data(), name.size() * sizeof(wchar_t));
    if (name.empty())
        return value;
    std::wstring full;
    kx::fromUtf8Lenient((process().sandbox / leaf(kx::toUtf8Lenient(name))).string(), full);
    return raw(full.data(), full.size() * sizeof(wchar_t));
}

// ---- the GUI half

void driveGui(FuzzInput& in, gmpi::IMpUnknown* object, const std::wstring& id) {
    kxhost::PanelDecl decl;
    kxhost::Panel panel(decl, [](const std::string&) {});
    kxhost::GraphicsHost& graphics = panel.addInstance("fuzzed");
    FuzzGuiHost host(panel, graphics);

    auto* gui = static_cast<gmpi::IMpUserInterface2B*>(object);
    const bool writesFiles = id == L"KX_StringSaver";
    auto setPin = [&](int pin, int32_t voice, std::string v) {
        if (writesFiles && (pin == kx::textfile::FileNameL || pin == kx::textfile::FileNameR))
            v = confinedName(v);
        gui->setPin(pin, voice, static_cast<int32_t>(v.size()), v.empty() ? nullptr : v.data());
    };
    Pins pins;
    pins.openEnded = openEnded(id, kxhost::Side::Gui);
    if (auto* owner = dynamic_cast<GuiPinOwner*>(gui))
        for (int i = 0; i < owner->nextPinIndex(); ++i)
            if (const MpGuiPinBase* p = owner->getPin(i))
                pins.bound.push_back({i, p->getDatatype()});

    // The host's echo: what the module sends comes back into the same pin, nested up to a depth.
    const bool echo = in.chance(128);
    int depth = 0;
    host.onTransmit = [&](int pin, int size, const void* data) {
        KX_FUZZ_CHECK(size >= 0 && (size == 0 || data));
        const std::string copy = raw(data, static_cast<size_t>(size));  // a host copies at once
        host.sent.clear();
        if (!echo || depth >= kEchoDepth)
            return;
        ++depth;
        setPin(pin, 0, copy);
        gui->notifyPin(pin, 0);
        --depth;
    };

    gui->setHost(host.unknown());
    gui->initialize();
    void* face = nullptr;
    gmpi_gui_api::IMpGraphics2* graphics2 = nullptr;
    if (object->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, &face) == gmpi::MP_OK && face)
        graphics2 = static_cast<gmpi_gui_api::IMpGraphics2*>(face);
    else if (object->queryInterface(gmpi_gui_api::SE_IID_GRAPHICS_MPGUI, &face) != gmpi::MP_OK)
        face = nullptr;
    auto* gfx = static_cast<gmpi_gui_api::IMpGraphics*>(face);

    for (int calls = 0; calls < kMostCalls && !in.empty(); ++calls) {
        host.messages.clear();  // sent to a DSP half that is not there
        int datatype = MP_DT_BLOB;
        switch (in.pick(16)) {
            case 0:
            case 1:
            case 2:
            case 3: {  // a value, as a host delivers it
                const int pin = pinIndex(in, pins, &datatype);
                const std::string v = value(in, datatype);
                const int32_t voice = in.chance(16) ? oddInt(in) : 0;
                setPin(pin, voice, v);
                gui->notifyPin(pin, voice);
                break;
            }
            case 4: {  // setPin alone, or notifyPin alone
                const int pin = pinIndex(in, pins, &datatype);
                if (in.chance(128)) {
                    const std::string v = value(in, datatype);
                    setPin(pin, 0, v);
                } else {
                    gui->notifyPin(pin, 0);
                }
                break;
            }
            case 5: {
                const std::string m = std::string(in.bytes(in.byte()));
                gui->receiveMessageFromAudio(oddInt(in), static_cast<int32_t>(m.size()), m.data());
                break;
            }
            case 6: {  // a press, moves, a release; parts may be missing
                if (!gfx)
                    break;
                if (in.chance(220))
                    gfx->onPointerDown(pointerFlags(in), point(in));
                for (int n = in.pick(4); n > 0; --n)
                    gfx->onPointerMove(pointerFlags(in), point(in));
                if (in.chance(220))
                    gfx->onPointerUp(pointerFlags(in), point(in));
                panel.runCompletions();
                break;
            }
            case 7: {
                if (!gfx)
                    break;
                MP1_SIZE desired{};
                gfx->measure({oddFloat(in), oddFloat(in)}, &desired);
                const MP1_RECT r = in.chance(128)
                                       ? MP1_RECT{0, 0, static_cast<float>(in.byte()), static_cast<float>(in.byte())}
                                       : MP1_RECT{oddFloat(in), oddFloat(in), oddFloat(in), oddFloat(in)};
                graphics.rect = r;
                gfx->arrange(r);
                break;
            }
            case 8: {
                if (!gfx)
                    break;
                auto* dc = new kxhost::draw::DeviceContext(&panel.factory, 1 + in.pick(64), 1 + in.pick(64));
                gfx->OnRender(dc);
                dc->release();
                break;
            }
            case 9: {
                const MP1_POINT p = point(in);
                gmpi_sdk::MpString tip;
                if (graphics2) {
                    graphics2->hitTest(p);
                    graphics2->getToolTip(p, &tip);
                }
                gui->getToolTip(p.x, p.y, &tip);
                break;
            }
            case 10: {
                kxtest::RecordingMenuSink sink;
                gui->populateContextMenu(oddFloat(in), oddFloat(in), &sink);
                KX_FUZZ_CHECK(sink.entries.size() <= static_cast<size_t>(it_enum_list::kMostListed) + 1);
                int32_t choice = oddInt(in);
                if (!sink.entries.empty() && in.chance(200))
                    choice = sink.entries[static_cast<size_t>(in.pick(static_cast<int>(sink.entries.size())))].id;
                gui->onContextMenu(choice);
                break;
            }
            case 11: {  // the user answers a file dialog or a text editor, or cancels
                std::optional<std::string> answer;
                const int kind = in.pick(4);
                if (kind == 1)
                    answer = (process().sandbox / leaf(std::string(in.bytes(in.byte() % 16)))).string();
                else if (kind == 2)
                    answer = std::string(in.bytes(in.byte()));
                if (in.chance(128))
                    panel.answerFileDialog("fuzzed", answer);
                else
                    panel.answerTextEdit("fuzzed", answer);
                panel.runCompletions();
                break;
            }
            case 12:
                process().timers->advance(in.byte() * (in.chance(64) ? 8 : 1));
                break;
            default: {  // the common case again: a typed value on a bound pin, set and notified
                const int pin = pinIndex(in, pins, &datatype);
                const std::string v = value(in, datatype);
                setPin(pin, 0, v);
                gui->notifyPin(pin, 0);
                break;
            }
        }
    }

    // Open dialogs go first, as when the window closes; then the faces, then the module.
    panel.releaseModules();
    if (gfx)
        gfx->release();
    gui->release();
}

// ---- the DSP half

struct Event {
    gmpi::MpEvent event{};
    std::string extra;
};

void driveDsp(FuzzInput& in, const std::wstring& id) {
    kxtest::FakeAudioHost host;
    MpFactory& factory = *Factory();
    void* made = nullptr;
    // Either the host handed over at creation, or through the legacy initialisation face afterwards.
    if (in.chance(128)) {
        if (factory.createInstance(id.c_str(), gmpi::MP_SUB_TYPE_AUDIO, host.unknown(), &made) != gmpi::MP_OK || !made)
            return;
    } else {
        if (factory.createInstance2(id.c_str(), gmpi::MP_SUB_TYPE_AUDIO, &made) != gmpi::MP_OK || !made)
            return;
        void* init = nullptr;
        static_cast<gmpi::IMpUnknown*>(made)->queryInterface(gmpi::MP_IID_LEGACY_INITIALIZATION, &init);
        if (init) {
            auto* legacy = static_cast<gmpi::IMpLegacyInitialization*>(init);
            legacy->setHost(host.unknown());
            legacy->release();
        }
    }
    auto* object = static_cast<gmpi::IMpUnknown*>(made);
    void* face = nullptr;
    object->queryInterface(gmpi::MP_IID_PLUGIN2, &face);
    object->release();
    if (!face)
        return;
    auto* plugin = static_cast<gmpi::IMpPlugin2*>(face);

    Pins pins;
    pins.openEnded = openEnded(id, kxhost::Side::Dsp);
    if (auto* base = dynamic_cast<MpPluginBase*>(plugin))
        for (int i = 0; i < 256; ++i)
            if (const MpPinBase* p = base->getPin(i))
                pins.bound.push_back({i, p->getDatatype()});

    plugin->open();
    std::vector<std::vector<float>> buffers;
    for (const Pin& p : pins.bound)
        if (p.datatype == MP_DT_AUDIO) {
            buffers.emplace_back(kBlock, 0.0f);
            plugin->setBuffer(p.index, buffers.back().data());
        }

    auto run = [&](int32_t count, std::vector<Event>& events) {
        std::stable_sort(events.begin(), events.end(),
                         [](const Event& a, const Event& b) { return a.event.timeDelta < b.event.timeDelta; });
        for (size_t i = 0; i < events.size(); ++i) {
            events[i].event.extraData = events[i].extra.empty() ? nullptr : events[i].extra.data();
            events[i].event.next = i + 1 < events.size() ? &events[i + 1].event : nullptr;
        }
        plugin->process(count, events.empty() ? nullptr : &events.front().event);
        host.updates.clear();
        host.messages.clear();
        host.streaming.clear();
    };

    std::vector<Event> start(1);
    start[0].event.eventType = gmpi::EVENT_GRAPH_START;
    run(kBlock, start);

    for (int calls = 0; calls < kMostCalls && !in.empty(); ++calls) {
        const int kind = in.pick(8);
        if (kind == 0) {
            const std::string m = std::string(in.bytes(in.byte()));
            plugin->receiveMessageFromGui(oddInt(in), static_cast<int32_t>(m.size()), m.data());
            continue;
        }
        if (kind == 1 && !buffers.empty()) {
            auto& samples = buffers[static_cast<size_t>(in.pick(static_cast<int>(buffers.size())))];
            for (float& x : samples)
                x = in.chance(200) ? static_cast<float>(static_cast<int8_t>(in.byte())) / 64.0f : oddFloat(in);
            continue;
        }
        const int32_t count = in.chance(200) ? kBlock : 1 + in.pick(kBlock);
        std::vector<Event> events(static_cast<size_t>(in.pick(9)));
        for (Event& e : events) {
            int datatype = MP_DT_BLOB;
            e.event.parm1 = pinIndex(in, pins, &datatype);
            e.event.timeDelta = in.pick(count);
            static const int32_t types[] = {gmpi::EVENT_PIN_SET,
                                            gmpi::EVENT_PIN_SET,
                                            gmpi::EVENT_PIN_SET,
                                            gmpi::EVENT_MIDI,
                                            gmpi::EVENT_PIN_STREAMING_START,
                                            gmpi::EVENT_PIN_STREAMING_STOP,
                                            gmpi::EVENT_GRAPH_START,
                                            0};
            e.event.eventType = types[in.pick(8)];
            if (e.event.eventType == 0)
                e.event.eventType = oddInt(in);
            if (datatype == MP_DT_MIDI && in.chance(200))
                e.event.eventType = gmpi::EVENT_MIDI;
            const std::string v = value(in, datatype == MP_DT_MIDI ? MP_DT_BLOB : datatype);
            e.event.parm2 = static_cast<int32_t>(v.size());
            if (v.size() <= 8) {
                char inline8[8] = {};
                std::memcpy(inline8, v.data(), v.size());
                std::memcpy(&e.event.parm3, inline8, 4);
                std::memcpy(&e.event.parm4, inline8 + 4, 4);
            } else {
                e.extra = v;
            }
        }
        run(count, events);
    }
    plugin->release();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Process& p = process();
    p.halves = Factory()->registrations();
    kxfuzz::packCatalogue();
    p.skin = fs::path(KX_SOURCE_DIR) / "examples" / "skin";
    p.sandbox = fs::temp_directory_path() / ("kx-fuzz-modules-" + std::to_string(::getpid()));
    fs::create_directories(p.sandbox);
    std::atexit(removeSandbox);
    // Timers run on a virtual clock the input moves, so that a run is repeatable.
    p.timers = new kx::ManualTimerBackend;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput in(data, size);
    const auto& halves = process().halves;
    if (halves.empty())
        return 0;
    const auto& [side, id] = halves[in.value<uint16_t>() % halves.size()];
    if (side == gmpi::MP_SUB_TYPE_AUDIO) {
        driveDsp(in, id);
    } else {
        void* made = nullptr;
        if (Factory()->createInstance2(id.c_str(), side, &made) != gmpi::MP_OK || !made)
            return 0;
        auto* object = static_cast<gmpi::IMpUnknown*>(made);
        void* face = nullptr;
        object->queryInterface(gmpi::MP_IID_GUI_PLUGIN2, &face);
        object->release();
        if (face)
            driveGui(in, static_cast<gmpi::IMpUnknown*>(static_cast<gmpi::IMpUserInterface2B*>(face)), id);
    }
    // Whatever a module started, it stops by its last release.
    KX_FUZZ_CHECK(process().timers->liveTimers() == 0);
    return 0;
}
