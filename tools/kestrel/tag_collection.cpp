#include "tag_collection.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "common/constants.h"
#include "common/text.h"
#include "control/headless_project.h"
#include "file_list.h"
#include "model/all_files.h"
#include "project_session.h"

namespace kestrel::cli {

namespace {

constexpr std::u16string_view kFileLevelClass = u"Globals";
constexpr std::string_view kClassWords[] = {"class", "struct", "union", "interface", "enum"};
// How far above its first member a class head is looked for.
constexpr int32_t kHeadSearchLines = 400;

const char* AccessWord(int32_t scope) {
    switch (scope) {
        case PUBLIC_SCOPE: return "public";
        case PROTECTED_SCOPE: return "protected";
        case PRIVATE_SCOPE: return "private";
        default: return "";
    }
}

// The file's lines as their bytes stand, each without its end (CR LF, CR or LF).
std::vector<std::string> ReadLines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\n' && bytes[i] != '\r') continue;
        lines.emplace_back(bytes, start, i - start);
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') ++i;
        start = i + 1;
    }
    if (start < bytes.size()) lines.emplace_back(bytes, start);
    return lines;
}

bool IsWordByte(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || (c & 0x80); }

// Whether `word` stands in `text` as a whole word at or after `from`, and where.
size_t FindWord(std::string_view text, std::string_view word, size_t from = 0) {
    for (size_t at = text.find(word, from); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const bool startsWord = at == 0 || !IsWordByte(text[at - 1]);
        const bool endsWord = at + word.size() == text.size() || !IsWordByte(text[at + word.size()]);
        if (startsWord && endsWord) return at;
    }
    return std::string_view::npos;
}

// The model keeps a class's members and its end, not the line of its head: that is the
// nearest line at or above the first member that names the class after one of the
// words that open a class. The first member's line when none is found.
int32_t ClassHeadLine(const std::vector<std::string>& lines, std::string_view className, int32_t below) {
    const size_t colon = className.rfind(':'), dot = className.rfind('.');
    size_t cut = 0;
    if (colon != std::string_view::npos) cut = colon + 1;
    if (dot != std::string_view::npos) cut = std::max(cut, dot + 1);
    const std::string_view last = className.substr(cut);
    for (int32_t line = std::min<int32_t>(below, static_cast<int32_t>(lines.size())); line >= 1 && line > below - kHeadSearchLines;
         --line) {
        const std::string_view text = lines[line - 1];
        const size_t named = FindWord(text, last);
        if (named == std::string_view::npos) continue;
        for (std::string_view word : kClassWords) {
            const size_t opened = FindWord(text, word);
            if (opened != std::string_view::npos && opened < named) return line;
        }
    }
    return below;
}

std::string LineAt(const std::vector<std::string>& lines, int32_t line) {
    return line >= 1 && static_cast<size_t>(line) <= lines.size() ? lines[line - 1] : std::string();
}

void TagsOfFile(clsOneFile& file, const std::string& path, const TagLanguage& language, std::vector<Tag>& out) {
    const std::vector<std::string> lines = ReadLines(path);
    const size_t first = out.size();
    for (const ClassPtr& classObj : file.Classes()) {
        const bool fileLevel = classObj->Name == kFileLevelClass;
        const std::string className = fileLevel ? std::string() : Utf8(classObj->Name);
        int32_t firstLine = INT32_MAX;
        for (const bool functions : {false, true}) {
            classObj->ForEachForSaving(functions, [&](const clsOneItem& item) {
                Tag tag;
                tag.name = Utf8(item.Name());
                tag.path = path;
                tag.line = item.Line;
                tag.language = &language;
                tag.kind = functions ? &language.functionKind : fileLevel ? &language.variableKind : &language.memberKind;
                tag.scope = className;
                if (!fileLevel) tag.scopeKind = language.classKind.name;
                tag.access = AccessWord(item.Scope);
                (functions ? tag.signature : tag.typeName) = Utf8(item.Params());
                tag.lineText = LineAt(lines, item.Line);
                out.push_back(std::move(tag));
                firstLine = std::min(firstLine, item.Line);
            });
        }
        // A class is tagged where its body is: a file that only defines its members
        // (out of the class, as "Shape::Move") holds no tag of the class.
        if (fileLevel || classObj->EndLine <= 0) continue;
        Tag tag;
        tag.name = className;
        tag.path = path;
        tag.line = ClassHeadLine(lines, className, firstLine == INT32_MAX ? classObj->EndLine : firstLine);
        tag.language = &language;
        tag.kind = &language.classKind;
        tag.end = classObj->EndLine;
        tag.lineText = LineAt(lines, tag.line);
        out.push_back(std::move(tag));
    }
    std::stable_sort(out.begin() + static_cast<std::ptrdiff_t>(first), out.end(),
                     [](const Tag& a, const Tag& b) { return a.line < b.line; });
}

}  // namespace

const TagLanguage* TagLanguageNamed(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    if (lower == "c" || lower == "cpp") lower = "c++";
    if (lower == "vb") lower = "basic";
    for (const TagLanguage& l : kTagLanguages) {
        std::string known(l.name);
        std::transform(known.begin(), known.end(), known.begin(), [](unsigned char c) { return std::tolower(c); });
        if (known == lower) return &l;
    }
    return nullptr;
}

const TagLanguage* TagLanguageOfFamily(int32_t family) {
    for (const TagLanguage& l : kTagLanguages)
        if (l.family == family) return &l;
    return nullptr;
}

std::vector<Tag> CollectTags(const std::vector<TagFile>& files, bool& anyUnreadable) {
    // One project per language, never saved: the model scans and files what it finds
    // exactly as it does for the class view.
    std::shared_ptr<HeadlessProject> projects[std::size(kTagLanguages)];
    std::vector<Tag> tags;
    for (const TagFile& given : files) {
        const TagLanguage* language = given.language;
        if (!language) {
            const std::optional<int32_t> family = LanguageOfExtension(given.path);
            language = family ? TagLanguageOfFamily(*family) : nullptr;
        }
        if (!language) continue;
        const std::string absolute = AbsolutePath(given.path);
        if (std::ifstream probe(absolute, std::ios::binary); !probe) {
            std::cerr << "kestrel-ctags: " << given.path << ": cannot be read: " << std::strerror(errno) << '\n';
            anyUnreadable = true;
            continue;
        }
        auto& project = projects[language - kTagLanguages];
        if (!project) {
            project = HeadlessProject::Create();
            project->NewProject(FromUtf8(AbsolutePath(".kestrel-tags")), language->language, 0);
        }
        AllFilesPtr all = project->files();
        const std::u16string name = FromUtf8(absolute);
        all->Remove(name);  // a file named twice is scanned again
        int32_t type = FileTypeOfExtension(absolute);
        if (type == FILETYPE_NOPARSE || type == FILETYPE_FORM) type = FILETYPE_IMPLEMENTATION;
        if (FilePtr file = all->Add(name, type)) TagsOfFile(*file, given.path, *language, tags);
    }
    return tags;
}

}  // namespace kestrel::cli
