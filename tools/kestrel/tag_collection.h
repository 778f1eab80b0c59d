#pragma once
// The tags of source files: each class, function and variable kestrel finds, where it
// is, and the text of its line, for the tags writer.
#include <cstdint>
#include <string>
#include <vector>

#include "tag_languages.h"

namespace kestrel::cli {

struct Tag {
    std::string name;
    std::string path;  // as given
    int32_t line = 0;
    const TagLanguage* language = nullptr;
    const TagKind* kind = nullptr;
    std::string scope;      // the class of a member; empty at file level
    std::string scopeKind;  // "class" with a scope
    std::string access;     // public, protected or private; empty when not stated
    std::string signature;  // a function's parameter text
    std::string typeName;   // a variable's type text
    int32_t end = 0;        // a class's last line
    std::string lineText;   // the source line, as its bytes stand
};

// Scans each file in the language given, or the one its extension names, and answers
// its tags in line order. A file that cannot be read is named on standard error and
// gives none; so does one whose language kestrel does not scan.
struct TagFile {
    std::string path;
    const TagLanguage* language;  // null: by extension
};
std::vector<Tag> CollectTags(const std::vector<TagFile>& files, bool& anyUnreadable);

}  // namespace kestrel::cli
