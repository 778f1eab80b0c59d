// Arbitrary bytes loaded as a project file by a control on the in-memory platform,
// every class opened, then saved, loaded into a second control and saved again: the
// two saved files must be the same bytes. Before the first save a file is added whose
// name, class, function and texts come from the input as UTF-16 (any unit, lone
// surrogates too), some of them longer than a reader takes: each must read back as
// written, cut to what fits.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"
#include "fuzz_input.h"

namespace {

using namespace kestrel;

// Opens every class node of the class tree, as a user going through the tree would.
void ExpandEveryClass(MemoryTree& tree) {
    std::vector<NodeId> classes;
    for (NodeId project = tree.FirstChild(kNoNode); project != kNoNode; project = tree.NextSibling(project))
        for (NodeId c = tree.FirstChild(project); c != kNoNode; c = tree.NextSibling(c)) classes.push_back(c);
    for (NodeId c : classes) tree.UserExpand(c);
}

[[noreturn]] void Fail(const char* what) {
    std::fprintf(stderr, "project_file: %s\n", what);
    std::abort();
}

// The texts of the added file, as the model holds them once written.
struct AddedTexts {
    std::u16string storedName, userData, className, classUserData, name, params, itemUserData;
};

AddedTexts TextsOf(clsOneFile& file) {
    ClassPtr c = file.item(1);
    ItemPtr f = c ? c->func(1) : nullptr;
    if (!f) Fail("the added function is missing");
    return {file.GetTrueFile(), file.UserData, c->Name, c->UserData,
            std::u16string(f->Name()), std::u16string(f->Params()), std::u16string(f->UserData())};
}

// The input as UTF-16 units, two bytes each; an odd length adds text beyond Latin-1.
std::u16string UnitsOf(const uint8_t* data, size_t size) {
    std::u16string units;
    for (size_t i = 0; i + 1 < size; i += 2) units.push_back(static_cast<char16_t>(data[i] | data[i + 1] << 8));
    if (size % 2 != 0) units += u"\u0436\u6570\U0001F600";
    return units;
}

// `units` repeated up to `length` units.
std::u16string Repeated(const std::u16string& units, size_t length) {
    std::u16string text;
    while (!units.empty() && text.size() < length) text += units;
    return text.substr(0, length);
}

// What a save keeps of a text: 31,999 units, or in a UTF-8 file the whole characters
// that fit in 31,999 bytes.
std::u16string Saved(const std::u16string& text, bool utf8) {
    constexpr size_t kLimit = 31999;
    if (!utf8) return text.substr(0, kLimit);
    size_t bytes = 0, units = 0;
    while (units < text.size()) {
        const char16_t c = text[units];
        const bool pair = c >= 0xD800 && c <= 0xDBFF && units + 1 < text.size() && text[units + 1] >= 0xDC00 &&
                          text[units + 1] <= 0xDFFF;
        const size_t length = pair ? 4 : c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
        if (bytes + length > kLimit) break;
        bytes += length;
        units += pair ? 2 : 1;
    }
    return text.substr(0, units);
}

// Adds a file of texts made from the input: short ones, ones at the length where the
// cut begins, and ones well beyond it. Answers false when its name would load as a file
// the project holds already (a reload keeps only the first of the two).
bool AddTexts(TreeView& view, const uint8_t* data, size_t size) {
    const std::u16string units = UnitsOf(data, size);
    const size_t last = size > 0 ? data[size - 1] : 0;
    const AllFilesPtr files = view.files();
    const std::u16string name = u"/fuzz/" + units.substr(0, 64);
    FilePtr file = files->Add(name, FILETYPE_NOPARSE);  // listed only: nothing is read
    if (!file) return false;
    for (const FilePtr& other : files->Files()) {
        if (other != file && view.AbsPath__(other->GetTrueFile()) == view.AbsPath__(file->GetTrueFile())) {
            files->Remove(name);
            return false;
        }
    }
    file->UserData = Repeated(units, 31990 + last % 16);
    const std::u16string second = units.size() > 16 ? units.substr(16, 16) : u"";
    file->WriteDeclare__(u"Fuzz" + units.substr(0, 16) + u"::f" + second, 1, PUBLIC_SCOPE,
                         Repeated(units, 32000 + last * 64));
    ClassPtr c = file->item(1);
    if (!c || !c->func(1)) return false;  // a name the split leaves empty
    c->UserData = Repeated(units, 10667 + last % 8);  // three bytes a unit cross the limit here
    c->func(1)->SetUserData(Repeated(units, 16000 + last % 4));
    return true;
}

// Loads `from` into a fresh control and saves it as `to`; false when the load is refused.
// With input, a file of texts from it is added first, and what it held comes back in
// `added`; `addedAt` is that file's position.
bool LoadAndSave(const std::filesystem::path& from, const std::filesystem::path& to, bool async,
                 const uint8_t* data = nullptr, size_t size = 0, int32_t* addedAt = nullptr,
                 AddedTexts* added = nullptr) {
    MemoryPlatform platform;
    std::shared_ptr<TreeView> view = TreeView::Create(platform.Get());
    view->AsyncLoad(async);
    if (!view->Load(FromUtf8(from.string()))) return false;
    ExpandEveryClass(platform.classTree);
    platform.timer.Drain();
    view->FileName(FromUtf8(to.string()));
    if (data && AddTexts(*view, data, size)) {
        *addedAt = view->files()->count();
        *added = TextsOf(*view->files()->item(*addedAt));
    }
    if (!view->Save()) Fail("a loaded project could not be saved");
    return true;
}

// The added file as the saved project holds it, against what was written.
void CheckAddedTexts(const std::filesystem::path& saved, int32_t position, const AddedTexts& written) {
    MemoryPlatform platform;
    std::shared_ptr<TreeView> view = TreeView::Create(platform.Get());
    if (!view->Load(FromUtf8(saved.string()))) Fail("a saved project could not be loaded");
    FilePtr file = view->files()->item(position);
    if (!file) Fail("the added file did not read back");
    const bool utf8 = kestrel::fuzz::ReadFile(saved).substr(4, 10) == "KESTREL1.2";
    const AddedTexts read = TextsOf(*file);
    const std::u16string AddedTexts::*texts[] = {&AddedTexts::storedName, &AddedTexts::userData,
                                                 &AddedTexts::className,  &AddedTexts::classUserData,
                                                 &AddedTexts::name,       &AddedTexts::params,
                                                 &AddedTexts::itemUserData};
    for (const auto text : texts)
        if (read.*text != Saved(written.*text, utf8)) Fail("a saved text did not read back as written");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kestrel::fuzz::QuietErrors errors;
    const auto& folder = kestrel::fuzz::ScratchFolder();
    const auto input = folder / "input.kpr", first = folder / "first.kpr", second = folder / "second.kpr";
    kestrel::fuzz::WriteFile(input, std::string_view(reinterpret_cast<const char*>(data), size));
    int32_t addedAt = 0;
    AddedTexts added;
    if (!LoadAndSave(input, first, true, data, size, &addedAt, &added)) return 0;
    if (addedAt > 0) CheckAddedTexts(first, addedAt, added);
    if (!LoadAndSave(first, second, false)) Fail("a saved project could not be loaded");
    if (kestrel::fuzz::ReadFile(first) != kestrel::fuzz::ReadFile(second))
        Fail("saving what was loaded changed the project file");
    return 0;
}
