#include "Value.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "Text.h"

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

Value::Value(Datatype type) : type_(type) {
    switch (type) {
        case Datatype::Text: storage_ = std::wstring(); break;
        case Datatype::Bool: storage_ = false; break;
        case Datatype::Float:
        case Datatype::Audio: storage_ = 0.0f; break;
        case Datatype::Int:
        case Datatype::Enum: storage_ = int32_t{0}; break;
        case Datatype::Blob:
        case Datatype::Midi: storage_ = Bytes(); break;
    }
}

std::optional<Value> Value::decode(Datatype type, int32_t size, const void* data) {
    if (size < 0 || (size > 0 && data == nullptr))
        return std::nullopt;
    const auto* p = static_cast<const uint8_t*>(data);
    switch (type) {
        case Datatype::Int:
        case Datatype::Enum: {
            if (size != 4)
                return std::nullopt;
            int32_t v;
            std::memcpy(&v, p, 4);
            return Value(type, v);
        }
        case Datatype::Float:
        case Datatype::Audio: {
            if (size != 4)
                return std::nullopt;
            float v;
            std::memcpy(&v, p, 4);
            return Value(type, v);
        }
        case Datatype::Bool:
            // One byte is what a bool pin sends; four bytes is how some hosts store a bool.
            if (size == 1)
                return Value(type, p[0] != 0);
            if (size == 4) {
                int32_t v;
                std::memcpy(&v, p, 4);
                return Value(type, v != 0);
            }
            return std::nullopt;
        case Datatype::Text: {
            if (size % 4 != 0)
                return std::nullopt;
            std::wstring text(static_cast<size_t>(size) / 4, L'\0');
            if (size > 0)
                std::memcpy(text.data(), p, static_cast<size_t>(size));
            return Value(type, std::move(text));
        }
        case Datatype::Blob:
        case Datatype::Midi: return Value(type, Bytes(p, p + size));
    }
    return std::nullopt;
}

Bytes Value::bytes() const {
    return std::visit(
        [](const auto& v) -> Bytes {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, bool>) {
                return Bytes{static_cast<uint8_t>(v ? 1 : 0)};
            } else if constexpr (std::is_same_v<T, std::wstring>) {
                Bytes b(v.size() * sizeof(wchar_t));
                if (!b.empty())
                    std::memcpy(b.data(), v.data(), b.size());
                return b;
            } else if constexpr (std::is_same_v<T, Bytes>) {
                return v;
            } else {
                Bytes b(sizeof v);
                std::memcpy(b.data(), &v, sizeof v);
                return b;
            }
        },
        storage_);
}

std::string quoted(std::string_view s) {
    std::string out = "\"";
    for (char c : s) {
        switch (c) {
            case '"': out += "\\\""; break;
            case '\\': out += "\\\\"; break;
            case '\n': out += "\\n"; break;
            case '\t': out += "\\t"; break;
            case '\r': out += "\\r"; break;
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
    return std::visit(
        [](const auto& v) -> std::string {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, bool>) {
                return v ? "true" : "false";
            } else if constexpr (std::is_same_v<T, int32_t>) {
                return std::to_string(v);
            } else if constexpr (std::is_same_v<T, float>) {
                if (std::isnan(v))
                    return "nan";
                if (std::isinf(v))
                    return v > 0 ? "inf" : "-inf";
                char buf[32];
                auto r = std::to_chars(buf, buf + sizeof buf, v);
                std::string s(buf, r.ptr);
                // Keep floats recognisable as floats in a trace.
                if (s.find_first_of(".e") == std::string::npos)
                    s += ".0";
                return s;
            } else if constexpr (std::is_same_v<T, std::wstring>) {
                return kxhost::quoted(narrow(v));
            } else {
                static const char hex[] = "0123456789abcdef";
                std::string s = "[";
                for (size_t i = 0; i < v.size(); ++i) {
                    if (i)
                        s += ' ';
                    s += hex[v[i] >> 4];
                    s += hex[v[i] & 15];
                }
                return s + "]";
            }
        },
        storage_);
}

bool operator==(const Value& a, const Value& b) {
    if (a.storage_.index() != b.storage_.index())
        return false;
    if (const auto* x = std::get_if<float>(&a.storage_)) {
        const float y = std::get<float>(b.storage_);
        return (std::isnan(*x) && std::isnan(y)) || *x == y;
    }
    return a.storage_ == b.storage_;
}

}  // namespace kxhost
