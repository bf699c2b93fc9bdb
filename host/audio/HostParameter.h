// A host parameter as patch memory sees it: a value with a range and its normalised position, a name,
// menu items and the selection among them, and a grab state. Pins bind to it by role; a write through
// any role updates the parameter and names the roles whose values changed, which the host then
// delivers into every pin bound to them (the writer's own pin included: the host's echo).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kxhost {

enum class ParamRole { Value, Normalized, Name, MenuItems, MenuSelection, Grab };

// The value's type, by the host's datatype codes.
enum class ParamType { List = 0, Text = 1, Bool = 4, Float = 6, Int = 8, Blob = 10 };

class HostParameter {
public:
    // The range applies to int, float and list values; menu items are "name" or "name=value" separated by
    // commas (list values are the items' values; without "=" an item's value is its position).
    HostParameter(std::string name, ParamType type, double minimum = 0.0, double maximum = 1.0,
                  std::wstring menuItems = {});

    const std::string& id() const { return id_; }
    ParamType type() const { return type_; }

    // A pin bound to the role sent these bytes. Returns the roles whose values changed; malformed bytes
    // (the wrong size for the role) change nothing.
    std::vector<ParamRole> set(ParamRole role, const void* data, int32_t size);
    // The bytes a pin of the role receives.
    std::string bytes(ParamRole role) const;

    double numeric() const { return numeric_; }
    float normalized() const;
    const std::wstring& name() const { return name_; }
    const std::wstring& menuItems() const { return menuItems_; }
    int32_t menuSelection() const { return menuSelection_; }
    bool grabbed() const { return grabbed_; }

private:
    struct Item {
        std::wstring text;
        int32_t value;
    };
    bool setNumeric(double v);
    void parseMenu();
    int32_t selectionFor(double v) const;

    std::string id_;
    ParamType type_;
    double minimum_;
    double maximum_;
    double numeric_ = 0.0;
    std::string raw_;  // text and blob values
    std::wstring name_;
    std::wstring menuItems_;
    std::vector<Item> items_;
    int32_t menuSelection_ = -1;
    bool grabbed_ = false;
};

}  // namespace kxhost
