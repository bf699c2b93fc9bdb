// The file modules' shared pieces: path bytes and pin text, and file names resolved by the host.
#include <gtest/gtest.h>

#include <cwchar>
#include <optional>
#include <string>

#include "FakeGuiHost.h"
#include "convert/FilePaths.h"

namespace {

// Fills the whole buffer it is given and leaves no terminator, as a careless host may.
struct OverfillingHost : kxtest::FakeGuiHost {
    int32_t resolveFilename(const wchar_t*, int32_t maxChars, wchar_t* out) override {
        std::wmemset(out, L'x', static_cast<size_t>(maxChars));
        return gmpi::MP_OK;
    }
};

}  // namespace

TEST(FilePaths, ResolvedNamesStayInsideTheBufferAndNoFirstGenerationHostMeansNoAnswer) {
    OverfillingHost overfilling;
    const std::optional<std::wstring> cut = kx::resolveFileName(overfilling.unknown(), L"a.txt");
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->size(), 499u);

    kxtest::FakeGuiHost secondGenerationOnly;
    secondGenerationOnly.offerFirstGeneration = false;
    EXPECT_FALSE(kx::resolveFileName(secondGenerationOnly.unknown(), L"a.txt"));
    EXPECT_FALSE(kx::resolveFileName(nullptr, L"a.txt"));
}

TEST(FilePaths, OddBytesOnDiskShowAsReplacementsAndTextWithoutCodePointsNamesNoPath) {
    EXPECT_EQ(kx::pathText("a\xff/b\xc3\xa9"), L"a\uFFFD/b\u00e9");
    EXPECT_EQ(kx::pathBytes(L"/b\u00e9"), std::optional<std::string>("/b\xc3\xa9"));
    EXPECT_FALSE(kx::pathBytes(std::wstring(1, static_cast<wchar_t>(0xD800))));
}
