#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "FakeGuiHost.h"
#include "GmpiGui.h"
#include "HostedModule.h"
#include "TempFolder.h"
#include "TextCodec.h"
#include "convert/FilePick.h"
#include "gmpi/IMpCompletionHandler.h"
#include "gmpi/IMpGraphicsHost.h"
#include "gmpi/IMpPlatformFileDialog.h"
#include "it_enum_list.h"

namespace fs = std::filesystem;
using kxtest::Hosted;
namespace P = kx::filebrowser;
namespace R = kx::filereq;

namespace {

std::wstring wide(const fs::path& p) { return kx::fromUtf8(p.native()); }

std::vector<std::wstring> items(const std::wstring& list) {
    std::vector<std::wstring> out;
    size_t start = 0;
    for (;;) {
        const size_t comma = list.find(L',', start);
        out.push_back(list.substr(start, comma - start));
        if (comma == std::wstring::npos)
            return out;
        start = comma + 1;
    }
}

int indexOf(const std::wstring& list, const std::wstring& item) {
    const auto all = items(list);
    const auto it = std::find(all.begin(), all.end(), item);
    return it == all.end() ? -1 : static_cast<int>(it - all.begin());
}

struct Browser : Hosted<KX_FileBrowser> {
    kxtest::TempFolder dir;

    Browser() { host.resourceFolder = wide(dir.path()) + L"/"; }
    void mkdir(const std::string& name) const { fs::create_directories(dir / name); }
    void file(const std::string& name) const { dir.write(name, "x"); }
    std::wstring list() const { return module.itemList.getValue(); }
    std::wstring path(const std::string& name) const { return wide(dir / name); }
    void open(const fs::path& folder) { sendText(P::Folder, wide(folder)); }
};

}  // namespace

// The comma goes out before an entry is examined and a rejected file clears the flag: accepted items
// are joined by single commas, and the list ends with one comma exactly when a rejected file comes
// after the last accepted one in the system's order, which the test reads back from the folder.
TEST(FileBrowser, RejectedFilesLeaveOneTrailingCommaOnlyAfterTheLastAccepted) {
    Browser b;
    for (const char* name : {"a.wav", "b.txt", "c.txt", "d.wav", "e.WAV", "f"})
        b.file(name);
    b.mkdir("g.txt");  // folders pass any filter
    b.sendText(P::Extension, L"wav");
    b.open(b.dir.path());

    std::wstring expected;
    bool rejectedAfterLast = false;
    for (const auto& e : fs::directory_iterator(b.dir.path())) {
        const std::string name = e.path().filename().string();
        const bool accepted = e.is_directory() || e.path().extension() == ".wav";
        if (accepted) {
            expected += (expected.empty() ? L"" : L",") + kx::fromUtf8(name) + (e.is_directory() ? L"/" : L"");
            rejectedAfterLast = false;
        } else if (!expected.empty()) {
            rejectedAfterLast = true;
        }
    }
    if (rejectedAfterLast)
        expected += L",";
    EXPECT_EQ(b.list(), expected);
}

TEST(FileBrowser, ItemNamesKeepTheListShapeAndEntriesKeepTheirTruePaths) {
    Browser b;
    b.file("x,y.wav");
    b.open(b.dir.path());
    EXPECT_EQ(b.list(), L"x_y.wav");
    b.send(P::Choice, 0);
    EXPECT_EQ(b.module.chosenFile.getValue(), b.path("x,y.wav"));
}

TEST(FileBrowser, HidingExtensionsCutsFoldersAndHiddenFilesToo) {
    Browser b;
    b.mkdir("a.b");
    b.open(b.dir.path());
    EXPECT_EQ(b.list(), L"a.b/");
    b.send(P::HideExtensions, true);
    b.send(P::Rescan, true);
    EXPECT_EQ(b.list(), L"a/");

    Browser hidden;
    hidden.file(".profile");
    hidden.send(P::HideExtensions, true);
    hidden.open(hidden.dir.path());
    EXPECT_EQ(hidden.list(), L"");  // listed (one entry) with its whole name cut away
    hidden.send(P::Choice, 0);
    EXPECT_EQ(hidden.module.chosenFile.getValue(), hidden.path(".profile"));
}

TEST(FileBrowser, FilterChangesOnlyAtTheNextListing) {
    Browser b;
    b.file("a.txt");
    b.open(b.dir.path());
    b.sendText(P::Extension, L"wav");
    EXPECT_EQ(b.list(), L"a.txt");
    b.send(P::Rescan, true);
    EXPECT_EQ(b.list(), L"");
    b.send(P::Rescan, false);
    b.sendText(P::Extension, L"");
    b.send(P::Rescan, true);
    EXPECT_EQ(b.list(), L"a.txt");
}

TEST(FileBrowser, StepsIntoAChosenFolderAndBackUp) {
    Browser b;
    b.mkdir("sub");
    b.file("sub/inner.wav");
    b.file("top.wav");
    b.open(b.dir.path());
    const int sub = indexOf(b.list(), L"sub/");
    ASSERT_GE(sub, 0);

    b.send(P::Choice, sub);
    EXPECT_EQ(b.module.folder.getValue(), b.path("sub"));
    EXPECT_EQ(b.list(), L"inner.wav");
    EXPECT_EQ(b.module.choice.getValue(), sub) << "entering a folder leaves the choice alone";

    b.host.sent.clear();
    b.send(P::Parent, true);
    EXPECT_EQ(b.module.folder.getValue(), wide(b.dir.path()));
    ASSERT_EQ(b.host.on(P::Choice).size(), 1u);
    EXPECT_EQ(b.host.on(P::Choice)[0].asInt(), -1);
    EXPECT_GE(indexOf(b.list(), L"top.wav"), 0);

    // Only the rising value steps up.
    b.send(P::Parent, false);
    EXPECT_EQ(b.module.folder.getValue(), wide(b.dir.path()));
}

TEST(FileBrowser, ParentOfATrailingSeparatorIsTheSameFolderAndARootIsItsOwnParent) {
    Browser b;
    b.mkdir("sub");
    b.file("sub/inner.wav");
    b.open(b.dir / "sub/");
    EXPECT_EQ(b.list(), L"inner.wav");
    b.send(P::Parent, true);
    EXPECT_EQ(b.module.folder.getValue(), b.path("sub"));
    EXPECT_EQ(b.list(), L"inner.wav");

    Hosted<KX_FileBrowser> root;
    root.sendText(P::Folder, L"/");
    root.send(P::Parent, true);
    EXPECT_EQ(root.module.folder.getValue(), L"/");
    EXPECT_FALSE(root.module.itemList.getValue().empty());
}

TEST(FileBrowser, ChoosesFilesByIndexAndByWritingTheirPath) {
    Browser b;
    b.file("one.wav");
    b.file("two.wav");
    b.open(b.dir.path());
    const int two = indexOf(b.list(), L"two.wav");
    const int one = 1 - two;

    b.send(P::Choice, two);
    EXPECT_EQ(b.module.chosenFile.getValue(), b.path("two.wav"));

    b.host.sent.clear();
    b.sendText(P::ChosenFile, b.path("one.wav"));
    ASSERT_EQ(b.host.on(P::Choice).size(), 1u);
    EXPECT_EQ(b.host.on(P::Choice)[0].asInt(), one);

    // Out of range and unknown paths change nothing.
    b.host.sent.clear();
    b.send(P::Choice, 2);
    b.send(P::Choice, -5);
    b.sendText(P::ChosenFile, b.path("three.wav"));
    EXPECT_TRUE(b.host.sent.empty());
}

TEST(FileBrowser, AFolderTextNamingAFileChoosesItInItsFolder) {
    Browser b;
    b.mkdir("sub");
    b.file("sub/a.wav");
    b.file("sub/b.wav");
    b.open(b.dir / "sub" / "b.wav");
    EXPECT_EQ(b.module.chosenFile.getValue(), b.path("sub/b.wav"));
    EXPECT_EQ(b.module.folder.getValue(), b.path("sub"));
    EXPECT_EQ(b.module.choice.getValue(), indexOf(b.list(), L"b.wav"));
}

TEST(FileBrowser, MissingFoldersListNothingAndRelativeOnesAreTriedInTheResourceFolder) {
    Browser b;
    b.mkdir("skins/dark");
    b.file("skins/dark/knob.png");
    b.send(P::Choice, 3);  // not touched by a missing folder

    b.open(b.dir / "nowhere");
    EXPECT_EQ(b.list(), L"");
    EXPECT_EQ(b.module.choice.getValue(), 3);
    b.send(P::Choice, 0);
    EXPECT_TRUE(b.module.chosenFile.getValue().empty()) << "no entries are left from before";

    b.sendText(P::Folder, L"skins/dark");
    EXPECT_EQ(b.list(), L"knob.png");

    // An empty folder text is the resource folder itself.
    b.sendText(P::Folder, L"");
    EXPECT_EQ(b.list(), L"skins/");
}

TEST(FileBrowser, HostEchoOfItsOwnWritesSettlesOnTheChosenFolder) {
    Browser b;
    b.echoTransmissions();
    b.mkdir("sub");
    b.file("sub/inner.wav");
    b.open(b.dir.path());
    b.send(P::Choice, 0);
    EXPECT_EQ(b.module.folder.getValue(), b.path("sub"));
    EXPECT_EQ(b.list(), L"inner.wav");
    b.send(P::Choice, 0);
    EXPECT_EQ(b.module.chosenFile.getValue(), b.path("sub/inner.wav"));
    EXPECT_EQ(b.module.choice.getValue(), 0);
}

TEST(FileBrowser, NamesThatAreNotUtf8AreListedWithoutFailing) {
    Browser b;
    b.file("bad\xff.wav");
    if (!fs::exists(b.dir / "bad\xff.wav"))
        GTEST_SKIP() << "this file system takes only UTF-8 names";
    b.open(b.dir.path());
    EXPECT_EQ(b.list(), L"bad\uFFFD.wav");
    // Folder text with values that are not code points is ignored.
    b.sendText(P::Folder, std::wstring(1, static_cast<wchar_t>(0xD800)));
    EXPECT_EQ(b.list(), L"bad\uFFFD.wav");
}

// ---- the requester

namespace {

// A host dialog that remembers what it was told and completes when the test says so.
class ScriptedDialog final : public gmpi_gui::IMpPlatformFileDialog {
public:
    static inline int live = 0;
    std::vector<std::string> extensions;
    std::string initialName, initialFolder, selected;
    gmpi_gui::IMpCompletionHandler* handler = nullptr;
    int32_t type;

    explicit ScriptedDialog(int32_t t) : type(t) { ++live; }
    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        *out = nullptr;
        if (!gmpi::isUnknownIid(iid) && !(iid == gmpi_gui::SE_IID_GRAPHICS_PLATFORM_FILE_DIALOG))
            return gmpi::MP_NOSUPPORT;
        *out = this;
        addRef();
        return gmpi::MP_OK;
    }
    int32_t addRef() override { return ++count_; }
    int32_t release() override {
        const int32_t c = --count_;
        if (c == 0)
            delete this;
        return c;
    }
    int32_t AddExtension(const char* e, const char*) override { return extensions.push_back(e), gmpi::MP_OK; }
    int32_t SetInitialFilename(const char* t) override { return initialName = t, gmpi::MP_OK; }
    int32_t setInitialDirectory(const char* t) override { return initialFolder = t, gmpi::MP_OK; }
    int32_t ShowAsync(gmpi::IMpUnknown* h) override {
        void* face = nullptr;
        if (!h || h->queryInterface(gmpi_gui::SE_IID_COMPLETION_HANDLER, &face) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        handler = static_cast<gmpi_gui::IMpCompletionHandler*>(face);
        addRef();  // a shown dialog lives until it completes
        return gmpi::MP_OK;
    }
    int32_t GetSelectedFilename(gmpi::IMpUnknown* s) override {
        void* face = nullptr;
        if (!s || s->queryInterface(gmpi::MP_IID_RETURNSTRING, &face) != gmpi::MP_OK)
            return gmpi::MP_FAIL;
        static_cast<gmpi::IString*>(face)->setData(selected.data(), static_cast<int32_t>(selected.size()));
        return gmpi::MP_OK;
    }
    // The user's answer: a path, or cancel.
    void complete(const std::string* path) {
        auto* h = std::exchange(handler, nullptr);
        if (path)
            selected = *path;
        h->OnComplete(path ? gmpi::MP_OK : gmpi::MP_FAIL);
        h->release();
        release();
    }

private:
    ~ScriptedDialog() { --live; }
    int32_t count_ = 1;
};

class DialogHost final : public kxtest::FakeGuiHost, public gmpi_gui::IMpGraphicsHost {
public:
    bool offerGraphics = true;
    std::vector<ScriptedDialog*> dialogs;  // every dialog made (borrowed; alive while shown)

    int32_t queryInterface(const gmpi::MpGuid& iid, void** out) override {
        if (offerGraphics && gmpi_gui::isGraphicsHostIid(iid)) {
            *out = static_cast<gmpi_gui::IMpGraphicsHost*>(this);
            return gmpi::MP_OK;
        }
        return FakeGuiHost::queryInterface(iid, out);
    }
    int32_t addRef() override { return 1; }
    int32_t release() override { return 1; }
    int32_t getDrawingScale(float& s) override { return s = 1, gmpi::MP_OK; }
    int32_t getLayoutRect(GmpiDrawing_API::MP1_RECT&) override { return gmpi::MP_FAIL; }
    void invalidateRect(const GmpiDrawing_API::MP1_RECT*) override {}
    void invalidateMeasure() override {}
    int32_t setCapture() override { return gmpi::MP_OK; }
    int32_t getCapture(int32_t& v) override { return v = 0, gmpi::MP_OK; }
    int32_t releaseCapture() override { return gmpi::MP_OK; }
    int32_t createFileDialog(int32_t type, gmpi::IMpUnknown** out) override {
        dialogs.push_back(new ScriptedDialog(type));
        *out = dialogs.back();
        return gmpi::MP_OK;
    }
    int32_t createPlatformTextEdit(const GmpiDrawing_API::MP1_RECT*, gmpi::IMpUnknown** out) override {
        *out = nullptr;
        return gmpi::MP_FAIL;
    }
    void GetDrawingFactory(GmpiDrawing_API::IMpFactory** f) override { *f = nullptr; }
};

struct Requester {
    DialogHost host;
    std::unique_ptr<KX_FileReq> module = std::make_unique<KX_FileReq>();

    Requester() { module->setHost(static_cast<gmpi::IMpUserInterfaceHost2*>(&host)); }
    void click() {
        kxtest::deliver(*module, R::Open, true);
        kxtest::deliver(*module, R::Open, false);
    }
    std::vector<kxtest::Transmission> sent(int pin) const { return host.on(pin); }
};

}  // namespace

TEST(FileReq, OpensOnReleaseWithTheListedExtensionsAndInitialPath) {
    Requester r;
    kxtest::deliverText(*r.module, R::FileName, L"/songs/live/take 1.wav");
    kxtest::deliverText(*r.module, R::Extensions, L"wav, mid");
    kxtest::deliver(*r.module, R::SaveMode, true);
    kxtest::deliver(*r.module, R::Open, true);
    EXPECT_TRUE(r.host.dialogs.empty()) << "pressing and holding opens nothing";
    kxtest::deliver(*r.module, R::Open, false);
    ASSERT_EQ(r.host.dialogs.size(), 1u);
    const ScriptedDialog& d = *r.host.dialogs[0];
    EXPECT_EQ(d.type, gmpi_gui::MP_PLATFORM_FILE_SAVE);
    EXPECT_EQ(d.extensions, (std::vector<std::string>{"wav", "mid"}));
    EXPECT_EQ(d.initialName, "take 1.wav");
    EXPECT_EQ(d.initialFolder, "/songs/live");
    // A second release without a press opens nothing more.
    kxtest::deliver(*r.module, R::Open, false);
    EXPECT_EQ(r.host.dialogs.size(), 1u);
    r.host.dialogs[0]->complete(nullptr);
}

TEST(FileReq, AnEmptyExtensionListOffersEveryFile) {
    Requester r;
    r.click();
    ASSERT_EQ(r.host.dialogs.size(), 1u);
    EXPECT_EQ(r.host.dialogs[0]->extensions, std::vector<std::string>{"*"});
    EXPECT_EQ(r.host.dialogs[0]->type, gmpi_gui::MP_PLATFORM_FILE_OPEN);
    r.host.dialogs[0]->complete(nullptr);
}

// Offering every value of a range as a file type would take minutes: the dialog gets the capped list.
TEST(FileReq, AnExtensionListBeyondTheCapIsCut) {
    Requester r;
    kxtest::deliverText(*r.module, R::Extensions, L"range -2147483648,2147483647");
    r.click();
    ASSERT_EQ(r.host.dialogs.size(), 1u);
    const auto& offered = r.host.dialogs[0]->extensions;
    ASSERT_EQ(offered.size(), static_cast<size_t>(it_enum_list::kMostListed));
    EXPECT_EQ(offered.front(), "-2147483648");
    r.host.dialogs[0]->complete(nullptr);
}

TEST(FileReq, AResourceWhereTheHostLooksForItIsWrittenAsItsBareName) {
    Requester r;
    r.host.resources["piano.sf2|Instrument"] = "C:/res/piano.sf2";
    r.click();
    const std::string chosen = "C:/res/piano.sf2";
    r.host.dialogs[0]->complete(&chosen);
    EXPECT_EQ(r.module->fileName.getValue(), L"piano.sf2");
    const auto pulse = r.sent(R::FileChosen);
    ASSERT_EQ(pulse.size(), 2u);
    EXPECT_TRUE(pulse[0].asBool());
    EXPECT_FALSE(pulse[1].asBool());
}

TEST(FileReq, OtherFilesKeepTheirFullName) {
    Requester r;
    r.host.resources["piano.sf2|Instrument"] = "/res/piano.sf2";
    r.host.resources["song.MID|MIDI"] = "/music/song.MID";
    // Elsewhere than the resource, an upper-case extension (no kind), no extension, a dot in a folder.
    for (const std::string chosen : {"/other/piano.sf2", "/music/song.MID", "/music/readme", "/a.wav/b"}) {
        r.click();
        r.host.dialogs.back()->complete(&chosen);
        EXPECT_EQ(r.module->fileName.getValue(), kx::fromUtf8(chosen));
    }
    EXPECT_EQ(fileResourceCategory("C:\\x.y\\song"), nullptr);
    EXPECT_STREQ(fileResourceCategory("a.b/knob.png"), "Image");
}

TEST(FileReq, CancelWritesNothingAndReleasesTheDialog) {
    Requester r;
    kxtest::deliverText(*r.module, R::FileName, L"keep.wav");
    r.click();
    r.host.sent.clear();
    r.host.dialogs[0]->complete(nullptr);
    EXPECT_TRUE(r.host.sent.empty());
    EXPECT_EQ(r.module->fileName.getValue(), L"keep.wav");
    EXPECT_EQ(ScriptedDialog::live, 0);
}

TEST(FileReq, AnAnswerAfterTheModuleIsGoneOrReplacedIsIgnored) {
    Requester r;
    r.click();
    r.click();  // replaces the first dialog
    const std::string first = "/first.wav", second = "/second.wav";
    r.host.dialogs[0]->complete(&first);
    EXPECT_TRUE(r.sent(R::FileName).empty());
    r.host.dialogs[1]->complete(&second);
    EXPECT_EQ(r.module->fileName.getValue(), L"/second.wav");

    r.click();
    r.module.reset();
    r.host.sent.clear();
    r.host.dialogs[2]->complete(&first);
    EXPECT_TRUE(r.host.sent.empty());
    EXPECT_EQ(ScriptedDialog::live, 0);
}

TEST(FileReq, WithoutAGraphicsHostTheRequestIsDropped) {
    Requester r;
    r.host.offerGraphics = false;
    r.click();
    EXPECT_TRUE(r.host.dialogs.empty());
    EXPECT_TRUE(r.host.sent.empty());
}

TEST(FileDialogWrapper, BackslashWinsOverSlashWhenSplittingAPath) {
    EXPECT_EQ(GmpiGui::StripPath("C:\\songs\\a.wav"), "a.wav");
    EXPECT_EQ(GmpiGui::StripPath("/x\\y/z.wav"), "y/z.wav");
    EXPECT_EQ(GmpiGui::StripPath("plain.wav"), "plain.wav");

    auto* raw = new ScriptedDialog(0);
    GmpiGui::FileDialog dialog(raw);  // takes the creation reference
    dialog.SetInitialFullPath("/x\\y/z.wav");
    EXPECT_EQ(raw->initialName, "y/z.wav");
    EXPECT_EQ(raw->initialFolder, "/x");
    dialog.SetInitialFullPath("plain.wav");
    EXPECT_EQ(raw->initialFolder, "plain.wav");
}
