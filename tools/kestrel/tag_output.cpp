#include "tag_output.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>

#include "json_text.h"
#include "common/text.h"

namespace kestrel::cli {

namespace {

// Lines longer than this are cut in patterns, which then do not end at the line's end.
constexpr size_t kPatternLimit = 96;
constexpr const char* kProgramName = "kestrel";

bool Has(const TagFormat& format, char field) { return format.fields.find(field) != std::string::npos; }

std::string Pattern(const std::string& line) {
    const bool whole = line.size() <= kPatternLimit;
    std::string out = "/^";
    for (char c : line.substr(0, kPatternLimit)) {
        if (c == '\\' || c == '/') out += '\\';
        out += c;
    }
    out += whole ? "$/" : "/";
    return out;
}

std::string Address(const Tag& tag, TagFormat::Excmd excmd) {
    switch (excmd) {
        case TagFormat::Excmd::Number: return std::to_string(tag.line);
        case TagFormat::Excmd::Combine: return std::to_string(tag.line) + ";" + Pattern(tag.lineText);
        default: return Pattern(tag.lineText);
    }
}

// The line with its leading blanks dropped and every run of blanks made one space.
std::string Compact(const std::string& line) {
    std::string out;
    for (char c : line) {
        const bool blank = c == ' ' || c == '\t';
        if (blank && (out.empty() || out.back() == ' ')) continue;
        out += blank ? ' ' : c;
    }
    while (!out.empty() && out.back() == ' ') out.pop_back();
    return out;
}

// A field value may hold neither a TAB nor a line end.
std::string FieldValue(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\t') out += "\\t";
        else if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else if (c == '\\') out += "\\\\";
        else out += c;
    }
    return out;
}

struct PseudoTag {
    const char* name;
    std::string value;
    const char* comment;
};

std::vector<PseudoTag> PseudoTags(const TagFormat& format) {
    const char* sorted = format.sort == TagFormat::Sort::Yes ? "1" : format.sort == TagFormat::Sort::FoldCase ? "2" : "0";
    const char* excmd = format.excmd == TagFormat::Excmd::Number ? "number"
                        : format.excmd == TagFormat::Excmd::Combine ? "combineV2" : "pattern";
    std::vector<PseudoTag> tags;
    if (format.output == TagFormat::Output::Json) tags.push_back({"JSON_OUTPUT_VERSION", "0.0", "in development"});
    tags.push_back({"TAG_FILE_FORMAT", "2", "extended format; --format=1 will not append ;\" to lines"});
    tags.push_back({"TAG_FILE_SORTED", sorted, "0=unsorted, 1=sorted, 2=foldcase"});
    if (format.output != TagFormat::Output::ECtags) {
        tags.push_back({"TAG_OUTPUT_EXCMD", excmd, "number, pattern, mixed, or combineV2"});
        tags.push_back({"TAG_OUTPUT_MODE", "u-ctags", "u-ctags or e-ctags"});
    }
    tags.push_back({"TAG_PROGRAM_AUTHOR", "the kestrel developers", ""});
    tags.push_back({"TAG_PROGRAM_NAME", kProgramName, "an independent tagger compatible with Universal Ctags"});
    tags.push_back({"TAG_PROGRAM_VERSION", KESTREL_VERSION, ""});
    return tags;
}

void WriteTagLine(std::ostream& out, const Tag& tag, const TagFormat& format) {
    out << tag.name << '\t' << tag.path << '\t' << Address(tag, format.excmd) << ";\"";
    if (Has(format, 'z')) out << "\tkind:" << tag.kind->name;
    else if (Has(format, 'K')) out << '\t' << tag.kind->name;
    else if (Has(format, 'k')) out << '\t' << tag.kind->letter;
    if (Has(format, 'n')) out << "\tline:" << tag.line;
    if (Has(format, 'l')) out << "\tlanguage:" << tag.language->name;
    if ((Has(format, 's') || Has(format, 'Z')) && !tag.scope.empty())
        out << '\t' << (Has(format, 'Z') ? "scope:" : "") << tag.scopeKind << ':' << FieldValue(tag.scope);
    if (Has(format, 't') && !tag.typeName.empty()) out << "\ttyperef:typename:" << FieldValue(tag.typeName);
    if (Has(format, 'a') && !tag.access.empty()) out << "\taccess:" << tag.access;
    if (Has(format, 'S') && !tag.signature.empty()) out << "\tsignature:" << FieldValue(tag.signature);
    if (Has(format, 'e') && tag.end > 0) out << "\tend:" << tag.end;
    out << '\n';
}

void WriteJsonTag(std::ostream& out, const Tag& tag, const TagFormat& format) {
    JsonLine line;
    line.Utf8("_type", "tag").Utf8("name", tag.name).Utf8("path", tag.path);
    if (format.excmd != TagFormat::Excmd::Number) line.Utf8("pattern", Pattern(tag.lineText));
    if (Has(format, 'l')) line.Utf8("language", tag.language->name);
    if (Has(format, 'n') || format.excmd == TagFormat::Excmd::Number) line.Number("line", tag.line);
    if (Has(format, 't') && !tag.typeName.empty()) line.Utf8("typeref", "typename:" + tag.typeName);
    if (Has(format, 'k') || Has(format, 'K') || Has(format, 'z')) line.Utf8("kind", tag.kind->name);
    if (Has(format, 'a') && !tag.access.empty()) line.Utf8("access", tag.access);
    if (Has(format, 'S') && !tag.signature.empty()) line.Utf8("signature", tag.signature);
    if ((Has(format, 's') || Has(format, 'Z')) && !tag.scope.empty())
        line.Utf8("scope", tag.scope).Utf8("scopeKind", tag.scopeKind);
    if (Has(format, 'e') && tag.end > 0) line.Number("end", tag.end);
    line.WriteTo(out);
}

// One cross-reference line after a --_xformat template: %[-][WIDTH]LETTER, where the
// letters are those of --fields (N name, F file, n line, K and z kind, k its letter,
// C the compact line, P the pattern, s scope, S signature, a access, R "D" for a
// definition, which every tag here is).
void WriteXref(std::ostream& out, const Tag& tag, const std::string& format) {
    std::string line;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 == format.size()) {
            line += format[i];
            continue;
        }
        ++i;
        if (format[i] == '%') {
            line += '%';
            continue;
        }
        const bool left = format[i] == '-';
        if (left) ++i;
        size_t width = 0;
        while (i < format.size() && std::isdigit(static_cast<unsigned char>(format[i]))) width = width * 10 + (format[i++] - '0');
        if (i == format.size()) break;
        std::string value;
        switch (format[i]) {
            case 'N': value = tag.name; break;
            case 'F': value = tag.path; break;
            case 'n': value = std::to_string(tag.line); break;
            case 'K': case 'z': value = tag.kind->name; break;
            case 'k': value = std::string(1, tag.kind->letter); break;
            case 'C': value = Compact(tag.lineText); break;
            case 'P': value = Pattern(tag.lineText); break;
            case 's': case 'Z': value = tag.scope; break;
            case 'S': value = tag.signature; break;
            case 'a': value = tag.access; break;
            case 'R': value = "D"; break;
            default: value = "-"; break;
        }
        const std::string padding(value.size() < width ? width - value.size() : 0, ' ');
        line += left ? value + padding : padding + value;
    }
    out << line << '\n';
}

int FoldedCompare(const std::string& a, const std::string& b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        const int x = std::toupper(static_cast<unsigned char>(a[i])), y = std::toupper(static_cast<unsigned char>(b[i]));
        if (x != y) return x - y;
    }
    return static_cast<int>(a.size()) - static_cast<int>(b.size());
}

}  // namespace

void SortTags(std::vector<Tag>& tags, TagFormat::Sort sort) {
    if (sort == TagFormat::Sort::No) return;
    // Byte order (or upper-cased byte order) of names, as readtags' binary search
    // expects; then by file and line.
    std::stable_sort(tags.begin(), tags.end(), [sort](const Tag& a, const Tag& b) {
        const int byName = sort == TagFormat::Sort::FoldCase ? FoldedCompare(a.name, b.name) : a.name.compare(b.name);
        if (byName != 0) return byName < 0;
        if (const int byPath = a.path.compare(b.path)) return byPath < 0;
        return a.line < b.line;
    });
}

void WriteTags(std::ostream& out, const std::vector<Tag>& tags, const TagFormat& format) {
    if (format.pseudoTags && format.output != TagFormat::Output::Xref) {
        for (const PseudoTag& p : PseudoTags(format)) {
            if (format.output == TagFormat::Output::Json)
                JsonLine().Utf8("_type", "ptag").Utf8("name", p.name).Utf8("path", p.value).Utf8("pattern", p.comment).WriteTo(out);
            else
                out << "!_" << p.name << '\t' << p.value << "\t/" << p.comment << "/\n";
        }
    }
    for (const Tag& tag : tags) {
        switch (format.output) {
            case TagFormat::Output::Json: WriteJsonTag(out, tag, format); break;
            case TagFormat::Output::Xref: WriteXref(out, tag, format.xformat); break;
            default: WriteTagLine(out, tag, format); break;
        }
    }
}

}  // namespace kestrel::cli
