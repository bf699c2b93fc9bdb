// Validation of skinned graphic halves: the validation's resource folder holds small film strips, one for
// each pointer response and kind of control and some with odd metadata, and a graphic half with text
// pins gets their names on all those pins, at the start and again now and then. So image widgets meet their
// pointer, hit-test and drawing rounds with a real image loaded, not only with the empty one that hostile
// text leaves them.
#include <cairo.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gmpi/IMpGraphics.h"
#include "gmpi/IMpUserInterface2.h"
#include "validate/Validate.h"

namespace kxhost::validate {

namespace {

struct Skin {
    const char* name;
    int width, height;     // the whole image
    const char* metadata;  // null: no metadata file (the defaults hold)
};

// Frames of 80 x 80 unless said, so that most of the points the graphics rounds pick in a laid-out
// module fall on the image; every pixel's alpha differs from its neighbours', so hit tests by pixel and
// alpha thresholds answer both ways.
const Skin skins[] = {
    {"kxv.png", 80, 320, "type knob\nframe_size 80 80\npadding 0 0 0 0\nmouse_response vertical\n"},
    {"kxh.png", 80, 320, "type knob\nframe_size 80 80\npadding 2 2 3 3\nmouse_response horizontal\n"},
    {"kxc.png", 80, 160, "type button\nframe_size 80 80\npadding 0 0 0 0\nmouse_response click\n"},
    {"kxr.png", 80, 800, "type knob\nframe_size 80 80\npadding 0 0 0 0\nmouse_response rotary\n"},
    {"kxs.png", 80, 240, "type knob\nframe_size 80 80\npadding 0 0 0 0\nmouse_response step\n"},
    {"kxre.png", 80, 160, "frame_size 80 80\nmouse_response reverse\n"},
    {"kxsv.png", 40, 160,
     "type slider\nframe_size 40 80\nhandle_rect 0 0 40 20\nhandle_range 0 60\n"
     "orientation vertical\npadding 0 0 0 0\n"},
    {"kxsh.png", 80, 80,
     "type slider\nframe_size 80 40\nhandle_rect 0 0 20 40\nhandle_range 0 60\n"
     "orientation horizontal\n"},
    {"kxbar.png", 40, 160, "type bargraph\nframe_size 40 80\nsegment 2 4\nsegment_count 5\n"},
    {"kxnone.png", 80, 80, nullptr},
    {"kxflat.png", 80, 80, "frame_size 80 0\nmouse_response step\n"},
    {"kxodd.png", 80, 80,
     "frame_size 2147483647 -7\npadding -100000 100000 2000000000 -5\n"
     "handle_range -2147483648 2147483647\nmouse_response rotary\n"},
};

void writeSkins(const std::filesystem::path& folder) {
    for (const Skin& skin : skins) {
        const auto image = folder / skin.name;
        if (std::filesystem::exists(image))
            continue;
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, skin.width, skin.height);
        cairo_surface_flush(surface);
        unsigned char* data = cairo_image_surface_get_data(surface);
        const int stride = cairo_image_surface_get_stride(surface);
        for (int y = 0; y < skin.height; ++y)
            for (int x = 0; x < skin.width; ++x) {
                const uint32_t alpha = static_cast<uint32_t>(x * 37 + y * 11) & 0xFF;
                const uint32_t pixel =
                    alpha << 24 | (alpha / 2) << 16 | (alpha / 3) << 8 | (alpha / 4);  // premultiplied
                std::memcpy(data + y * stride + x * 4, &pixel, 4);
            }
        cairo_surface_mark_dirty(surface);
        cairo_surface_write_to_png(surface, image.string().c_str());
        cairo_surface_destroy(surface);
        if (skin.metadata)
            std::ofstream(std::filesystem::path(image).replace_extension(".txt")) << skin.metadata;
    }
}

class SkinAspect final : public Aspect {
public:
    void offer(Subject& s, FaceTable&) override {
        if (s.side == Side::Gui)
            writeSkins(s.folder);
    }

    bool attach(Subject& s) override {
        for (const PinInfo& pin : s.pins.pins)
            if (pin.type == Datatype::Text)
                textPins_.push_back(pin.index);
        if (textPins_.empty() || !isGraphic(s))
            return false;
        void* face = nullptr;
        s.call("queryInterface(GUI plug-in 2) for skins",
               [&] { return s.object->queryInterface(gmpi::MP_IID_GUI_PLUGIN2B, &face); });
        gui_ = static_cast<gmpi::IMpUserInterface2B*>(face);
        if (!gui_)
            return false;
        // Every text pin names an image to begin with: the one that is the image's name loads it.
        for (size_t i = 0; i < textPins_.size() && !s.stopped; ++i)
            deliver(s, textPins_[i], skins[i % std::size(skins)]);
        return !s.stopped;
    }

    // Every text pin names an image, so the one that is the image's name surely gets one.
    void round(Subject& s) override {
        for (size_t i = 0; i < textPins_.size() && !s.stopped; ++i)
            deliver(s, textPins_[i], skins[s.pick(static_cast<int>(std::size(skins)))]);
    }

    void detach(Subject& s) override {
        if (gui_)
            s.call("release of the GUI face taken for skins", [&] { return gui_->release(); });
        gui_ = nullptr;
    }

private:
    static bool isGraphic(Subject& s) {
        for (const auto& iid : {gmpi_gui_api::SE_IID_GRAPHICS_MPGUI2, gmpi_gui_api::SE_IID_GRAPHICS_MPGUI}) {
            void* face = nullptr;
            s.call("queryInterface(graphics) for skins", [&] { return s.object->queryInterface(iid, &face); });
            if (face) {
                s.call("release of the graphics face asked for skins",
                       [&] { return static_cast<gmpi::IMpUnknown*>(face)->release(); });
                return true;
            }
        }
        return false;
    }

    void deliver(Subject& s, int32_t pin, const Skin& skin) {
        const std::string name = skin.name;
        const std::wstring text(name.begin(), name.end());
        const auto size = static_cast<int32_t>(text.size() * sizeof(wchar_t));
        const std::string what = "pin " + std::to_string(pin) + " skin " + name;
        s.call("setPin " + what, [&] { return gui_->setPin(pin, 0, size, text.data()); });
        if (!s.stopped)
            s.call("notifyPin " + what, [&] { return gui_->notifyPin(pin, 0); });
    }

    std::vector<int32_t> textPins_;
    gmpi::IMpUserInterface2B* gui_ = nullptr;
};

const bool registered = Aspects::add([] { return std::make_unique<SkinAspect>(); });

}  // namespace

}  // namespace kxhost::validate
