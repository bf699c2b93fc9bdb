#include "audio/HostParameter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kxhost {

namespace {

std::string text32(const std::wstring& s) {
    return std::string(reinterpret_cast<const char*>(s.data()), s.size() * sizeof(wchar_t));
}

bool readText(const void* data, int32_t size, std::wstring& out) {
    if (size < 0 || (size > 0 && !data))
        return false;
    out.assign(static_cast<const wchar_t*>(data), static_cast<size_t>(size) / sizeof(wchar_t));
    return true;
}

bool read4(const void* data, int32_t size, void* out) {
    if (size != 4 || !data)
        return false;
    std::memcpy(out, data, 4);
    return true;
}

}  // namespace

HostParameter::HostParameter(std::string name, ParamType type, double minimum, double maximum, std::wstring menuItems)
    : id_(std::move(name)), type_(type), minimum_(minimum), maximum_(maximum), menuItems_(std::move(menuItems)) {
    if (type_ == ParamType::Bool) {
        minimum_ = 0.0;
        maximum_ = 1.0;
    }
    parseMenu();
    numeric_ = std::clamp(0.0, std::min(minimum_, maximum_), std::max(minimum_, maximum_));
    menuSelection_ = selectionFor(numeric_);
}

void HostParameter::parseMenu() {
    items_.clear();
    size_t start = 0;
    int32_t position = 0;
    while (start < menuItems_.size()) {
        size_t end = menuItems_.find(L',', start);
        if (end == std::wstring::npos)
            end = menuItems_.size();
        std::wstring item = menuItems_.substr(start, end - start);
        int32_t value = position;
        const size_t eq = item.find(L'=');
        if (eq != std::wstring::npos) {
            value = static_cast<int32_t>(std::wcstol(item.c_str() + eq + 1, nullptr, 10));
            item.resize(eq);
        }
        items_.push_back({item, value});
        position = value + 1;
        start = end + 1;
    }
}

int32_t HostParameter::selectionFor(double v) const {
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].value == static_cast<int32_t>(std::lround(v)))
            return static_cast<int32_t>(i);
    return -1;
}

float HostParameter::normalized() const {
    if (maximum_ == minimum_)
        return 0.0f;
    return static_cast<float>(std::clamp((numeric_ - minimum_) / (maximum_ - minimum_), 0.0, 1.0));
}

bool HostParameter::setNumeric(double v) {
    if (std::isnan(v))
        return false;
    if (type_ == ParamType::Int || type_ == ParamType::List)
        v = std::round(v);
    if (type_ == ParamType::Bool)
        v = v != 0.0 ? 1.0 : 0.0;
    // Values outside the range are kept: the range only maps the normalised position.
    if (v == numeric_)
        return false;
    numeric_ = v;
    menuSelection_ = selectionFor(v);
    return true;
}

std::vector<ParamRole> HostParameter::set(ParamRole role, const void* data, int32_t size) {
    std::vector<ParamRole> changed;
    const bool numericType = type_ != ParamType::Text && type_ != ParamType::Blob;
    switch (role) {
        case ParamRole::Value: {
            if (type_ == ParamType::Text || type_ == ParamType::Blob) {
                if (size < 0 || (size > 0 && !data))
                    break;
                std::string fresh(static_cast<const char*>(data), static_cast<size_t>(size));
                if (type_ == ParamType::Text)
                    fresh.resize(fresh.size() - fresh.size() % sizeof(wchar_t));
                // Every write is echoed, changed or not; only a change moves nothing else.
                raw_ = std::move(fresh);
                changed.push_back(ParamRole::Value);
                break;
            }
            double v = numeric_;
            if (type_ == ParamType::Float) {
                float f;
                if (!read4(data, size, &f))
                    break;
                v = f;
            } else if (type_ == ParamType::Bool) {
                if (size < 1 || !data)
                    break;
                const auto* b = static_cast<const unsigned char*>(data);
                v = std::any_of(b, b + std::min(size, 4), [](unsigned char c) { return c != 0; }) ? 1.0 : 0.0;
            } else {
                int32_t i;
                if (!read4(data, size, &i))
                    break;
                v = i;
            }
            const int32_t selection = menuSelection_;
            setNumeric(v);
            changed = {ParamRole::Value, ParamRole::Normalized};
            if (selection != menuSelection_)
                changed.push_back(ParamRole::MenuSelection);
            break;
        }
        case ParamRole::Normalized: {
            float n;
            if (!numericType || !read4(data, size, &n) || std::isnan(n))
                break;
            const int32_t selection = menuSelection_;
            setNumeric(minimum_ + std::clamp(static_cast<double>(n), 0.0, 1.0) * (maximum_ - minimum_));
            changed = {ParamRole::Value, ParamRole::Normalized};
            if (selection != menuSelection_)
                changed.push_back(ParamRole::MenuSelection);
            break;
        }
        case ParamRole::Name:
            if (readText(data, size, name_))
                changed.push_back(ParamRole::Name);
            break;
        case ParamRole::MenuItems:
            if (readText(data, size, menuItems_)) {
                parseMenu();
                menuSelection_ = selectionFor(numeric_);
                changed = {ParamRole::MenuItems, ParamRole::MenuSelection};
            }
            break;
        case ParamRole::MenuSelection: {
            int32_t i;
            if (!read4(data, size, &i))
                break;
            changed.push_back(ParamRole::MenuSelection);
            if (i >= 0 && static_cast<size_t>(i) < items_.size() && numericType) {
                setNumeric(items_[static_cast<size_t>(i)].value);
                changed.push_back(ParamRole::Value);
                changed.push_back(ParamRole::Normalized);
            }
            menuSelection_ = i;
            break;
        }
        case ParamRole::Grab:
            if (size < 1 || !data)
                break;
            grabbed_ = std::any_of(static_cast<const unsigned char*>(data),
                                   static_cast<const unsigned char*>(data) + std::min(size, 4),
                                   [](unsigned char c) { return c != 0; });
            changed.push_back(ParamRole::Grab);
            break;
    }
    return changed;
}

std::string HostParameter::bytes(ParamRole role) const {
    switch (role) {
        case ParamRole::Value:
            switch (type_) {
                case ParamType::Text:
                case ParamType::Blob:
                    return raw_;
                case ParamType::Float: {
                    const auto f = static_cast<float>(numeric_);
                    return std::string(reinterpret_cast<const char*>(&f), 4);
                }
                case ParamType::Bool:
                    return std::string(1, numeric_ != 0.0 ? '\1' : '\0');
                default: {
                    const auto i = static_cast<int32_t>(numeric_);
                    return std::string(reinterpret_cast<const char*>(&i), 4);
                }
            }
        case ParamRole::Normalized: {
            const float n = normalized();
            return std::string(reinterpret_cast<const char*>(&n), 4);
        }
        case ParamRole::Name:
            return text32(name_);
        case ParamRole::MenuItems:
            return text32(menuItems_);
        case ParamRole::MenuSelection:
            return std::string(reinterpret_cast<const char*>(&menuSelection_), 4);
        case ParamRole::Grab:
            return std::string(1, grabbed_ ? '\1' : '\0');
    }
    return {};
}

}  // namespace kxhost
