#include <gtest/gtest.h>

#include <dlfcn.h>

#include <fstream>
#include <map>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "MpFactory.h"
#include "logic/CheckValves.h"
#include "logic/Comparators.h"
#include "logic/FixedValues.h"
#include "logic/Splitters.h"
#include "logic/Triggers.h"

namespace {

template <class T>
bool isA(gmpi::IMpUserInterface2B* object) {
    return dynamic_cast<T*>(object) != nullptr;
}

// Every logic identifier of this family group, in registration order, with the class it must create.
const std::vector<std::pair<std::wstring, bool (*)(gmpi::IMpUserInterface2B*)>> kIdentifiers = {
    {L"KX_CmpInt", isA<KX_CmpInt>},
    {L"KX_CmpFloat", isA<KX_CmpFloat>},
    {L"KX_CmpString", isA<KX_CmpString>},
    {L"KX_TriggerInt", isA<KX_TriggerInt>},
    {L"KX_TriggerFloat", isA<KX_TriggerFloat>},
    {L"KX_TriggerString", isA<KX_TriggerString>},
    {L"KX_TriggerBool", isA<KX_TriggerBool>},
    {L"KX_TriggerBlob", isA<KX_TriggerBlob>},
    {L"KX_CheckValveInt", isA<KX_CheckValveInt>},
    {L"KX_CheckValveFloat", isA<KX_CheckValveFloat>},
    {L"KX_CheckValveText", isA<KX_CheckValveText>},
    {L"KX_CheckValveBool", isA<KX_CheckValveBool>},
    {L"KX_CheckValveBlob", isA<KX_CheckValveBlob>},
    {L"KX_Fixed_Int", isA<KX_Fixed_Int>},
    {L"KX_Fixed_Float", isA<KX_Fixed_Float>},
    {L"KX_Fixed_String", isA<KX_Fixed_String>},
    {L"KX_Fixed_Bool", isA<KX_Fixed_Bool>},
    {L"KX_SplitterInt", isA<KX_SplitterInt>},
    {L"KX_SplitterFloat", isA<KX_SplitterFloat>},
    {L"KX_SplitterText", isA<KX_SplitterText>},
    {L"KX_SplitterBool", isA<KX_SplitterBool>},
    {L"KX_SplitterBlob", isA<KX_SplitterBlob>},
    {L"KX_TriggerInt2", isA<KX_TriggerInt2>},
    {L"KX_TriggerFloat2", isA<KX_TriggerFloat2>},
    {L"KX_TriggerString2", isA<KX_TriggerString2>},
    {L"KX_TriggerBool2", isA<KX_TriggerBool2>},
    {L"KX_TriggerBlob2", isA<KX_TriggerBlob2>},
};

gmpi::IMpUserInterface2B* createGui(const std::wstring& id) {
    void* out = nullptr;
    if (Factory()->createInstance2(id.c_str(), gmpi::MP_SUB_TYPE_GUI2, &out) != gmpi::MP_OK)
        return nullptr;
    return static_cast<gmpi::IMpUserInterface2B*>(out);
}

}  // namespace

TEST(LogicRegistry, EveryIdentifierIsAGuiModuleOfItsOwnClass) {
    ASSERT_EQ(kIdentifiers.size(), 27u);
    for (const auto& [id, check] : kIdentifiers) {
        const std::string name = kx::toUtf8(id);
        void* out = &out;
        EXPECT_EQ(Factory()->createInstance2(id.c_str(), 0, &out), gmpi::MP_NOSUPPORT) << name;
        EXPECT_EQ(out, nullptr) << name;

        auto* object = createGui(id);
        ASSERT_NE(object, nullptr) << name;
        EXPECT_TRUE(check(object)) << name << " creates another class";
        EXPECT_EQ(object->release(), 0) << name;
    }
}

// The descriptions beside the module files are what a host reads to wire pins: every pin a module binds
// must be declared at its index with the datatype of its pin object, and nothing else but the splitter's
// host-duplicated extra pin may be declared.
TEST(LogicRegistry, DescriptionsMatchTheBoundPins) {
    const std::map<std::string, int> datatypes = {
        {"text", MP_DT_TEXT}, {"bool", MP_DT_BOOL}, {"float", MP_DT_FLOAT}, {"int", MP_DT_INT}, {"blob", MP_DT_BLOB}};
    std::set<std::wstring> described;
    for (const char* file : {"comparators", "fixed_values", "triggers", "check_valves", "splitters"}) {
        std::ifstream in(std::string(KX_SOURCE_DIR) + "/modules/logic/" + file + ".json");
        ASSERT_TRUE(in) << file;
        const auto doc = nlohmann::json::parse(in);
        for (const auto& module : doc.at("modules")) {
            const std::string id = module.at("id");
            described.insert(kx::fromUtf8(id));
            auto* object = createGui(kx::fromUtf8(id));
            ASSERT_NE(object, nullptr) << id;
            auto* pins = dynamic_cast<GuiPinOwner*>(object);
            ASSERT_NE(pins, nullptr);

            int expectedIndex = 0;
            int bound = 0;
            for (const auto& p : module.at("gui").at("pins")) {
                const int index = p.at("index");
                EXPECT_EQ(index, expectedIndex++) << id << ": pins out of order";
                const std::string direction = p.at("direction");
                EXPECT_TRUE(direction == "in" || direction == "out") << id;
                ASSERT_TRUE(datatypes.count(p.at("datatype"))) << id << " pin " << index;
                if (p.value("autoDuplicate", false)) {
                    EXPECT_EQ(pins->getPin(index), nullptr) << id << ": duplicated pins have no pin object";
                    continue;
                }
                MpGuiPinBase* pin = pins->getPin(index);
                ASSERT_NE(pin, nullptr) << id << " pin " << index << " is not bound";
                EXPECT_EQ(pin->getDatatype(), datatypes.at(p.at("datatype"))) << id << " pin " << index;
                ++bound;
            }
            EXPECT_EQ(pins->nextPinIndex(), bound) << id << " binds pins the description lacks";
            object->release();
        }
    }
    EXPECT_EQ(described.size(), kIdentifiers.size());
}

// The registrations must reach the loadable bundle, not only this test program.
TEST(LogicRegistry, BundleCreatesEveryIdentifier) {
    void* handle = dlopen(KX_BUNDLE_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    using Entry = int32_t (*)(void**);
    auto entry = reinterpret_cast<Entry>(dlsym(handle, "MP_GetFactory"));
    ASSERT_NE(entry, nullptr);
    void* out = nullptr;
    ASSERT_EQ(entry(&out), gmpi::MP_OK);
    void* factory = nullptr;
    ASSERT_EQ(static_cast<gmpi::IMpUnknown*>(out)->queryInterface(gmpi::MP_IID_FACTORY2, &factory), gmpi::MP_OK);
    auto* f = static_cast<gmpi::IMpFactory2*>(factory);
    for (const auto& [id, check] : kIdentifiers) {
        void* object = nullptr;
        ASSERT_EQ(f->createInstance2(id.c_str(), gmpi::MP_SUB_TYPE_GUI2, &object), gmpi::MP_OK) << kx::toUtf8(id);
        static_cast<gmpi::IMpUnknown*>(object)->release();
    }
    dlclose(handle);
}
