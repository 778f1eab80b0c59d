// Embeds the toolkit-neutral control: scans a header into a project, saves it, and
// loads it back into a second control without rescanning.
#include <cstdio>
#include <string>

#include "common/text.h"
#include "control/memory/memory_platform.h"
#include "control/tree_view.h"

namespace {

bool Fail(const char* what) {
    std::fprintf(stderr, "core_host: %s\n", what);
    return false;
}

bool Run(const std::u16string& project, const std::u16string& header) {
    kestrel::MemoryPlatform scanning;
    auto writer = kestrel::TreeView::Create(scanning.Get());
    writer->NewProject(project, kestrel::LANGUAGE_C, 7);
    writer->files()->Add(header, kestrel::FILETYPE_DEFINITION);
    if (!writer->Save()) return Fail("the project was not saved");

    kestrel::MemoryPlatform loading;
    auto reader = kestrel::TreeView::Create(loading.Get());
    if (!reader->Load(project)) return Fail("the project did not load");
    if (reader->files()->count() != 1) return Fail("the loaded project does not hold one file");
    kestrel::ClassPtr circle = reader->files()->FindClass(u"Circle", kestrel::FILETYPE_DEFINITION);
    if (!circle) return Fail("class Circle is missing after loading");
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: core_host PROJECT HEADER\n");
        return 2;
    }
    return Run(kestrel::FromUtf8(argv[1]), kestrel::FromUtf8(argv[2])) ? 0 : 1;
}
