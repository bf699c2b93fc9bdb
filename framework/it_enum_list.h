// Parser and iterator of enumeration lists: "range LOW,HIGH", or comma-separated items each optionally
// followed by "=value" (items without one count on from the previous value, starting at 0).
//
//   it_enum_list it(L"a=5,b,c=-2,d");
//   for (it.First(); !it.IsDone(); it.Next()) use(it.CurrentItem()->index, ->id, ->text);
#pragma once

#include <string>

class it_enum_list {
public:
    explicit it_enum_list(const std::wstring& list);

    void First();
    void Next();
    bool IsDone() const { return index == -1; }
    // The current item (this object): index, id and text are its fields.
    const it_enum_list* CurrentItem() const { return this; }

    // Items counted the way menus count them: commas + 1 (0 for an empty list); in range mode
    // |high - low| + 1, even for a range that yields no items.
    int size() const;
    // Move to the item at this position / with this value; false at the end or when the only match is a
    // separator. In range mode both are arithmetic, whatever the size of the range; a position beyond
    // the last an int holds (a range of more than 2^31 values) reads as INT_MAX.
    bool FindIndex(int index);
    bool FindValue(int value);
    // True when the item at the current position is a menu divider ("----", "<<<<", ">>>>", "||||").
    bool IsSeparator() const;
    // True for a "range LOW,HIGH" list: item i is LOW + i, labelled with its value, so callers can reach
    // any item without walking the ones before it.
    bool IsRange() const { return rangeMode_; }

    // The most items anything lists for a person (a menu, a dialog's file types, rows): a list that
    // names more, as a range names billions in a few characters, is cut there, so that listing takes
    // time that grows with the list's text, not with the numbers in it.
    static constexpr int kMostListed = 1000;
    // Calls use(*this) on the items from First() on, at most kMostListed of them; false when the list
    // holds more and was cut.
    template <class Use>
    bool ForEachListed(Use&& use) {
        int listed = 0;
        for (First(); !IsDone(); Next()) {
            if (listed++ == kMostListed)
                return false;
            use(*this);
        }
        return true;
    }

    static bool IsValidValue(const std::wstring& list, int value);
    // value when the list holds it; otherwise the first item's value, or 0 for a list without items.
    static int ForceValidValue(const std::wstring& list, int value);
    // The leading integer of text in the given base (white space and sign allowed), clamped; 0 if none.
    static int StringToInt(const std::wstring& text, int base = 10);

    int index = -1;
    int id = 0;
    std::wstring text;

private:
    // Makes the range item at offset from the first value current; false, and the end as a walk leaves
    // it, outside the range.
    bool setRangeItem(long long offset);
    void showRangeValue(int value);
    // Range mode: the item with value next, or the end when next lies past the last value. The end
    // keeps that value and its text, as callers that read them after the loop expect.
    void stepRange(long long next);

    std::wstring listText_;
    bool rangeMode_ = false;
    int position_ = 0;  // list mode: where the next item begins; range mode: the first value
    int rangeHigh_ = 0;
};
