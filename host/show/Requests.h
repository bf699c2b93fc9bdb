// The host's file dialog and text editor for a user: a GTK file chooser with the module's filters and
// initial file, and a text field laid over the module's rectangle.
#pragma once

#include <gtk/gtk.h>

#include <memory>
#include <vector>

#include "gui/Graphics.h"

namespace kxhost {

class GtkRequests final : public RequestPresenter {
public:
    // overlay holds the panel's drawing area at its origin; text fields are laid over it.
    GtkRequests(Panel& panel, GtkWindow* window, GtkOverlay* overlay);
    // Closes whatever is still shown, without answering.
    ~GtkRequests() override;
    GtkRequests(const GtkRequests&) = delete;
    GtkRequests& operator=(const GtkRequests&) = delete;

    void present(const std::shared_ptr<PendingRequest>& request) override;
    void withdraw(const PendingRequest& request) override;

    // A press on the panel outside an open text field confirms it, as leaving the field would.
    void confirmTextFields();

private:
    struct Shown;
    void showFileDialog(Shown& shown, const FileDialogRequest& request);
    void showTextField(Shown& shown, const TextEditRequest& request);
    // The user ended a request: forget it, close its widget, then hand the answer to the panel.
    static void answered(Shown* shown, const ScriptedAnswer& answer);
    static void onFileResponse(GtkNativeDialog* dialog, int response, gpointer shown);
    static void onActivate(GtkEntry* entry, gpointer shown);
    static gboolean onKey(GtkEventControllerKey* keys, guint keyval, guint keycode, GdkModifierType state,
                          gpointer shown);
    std::unique_ptr<Shown> take(const PendingRequest& request);
    void close(Shown& shown);

    Panel& panel_;
    GtkWindow* window_;
    GtkOverlay* overlay_;
    GtkCssProvider* style_;
    std::vector<std::unique_ptr<Shown>> shown_;
};

}  // namespace kxhost
