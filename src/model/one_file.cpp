#include "model/one_file.h"

#include <algorithm>

#include "common/constants.h"
#include "errorlog/resume.h"
#include "persist/binary_file.h"
#include "scanner/quillbox.h"
#include "scanner/text_search.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsOneFile.cls";

}  // namespace

const std::u16string& clsOneFile::FileName() {
    Trap(kModule, "Property (Get) FileName", [&] {
        if (absolute_.empty()) {
            std::shared_ptr<ModelSink> sink = sink_.lock();
            absolute_ = Required(sink).AbsPath__(stored_);
        }
    });
    return absolute_;
}

ClassPtr clsOneFile::item(int32_t position) {
    ClassPtr found;
    Trap(kModule, "Property (Get) item", [&] { found = classes_.Item(position); });
    return found;
}

ClassPtr clsOneFile::item(const std::u16string& className) {
    ClassPtr found;
    Trap(kModule, "Property (Get) item", [&] { found = classes_.Item(className); });
    return found;
}

void clsOneFile::UpdateFile() { UpdateFile(nullptr); }

void clsOneFile::UpdateFile(ScanAhead* scanned) {
    Trap(kModule, "Sub UpdateFile", [&] {
        std::shared_ptr<ModelSink> sink = sink_.lock();
        UpdateFile__(sink.get(), static_cast<int16_t>(Required(sink).Language()), nullptr, scanned);
    });
}

void clsOneFile::UpdateEmbeededFile(LineSource& SourceObject) {
    Trap(kModule, "Sub UpdateEmbeededFile", [&] {
        std::shared_ptr<ModelSink> sink = sink_.lock();
        UpdateFile__(sink.get(), static_cast<int16_t>(Required(sink).Language()), &SourceObject);
    });
}

bool clsOneFile::MarkForUpdate(ModelSink* sink) {
    stored_ = Required(sink).RelativePathToProject__(FileName());
    if (fileType_ == FILETYPE_FORM || fileType_ == FILETYPE_NOPARSE) return false;  // listed, never scanned
    Dirty = true;
    for (const ClassPtr& c : classes_) c->PrepareUpdate__();
    return true;
}

// Members not seen again go first, then every class left empty.
void clsOneFile::SweepAfterUpdate(ModelSink* sink, const FilePtr& self) {
    classes_.RemoveWhere([&](const ClassPtr& c) {
        c->FinishUpdate__(sink, self);
        if (c->CountFunc() != 0 || c->CountVars() != 0) return false;
        Required(sink).RemoveClass__(c, self);
        return true;
    });
}

void clsOneFile::BeginUpdate__(ModelSink* sink, int16_t language, ScanAhead* scanned) {
    portioned_.reset();
    Trap(kModule, "Sub UpdateFile__", [&] {
        if (!MarkForUpdate(sink)) return;
        auto update = std::make_unique<PortionedUpdate>();
        update->scan = scanned ? scanned->Take(FileName(), fileType_, language) : nullptr;
        if (!update->scan) {
            update->scan = std::make_unique<RecordedScan>(FileName(), fileType_, language);
            update->scan->Scan();
        }
        portioned_ = std::move(update);
    });
}

bool clsOneFile::ContinueUpdate__(size_t budget) {
    if (!portioned_) return true;
    bool done = true;  // an error ends the update where it got to, as in UpdateFile__
    Trap(kModule, "Sub UpdateFile__", [&] {
        PortionedUpdate& update = *portioned_;
        const std::shared_ptr<ModelSink> sink = sink_.lock();
        update.running.sink = sink.get();
        update.running.self = shared_from_this();
        struct Release {
            RunningUpdate& running;
            ~Release() { running.self.reset(); }
        } release{update.running};
        WhileRunning(update.running, [&] {
            update.next = update.scan->Replay(*this, update.next, budget);
            update.scan->ReleaseBefore(update.next);
            done = update.next == update.scan->Calls();
            if (done) SweepAfterUpdate(sink.get(), update.running.self);
        });
    });
    if (done) portioned_.reset();
    return done;
}

void clsOneFile::UpdateFile__(ModelSink* sink, int16_t language, LineSource* source, ScanAhead* scanned) {
    Trap(kModule, "Sub UpdateFile__", [&] {
        if (!MarkForUpdate(sink)) return;
        RunningUpdate running;
        running.sink = sink;
        running.self = shared_from_this();
        WhileRunning(running, [&] {
            std::unique_ptr<RecordedScan> recorded =
                scanned && !source ? scanned->Take(FileName(), fileType_, language) : nullptr;
            clsQuillbox scanner;
            if (recorded)
                recorded->Replay(*this);
            else if (source)
                scanner.ParseEmbeededFile(*this, language, *source);
            else
                scanner.ParseFile(*this, language);
            SweepAfterUpdate(sink, running.self);
        });
    });
}

void clsOneFile::ExtractClassInfo(const std::u16string& fullName, std::u16string& className,
                                  std::u16string& memberName) {
    std::u16string_view classView, memberView;
    SplitClassInfo(fullName, classView, memberView);
    className = classView;
    memberName = memberView;
}

void clsOneFile::SplitClassInfo(std::u16string_view fullName, std::u16string_view& className,
                                std::u16string_view& memberName) {
    size_t p = FindText(fullName, u"::");
    if (p == std::u16string_view::npos) {
        className = {};
        memberName = fullName;
    } else {
        className = TrimmedView(fullName.substr(0, p));
        memberName = TrimmedView(fullName.substr(p + 2));
    }
    if (className.empty()) className = u"Globals";
}

ClassPtr clsOneFile::ClassFor(std::u16string_view className) {
    RunningUpdate* last = update_;
    if (last && last->found && last->removals == classes_.Removals() && SameText(last->className, className))
        return last->found;
    const auto probe = classes_.Locate(className);
    ClassPtr c = probe.found;
    if (!c) {
        c = std::make_shared<clsClassObject>();
        classes_.AddMissing(probe, className, c);
        c->Name = className;
    }
    if (last) {
        last->className = className;
        last->found = c;
        last->removals = classes_.Removals();
    }
    return c;
}

ModelSink* clsOneFile::WriteSink(std::shared_ptr<ModelSink>& held) {
    if (update_ && update_->sink) return update_->sink;
    held = sink_.lock();
    return held.get();
}

const FilePtr& clsOneFile::WriteSelf(FilePtr& held) {
    if (update_) return update_->self;
    held = shared_from_this();
    return held;
}

void clsOneFile::WriteDeclare__(const std::u16string& fullName, int32_t line, int16_t scope,
                                const std::u16string& params) {
    Trap(kModule, "Sub WriteDeclare__", [&] {
        std::u16string_view className, memberName;
        SplitClassInfo(fullName, className, memberName);
        WriteSplit(true, className, memberName, line, scope, params);
    });
}

void clsOneFile::WriteVariable__(const std::u16string& fullName, int32_t line, int16_t scope,
                                 const std::u16string& params) {
    Trap(kModule, "Sub WriteVariable__", [&] {
        std::u16string_view className, memberName;
        SplitClassInfo(fullName, className, memberName);
        WriteSplit(false, className, memberName, line, scope, params);
    });
}

void clsOneFile::WriteMember__(bool isFunction, std::u16string_view className, std::u16string_view memberName,
                               int32_t line, int16_t scope, const std::u16string& text) {
    // The full name splits where the parts meet unless a colon in the class name starts
    // its first "::" earlier; a class name with a colon, which is rare, goes the long way.
    // A namespace's qualified name (a::b), which only the C++ scanner hands over, names
    // its container whole.
    constexpr size_t npos = std::u16string_view::npos;
    if (FindUnit(className, u':') != npos && FindText(className, u"::") == npos) {
        ScanOutput::WriteMember__(isFunction, className, memberName, line, scope, text);
        return;
    }
    Trap(kModule, isFunction ? "Sub WriteDeclare__" : "Sub WriteVariable__", [&] {
        className = TrimmedView(className);
        WriteSplit(isFunction, className.empty() ? u"Globals" : className, TrimmedView(memberName), line, scope, text);
    });
}

void clsOneFile::WriteSplit(bool isFunction, std::u16string_view className, std::u16string_view memberName,
                            int32_t line, int16_t scope, const std::u16string& text) {
    std::shared_ptr<ModelSink> heldSink;
    FilePtr heldSelf;
    if (isFunction) {
        ClassFor(className)->AddFunction__(memberName, line, scope, WriteSink(heldSink), WriteSelf(heldSelf), text);
        return;
    }
    // A declarator list the scanner did not split ("a, b") is dropped on purpose.
    constexpr size_t npos = std::u16string_view::npos;
    if (FindUnit(className, u',') != npos || FindUnit(memberName, u',') != npos) return;
    ClassFor(className)->AddVariable__(memberName, line, scope, WriteSink(heldSink), WriteSelf(heldSelf), text);
}

void clsOneFile::WriteEndClass__(const std::u16string& className, int32_t endLine) {
    if (ClassPtr c = classes_.Find(className)) c->EndLine = endLine;
}

void clsOneFile::WriteInclude__(const std::u16string&, int32_t) {
    // Included files are not added to the project.
}

ClassPtr clsOneFile::GetClass(const std::u16string& ClassName) const { return classes_.Find(ClassName); }

ClassPtr clsOneFile::FindClass_ByUserData(const std::u16string& userData) const {
    for (const ClassPtr& c : classes_)
        if (c->UserData == userData) return c;
    return nullptr;
}

void clsOneFile::EnumClasses(ClassEnumerator* EnumObject) {
    Trap(kModule, "Sub EnumClasses", [&] {
        for (const ClassPtr& c : classes_) Required(EnumObject).EnumClass(c->Name, c->UserData, c->UserId);
    });
}

int32_t clsOneFile::IsFunctionDefined(const std::u16string& szFuncName) const {
    for (const ClassPtr& c : classes_) {
        int32_t line = c->IsFunctionDefined(szFuncName);
        if (line >= 0) return line;
    }
    return -1;
}

ItemPtr clsOneFile::InProc(int32_t LineNum) const {
    int32_t best = -1;
    ItemPtr result;
    for (const ClassPtr& c : classes_) {
        int32_t start = -1;
        ItemPtr candidate = c->InProc__(LineNum, start);
        if (start > best) {
            best = start;
            result = candidate;
        }
    }
    return result;
}

void clsOneFile::AddAllFromTheClass__(const std::u16string& className, ModelSink* sink) {
    Trap(kModule, "Sub AddAllFromTheClass__", [&] {
        if (ClassPtr c = classes_.Find(className)) c->AddAllFromTheClass__(sink, shared_from_this());
    });
}

void clsOneFile::LoadFromBinaryFile(int32_t version, ModelSink* sink) {
    // A class name repeated in the record ends this reader here (reported); the
    // classes before it stay.
    Trap(kModule, "Sub LoadFromBinaryFile", [&] {
        clsBinaryFile& in = g_BinaryFile();
        absolute_.clear();
        stored_ = in.LoadString();
        Dirty = false;
        fileType_ = in.LoadNumeric();
        int32_t classCount = in.LoadNumeric();
        UserId = in.LoadNumeric();
        UserData = in.LoadString();
        FilePtr self = shared_from_this();
        const std::u16string versionText = ToText(version);
        classes_.ReserveMore(
            static_cast<int32_t>(std::min<int64_t>(classCount, in.BytesLeft() / clsClassObject::kSmallestRecord)));
        for (int32_t k = 0; k < classCount && !in.HitEnd(); ++k) {
            auto c = std::make_shared<clsClassObject>();
            c->LoadFromBinaryData(versionText, sink, self);
            classes_.Add(c->Name, c);
        }
    });
}

}  // namespace kestrel
