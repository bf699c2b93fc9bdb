#include "patch/Value.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "patch/Text.h"

namespace kxhost {

namespace {
constexpr const char* names[] = {"text", "bool", "float", "int", "blob", "enum", "audio", "midi"};
}

const char* datatypeName(Datatype type) { return names[static_cast<int>(type)]; }

std::optional<Datatype> datatypeFromName(std::string_view name) {
    for (int i = 0; i < static_cast<int>(std::size(names)); ++i)
        if (name == names[i])
            return static_cast<Datatype>(i);
    return std::nullopt;
}

namespace {

// The datatypes grouped by the value they carry.
enum class Kind { Int, Float, Bool, Text, Bytes };

Kind kindOf(Datatype type) {
    switch (type) {
        case Datatype::Int:
        case Datatype::Enum:
            return Kind::Int;
        case Datatype::Float:
        case Datatype::Audio:
            return Kind::Float;
        case Datatype::Bool:
            return Kind::Bool;
        case Datatype::Text:
            return Kind::Text;
        case Datatype::Blob:
        case Datatype::Midi:
            return Kind::Bytes;
    }
    return Kind::Bytes;
}

}  // namespace

Value Value::ofInt(int32_t v, Datatype type) {
    Value r(type);
    r.int_ = v;
    return r;
}

Value Value::ofFloat(float v, Datatype type) {
    Value r(type);
    r.float_ = v;
    return r;
}

Value Value::ofBool(bool v) {
    Value r(Datatype::Bool);
    r.bool_ = v ? 1 : 0;
    return r;
}

Value Value::ofText(std::wstring v) {
    Value r(Datatype::Text);
    if (!v.empty())
        r.text_ = std::make_shared<std::wstring>(std::move(v));
    return r;
}

Value Value::ofBlob(Bytes v, Datatype type) {
    Value r(type);
    if (!v.empty())
        r.blob_ = std::make_shared<Bytes>(std::move(v));
    return r;
}

const std::wstring& Value::text() const {
    static const std::wstring none;
    return text_ ? *text_ : none;
}

const Bytes& Value::blob() const {
    static const Bytes none;
    return blob_ ? *blob_ : none;
}

const void* Value::data() const {
    // Empty text and blobs still point somewhere: zero bytes at a valid address.
    static const wchar_t empty = 0;
    switch (kindOf(type_)) {
        case Kind::Int:
            return &int_;
        case Kind::Float:
            return &float_;
        case Kind::Bool:
            return &bool_;
        case Kind::Text:
            return text_ ? static_cast<const void*>(text_->data()) : &empty;
        case Kind::Bytes:
            return blob_ ? static_cast<const void*>(blob_->data()) : &empty;
    }
    return &empty;
}

int32_t Value::size() const {
    switch (kindOf(type_)) {
        case Kind::Int:
        case Kind::Float:
            return 4;
        case Kind::Bool:
            return 1;
        case Kind::Text:
            return text_ ? static_cast<int32_t>(text_->size() * sizeof(wchar_t)) : 0;
        case Kind::Bytes:
            return blob_ ? static_cast<int32_t>(blob_->size()) : 0;
    }
    return 0;
}

bool Value::decodable(Datatype type, int32_t size, const void* data) {
    if (size < 0 || (size > 0 && data == nullptr))
        return false;
    switch (kindOf(type)) {
        case Kind::Int:
        case Kind::Float:
            return size == 4;
        case Kind::Bool:
            return size == 1 || size == 4;
        case Kind::Text:
            return size % 4 == 0;
        case Kind::Bytes:
            return true;
    }
    return false;
}

std::optional<Value> Value::decode(Datatype type, int32_t size, const void* data, Value&& previous) {
    if (!decodable(type, size, data))
        return std::nullopt;
    const auto* p = static_cast<const uint8_t*>(data);
    switch (kindOf(type)) {
        case Kind::Int: {
            if (size != 4)
                return std::nullopt;
            int32_t v;
            std::memcpy(&v, p, 4);
            return ofInt(v, type);
        }
        case Kind::Float: {
            if (size != 4)
                return std::nullopt;
            float v;
            std::memcpy(&v, p, 4);
            return ofFloat(v, type);
        }
        case Kind::Bool:
            // One byte is what a bool pin sends; four bytes is how some hosts store a bool.
            if (size == 1)
                return ofBool(p[0] != 0);
            if (size == 4) {
                int32_t v;
                std::memcpy(&v, p, 4);
                return ofBool(v != 0);
            }
            return std::nullopt;
        case Kind::Text: {
            if (size % 4 != 0)
                return std::nullopt;
            const size_t count = static_cast<size_t>(size) / 4;
            if (count == 0)
                return ofText({});
            Value r(type);
            r.text_ = previous.text_.use_count() == 1 ? std::move(previous.text_) : std::make_shared<std::wstring>();
            // One pass over the bytes: text in a module's own string is aligned; anything else is copied
            // after the room is made.
            if (reinterpret_cast<uintptr_t>(p) % alignof(wchar_t) == 0) {
                r.text_->assign(reinterpret_cast<const wchar_t*>(p), count);
            } else {
                r.text_->resize(count);
                std::memcpy(r.text_->data(), p, static_cast<size_t>(size));
            }
            return r;
        }
        case Kind::Bytes: {
            if (size == 0)
                return ofBlob({}, type);
            Value r(type);
            r.blob_ = previous.blob_.use_count() == 1 ? std::move(previous.blob_) : std::make_shared<Bytes>();
            r.blob_->assign(p, p + size);
            return r;
        }
    }
    return std::nullopt;
}

Bytes Value::bytes() const {
    const auto* p = static_cast<const uint8_t*>(data());
    return Bytes(p, p + size());
}

std::string quoted(std::string_view s) {
    std::string out = "\"";
    for (char c : s) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\t':
                out += "\\t";
                break;
            case '\r':
                out += "\\r";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char buf[8];
                    std::snprintf(buf, sizeof buf, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
                    out += buf;
                } else {
                    out += c;
                }
        }
    }
    return out + "\"";
}

std::string Value::format() const {
    switch (kindOf(type_)) {
        case Kind::Int:
            return std::to_string(int_);
        case Kind::Bool:
            return bool_ ? "true" : "false";
        case Kind::Text:
            return kxhost::quoted(narrow(text()));
        case Kind::Float: {
            if (std::isnan(float_))
                return "nan";
            if (std::isinf(float_))
                return float_ > 0 ? "inf" : "-inf";
            char buf[32];
            auto r = std::to_chars(buf, buf + sizeof buf, float_);
            std::string s(buf, r.ptr);
            // Keep floats recognisable as floats in a trace.
            if (s.find_first_of(".e") == std::string::npos)
                s += ".0";
            return s;
        }
        case Kind::Bytes: {
            static const char hex[] = "0123456789abcdef";
            const Bytes& b = blob();
            std::string s = "[";
            for (size_t i = 0; i < b.size(); ++i) {
                if (i)
                    s += ' ';
                s += hex[b[i] >> 4];
                s += hex[b[i] & 15];
            }
            return s + "]";
        }
    }
    return "?";
}

bool operator==(const Value& a, const Value& b) {
    const Kind kind = kindOf(a.type_);
    if (kind != kindOf(b.type_))
        return false;
    switch (kind) {
        case Kind::Int:
            return a.int_ == b.int_;
        case Kind::Float:
            return (std::isnan(a.float_) && std::isnan(b.float_)) || a.float_ == b.float_;
        case Kind::Bool:
            return a.bool_ == b.bool_;
        case Kind::Text:
            return a.text_ == b.text_ || a.text() == b.text();
        case Kind::Bytes:
            return a.blob_ == b.blob_ || a.blob() == b.blob();
    }
    return false;
}

}  // namespace kxhost
