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

