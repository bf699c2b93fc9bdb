// Pin values: the bytes a module receives, and copies that share their contents.
#include <gtest/gtest.h>

#include <cstring>

#include "patch/Value.h"

using kxhost::Bytes;
using kxhost::Datatype;
using kxhost::Value;

TEST(Value, CopiesShareTextAndTheViewIsTheBytesAPinReceives) {
    const Value text = Value::ofText(std::wstring(1000, L'x'));
    const Value copy = text;
    EXPECT_EQ(copy.data(), text.data()) << "a copy on its way through wires is not a second buffer";
    EXPECT_EQ(copy.size(), 4000);
    const Value empty = Value::ofText(L"");
    EXPECT_NE(empty.data(), nullptr) << "zero bytes at a valid address";
    EXPECT_EQ(empty.size(), 0);
    const Value flag = Value::ofBool(true);
    ASSERT_EQ(flag.size(), 1);
    EXPECT_EQ(*static_cast<const uint8_t*>(flag.data()), 1);
}

TEST(Value, TextDecodesTheSameFromAnyAlignment) {
    const std::wstring word = L"caf\u00e9";
    std::vector<uint8_t> buffer(word.size() * 4 + 1);
    std::memcpy(buffer.data() + 1, word.data(), word.size() * 4);  // one byte off a wchar_t boundary
    const auto odd = Value::decode(Datatype::Text, static_cast<int32_t>(word.size() * 4), buffer.data() + 1);
    ASSERT_TRUE(odd.has_value());
    EXPECT_EQ(odd->text(), word);
    EXPECT_FALSE(Value::decode(Datatype::Text, 6, buffer.data()).has_value());
    EXPECT_EQ(Value::decode(Datatype::Blob, 0, nullptr)->bytes(), Bytes{});
}
