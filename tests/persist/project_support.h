#pragma once
// A project on disk for the project-file tests: a control stand-in (TestHost), a
// recording sink, a file collection wired to it, and builders for hand-made files.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "model/all_files.h"
#include "persist/project_host.h"
#include "persist/save_into_file.h"
#include "support/error_capture.h"
#include "support/recording_sink.h"
#include "support/scratch.h"

namespace kestrel::test {

struct TestHost : ProjectHost {
    std::u16string fileName;
    int32_t language = LANGUAGE_C;
    int32_t id = -1;
    bool backup = false;

    std::u16string FileName() override { return fileName; }
    void FileName(const std::u16string& name) override { fileName = name; }
    int32_t Language() override { return language; }
    void Language(int32_t value) override { language = value; }
    int32_t ID() override { return id; }
    void ID(int32_t value) override { id = value; }
    bool CreateBackup() override { return backup; }
};

struct Project : RecordedFiles<> {
    TestHost host;

    bool Save() { return clsSaveIntoFile().Save(host, *files); }
    bool Load(const std::string& path) { return clsSaveIntoFile().Load(FromUtf8(path), host, *files); }
    // A file listed as unparsed (so nothing reads the disk), then given its real type.
    FilePtr Listed(const std::u16string& name, int32_t type) {
        FilePtr f = files->Add(name, FILETYPE_NOPARSE);
        f->FileType(type);
        return f;
    }
};

// Two scanned-looking files and a form, with host fields at every level.
inline void BuildSample(Project& p) {
    FilePtr view = p.Listed(u"/proj/src/view.cpp", FILETYPE_IMPLEMENTATION);
    view->WriteDeclare__(u"CView::Draw", 5, PUBLIC_SCOPE, u"(int x)");
    view->WriteDeclare__(u"CView::Draw", 6, PROTECTED_SCOPE, u"()");
    view->WriteVariable__(u"CView::m_x", 7, PRIVATE_SCOPE, u"int");
    view->WriteVariable__(u"CView::m_name", 8, PRIVATE_SCOPE, u"");
    view->WriteEndClass__(u"CView", 9);
    view->WriteDeclare__(u"main", 20, PUBLIC_SCOPE, u"(int argc, char** argv)");
    view->UserData = u"file tag \u00e9";
    view->UserId = 42;
    view->item(1)->UserData = u"class tag";
    view->item(1)->UserId = -3;
    view->item(1)->func(2)->SetUserData(u"entry tag");
    view->item(1)->func(2)->UserId = 77;
    p.Listed(u"/lib/util.h", FILETYPE_DEFINITION)->WriteVariable__(u"Util::count", 3, PUBLIC_SCOPE, u"static int");
    p.files->Add(u"/proj/main.frm", FILETYPE_FORM);
    p.host.language = LANGUAGE_BASIC;
    p.host.id = 1234;
}

// Record builders for hand-made project files.
inline std::string N(int32_t v) {
    uint32_t u = static_cast<uint32_t>(v);
    return {char(u & 0xFF), char(u >> 8 & 0xFF), char(u >> 16 & 0xFF), char(u >> 24 & 0xFF)};
}
inline std::string S(const std::string& text) { return N(static_cast<int32_t>(text.size())) + text; }
// An item record; version 11 files carry the parameter text.
inline std::string ItemRecord(const std::string& name, int32_t line, const std::string& params = "",
                              bool withParams = true) {
    return S(name) + N(line) + N(PUBLIC_SCOPE) + N(0) + S("") + (withParams ? S(params) : "");
}
inline std::string Joined(const std::vector<std::string>& records) {
    std::string out;
    for (const std::string& r : records) out += r;
    return out;
}
inline std::string Counted(const std::vector<std::string>& records) {
    return N(static_cast<int32_t>(records.size())) + Joined(records);
}
inline std::string ClassRecord(const std::string& name, const std::vector<std::string>& vars = {},
                               const std::vector<std::string>& funcs = {}) {
    return S(name) + N(0) + S("") + N(0) + Counted(vars) + Counted(funcs);
}
inline std::string FileRecord(const std::string& name, const std::vector<std::string>& classes,
                              int32_t type = FILETYPE_IMPLEMENTATION) {
    return S(name) + N(type) + N(static_cast<int32_t>(classes.size())) + N(0) + S("") + Joined(classes);
}
// A whole file: signature, language 0, id 0 and the file records.
inline std::string ProjectBytes(const std::vector<std::string>& files, const std::string& signature = "KESTREL1.1") {
    return S(signature) + N(0) + N(0) + Counted(files);
}

// A scratch folder and a project, with the project file written from bytes or saved.
struct ProjectOnDisk : ::testing::Test {
    ScratchDir dir;
    Project p;

    bool LoadBytes(const std::string& bytes, const std::string& name = "p.kpr") {
        WriteFileBytes(dir / name, bytes);
        return p.Load(dir / name);
    }
    bool SaveAs(const std::string& name, Project& project) {
        project.host.fileName = FromUtf8(dir / name);
        return project.Save();
    }
    bool SaveAs(const std::string& name) { return SaveAs(name, p); }
    std::string Bytes(const std::string& name) const { return ReadFileBytes(dir / name); }
};

}  // namespace kestrel::test
