// Pin values as the host sees them: a datatype and the value, turned into and out of the bytes that
// cross the module boundary (int and float: 4 bytes, bool: 1 byte, text: 32-bit code points without a
// terminator, blob: raw bytes).
//
// Text and blob contents are shared, immutable: copying a Value is O(1) whatever its size, so a value
// on its way through echo, parameters and wires is read from one buffer, and the only copies of it are
// the ones the receiving modules make.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kxhost {

enum class Datatype { Text, Bool, Float, Int, Blob, Enum, Audio, Midi };

// The description's spelling ("text", "bool", ...), and back; nullopt for an unknown name.
const char* datatypeName(Datatype type);
std::optional<Datatype> datatypeFromName(std::string_view name);

using Bytes = std::vector<uint8_t>;

class Value {
public:
    // The zero of a datatype: 0, 0.0, false, empty text, empty blob.
    explicit Value(Datatype type = Datatype::Int) : type_(type) {}

    static Value ofInt(int32_t v, Datatype type = Datatype::Int);
    static Value ofFloat(float v, Datatype type = Datatype::Float);
    static Value ofBool(bool v);
    static Value ofText(std::wstring v);
    static Value ofBlob(Bytes v, Datatype type = Datatype::Blob);

    // Reads what a module sent (one copy of text and blob contents). A size the datatype cannot hold (an
    // int of 3 bytes, text of 6 bytes, a negative size, null data with a size) gives nullopt: such a
    // transmission is refused, not guessed at. previous is a value about to be dropped: when nothing else
    // shares its contents, the new ones are written into its room instead of fresh memory.
    static std::optional<Value> decode(Datatype type, int32_t size, const void* data, Value&& previous = Value());
    // Whether decode would take these bytes.
    static bool decodable(Datatype type, int32_t size, const void* data);

    Datatype type() const { return type_; }
    // The field of the value's datatype is the value; the others stay at zero.
    int32_t asInt() const { return int_; }
    float asFloat() const { return float_; }
    bool asBool() const { return bool_ != 0; }
    const std::wstring& text() const;
    const Bytes& blob() const;

    // The bytes a pin receives, in place: valid while this value (or a copy of it) lives.
    const void* data() const;
    int32_t size() const;
    // The same bytes, copied.
    Bytes bytes() const;
    // The value as a patch file would write it: 5, 1.5, true, "text", [00 ff].
    std::string format() const;

    // Values of datatypes that carry the same bytes (int and enum, float and audio, blob and midi)
    // compare by value. Floats compare as numbers, except that NaN equals NaN: a patch can expect a NaN.
    friend bool operator==(const Value& a, const Value& b);

private:
    Datatype type_;
    int32_t int_ = 0;
    float float_ = 0.0f;
    uint8_t bool_ = 0;  // the one byte a bool pin receives
    // Never changed once shared; written only while this value is their one owner (decode).
    std::shared_ptr<std::wstring> text_;
    std::shared_ptr<Bytes> blob_;
};

// Quotes text for a patch file or a trace: "a \"b\"\n".
std::string quoted(std::string_view utf8);

}  // namespace kxhost
