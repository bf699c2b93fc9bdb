#include <gtest/gtest.h>

#include <fstream>

#include "HostTestSupport.h"
#include "TempFolder.h"
#include "gmpi/IString.h"
#include "gui/GuiHost.h"
#include "patch/Text.h"

using namespace kxhost;
using kxhosttest::PatchRun;

namespace {

std::wstring text(const Value& v) { return v.text(); }

// A scratch resource folder with one image, removed afterwards.
struct ResourceDir {
    ResourceDir() {
        std::filesystem::create_directories(dir / "skin");
        std::ofstream(dir / "skin" / "knob.png") << "0123456789";
    }
    kxtest::TempFolder folder;
    const std::filesystem::path& dir = folder.path();
};

class ReturnString final : public gmpi::IString {
public:
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = iid == gmpi::MP_IID_RETURNSTRING ? this : nullptr;
        return *out ? gmpi::MP_OK : gmpi::MP_NOSUPPORT;
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t setData(const char* d, int32_t n) override {
        s.assign(d, n > 0 ? static_cast<size_t>(n) : 0);
        return gmpi::MP_OK;
    }
    int32_t getSize() override { return static_cast<int32_t>(s.size()); }
    const char* getData() override { return s.data(); }
    std::string s;
};

}  // namespace

TEST(GuiHost, EchoesIntoTheSenderUnlessTurnedOff) {
    PatchRun on("instance c T_EchoCounter\nset c.Value 5\n");
    EXPECT_EQ(on.value("c", 2), Value::ofInt(1));  // the echo of Out ran Out's handler once
    PatchRun off("option echo off\ninstance c T_EchoCounter\nset c.Value 5\n");
    EXPECT_EQ(off.value("c", 2), Value::ofInt(0));
    EXPECT_EQ(off.value("c", 1), Value::ofInt(5));
}

TEST(GuiHost, ParameterDeliversToEveryBoundPinWriterIncluded) {
    // Both counters' Out pins share a parameter: c1 writing it reaches c1 (its echo) and c2.
    PatchRun r(
        "instance c1 T_EchoCounter\ninstance c2 T_EchoCounter\nparam shared c1.Out c2.Out\n"
        "scenario\nset c1.Value 7\nexpect shared 7\nexpect c2.Out 7\nexpect c1.Echoes 1\nexpect c2.Echoes 1\n");
    EXPECT_TRUE(r.passed) << r.err.str();
    // Setting the parameter from the scenario reaches both pins too.
    PatchRun s("instance c1 T_EchoCounter\ninstance c2 T_EchoCounter\nparam shared c1.Out c2.Out\nset shared 3\n");
    EXPECT_EQ(s.value("c1", 2), Value::ofInt(1));
    EXPECT_EQ(s.value("c2", 2), Value::ofInt(1));
}

TEST(GuiHost, WiresDeliverInWireOrderAndChainsNest) {
    PatchRun r(
        "instance a T_AddOne\ninstance b T_AddOne\ninstance c T_AddOne\n"
        "wire a.Out -> c.In b.In\nscenario\nset a.In 1\nexpect c.Out 3\nexpect b.Out 3\nexpect a.Out sent 1\n");
    EXPECT_TRUE(r.passed) << r.err.str();
    const std::string trace = r.out.str();
    EXPECT_NE(trace.find("  a.Out -> 2\n    c.Out -> 3\n    b.Out -> 3\n"), std::string::npos) << trace;
}

TEST(GuiHost, FeedbackLoopIsCutWithAMessage) {
    PatchRun r(
        "option depth 20\ninstance a T_AddOne\ninstance b T_AddOne\nwire a.Out -> b.In\nwire b.Out -> a.In\n"
        "scenario\nset a.In 0\nprint \"after\"\n");
    EXPECT_FALSE(r.passed);
    EXPECT_NE(r.err.str().find("test.kxp:7: feedback loop: transmissions nested deeper than 20; cut at"),
              std::string::npos)
        << r.err.str();
    EXPECT_NE(r.out.str().find("after\n"), std::string::npos);  // the scenario went on
}

TEST(GuiHost, MalformedTransmissionsAreRefusedAndTheRunGoesOn) {
    PatchRun r("instance m T_Misbehave\ninstance t T_Thrower\nscenario\nset m.Go 4\nset t.In 1\nexpect m.Out 4\n");
    EXPECT_TRUE(r.passed) << r.err.str();
    const std::string err = r.err.str();
    EXPECT_NE(err.find("transmitted on gui pin 7, which its description lacks"), std::string::npos) << err;
    EXPECT_NE(err.find("m.Out transmitted 3 bytes, which is no int value"), std::string::npos);
    EXPECT_NE(err.find("m.Text transmitted 6 bytes, which is no text value"), std::string::npos);
    EXPECT_NE(err.find("m.Out transmitted -4 bytes"), std::string::npos);
    EXPECT_NE(err.find("t.In: notifyPin returned -1"), std::string::npos);
}

TEST(GuiHost, PinCountAndHandleComeFromTheHost) {
    PatchRun r("instance a T_AddOne\ninstance p T_HostProbe\n");
    EXPECT_EQ(r.value("p", 0), Value::ofInt(9));  // declared pins, the unbound one included
    EXPECT_EQ(r.value("p", 1), Value::ofInt(9));
    EXPECT_EQ(r.value("p", 2), Value::ofInt(2));
    // A declared pin the module does not bind: setPin fails, the host says so and carries on.
    PatchRun u("instance p T_HostProbe\nset p.Unbound [01]\n");
    EXPECT_NE(u.err.str().find("p.Unbound: setPin returned -1"), std::string::npos) << u.err.str();
}

TEST(GuiHost, ResourcesResolveAgainstThePatchFolders) {
    ResourceDir res;
    PatchRun r("resources skin\ninstance p T_HostProbe\nset p.Name \"knob\"\n", res.dir);
    const std::string knob = (res.dir / "skin" / "knob.png").string();
    EXPECT_EQ(r.value("p", 5), Value::ofText(widen(knob)));  // "Image" finds the .png
    EXPECT_EQ(r.value("p", 6), Value::ofBool(true));
    EXPECT_EQ(r.value("p", 7), Value::ofInt(10));
    EXPECT_EQ(r.value("p", 4), Value::ofText(widen((res.dir / "skin" / "knob").string())));

    PatchRun missing("resources skin\ninstance p T_HostProbe\nset p.Name \"none.png\"\n", res.dir);
    EXPECT_EQ(missing.value("p", 5), Value::ofText(widen((res.dir / "skin" / "none.png").string())));
    EXPECT_EQ(missing.value("p", 6), Value::ofBool(false));
    EXPECT_EQ(missing.value("p", 7), Value::ofInt(-1));
}

TEST(GuiHost, ResolveFilenameTruncatesIntoTheCallersBuffer) {
    ResourceDir res;
    PatchRun r("resources skin\ninstance p T_HostProbe\n", res.dir);
    GuiHost& host = r.session->instance("p")->guiHost();
    const std::wstring folder = widen((res.dir / "skin" / "").string());
    wchar_t buffer[500];
    ASSERT_EQ(host.resolveFilename(L"", 500, buffer), gmpi::MP_OK);
    EXPECT_EQ(std::wstring(buffer), folder);
    std::wstring small(8, L'#');
    ASSERT_EQ(host.resolveFilename(L"knob.png", 5, small.data()), gmpi::MP_OK);
    EXPECT_EQ(small, folder.substr(0, 4) + L'\0' + L"###");
    EXPECT_EQ(host.resolveFilename(L"knob.png", 0, small.data()), gmpi::MP_FAIL);
    const std::wstring longName(700, L'x');
    ASSERT_EQ(host.resolveFilename(longName.c_str(), 500, buffer), gmpi::MP_OK);
    EXPECT_EQ(std::wcslen(buffer), 499u);
}

TEST(GuiHost, OffersExtraFacesAndOpensOnlyFiles) {
    PatchRun r("instance p T_HostProbe\n");
    Instance& inst = *r.session->instance("p");
    ReturnString face;
    constexpr gmpi::MpGuid iid = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    void* out = &face;
    EXPECT_EQ(inst.guiHost().queryInterface(iid, &out), gmpi::MP_NOSUPPORT);
    EXPECT_EQ(out, nullptr);
    inst.offer(iid, &face);
    ASSERT_EQ(inst.guiHost().queryInterface(iid, &out), gmpi::MP_OK);
    EXPECT_EQ(out, &face);

    gmpi::IMpUnknown* stream = &face;
    EXPECT_EQ(inst.guiHost().openResource(std::filesystem::temp_directory_path().c_str(), &stream), gmpi::MP_FAIL);
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(inst.guiHost().openResource(nullptr, &stream), gmpi::MP_FAIL);
    ReturnString path;
    EXPECT_EQ(inst.guiHost().resolveResource(nullptr, "Image", &path), gmpi::MP_FAIL);
}

TEST(GuiHost, TextTravelsAsCodePoints) {
    PatchRun r(
        "instance t T_EchoText\nscenario\nexpect t.Echo \"start\"\nset t.Text \"caf\\u{e9} \\u{1f600}\"\n"
        "expect t.Echo \"caf\\u{e9} \\u{1f600}\"\n");
    EXPECT_TRUE(r.passed) << r.err.str();
    EXPECT_EQ(text(r.value("t", 1)), L"caf\u00e9 \U0001F600");
}

TEST(Bundle, MissingOrBrokenBundlesAreErrors) {
    EXPECT_THROW(Bundle("/no/such/bundle.so"), HostError);
    const kxtest::TempFolder folder;
    const auto notALibrary = folder / "not_a_library.so";
    std::ofstream(notALibrary) << "text";
    try {
        Bundle b(notALibrary);
        ADD_FAILURE();
    } catch (const HostError& e) {
        EXPECT_NE(std::string(e.what()).find("cannot be loaded"), std::string::npos);
    }
    try {
        Bundle b(KX_NO_ENTRY_BUNDLE);
        ADD_FAILURE();
    } catch (const HostError& e) {
        EXPECT_NE(std::string(e.what()).find("does not export MP_GetFactory"), std::string::npos);
    }
}

TEST(Bundle, CreatesOnlyDescribedSidesItHas) {
    auto& b = kxhosttest::bundle();
    EXPECT_TRUE(b.creates("T_AddOne", Side::Gui));
    EXPECT_FALSE(b.creates("T_AddOne", Side::Dsp));
    EXPECT_FALSE(b.creates("T_Ghost", Side::Gui));
}

namespace {

constexpr gmpi::MpGuid probeFaceIid = {0xABCDEF01, 2, 3, {4, 5, 6, 7, 8, 9, 10, 12}};

// Offers one face to every instance and records the order of the hooks it sees.
class ProbeExtension : public Extension {
public:
    void instanceCreated(Session&, Instance& inst) override {
        events.push_back("created " + inst.name() + (inst.gui ? " gui" : ""));
        inst.offer(probeFaceIid, &face);
    }
    void started(Session&) override { events.push_back("started"); }
    void finishing(Session&) override { events.push_back("finishing"); }

    std::vector<std::string> events;
    ReturnString face;
};

std::vector<std::string>* lastEvents = nullptr;

struct Recorder : ProbeExtension {
    ~Recorder() override {
        if (lastEvents)
            *lastEvents = events;
    }
};

const bool probeRegistered = Extensions::add([] { return std::make_unique<Recorder>(); });

}  // namespace

TEST(HostExtensions, SeeEveryInstanceBeforeItsHostAndOfferFaces) {
    ASSERT_TRUE(probeRegistered);
    std::vector<std::string> events;
    lastEvents = &events;
    {
        PatchRun r("instance a T_AddOne\ninstance b T_EchoText\n");
        auto* probe = r.session->extension<ProbeExtension>();
        ASSERT_NE(probe, nullptr);
        void* out = nullptr;
        ASSERT_EQ(r.session->instance("b")->guiHost().queryInterface(probeFaceIid, &out), gmpi::MP_OK);
        EXPECT_EQ(out, &probe->face);
    }
    EXPECT_EQ(events, (std::vector<std::string>{"created a gui", "created b gui", "started", "finishing"}));
    lastEvents = nullptr;
}

TEST(GuiHost, ValuesSentFromInitializeWaitUntilTheTargetIsInitialised) {
    // p transmits its pin count from initialize, before a (created later) has its host.
    PatchRun r("instance p T_HostProbe\ninstance a T_AddOne\nwire p.Count -> a.In\n");
    EXPECT_EQ(r.value("a", 1), Value::ofInt(10));
}
