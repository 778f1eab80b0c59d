#pragma once
// A ModelSink that records every call as one line of text, for tests that check what
// the model tells the control and in which order. Paths use the POSIX style against
// ProjectDir; Language and the mouse pointer are plain fields.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "control/paths.h"
#include "model/all_files.h"
#include "model/model_sink.h"

namespace kestrel::test {

class RecordingSink : public ModelSink {
public:
    std::vector<std::string> calls;
    int32_t language = LANGUAGE_C;
    std::u16string ProjectDir = u"/proj/";
    int16_t pointer = 0;
    std::vector<int16_t> pointerChanges;
    PathStyle style = PathStyle::Posix;

    int32_t Language() override { return language; }
    std::u16string AbsPath__(const std::u16string& stored) override { return kestrel::AbsPath__(stored, ProjectDir, style); }
    std::u16string RelativePathToProject__(const std::u16string& full) override {
        return kestrel::RelativePathToProject__(full, ProjectDir, style);
    }
    std::u16string ExtractFilename__(const std::u16string& path, int16_t strip) override {
        return kestrel::ExtractFilename__(path, strip, style);
    }
    bool FileNamesIgnoreCase() override { return style == PathStyle::Windows; }

    void AddFile__(const FilePtr& f) override { calls.push_back("AddFile " + Name(f)); }
    void RemoveFile__(const FilePtr& f) override { calls.push_back("RemoveFile " + Name(f)); }
    void AddClassNode__WithDummy(const ClassPtr& c, const FilePtr& f) override {
        calls.push_back("AddClassNode " + ToUtf8(c->Name) + " " + Name(f));
    }
    void SetCurrentClass(const ClassPtr& c, const FilePtr& f) override {
        calls.push_back("SetCurrentClass " + ToUtf8(c->Name) + " " + Name(f));
    }
    void RemoveClass__(const ClassPtr& c, const FilePtr& f) override {
        calls.push_back("RemoveClass " + ToUtf8(c->Name) + " " + Name(f));
    }
    void AddFunction__(const ItemPtr& i, const ClassPtr& c, const FilePtr& f) override { Entry("AddFunction", i, c, f); }
    void AddVariable__(const ItemPtr& i, const ClassPtr& c, const FilePtr& f) override { Entry("AddVariable", i, c, f); }
    void RemoveFunction__(const ItemPtr& i, const ClassPtr& c, const FilePtr& f) override { Entry("RemoveFunction", i, c, f); }
    void RemoveVariable__(const ItemPtr& i, const ClassPtr& c, const FilePtr& f) override { Entry("RemoveVariable", i, c, f); }
    void Collapse() override { calls.push_back("Collapse"); }
    int16_t MousePointer() override { return pointer; }
    void MousePointer(int16_t p) override {
        pointer = p;
        pointerChanges.push_back(p);
    }

    // Calls recorded so far, then forgets them.
    std::vector<std::string> Take() { return std::exchange(calls, {}); }

private:
    static std::string Name(const FilePtr& f) { return f ? ToUtf8(f->RelativeFilename()) : "-"; }
    void Entry(const char* op, const ItemPtr& i, const ClassPtr& c, const FilePtr& f) {
        calls.push_back(std::string(op) + " " + (c ? ToUtf8(c->Name) : "-") + "::" + ToUtf8(i->Name()) + " " + Name(f));
    }
};

// A file collection that tells its sink everything.
template <class Sink = RecordingSink>
struct RecordedFiles {
    std::shared_ptr<Sink> sink = std::make_shared<Sink>();
    std::shared_ptr<clsAllFiles> files = std::make_shared<clsAllFiles>();
    RecordedFiles() { files->SetSinkObject__(sink); }
};

// A host that lists the classes it is offered as "name|user data|user id".
struct ClassList : ClassEnumerator {
    std::vector<std::string> seen;
    void EnumClass(const std::u16string& Name, const std::u16string& UserData, int32_t UserId) override {
        seen.push_back(ToUtf8(Name) + "|" + ToUtf8(UserData) + "|" + std::to_string(UserId));
    }
};

}  // namespace kestrel::test
