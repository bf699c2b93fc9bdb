#include "show/Requests.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace kxhost {

// One request on screen: the widget that shows it, and the request it answers (the panel keeps the
// request itself alive while it is open).
struct GtkRequests::Shown {
    GtkRequests* owner = nullptr;
    const PendingRequest* request = nullptr;
    GtkFileChooserNative* dialog = nullptr;  // one reference, ours
    GtkWidget* field = nullptr;              // a child of the overlay
};

GtkRequests::GtkRequests(Panel& panel, GtkWindow* window, GtkOverlay* overlay)
    : panel_(panel), window_(window), overlay_(overlay), style_(gtk_css_provider_new()) {
    // A text field fits the module's rectangle, however small: no minimum height, no vertical padding.
    gtk_css_provider_load_from_data(style_, "entry.kx-field { min-height: 0; padding-top: 0; padding-bottom: 0; }", -1);
    gtk_style_context_add_provider_for_display(gtk_widget_get_display(GTK_WIDGET(window_)), GTK_STYLE_PROVIDER(style_),
                                               GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    panel_.setPresenter(this);
}

GtkRequests::~GtkRequests() {
    panel_.setPresenter(nullptr);
    for (auto& shown : shown_)
        close(*shown);
    gtk_style_context_remove_provider_for_display(gtk_widget_get_display(GTK_WIDGET(window_)),
                                                  GTK_STYLE_PROVIDER(style_));
    g_object_unref(style_);
}

void GtkRequests::present(const std::shared_ptr<PendingRequest>& request) {
    auto shown = std::make_unique<Shown>();
    shown->owner = this;
    shown->request = request.get();
    const auto details = request->details();
    if (const auto* file = std::get_if<FileDialogRequest>(&details))
        showFileDialog(*shown, *file);
    else
        showTextField(*shown, std::get<TextEditRequest>(details));
    shown_.push_back(std::move(shown));
}

void GtkRequests::withdraw(const PendingRequest& request) {
    if (auto shown = take(request))
        close(*shown);
}

void GtkRequests::confirmTextFields() {
    // Only the fields open now: answering one may show others, or close them.
    std::vector<const PendingRequest*> fields;
    for (const auto& shown : shown_)
        if (shown->field)
            fields.push_back(shown->request);
    for (const PendingRequest* request : fields) {
        auto it = std::find_if(shown_.begin(), shown_.end(), [&](const auto& s) { return s->request == request; });
        if (it != shown_.end())
            answered(it->get(), std::string(gtk_editable_get_text(GTK_EDITABLE((*it)->field))));
    }
}

std::unique_ptr<GtkRequests::Shown> GtkRequests::take(const PendingRequest& request) {
    auto it = std::find_if(shown_.begin(), shown_.end(), [&](const auto& s) { return s->request == &request; });
    if (it == shown_.end())
        return nullptr;
    auto shown = std::move(*it);
    shown_.erase(it);
    return shown;
}

void GtkRequests::close(Shown& shown) {
    if (shown.dialog) {
        g_signal_handlers_disconnect_by_data(shown.dialog, &shown);
        gtk_native_dialog_destroy(GTK_NATIVE_DIALOG(shown.dialog));
        g_object_unref(shown.dialog);
        shown.dialog = nullptr;
    }
    if (shown.field) {
        g_signal_handlers_disconnect_by_data(shown.field, &shown);
        gtk_overlay_remove_overlay(overlay_, shown.field);
        shown.field = nullptr;
    }
}

void GtkRequests::answered(Shown* shown, const ScriptedAnswer& answer) {
    GtkRequests& self = *shown->owner;
    const PendingRequest& request = *shown->request;
    auto mine = self.take(request);
    self.close(*mine);
    // The module's completion may show the next request; nothing of ours is in use any more.
    self.panel_.complete(request, answer);
}

// ---- the file dialog

void GtkRequests::showFileDialog(Shown& shown, const FileDialogRequest& request) {
    shown.dialog =
        gtk_file_chooser_native_new(request.save ? "Save file" : "Open file", window_,
                                    request.save ? GTK_FILE_CHOOSER_ACTION_SAVE : GTK_FILE_CHOOSER_ACTION_OPEN,
                                    request.save ? "_Save" : "_Open", "_Cancel");
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(shown.dialog);
    for (const auto& f : request.filters) {
        std::string extension = f.extension;
        extension.erase(0, std::min(extension.find_first_not_of("*."), extension.size()));
        GtkFileFilter* filter = gtk_file_filter_new();
        if (extension.empty()) {
            gtk_file_filter_add_pattern(filter, "*");
            gtk_file_filter_set_name(filter, f.description.empty() ? "All files" : f.description.c_str());
        } else {
            gtk_file_filter_add_suffix(filter, extension.c_str());
            const std::string name = f.description.empty() ? "*." + extension : f.description;
            gtk_file_filter_set_name(filter, name.c_str());
        }
        gtk_file_chooser_add_filter(chooser, filter);
        g_object_unref(filter);
    }

    // The initial file: a folder to open in and a name to propose (save) or select (open). A name
    // with a folder of its own brings that folder when none is given.
    const std::filesystem::path name = request.initialName;
    std::filesystem::path folder = request.initialFolder;
    if (folder.empty() && name.has_parent_path())
        folder = name.parent_path();
    std::error_code ec;
    const std::filesystem::path file = folder / name.filename();
    if (!request.save && !name.filename().empty() && std::filesystem::is_regular_file(file, ec)) {
        GFile* f = g_file_new_for_path(file.c_str());
        gtk_file_chooser_set_file(chooser, f, nullptr);  // its folder, with it selected
        g_object_unref(f);
    } else if (!folder.empty() && std::filesystem::is_directory(folder, ec)) {
        GFile* f = g_file_new_for_path(folder.c_str());
        gtk_file_chooser_set_current_folder(chooser, f, nullptr);
        g_object_unref(f);
    }
    if (request.save && !name.filename().empty())
        gtk_file_chooser_set_current_name(chooser, name.filename().c_str());
    g_signal_connect(shown.dialog, "response", G_CALLBACK(onFileResponse), &shown);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(shown.dialog));
}

void GtkRequests::onFileResponse(GtkNativeDialog* dialog, int response, gpointer data) {
    ScriptedAnswer answer;
    if (response == GTK_RESPONSE_ACCEPT) {
        if (GFile* file = gtk_file_chooser_get_file(GTK_FILE_CHOOSER(dialog))) {
            if (char* path = g_file_get_path(file)) {
                answer = std::string(path);
                g_free(path);
            }
            g_object_unref(file);
        }
    }
    answered(static_cast<Shown*>(data), answer);
}

// ---- the text field

void GtkRequests::showTextField(Shown& shown, const TextEditRequest& request) {
    const auto& r = request.rect;
    GtkWidget* field = gtk_entry_new();
    shown.field = field;
    gtk_widget_add_css_class(field, "kx-field");
    gtk_editable_set_text(GTK_EDITABLE(field), request.text.c_str());
    gtk_editable_set_width_chars(GTK_EDITABLE(field), 1);
    // The module's alignment: leading, trailing or centred.
    const float xalign = request.alignment == 1 ? 1.0f : request.alignment == 2 ? 0.5f : 0.0f;
    gtk_editable_set_alignment(GTK_EDITABLE(field), xalign);
    if (request.textSize > 0) {
        PangoAttrList* attributes = pango_attr_list_new();
        pango_attr_list_insert(attributes,
                               pango_attr_size_new_absolute(static_cast<int>(request.textSize * PANGO_SCALE)));
        gtk_entry_set_attributes(GTK_ENTRY(field), attributes);
        pango_attr_list_unref(attributes);
    }
    // Over the module's rectangle: the drawing area lies at the overlay's origin, in panel units.
    gtk_widget_set_halign(field, GTK_ALIGN_START);
    gtk_widget_set_valign(field, GTK_ALIGN_START);
    gtk_widget_set_margin_start(field, std::max(0, static_cast<int>(r.left)));
    gtk_widget_set_margin_top(field, std::max(0, static_cast<int>(r.top)));
    gtk_widget_set_size_request(field, std::max(1, static_cast<int>(r.right - r.left)),
                                std::max(1, static_cast<int>(r.bottom - r.top)));
    g_signal_connect(field, "activate", G_CALLBACK(onActivate), &shown);
    GtkEventController* keys = gtk_event_controller_key_new();
    g_signal_connect(keys, "key-pressed", G_CALLBACK(onKey), &shown);
    gtk_widget_add_controller(field, keys);
    gtk_overlay_add_overlay(overlay_, field);
    gtk_widget_grab_focus(field);
    gtk_editable_select_region(GTK_EDITABLE(field), 0, -1);
}

void GtkRequests::onActivate(GtkEntry* entry, gpointer data) {
    answered(static_cast<Shown*>(data), std::string(gtk_editable_get_text(GTK_EDITABLE(entry))));
}

gboolean GtkRequests::onKey(GtkEventControllerKey*, guint keyval, guint, GdkModifierType, gpointer data) {
    if (keyval != GDK_KEY_Escape)
        return FALSE;
    answered(static_cast<Shown*>(data), std::nullopt);
    return TRUE;
}

}  // namespace kxhost
