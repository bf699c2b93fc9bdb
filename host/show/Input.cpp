#include "show/Input.h"

#include "gmpi/IMpGraphics.h"

namespace kxhost {

int32_t pointerFlags(GdkModifierType state, unsigned button) {
    using namespace gmpi_gui_api;
    struct Map {
        unsigned button;
        GdkModifierType held;
        int32_t flag;
    };
    // The right button is the modules' second, the middle one their third.
    static constexpr Map buttons[] = {{1, GDK_BUTTON1_MASK, GG_POINTER_FLAG_FIRSTBUTTON},
                                      {3, GDK_BUTTON3_MASK, GG_POINTER_FLAG_SECONDBUTTON},
                                      {2, GDK_BUTTON2_MASK, GG_POINTER_FLAG_THIRDBUTTON}};
    int32_t flags = 0;
    for (const Map& m : buttons)
        if (button == m.button || (state & m.held))
            flags |= m.flag;
    if (state & GDK_SHIFT_MASK)
        flags |= GG_POINTER_KEY_SHIFT;
    if (state & GDK_CONTROL_MASK)
        flags |= GG_POINTER_KEY_CONTROL;
    if (state & GDK_ALT_MASK)
        flags |= GG_POINTER_KEY_ALT;
    return flags;
}

}  // namespace kxhost
