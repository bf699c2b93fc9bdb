#include "it_enum_list.h"

#include <climits>
#include <cstdio>

namespace {

bool isSpace(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\v' || c == L'\f' || c == L'\r'; }

int digitValue(wchar_t c) {
    if (c >= L'0' && c <= L'9')
        return c - L'0';
    if (c >= L'a' && c <= L'z')
        return c - L'a' + 10;
    if (c >= L'A' && c <= L'Z')
        return c - L'A' + 10;
    return 99;
}

}  // namespace

int it_enum_list::StringToInt(const std::wstring& text, int base) {
    if (base < 2 || base > 36)
        base = 10;
    size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == L'+' || text[i] == L'-'))
        negative = text[i++] == L'-';
    if (base == 16 && i + 1 < text.size() && text[i] == L'0' && (text[i + 1] == L'x' || text[i + 1] == L'X') &&
        i + 2 < text.size() && digitValue(text[i + 2]) < 16)
        i += 2;
    long long value = 0;
    for (; i < text.size() && digitValue(text[i]) < base; ++i) {
        value = value * base + digitValue(text[i]);
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative)
        value = -value;
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

it_enum_list::it_enum_list(const std::wstring& list) : listText_(list) {
    rangeMode_ = listText_.compare(0, 5, L"range") == 0 && listText_.size() >= 5;
    if (!rangeMode_)
        return;
    // The sixth character (normally a space) is skipped unexamined.
    const std::wstring rangeText = listText_.size() > 6 ? listText_.substr(6) : std::wstring();
    position_ = StringToInt(rangeText);
    const size_t comma = rangeText.find(L',');
    rangeHigh_ = StringToInt(comma == std::wstring::npos ? rangeText : rangeText.substr(comma + 1));
}

void it_enum_list::First() {
    index = -1;
    if (rangeMode_) {
        stepRange(position_);
        return;
    }
    position_ = 0;
    id = -1;
    Next();
}

void it_enum_list::showRangeValue(int value) {
    id = value;
    wchar_t buffer[16];
    std::swprintf(buffer, 16, L"%d", id);
    text = buffer;
}

void it_enum_list::stepRange(long long next) {
    // Positions past the largest int (a range of more than 2^31 values) read as INT_MAX.
    index = index == INT_MAX ? INT_MAX : index + 1;
    // Past the largest int there is no next value to show: the end stays on the last one.
    if (next > INT_MAX) {
        index = -1;
        return;
    }
    showRangeValue(static_cast<int>(next));
    if (id > rangeHigh_)
        index = -1;
}

bool it_enum_list::setRangeItem(long long offset) {
    const long long value = static_cast<long long>(position_) + offset;
    if (offset < 0 || value > rangeHigh_) {
        // Where a walk to the end would have left the list.
        const long long after = position_ > rangeHigh_ ? position_ : static_cast<long long>(rangeHigh_) + 1;
        showRangeValue(after > INT_MAX ? INT_MAX : static_cast<int>(after));
        index = -1;
        return false;
    }
    index = offset > INT_MAX ? INT_MAX : static_cast<int>(offset);
    showRangeValue(static_cast<int>(value));
    return true;
}

void it_enum_list::Next() {
    if (rangeMode_) {
        stepRange(static_cast<long long>(id) + 1);
        return;
    }

    ++index;
    id = id == INT_MAX ? INT_MIN : id + 1;
    if (static_cast<size_t>(position_) >= listText_.size()) {
        index = -1;
        return;
    }
    size_t end = listText_.find(L',', static_cast<size_t>(position_));
    const size_t itemEnd = end == std::wstring::npos ? listText_.size() : end;
    std::wstring item = listText_.substr(static_cast<size_t>(position_), itemEnd - static_cast<size_t>(position_));
    position_ = static_cast<int>(end == std::wstring::npos ? listText_.size() : end + 1);

    const size_t eq = item.find(L'=');
    if (eq != std::wstring::npos) {
        id = StringToInt(item.substr(eq + 1));
        item.resize(eq);
    }
    size_t first = 0;
    while (first < item.size() && isSpace(item[first]))
        ++first;
    size_t last = item.size();
    while (last > first && isSpace(item[last - 1]))
        --last;
    text = item.substr(first, last - first);
}

int it_enum_list::size() const {
    if (rangeMode_) {
        const long long span = static_cast<long long>(rangeHigh_) - position_;
        const long long n = (span < 0 ? -span : span) + 1;
        return n > INT_MAX ? INT_MAX : static_cast<int>(n);
    }
    if (listText_.empty())
        return 0;
    int commas = 0;
    for (wchar_t c : listText_)
        commas += c == L',';
    return commas + 1;
}

bool it_enum_list::IsSeparator() const {
    if (text.size() < 4)
        return false;
    const wchar_t c = text[0];
    if (c != L'-' && c != L'<' && c != L'>' && c != L'|')
        return false;
    return text[1] == c && text[2] == c && text[3] == c;
}

bool it_enum_list::FindIndex(int wanted) {
    if (rangeMode_)
        return setRangeItem(wanted);  // a range holds no separators
    for (First(); !IsDone(); Next()) {
        if (index == wanted && !IsSeparator())
            return true;
    }
    return false;
}

bool it_enum_list::FindValue(int value) {
    if (rangeMode_)
        return value >= position_ && setRangeItem(static_cast<long long>(value) - position_);
    for (First(); !IsDone(); Next()) {
        if (id == value && !IsSeparator())
            return true;
    }
    return false;
}

bool it_enum_list::IsValidValue(const std::wstring& list, int value) {
    it_enum_list it(list);
    return it.FindValue(value);
}

int it_enum_list::ForceValidValue(const std::wstring& list, int value) {
    it_enum_list it(list);
    if (it.FindValue(value))
        return value;
    it.First();
    return it.IsDone() ? 0 : it.id;
}
