#include "persist/save_into_file.h"

#include <cmath>
#include <filesystem>
#include <string>

#include "common/text.h"
#include "errorlog/resume.h"
#include "persist/binary_file.h"

namespace kestrel {

namespace {

constexpr std::string_view kModule = "clsSaveIntoFile.cls";
const std::u16string kSignature = u"KESTREL1.1";
// A project holding a code unit above 255 is written as version 1.2, its strings UTF-8;
// every other project as version 1.1, byte for byte as before there was a 1.2.
const std::u16string kUtf8Signature = u"KESTREL1.2";
constexpr int32_t kUtf8Version = 12;
const std::u16string kSignatureStem = u"KESTREL";

namespace fs = std::filesystem;

fs::path SystemPath(const std::u16string& name) { return fs::path(ToUtf8(name)); }

// Keeps the previous project file as name + ".bak"; every failure here is ignored.
void KeepBackup(const std::u16string& name) {
    IgnoreErrors([&] {
        std::error_code ignored;
        if (!fs::exists(SystemPath(name), ignored)) return;
        fs::path backup = SystemPath(TrimSpaces(name) + u".bak");
        fs::remove(backup, ignored);
        fs::copy_file(SystemPath(name), backup, ignored);
    });
}

// Closes g_BinaryFile() however the routine ends; a save not finished is dropped.
struct CloseOnExit {
    ~CloseOnExit() { g_BinaryFile().CloseFile(); }
};

}  // namespace

int32_t clsSaveIntoFile::VersionOf(const std::u16string& signature) {
    // The leading decimal number of the text after "KESTREL" (blanks ignored, 0 when
    // there is none), as a sign, digits, a point, digits and an exponent.
    std::string text;
    for (size_t i = kSignatureStem.size(); i < signature.size(); ++i) {
        char16_t c = signature[i];
        if (c == u' ' || c == u'\t' || c == u'\n') continue;
        if (c > 0x7F) break;
        text += static_cast<char>(c);
    }
    auto digits = [&](size_t& i) {
        size_t from = i;
        while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
        return i > from;
    };
    size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    bool any = digits(i);
    if (i < text.size() && text[i] == '.') {
        ++i;
        any = digits(i) || any;
    }
    if (!any) return 0;
    std::string number = text.substr(0, i);
    size_t e = i;
    if (e < text.size() && std::string_view("EeDd").find(text[e]) != std::string_view::npos) {
        size_t mark = ++e;
        if (e < text.size() && (text[e] == '+' || text[e] == '-')) ++e;
        if (digits(e)) {
            number += 'E';
            number.append(text, mark, e - mark);
        }
    }
    double scaled = std::nearbyint(std::strtod(number.c_str(), nullptr) * 10);  // half to even
    if (!(scaled > -2147483648.0 && scaled < 2147483647.0)) return 0;
    return static_cast<int32_t>(scaled);
}

bool clsSaveIntoFile::Save(ProjectHost& ctl, clsAllFiles& files) {
    bool result = false;
    Trap(kModule, "Function Save", [&] {
        const std::u16string name = ctl.FileName();
        if (!name.empty() && ctl.CreateBackup()) KeepBackup(name);
        if (name.empty()) return;

        clsBinaryFile& out = g_BinaryFile();
        CloseOnExit closer;
        if (!out.OpenReplacement(name)) return;
        const auto writeProject = [&] {
            const bool utf8 = out.Encoding() == clsBinaryFile::TextEncoding::Utf8;
            out.SaveString(utf8 ? kUtf8Signature : kSignature);
            out.SaveNumeric(ctl.Language());
            out.SaveNumeric(ctl.ID());
            out.SaveNumeric(files.count());
            for (const FilePtr& f : files.Files()) {
                SaveOneFile__(*f);
                if (out.UnitsDidNotFit()) return;  // written again below
            }
        };
        // Nearly every project fits one byte per unit; one that does not is found out
        // while it is written, which costs less than a look at every text beforehand.
        writeProject();
        if (out.UnitsDidNotFit()) {
            out.Restart();
            out.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
            writeProject();
        }
        result = out.CommitReplacement();
    });
    return result;
}

void clsSaveIntoFile::SaveOneFile__(clsOneFile& file) {
    clsBinaryFile& out = g_BinaryFile();
    file.Dirty = false;
    out.SaveString(file.GetTrueFile());
    out.SaveNumeric(file.FileType());
    out.SaveNumeric(file.count());
    out.SaveNumeric(file.UserId);
    out.SaveString(file.UserData);
    for (const ClassPtr& c : file.Classes()) SaveClassObject__(*c);
}

void clsSaveIntoFile::SaveClassObject__(const clsClassObject& classObj) {
    clsBinaryFile& out = g_BinaryFile();
    out.SaveString(classObj.Name);
    out.SaveNumeric(classObj.EndLine);
    out.SaveString(classObj.UserData);
    out.SaveNumeric(classObj.UserId);
    out.SaveNumeric(classObj.CountVars());
    classObj.ForEachForSaving(false, [this](const clsOneItem& v) { SaveOneItem__(v, true); });
    out.SaveNumeric(classObj.CountFunc());
    classObj.ForEachForSaving(true, [this](const clsOneItem& f) { SaveOneItem__(f, false); });
}

void clsSaveIntoFile::SaveOneItem__(const clsOneItem& item, bool /*isVariable: same record either way*/) {
    clsBinaryFile& out = g_BinaryFile();
    out.SaveString(item.Name());
    out.SaveNumeric(item.Line);
    out.SaveNumeric(item.Scope);
    out.SaveNumeric(item.UserId);
    out.SaveString(item.UserData());
    out.SaveString(item.Params());
}

bool clsSaveIntoFile::Load(const std::u16string& szFileName, ProjectHost& ctl, clsAllFiles& files) {
    bool result = false;
    Trap(kModule, "Function Load", [&] {
        clsBinaryFile& in = g_BinaryFile();
        if (!in.OpenFile(szFileName, false)) {
            ctl.FileName(szFileName);  // names the file a later Save creates
            return;
        }
        CloseOnExit closer;
        int32_t version = -1;
        int32_t first = in.LoadNumeric();
        if (first == static_cast<int32_t>(kSignature.size())) {
            in.Reset();
            std::u16string signature = in.LoadString();
            if (signature.compare(0, kSignatureStem.size(), kSignatureStem) != 0) {
                in.CloseFile();
                ctl.FileName(u"");
                return;
            }
            version = VersionOf(signature);
            if (version == kUtf8Version) in.SetTextEncoding(clsBinaryFile::TextEncoding::Utf8);
            ctl.Language(in.LoadNumeric());
        } else if (first >= -32768) {
            return;  // practically every file without the signature is refused
        } else {
            ctl.Language(first);  // an unsigned file starts with its language
        }
        ctl.ID(in.LoadNumeric());
        ctl.ClearProjectBeforeRead();
        files.LoadFromBinaryFile(version);
        // What was read stays loaded; whoever saves it next must know that it is not all.
        if (in.HitEnd()) ReportError(kModule, "Function Load", kErrFileIo, "the project file ended early");
        ctl.FileName(szFileName);
        in.CloseFile();
        ctl.FileName(szFileName);
        result = true;
    });
    return result;
}

}  // namespace kestrel
