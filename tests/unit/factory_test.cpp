#include <gtest/gtest.h>

#include <dlfcn.h>

#include <stdexcept>
#include <string>

#include "FakeGuiHost.h"
#include "MpBase2.h"
#include "MpFactory.h"
#include "MpGuiBase2.h"

namespace {

struct Plain : SeGuiInvisibleBase {};
struct Throws : SeGuiInvisibleBase {
    Throws() { throw std::runtime_error("constructor failed"); }
};
// A GUI module that also takes the legacy initialisation face, so createInstance hands it the host.
struct Legacy : SeGuiInvisibleBase, gmpi::IMpLegacyInitialization {
    static inline gmpi::IMpUnknown* seen = nullptr;
    static inline bool fail = false;
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        return SeGuiInvisibleBase::queryInterface(iid, out);
    }
    int32_t addRef() override { return SeGuiInvisibleBase::addRef(); }
    int32_t release() override { return SeGuiInvisibleBase::release(); }
    int32_t setHost(gmpi::IMpUnknown* h) override {
        seen = h;
        if (fail)
            throw std::runtime_error("no host");
        return SeGuiInvisibleBase::setHost(h);
    }
};

// A DSP half that answers -1 to its host without throwing, as one whose host lacks an interface may.
struct RefusesHost : MpBase2 {
    int32_t setHost(gmpi::IMpUnknown*) override { return gmpi::MP_FAIL; }
};

const bool registered = gmpi::Register<Plain>::withId(L"T_Plain") && gmpi::Register<Throws>::withId(L"T_Throws") &&
                        gmpi::Register<Legacy>::withId(L"T_Legacy") &&
                        gmpi::Register<RefusesHost>::withId(L"T_RefusesHost");

gmpi::IMpUnknown* makeOther() { return nullptr; }

}  // namespace

TEST(Factory, CreatesBySideAndRefusesTheRest) {
    ASSERT_TRUE(registered);
    MpFactory& f = *Factory();
    void* out = &f;
    EXPECT_EQ(f.createInstance2(L"T_Plain", 0, &out), -2);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(f.createInstance2(L"T_Nope", 2, &out), -2);
    EXPECT_EQ(f.createInstance2(nullptr, 2, &out), -2);
    ASSERT_EQ(f.createInstance2(L"T_Plain", 2, &out), 0);
    auto* object = static_cast<gmpi::IMpUserInterface2B*>(out);
    EXPECT_NE(dynamic_cast<Plain*>(object), nullptr);
    EXPECT_EQ(object->release(), 0);
}

TEST(Factory, ThrowingCreatorOrHostHookGivesMinusOne) {
    MpFactory& f = *Factory();
    void* out = &f;
    EXPECT_EQ(f.createInstance2(L"T_Throws", 2, &out), -1);
    EXPECT_EQ(out, nullptr);

    kxtest::FakeGuiHost host;
    Legacy::fail = false;
    ASSERT_EQ(f.createInstance(L"T_Legacy", 2, host.unknown(), &out), 0);
    EXPECT_EQ(Legacy::seen, host.unknown());
    static_cast<gmpi::IMpUnknown*>(out)->release();

    Legacy::fail = true;
    EXPECT_EQ(f.createInstance(L"T_Legacy", 2, host.unknown(), &out), -1);
    ASSERT_NE(out, nullptr);  // the caller owns what was made
    static_cast<gmpi::IMpUnknown*>(out)->release();
    Legacy::fail = false;

    ASSERT_EQ(f.createInstance(L"T_Plain", 2, host.unknown(), &out), 0);  // no legacy face: no setHost
    static_cast<gmpi::IMpUnknown*>(out)->release();
}

// Only a throw fails the creation: what setHost answers is the module's business.
TEST(Factory, AHostHookThatAnswersFailureWithoutThrowingStillHandsTheObjectOut) {
    kxtest::FakeGuiHost host;
    void* out = nullptr;
    EXPECT_EQ(Factory()->createInstance(L"T_RefusesHost", 0, host.unknown(), &out), 0);
    ASSERT_NE(out, nullptr);
    static_cast<gmpi::IMpUnknown*>(out)->release();
}

TEST(Factory, FirstRegistrationWins) {
    MpFactory& f = *Factory();
    EXPECT_EQ(RegisterPlugin(2, L"T_Plain", &makeOther), 0);
    void* out = nullptr;
    ASSERT_EQ(f.createInstance2(L"T_Plain", 2, &out), 0);
    ASSERT_NE(out, nullptr);
    static_cast<gmpi::IMpUnknown*>(out)->release();
    EXPECT_EQ(RegisterPluginXml("<anything/>"), 0);
}

// The real bundle, loaded the way a host loads it.
class Bundle : public ::testing::Test {
protected:
    void SetUp() override {
        handle = dlopen(KX_BUNDLE_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(handle, nullptr) << dlerror();
        auto entry = reinterpret_cast<MP_GetFactoryFunc>(dlsym(handle, "MP_GetFactory"));
        ASSERT_NE(entry, nullptr);
        void* out = nullptr;
        ASSERT_EQ(entry(&out), 0);
        unknown = static_cast<gmpi::IMpUnknown*>(out);
    }
    void TearDown() override {
        if (handle)
            dlclose(handle);
    }
    void* handle = nullptr;
    gmpi::IMpUnknown* unknown = nullptr;
};

TEST_F(Bundle, AnswersTheFactoryIdentifiersOnly) {
    void* out = nullptr;
    EXPECT_EQ(unknown->queryInterface(gmpi::MP_IID_FACTORY, &out), 0);
    EXPECT_EQ(out, unknown);
    EXPECT_EQ(unknown->queryInterface(gmpi::MP_IID_FACTORY2, &out), 0);
    EXPECT_EQ(unknown->queryInterface(gmpi::MP_IID_UNKNOWN, &out), 0);
    EXPECT_EQ(unknown->queryInterface(gmpi::MP_IID_UI_HOST2, &out), -2);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(unknown->addRef(), 1);
    EXPECT_EQ(unknown->release(), 1);

    unknown->queryInterface(gmpi::MP_IID_FACTORY2, &out);
    auto* factory = static_cast<gmpi::IMpFactory2*>(out);
    int32_t version = 0;
    wchar_t info[64];
    EXPECT_EQ(factory->getSdkInformation(version, 64, info), 0);
    EXPECT_EQ(version, 30800);
    EXPECT_EQ(std::wstring(info), L"GCC Compiler V1002 (Release)");
    wchar_t small[4] = {L'x', L'x', L'x', L'x'};
    factory->getSdkInformation(version, 3, small);  // never writes past what it is told
    EXPECT_EQ(std::wstring(small), L"GC");
    EXPECT_EQ(small[3], L'x');

    EXPECT_EQ(factory->createInstance2(L"KX_NoSuchModule", 2, &out), -2);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->createInstance(L"KX_NoSuchModule", 0, nullptr, &out), -2);
}
